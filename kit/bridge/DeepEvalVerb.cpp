// The verb "deepEval": the value of a chain of expressions, worked out in a scratch workbook.
#include <exception>

#include "kit/bridge/Bridge.h"
#include "kit/shapes/DeepEvalShapes.h"

namespace quorin {

JSONValue Bridge::deepEval(const std::vector<std::string>& plan, bool asked) {
  if (const auto refusal = BridgeShapes::deepEvalRefusal(plan))
    return BridgeShapes::deepEvalFailure("refused", *refusal);
  // Excel's active cell moves to the scratch workbook and back.
  touchProgrammaticNav();
  JSONValue reply = deepEvalInExcel(plan, asked);
  touchProgrammaticNav();
  return reply;
}

JSONValue Bridge::deepEvalInExcel(const std::vector<std::string>& plan, bool asked) {
  try {
    Args arguments;
    arguments.emplace_back(Args(plan.begin(), plan.end()));
    return BridgeShapes::deepEvalObject(call("deepEval", "qx_deepeval", arguments, asked));
  } catch (const ExcelError& error) {
    log_.log("ERROR", "deepEval failed code=" + std::to_string(error.code()) +
                          " n=" + std::to_string(plan.size()));
    return BridgeShapes::deepEvalFailure(error.code(), error.message());
  } catch (const std::exception& error) {
    return BridgeShapes::deepEvalFailure("transport", error.what());
  }
}

}  // namespace quorin

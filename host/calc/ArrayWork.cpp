#include "host/calc/ArrayWork.h"

#include "host/Address.h"
#include "host/calc/FunctionCalls.h"

namespace quorin::host::calc {

ArrayShape shapeOf(const Area& area) {
  return {static_cast<double>(rowCount(area)), static_cast<double>(columnCount(area))};
}

ArrayShape shapeOfConstant(std::string_view text) {
  const std::string_view first = text.substr(0, text.find(';'));
  return {1.0 + static_cast<double>(std::count(text.begin(), text.end(), ';')),
          1.0 + static_cast<double>(std::count(first.begin(), first.end(), ','))};
}

ArrayCall arrayCall(std::string_view function, const std::vector<ArrayShape>& arguments) {
  if (arguments.empty()) return {};
  const ArrayShape& first = arguments.front();
  if (function == "ROW") return {{first.rows, 1}};
  if (function == "COLUMN") return {{1, first.columns}};
  if (function == "TRANSPOSE") return {{first.columns, first.rows}};
  if (function == "MMULT" && arguments.size() > 1) {
    constexpr double quicker = 100;  // a product than a call
    const ArrayShape product{first.rows, arguments[1].columns};
    return {product, std::max(product.count(), product.count() * first.columns / quicker)};
  }
  const bool ofEach = function.empty() || (givesOne(function, false) && !givesOne(function, true));
  if (!ofEach) return {};
  ArrayOperands together;
  for (const ArrayShape& one : arguments) together.add(one);
  return {together.shape(), together.crossed()};
}

}  // namespace quorin::host::calc

#include "host/calc/grammar/ArrayWork.h"

#include <array>

#include "host/Address.h"
#include "host/calc/grammar/FunctionCalls.h"

namespace quorin::host::calc {
namespace {

// At most as many values as the first argument has.
bool givesSomeOfFirst(std::string_view function) {
  static constexpr std::array<std::string_view, 5> names{"FILTER", "SORT", "SORTBY", "UNIQUE",
                                                         "XMATCH"};
  return std::find(names.begin(), names.end(), function) != names.end();
}

}  // namespace

ArrayShape shapeOf(const Area& area) {
  return {static_cast<double>(rowCount(area)), static_cast<double>(columnCount(area))};
}

ArrayShape shapeOfConstant(std::string_view text) {
  const std::string_view first = text.substr(0, text.find(';'));
  return {1.0 + static_cast<double>(std::count(text.begin(), text.end(), ';')),
          1.0 + static_cast<double>(std::count(first.begin(), first.end(), ','))};
}

void ArrayOperands::addTo(OfficeWork& work) const {
  work.crossed += crossed();
  if (all_.count() <= 1) return;
  work.values += all_.count() * signs_;
  work.texts += all_.count() * joins_;
}

ArrayCall arrayCall(std::string_view function, const std::vector<ArrayShape>& arguments) {
  if (arguments.empty()) return {};
  const ArrayShape& first = arguments.front();
  if (function == "ROW") return {{first.rows, 1}};
  if (function == "COLUMN") return {{1, first.columns}};
  if (function == "TRANSPOSE") return {{first.columns, first.rows}};
  if (function == "LET") return {arguments.back()};
  if (givesSomeOfFirst(function)) return {first};
  if (function == "XLOOKUP" && arguments.size() > 2) {
    if (first.count() > 1) return {first};
    return {arguments[1].columns > 1 ? ArrayShape{arguments[2].rows, 1}
                                     : ArrayShape{1, arguments[2].columns}};
  }
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

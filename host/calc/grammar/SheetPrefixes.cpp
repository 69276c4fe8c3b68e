#include "host/calc/grammar/SheetPrefixes.h"

#include <algorithm>
#include <utility>

#include "host/calc/grammar/CalcReference.h"

namespace quorin::host::calc {
namespace {

constexpr std::size_t mostKnown = 16;  // more would take longer to go through than to read again

}  // namespace

SheetPrefixes::SheetPrefixes(IsSheet isSheet) : isSheet_(std::move(isSheet)) {
  known_.reserve(mostKnown);
}

SheetPrefixes::Sheet* SheetPrefixes::read(std::string_view text, std::size_t& position) {
  const std::string_view rest = text.substr(position);
  const auto stands = [&](const Sheet& sheet) { return rest.starts_with(sheet.prefix); };
  auto found = known_.begin() + static_cast<std::ptrdiff_t>(latest_);
  if (found == known_.end() || !stands(*found)) {
    found = std::find_if(known_.begin(), known_.end(), stands);
  }
  if (found != known_.end()) {
    position += found->prefix.size();
    latest_ = static_cast<std::size_t>(found - known_.begin());
    return &*found;
  }
  const std::size_t start = position;
  auto name = readCalcSheet(text, position);
  if (!name) return nullptr;
  Sheet sheet{std::string(text.substr(start, position - start)), *name, excelSheet(*name), {}};
  if (known_.size() < mostKnown) {
    latest_ = known_.size();
    known_.push_back(std::move(sheet));
  } else {
    latest_ = (latest_ + 1) % mostKnown;
    known_[latest_] = std::move(sheet);
  }
  return &known_[latest_];
}

bool SheetPrefixes::exists(Sheet& sheet) const {
  if (!isSheet_) return true;
  if (!sheet.exists) sheet.exists = isSheet_(sheet.name);
  return *sheet.exists;
}

}  // namespace quorin::host::calc

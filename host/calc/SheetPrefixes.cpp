#include "host/calc/SheetPrefixes.h"

#include <utility>

#include "host/calc/CalcReference.h"

namespace quorin::host::calc {
namespace {

constexpr std::size_t mostKnown = 16;  // more would take longer to go through than to read again

}  // namespace

SheetPrefixes::SheetPrefixes(IsSheet isSheet) : isSheet_(std::move(isSheet)) {
  known_.reserve(mostKnown);
}

SheetPrefixes::Sheet* SheetPrefixes::read(std::string_view text, std::size_t& position) {
  const std::string_view rest = text.substr(position);
  for (std::size_t i = 0; i < known_.size(); ++i) {
    const std::size_t place = (latest_ + i) % known_.size();
    if (!rest.starts_with(known_[place].prefix)) continue;
    position += known_[place].prefix.size();
    latest_ = place;
    return &known_[place];
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

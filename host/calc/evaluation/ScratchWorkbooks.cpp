#include "host/calc/evaluation/ScratchWorkbooks.h"

#include <algorithm>

#include "kit/value/EventErrors.h"

namespace quorin::host::calc {

std::string ScratchWorkbooks::make() {
  const std::vector<std::string> open = workbooks_.names();
  std::string name;
  int number = 1;
  do {
    name = "Book" + std::to_string(number++);
  } while (find(name) != nullptr || std::find(open.begin(), open.end(), name) != open.end());
  const auto front = workbooks_.active();
  made_.push_back(
      std::make_unique<ScratchWorkbook>(context_, name, front ? front->workbook.get() : nullptr));
  active_ = name;
  return name;
}

void ScratchWorkbooks::close(const std::string& book) {
  named(book);
  made_.erase(std::find_if(made_.begin(), made_.end(),
                           [&](const auto& each) { return each->name() == book; }));
  if (active_ == book) deactivate();
}

void ScratchWorkbooks::closeAll() {
  made_.clear();
  deactivate();
}

ScratchWorkbook* ScratchWorkbooks::find(const std::string& book) {
  const auto found = std::find_if(made_.begin(), made_.end(),
                                  [&](const auto& each) { return each->name() == book; });
  return found == made_.end() ? nullptr : found->get();
}

ScratchWorkbook& ScratchWorkbooks::named(const std::string& book) {
  ScratchWorkbook* const found = find(book);
  if (found == nullptr)
    throw SpreadsheetError(eventErrors::notModifiable, "not ours to change: " + book);
  return *found;
}

std::vector<std::string> ScratchWorkbooks::names() const {
  std::vector<std::string> names;
  for (const auto& each : made_) names.push_back(each->name());
  return names;
}

}  // namespace quorin::host::calc

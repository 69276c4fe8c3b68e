#include "tests/fakes/QuirkyExcel.h"

#include <algorithm>
#include <array>
#include <cstdio>

#include "host/Codes.h"

namespace quorin::fakes {
namespace {

namespace codes = host::codes;
using Descriptor = AppleEventDescriptor;

bool isList(const Descriptor& value) {
  return value.type() == codes::list;
}

// The property that a `get` reads, 0 for every other event.
FourCharCode propertyRead(const AppleEvent& event) {
  if (event.eventClass != codes::coreSuite || event.eventID != codes::get) return 0;
  const Descriptor* const object = event.parameter(keyDirectObject);
  const Descriptor* const form = object == nullptr ? nullptr : object->field(codes::keyForm);
  if (form == nullptr || form->codeValue() != codes::formProperty) return 0;
  const Descriptor* const data = object->field(codes::keyData);
  return data == nullptr ? 0 : data->codeValue().value_or(0);
}

bool isValue(FourCharCode property) {
  return property == codes::value || property == codes::value2;
}

bool isFormula(FourCharCode property) {
  return property == codes::formula || property == codes::formula2 ||
         property == codes::formulaLocal || property == codes::formulaR1C1;
}

std::size_t columnsOf(const Descriptor& grid) {
  return isList(grid) && !grid.items().empty() ? grid.items().front().items().size() : 0;
}

bool hasErrorInFirstColumn(const Descriptor& grid) {
  return std::any_of(grid.items().begin(), grid.items().end(), [](const Descriptor& row) {
    return !row.items().empty() && row.items().front().isMissingValue();
  });
}

void dropErrorRows(Descriptor& column) {
  std::erase_if(column.items(),
                [](const Descriptor& row) { return row.items().front().isMissingValue(); });
  if (column.items().size() != 1) return;
  Descriptor survivor = column.items().front().items().front();
  column = std::move(survivor);
}

template <typename F>
void forEachCell(Descriptor& value, F change) {
  if (!isList(value)) return change(value);
  for (Descriptor& item : value.items()) forEachCell(item, change);
}

void writeAsText(Descriptor& cell) {
  if (const auto flag = cell.booleanValue()) {
    cell = Descriptor::text(*flag ? "TRUE" : "FALSE");
  } else if (const auto number = cell.doubleValue()) {
    std::array<char, 32> digits;
    std::snprintf(digits.data(), digits.size(), "%.15g", *number);
    cell = Descriptor::text(digits.data());
  }
}

}  // namespace

QuirkyExcel::QuirkyExcel(std::unique_ptr<script::Application> excel, ExcelQuirks switches)
    : quirks(switches), excel_(std::move(excel)) {}

void QuirkyExcel::failAt(int number, AppleEventError error) {
  failures_[number] = std::move(error);
}

AppleEventReply QuirkyExcel::died() {
  dead_ = true;
  return {std::nullopt, AppleEventError{-609, "Connection is invalid.", {}}};
}

AppleEventReply QuirkyExcel::send(const AppleEvent& event, std::chrono::milliseconds timeout) {
  events_.push_back(event);
  const auto failure = failures_.find(static_cast<int>(events_.size()));
  if (failure != failures_.end()) return {std::nullopt, failure->second};
  if (dead_) return died();
  if (event.eventClass == codes::excelSuite && event.eventID == codes::evaluate) {
    const Descriptor* const expression = event.parameter(codes::name);
    const auto text = expression == nullptr ? std::nullopt : expression->stringValue();
    if (quirks.losesLongText && text && text->size() > 255)
      return {Descriptor::missingValue(), std::nullopt};
    AppleEventReply reply = excel_->send(event, timeout);
    if (quirks.hidesEvaluationErrors && reply.error && reply.error->number == -1708)
      return {Descriptor::missingValue(), std::nullopt};
    return reply;
  }
  return afterRead(propertyRead(event), excel_->send(event, timeout));
}

AppleEventReply QuirkyExcel::afterRead(FourCharCode property, AppleEventReply reply) {
  if (!reply.result ||
      !(isValue(property) || isFormula(property) || property == codes::stringValue))
    return reply;
  Descriptor& answer = *reply.result;
  const std::size_t columns = columnsOf(answer);
  if (isValue(property)) {
    if (quirks.diesOfFirstColumnErrors && columns > 1 && hasErrorInFirstColumn(answer))
      return died();
    if (quirks.dropsErrorRows && columns == 1) dropErrorRows(answer);
    if (quirks.losesBlanks)
      forEachCell(answer, [](Descriptor& cell) {
        if (cell.stringValue() == "") cell = Descriptor::missingValue();
      });
  }
  if (quirks.writesFormulasAsText && isFormula(property) && isList(answer))
    forEachCell(answer, writeAsText);
  if (quirks.flattensSingleRows && columns > 1 && answer.items().size() == 1) {
    Descriptor row = answer.items().front();
    answer = std::move(row);
  }
  return reply;
}

}  // namespace quorin::fakes

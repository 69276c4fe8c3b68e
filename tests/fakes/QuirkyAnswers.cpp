#include "tests/fakes/QuirkyAnswers.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

#include "host/model/Codes.h"

namespace quorin::fakes {
namespace {

namespace codes = host::codes;
using Descriptor = AppleEventDescriptor;

bool isList(const Descriptor& value) {
  return value.type() == codes::list;
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

AppleEventReply connectionLost() {
  return failed(-609, "Connection is invalid.");
}

AppleEventReply nothing(NothingFound kind) {
  switch (kind) {
    case NothingFound::notUnderstood:
      return failed(-1708);
    case NothingFound::parameterError:
      return failed(-50, "Parameter error.");
    case NothingFound::noSuchObject:
      return failed(-1728);
    case NothingFound::missingValue:
      break;
  }
  return {Descriptor::missingValue(), std::nullopt};
}

bool mentionsIn(const AppleEvent& event, FourCharCode property) {
  const Descriptor* const direct = event.parameter(keyDirectObject);
  return direct != nullptr && mentions(*direct, property);
}

}  // namespace

AppleEventReply failed(int number, std::string message) {
  return {std::nullopt, AppleEventError{number, std::move(message), {}}};
}

bool isEvent(const AppleEvent& event, FourCharCode suite, FourCharCode command) {
  return event.eventClass == suite && event.eventID == command;
}

FourCharCode propertyRead(const AppleEvent& event) {
  if (event.eventClass != codes::coreSuite || event.eventID != codes::get) return 0;
  const Descriptor* const object = event.parameter(keyDirectObject);
  const Descriptor* const form = object == nullptr ? nullptr : object->field(codes::keyForm);
  if (form == nullptr || form->codeValue() != codes::formProperty) return 0;
  const Descriptor* const data = object->field(codes::keyData);
  return data == nullptr ? 0 : data->codeValue().value_or(0);
}

AppleEventReply spoiledCells(const ExcelQuirks& quirks, FourCharCode property,
                             AppleEventReply reply) {
  if (!reply.result ||
      !(isValue(property) || isFormula(property) || property == codes::stringValue))
    return reply;
  Descriptor& answer = *reply.result;
  const std::size_t columns = columnsOf(answer);
  if (isValue(property)) {
    if (quirks.diesOfFirstColumnErrors && columns > 1 && hasErrorInFirstColumn(answer))
      return connectionLost();
    if (quirks.dropsErrorRows && columns == 1) dropErrorRows(answer);
    if (quirks.listsSingleValues && !isList(answer)) {
      Descriptor::Items row, rows;
      row.push_back(std::move(answer));
      rows.push_back(Descriptor::list(std::move(row)));
      answer = Descriptor::list(std::move(rows));
    }
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

AppleEventReply spoiled(const ExcelQuirks& quirks, const AppleEvent& event, AppleEventReply reply) {
  if (reply.error) {
    const int number = reply.error->number;
    if (isEvent(event, codes::excelSuite, codes::evaluate) && quirks.hidesEvaluationErrors &&
        number == -1708)
      return {Descriptor::missingValue(), std::nullopt};
    if (number == -1708 && mentionsIn(event, codes::directDependents))
      return nothing(quirks.noDependents);
    if (number == -50 && isEvent(event, codes::tableSuite, codes::specialCells))
      return nothing(quirks.noVisibleCells);
    if (number == -1728 && quirks.missesUnknownElements &&
        isEvent(event, codes::coreSuite, codes::get))
      return {Descriptor::missingValue(), std::nullopt};
    return reply;
  }
  if (!reply.result) return reply;
  Descriptor& answer = *reply.result;
  if (isEvent(event, codes::tableSuite, codes::getAddress) && quirks.cutsLongAddresses) {
    const auto text = answer.stringValue();
    if (text && text->size() > 255) answer = Descriptor::text(std::string(text->substr(0, 255)));
  }
  if (isEvent(event, codes::coreSuite, codes::make) && quirks.forgetsWhatItMade)
    reply.result.reset();
  if (quirks.listsDependents && propertyRead(event) == codes::directDependents) {
    Descriptor::Items ranges;
    ranges.push_back(std::move(answer));
    return {Descriptor::list(std::move(ranges)), std::nullopt};
  }
  // Values of cells have shapes of their own.
  if (quirks.baresSingles && propertyRead(event) == codes::name && isList(answer) &&
      answer.items().size() == 1) {
    Descriptor only = answer.items().front();
    answer = std::move(only);
  }
  return reply;
}

Descriptor asRead(const ExcelQuirks& quirks, Descriptor descriptor) {
  for (AppleEventDescriptor::Field& field : descriptor.fields())
    field.value = asRead(quirks, std::move(field.value));
  const Descriptor* const wanted = descriptor.field(codes::desiredClass);
  const Descriptor* const form = descriptor.field(codes::keyForm);
  if (wanted == nullptr || wanted->codeValue() != codes::range || form == nullptr ||
      form->codeValue() != codes::formName)
    return descriptor;
  const auto given = descriptor.field(codes::keyData)->stringValue();
  if (!given) return descriptor;
  std::string text(*given);
  // What Excel itself wrote comes with "$" and is understood in every form.
  if (quirks.separatesWithSemicolons && text.find('$') == std::string::npos) {
    if (text.find(',') != std::string::npos) text = "no range";
    std::replace(text.begin(), text.end(), ';', ',');
  }
  if (quirks.readsUpToTheComma && text.find('$') == std::string::npos)
    text.resize(std::min(text.size(), text.find(',')));
  if (quirks.refusesLongAddresses && text.size() > 255 && text.find('$') == std::string::npos)
    text = "no range";
  for (AppleEventDescriptor::Field& field : descriptor.fields())
    if (field.keyword == codes::keyData) field.value = Descriptor::text(text);
  return descriptor;
}

bool mentions(const Descriptor& descriptor, FourCharCode property) {
  const Descriptor* const form = descriptor.field(codes::keyForm);
  if (form == nullptr) return false;
  if (form->codeValue() == codes::formProperty &&
      descriptor.field(codes::keyData)->codeValue() == property)
    return true;
  const Descriptor* const container = descriptor.field(codes::container);
  return container != nullptr && mentions(*container, property);
}

}  // namespace quorin::fakes

#include "tests/kit/scripts/ExcelScratch.h"

#include <stdexcept>
#include <utility>
#include <variant>

#include "kit/value/Marshal.h"

namespace quorin {

namespace ExcelScratchTexts {
extern const std::string_view excelScratchScript;
}

namespace {

// A constant as a script argument; what cannot be written as one stays blank.
JSONValue argument(const host::CellValue& value) {
  if (const bool* const flag = std::get_if<bool>(&value)) return *flag;
  if (const double* const number = std::get_if<double>(&value)) return *number;
  if (const std::string* const text = std::get_if<std::string>(&value)) return *text;
  return "";
}

}  // namespace

std::string_view ExcelScratch::source() {
  return ExcelScratchTexts::excelScratchScript;
}

ExcelScratch::ExcelScratch(ScriptRunner& runner, const fakes::WorkbookDescription& description)
    : runner_(runner) {
  JSONValue::Array names;
  for (const fakes::SheetDescription& sheet : description.sheets) names.emplace_back(sheet.name);
  const JSONValue made = ask("sc_open", {names});
  if (!made.string()) throw std::runtime_error("Excel made no workbook");
  book_ = *made.string();
  for (const fakes::SheetDescription& sheet : description.sheets) fill(sheet);
  for (const fakes::NameDescription& name : description.names)
    ask("sc_define", {book_, name.sheet, name.name, name.refersTo});
}

ExcelScratch::~ExcelScratch() {
  try {
    if (!book_.empty()) ask("sc_close", {book_});
  } catch (const std::runtime_error&) {
    // Excel is gone, and the workbook with it.
  }
}

void ExcelScratch::goTo(const std::string& sheet, const std::string& selection) {
  ask("sc_goto", {book_, sheet, selection});
}

void ExcelScratch::fill(const fakes::SheetDescription& sheet) {
  for (const fakes::CellDescription& cell : sheet.cells) {
    if (cell.formula.empty())
      ask("sc_value", {book_, sheet.name, cell.address, argument(cell.value)});
    else
      ask("sc_formula", {book_, sheet.name, cell.address, cell.formula});
  }
}

JSONValue ExcelScratch::ask(const char* handler, JSONValue::Array arguments) {
  AppleEvent event{fourCharCode("ascr"), fourCharCode("psbr"), {}, {}};
  event.parameters.push_back({fourCharCode("snam"), AppleEventDescriptor::text(handler)});
  event.parameters.push_back(
      {keyDirectObject, Marshal::toDescriptor(JSONValue(std::move(arguments)))});
  const ScriptReply reply = runner_.execute(event);
  if (reply.error)
    throw std::runtime_error(std::string(handler) + ": " +
                             std::to_string(reply.error->number.value_or(0)) + " " +
                             reply.error->message.value_or(""));
  return Marshal::fromDescriptor(reply.result.value_or(AppleEventDescriptor::null()));
}

}  // namespace quorin

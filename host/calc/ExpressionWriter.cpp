#include "host/calc/ExpressionWriter.h"

#include "host/calc/CellErrors.h"
#include "host/calc/ExcelTokens.h"
#include "host/calc/FunctionCalls.h"
#include "host/calc/FunctionNames.h"
#include "host/calc/ReferenceWriter.h"

namespace quorin::host::calc {
namespace {

constexpr int deepestName = 20;  // a name that leads to itself has no end

bool isBlank(char c) {
  return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}
bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

}  // namespace

std::string ExpressionWriter::run() {
  while (at_ < text_.size()) step();
  if (operandExpected_ || !frames_.empty()) throw Malformed();
  return std::move(out_);
}

void ExpressionWriter::step() {
  const char c = text_[at_];
  if (isBlank(c)) {
    blanks();
    return;
  }
  ++pieces_;
  if (c == '"') {
    operand(false);
    copy(readText(text_, at_));
  } else if (c == '{') {
    operand(false);
    mayBeSeveral();
    copy(readArray(text_, at_));
  } else if (const std::string_view error = errorLiteral(text_, at_); !error.empty()) {
    operand(false);
    out_ += error;
    at_ += error.size();
  } else if (c == '(') {
    operand(true);
    open("");
  } else if (c == ')') {
    close();
  } else if (c == ',' || c == ';') {
    separator(c);
  } else if (c == '\'' || c == '$' || c == '[' || isWordCharacter(c)) {
    nameOrReference();
  } else {
    sign(c);
  }
}

// Two operands in a row are a mistake.
void ExpressionWriter::operand(bool mayBeReference) {
  if (!operandExpected_) throw Malformed();
  operandExpected_ = false;
  reference_ = mayBeReference;
}

// Blanks between two references are the intersection operator.
void ExpressionWriter::blanks() {
  const std::size_t start = at_;
  while (at_ < text_.size() && isBlank(text_[at_])) ++at_;
  if (!operandExpected_ && reference_ && at_ < text_.size() &&
      (at("('$[") || (isWordCharacter(text_[at_]) && !isDigit(text_[at_])) || rowsFollow())) {
    out_ += '!';
    operandExpected_ = true;
    mayBeSeveral();
  } else {
    out_ += text_.substr(start, at_ - start);
  }
}

// "3:5", which begins like a number.
bool ExpressionWriter::rowsFollow() const {
  std::size_t position = at_;
  return readRange(text_, position).has_value();
}

void ExpressionWriter::copy(std::optional<std::string_view> constant) {
  if (!constant) throw Malformed();
  out_ += *constant;
}

void ExpressionWriter::open(const std::string& function) {
  const std::size_t begin = out_.size();
  if (!function.empty()) out_ += calcFunctionName(function);
  out_ += text_[at_++];
  frames_.push_back({function, begin, out_.size(), reach_.cells.size()});
  operandExpected_ = true;
}

void ExpressionWriter::close() {
  if (frames_.empty()) throw Malformed();
  const Frame frame = frames_.back();
  if (operandExpected_ && frame.function.empty()) throw Malformed();
  const std::size_t begin = frame.begin;
  const FunctionCall call{frame.function, out_.substr(frame.content),
                          std::span(reach_.cells).subspan(frame.reached), isCells(frame.content)};
  if (const auto instead = writtenAnew(call, context_, reach_)) {
    out_.erase(begin);
    out_ += *instead;
  } else {
    out_ += ')';
  }
  addBeyond(reach_, frame.function, frame.reached);
  frames_.pop_back();
  ++at_;
  const bool one =
      frame.function.empty() ? !frame.several : givesOne(frame.function, frame.several);
  if (!one) mayBeSeveral();
  const bool truth = frame.function.empty() ? frame.compares : givesTruth(frame.function);
  if (truth && isJoinedFrom(begin)) out_ = out_.substr(0, begin) + namedTruth(out_.substr(begin));
  operandExpected_ = false;
  reference_ = true;
}

// Whether what was written from there on is a reference and nothing else.
bool ExpressionWriter::isCells(std::size_t from) const {
  constexpr const char* blank = " \n\r\t";
  return cells_.first == out_.find_first_not_of(blank, from) &&
         cells_.second == out_.find_last_not_of(blank) + 1;
}

// Inside a function's brackets it parts arguments, elsewhere a comma unites references.
void ExpressionWriter::separator(char c) {
  if (!frames_.empty() && !frames_.back().function.empty()) {
    out_ += ';';
  } else {
    if (c == ';' || operandExpected_ || !reference_) throw Malformed();
    out_ += '~';
    mayBeSeveral();
  }
  ++at_;
  operandExpected_ = true;
}

void ExpressionWriter::sign(char c) {
  static constexpr std::string_view both = "<>", infix = "*/^&=:";
  ++at_;
  if (c == '%') {
    if (operandExpected_) throw Malformed();
    out_ += c;
    reference_ = false;
    return;
  }
  if (c == '@' && operandExpected_) {
    crossing();
    return;
  }
  if (c == '+' || c == '-') {
    out_ += c;
  } else if (both.find(c) != std::string_view::npos && !operandExpected_) {
    out_ += c;
    if (at("=") || (c == '<' && at(">"))) out_ += text_[at_++];
    if (!frames_.empty()) frames_.back().compares = true;
  } else if (infix.find(c) != std::string_view::npos && !operandExpected_) {
    if (c == ':') {
      reach_.spans = true;
      mayBeSeveral();
    }
    if (c == '=' && !frames_.empty()) frames_.back().compares = true;
    out_ += c;
  } else {
    throw Malformed();
  }
  operandExpected_ = true;
}

// Of several cells the one in the row or column of the cell that the expression belongs to. What
// else may follow "@" is left to Calc.
void ExpressionWriter::crossing() {
  std::size_t position = at_;
  const auto span = readSheetSpan(text_, position);
  const auto range = readRange(text_, position);
  if (!range || !range->to || !context_.here) return;
  const auto here = context_.here();
  if (!here) return;
  Area area = areaOf(*range);
  const auto cross = [](int& first, int& last, int at) {
    if (first == last) return true;
    const bool crosses = first <= at && at <= last;
    first = last = at;
    return crosses;
  };
  const bool crosses = cross(area.firstRow, area.lastRow, here->row) &&
                       cross(area.firstColumn, area.lastColumn, here->column);
  operand(true);
  at_ = position;
  if (crosses) {
    reference(span, {{.row = area.firstRow, .column = area.firstColumn}, std::nullopt});
  } else {
    out_ += "#VALUE!";
  }
}

void ExpressionWriter::nameOrReference() {
  const bool sheetOnly = text_[at_] == '\'';
  const auto span = readSheetSpan(text_, at_);
  if (sheetOnly && !span) throw Malformed();
  if (!span && text_[at_] == '[') {
    nameOfWorkbook();
    return;
  }
  if (span && context_.workbook && span->book.empty() && span->last.empty() &&
      !placeOf(context_, "", span->first)) {
    if (const auto book = context_.workbook(span->first)) {
      word(SheetSpan{*book, "", ""});
      return;
    }
  }
  if (span && errorLiteral(text_, at_) == "#REF!") {
    operand(false);
    out_ += "#REF!";
    at_ += std::string_view("#REF!").size();
  } else if (const auto range = readRange(text_, at_)) {
    operand(true);
    reference(span, *range);
  } else {
    word(span);
  }
}

// [Book.xlsx]Rate
void ExpressionWriter::nameOfWorkbook() {
  const std::size_t end = text_.find(']', at_);
  if (end == std::string_view::npos || !context_.workbook) throw Malformed();
  const std::string name(text_.substr(at_ + 1, end - at_ - 1));
  at_ = end + 1;
  if (at_ >= text_.size() || !isWordCharacter(text_[at_])) throw Malformed();
  word(SheetSpan{context_.workbook(name).value_or(name), "", ""});
}

void ExpressionWriter::reference(const std::optional<SheetSpan>& span, const RangeText& range) {
  const auto cells = writeReference(span, range, context_, reach_);
  if (!cells) {
    out_ += "#REF!";
    return;
  }
  if (cells->several) mayBeSeveral();
  const std::size_t begin = out_.size();
  const bool named = !cells->several && isJoinedFrom(begin);
  out_ += named ? namedIfTruth(cells->text) : cells->text;
  cells_ = {begin, out_.size()};
}

// A number, a function, a defined name or a table.
void ExpressionWriter::word(const std::optional<SheetSpan>& span) {
  const std::string word(readWord(text_, at_));
  const bool numeric = !word.empty() && (isDigit(word.front()) || word.front() == '.');
  if (at("#") && errorLiteral(text_, at_).empty()) throw Malformed();  // a spill reference
  const bool mayBeTable = !span || span->first.empty();
  if (word.empty() || (span && (numeric || at("(") || (at("[") && !mayBeTable)))) {
    throw Malformed();
  }
  if (numeric) {
    if (!isNumber(word)) throw Malformed();
    operand(false);
    out_ += word;
  } else if (at("(")) {
    function(plainFunctionName(word));
  } else if (at("[")) {
    table(span ? span->book : context_.from.book, word);
  } else {
    name(span, word);
  }
}

void ExpressionWriter::function(const std::string& name) {
  operand(true);
  if (name == "INDIRECT" && indirect()) return;
  if (name == "ERROR.TYPE" && errorNumber()) return;
  addFunction(reach_, name);
  open(name);
}

// Writes the cells that INDIRECT finds, if it has one argument and these are known.
bool ExpressionWriter::indirect() {
  std::size_t behind = at_;
  const auto argument = readOnlyArgument(text_, behind);
  if (!argument || !context_.referent) return false;
  const auto cells = context_.referent(std::string(*argument));
  if (!cells) return false;
  at_ = behind;
  if (cells->empty()) {
    out_ += "INDIRECT(\"\")";  // not #REF!, of which some functions make another error
  } else {
    expansion(*cells);
  }
  return true;
}

// Writes what ERROR.TYPE gives, where the error of its argument is known.
bool ExpressionWriter::errorNumber() {
  std::size_t behind = at_;
  const auto argument = readOnlyArgument(text_, behind);
  if (!argument || !context_.errorOf) return false;
  const auto error = context_.errorOf(std::string(*argument));
  if (!error) return false;
  at_ = behind;
  out_ += error->empty() ? "#N/A" : std::to_string(errorType(*error));
  reference_ = false;
  return true;
}

// A part of a table is written as the cells it stands for.
void ExpressionWriter::table(const std::string& book, const std::string& name) {
  operand(true);
  const auto items = readTableItems(text_, at_);
  if (!items || !context_.tablePart) throw Malformed();
  expansion(context_.tablePart(book, name, *items));
}

void ExpressionWriter::name(const std::optional<SheetSpan>& span, const std::string& word) {
  operand(true);
  if (!span && (equalIgnoringCase(word, "TRUE") || equalIgnoringCase(word, "FALSE"))) {
    out_ += isJoinedFrom(out_.size()) ? '"' + upperCase(word) + '"' : upperCase(word) + "()";
    return;
  }
  SheetRef scope{context_.from.book, {}};
  std::string text;
  if (span && span->first.empty()) {
    scope = {span->book, {}};
  } else if (span) {
    const auto place = placeOf(context_, span->book, span->first);
    if (!place) {
      out_ += "#REF!";
      return;
    }
    scope = place->sheet;
    text = place->text + ".";
  }
  const auto meaning = context_.meaning ? context_.meaning(scope, word) : std::nullopt;
  if (meaning) {
    expansion(*meaning);
  } else if (span && span->first.empty()) {
    out_ += context_.workbook(span->book) ? "#NAME?" : "#REF!";
  } else {
    out_ += text + word;
    mayBeSeveral();
  }
}

// Writes what a name or a table stands for, in brackets where it is more than one operand.
void ExpressionWriter::expansion(const std::string& excel) {
  if (depth_ >= deepestName) throw Malformed();
  ExpressionWriter inner(excel, context_, reach_, depth_ + 1);
  const std::string text = inner.run();
  if (!inner.isSingle()) mayBeSeveral();
  out_ += inner.isOnePiece() ? text : "(" + text + ")";
}

}  // namespace quorin::host::calc

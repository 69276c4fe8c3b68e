#include "host/calc/grammar/ExpressionWriter.h"

#include <algorithm>

#include "host/calc/grammar/ExcelTokens.h"
#include "host/calc/grammar/FoundCells.h"
#include "host/calc/grammar/FunctionNames.h"
#include "host/calc/grammar/ReferenceWriter.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {
namespace {

// More than any formula needs that a spreadsheet takes by itself, and few enough for the office's
// own parser, which goes down a step for each bracket and sign.
constexpr std::size_t longestWritten = 65'536;
constexpr std::size_t mostReached = 5'000;
constexpr std::size_t mostNames = 2'000;
constexpr int deepest = 400;

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
  isCells_ = isCells(0);
  endSpan(depth_ == 0 && operands_.isAlone());
  operands_.addTo(names_.work);
  return std::move(out_);
}

void ExpressionWriter::step() {
  const char c = text_[at_];
  if (isBlank(c)) {
    blanks();
    return;
  }
  ++pieces_;
  pieceAt_ = at_;
  bound();
  if (c == '"') {
    operand(false);
    const std::size_t start = at_;
    copy(readText(text_, at_));
    names_.work.written = std::max(names_.work.written, static_cast<double>(at_ - start));
  } else if (c == '{') {
    operand(false);
    mayBeSeveral();
    const std::size_t start = at_;
    copy(readArray(text_, at_));
    operands().add(shapeOfConstant(text_.substr(start, at_ - start)));
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
  operandAt_ = pieceAt_;
}

// Of A1:INDEX(...), which ends here, nobody knows the size but by working it out.
void ExpressionWriter::endSpan(bool isTakenWhole) {
  const auto from = std::exchange(span(), std::nullopt);
  if (!from || isTakenWhole) return;
  operands().add(sizeOf(given_.asked(text_.substr(*from, at_ - *from)).value_or(""), context_));
}

// Ends what would grow beyond all bounds.
void ExpressionWriter::bound() const {
  if (out_.size() + names_.bindings.size() > longestWritten || reach_.cells.size() > mostReached ||
      names_.work.searches.size() > mostReached || names_.entries.size() > mostNames ||
      depthInside() > deepest) {
    throw SpreadsheetError(eventErrors::badParameter,
                           "The expression is too long with its names written out");
  }
}

// Blanks between two references are the intersection operator.
void ExpressionWriter::blanks() {
  const std::size_t start = at_;
  while (at_ < text_.size() && isBlank(text_[at_])) ++at_;
  if (!operandExpected_ && reference_ && at_ < text_.size() &&
      (at("('$[") || (isWordCharacter(text_[at_]) && !isDigit(text_[at_])) || rowsFollow())) {
    out_ += '!';
    operandExpected_ = true;
    operands().skip();
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

void ExpressionWriter::sign(char c) {
  static constexpr std::string_view both = "<>", infix = "*/^&=:";
  if (c != ':') endSpan(false);
  ++at_;
  if (c != ':' && c != '@') operands().sign();
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
  if (operandExpected_ && (c == '+' || c == '-')) {
    // Two signs make a number of a text, three are one again.
    if (c == '-' && out_.ends_with("--") && signs_ >= 2) {
      out_.pop_back();
      --signs_;
      return;
    }
    ++signs_;
    out_ += c;
  } else if (c == '+' || c == '-') {
    signs_ = 0;
    out_ += c;
  } else if (both.find(c) != std::string_view::npos && !operandExpected_) {
    signs_ = 0;
    out_ += c;
    if (at("=") || (c == '<' && at(">"))) out_ += text_[at_++];
    if (!frames_.empty()) frames_.back().compares = true;
  } else if (infix.find(c) != std::string_view::npos && !operandExpected_) {
    signs_ = 0;
    if (c == ':') {
      reach_.spans = true;
      if (!span()) span() = operandAt_;
      operands().skip();
      mayBeSeveral();
    }
    if (c == '&') operands().join();
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
  operands().add(shapeOf(areaOf(range)));
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

// A part of a table is written as the cells it stands for.
void ExpressionWriter::table(const std::string& book, const std::string& name) {
  operand(true);
  const std::size_t start = at_;
  const auto items = readTableItems(text_, at_);
  if (!items || !context_.tablePart) throw Malformed();
  named(book + "\n" + name + std::string(text_.substr(start, at_ - start)),
        [&] { return context_.tablePart(book, name, *items); });
}

void ExpressionWriter::name(const std::optional<SheetSpan>& span, const std::string& word) {
  operand(true);
  if (!span && (equalIgnoringCase(word, "TRUE") || equalIgnoringCase(word, "FALSE"))) {
    out_ += isJoinedFrom(out_.size()) ? '"' + upperCase(word) + '"' : upperCase(word) + "()";
    return;
  }
  const GivenName* const given = span              ? nullptr
                                 : givesName(word) ? given_.last()
                                                   : given_.find(word);
  if (given != nullptr) {
    out_ += given->written.empty() ? word : given->written;
    operands().add(given->shape);
    if (!given->single) mayBeSeveral();
    return;
  }
  SheetRef scope{context_.from.book, {}};
  if (span && span->first.empty()) {
    if (context_.workbook && !context_.workbook(span->book)) {
      out_ += "#REF!";
      return;
    }
    scope = {span->book, {}};
  } else if (span) {
    const auto place = placeOf(context_, span->book, span->first);
    if (!place) {
      out_ += "#REF!";
      return;
    }
    scope = place->sheet;
  }
  named(scope.book + "\n" + scope.sheet + "\n" + upperCase(word),
        [&] { return context_.meaning ? context_.meaning(scope, word) : std::nullopt; });
}

// Writes what a name or a part of a table stands for.
void ExpressionWriter::named(const std::string& key,
                             const std::function<std::optional<std::string>()>& meaning) {
  const auto [found, isNew] = names_.entries.try_emplace(key);
  WrittenNames::Entry& entry = found->second;  // stays where it is when others are added
  if (isNew) {
    if (context_.checkpoint) context_.checkpoint();
    if (const auto excel = meaning()) {
      const std::size_t reached = reach_.cells.size();
      OfficeWork before = std::exchange(names_.work, {});
      ExpressionWriter inner(*excel, context_, reach_, names_, depthInside());
      entry.text = inner.run();
      if (!inner.isOnePiece()) entry.text = "(" + entry.text + ")";
      entry.single = inner.isSingle();
      entry.isCells = inner.isCells();
      entry.shape = inner.shape();
      entry.work = std::exchange(names_.work, std::move(before));
      entry.cells.assign(reach_.cells.begin() + static_cast<std::ptrdiff_t>(reached),
                         reach_.cells.end());
      reach_.cells.resize(reached);
      entry.isThere = true;
    }
    entry.isOpen = false;
  }
  if (entry.isOpen) throw Malformed();
  append(entry);
}

void ExpressionWriter::append(const WrittenNames::Entry& entry) {
  if (!entry.isThere || !entry.single) mayBeSeveral();
  operands().add(entry.shape);
  names_.work.add(entry.work);
  const std::size_t begin = out_.size();
  out_ += entry.isThere ? entry.text : "#NAME?";
  if (entry.isCells) cells_ = {begin, out_.size()};
  reach_.cells.insert(reach_.cells.end(), entry.cells.begin(), entry.cells.end());
  bound();
}

// Writes what a name or a table stands for, in brackets where it is more than one operand.
void ExpressionWriter::expansion(const std::string& excel) {
  ExpressionWriter inner(excel, context_, reach_, names_, depthInside());
  const std::string text = inner.run();
  if (!inner.isSingle()) mayBeSeveral();
  operands().add(inner.shape());
  out_ += inner.isOnePiece() ? text : "(" + text + ")";
}

}  // namespace quorin::host::calc

#include "host/calc/ExpressionWriter.h"

#include <algorithm>
#include <array>

#include "host/calc/CellErrors.h"
#include "host/calc/FunctionCalls.h"

namespace quorin::host::calc {
namespace {

constexpr int deepestName = 20;  // a name that leads to itself has no end

bool isBlank(char c) {
  return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}
bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// Where the bracket stands that closes a call of one argument, which begins at `from`.
std::optional<std::size_t> endOfOnlyArgument(std::string_view text, std::size_t from) {
  int depth = 0;
  char quote = '\0';
  for (std::size_t i = from; i < text.size(); ++i) {
    const char c = text[i];
    if (quote != '\0') {
      if (c == quote) quote = '\0';
    } else if (c == '"' || c == '\'') {
      quote = c;
    } else if (c == '(' || c == '[' || c == '{') {
      ++depth;
    } else if (depth > 0) {
      if (c == ')' || c == ']' || c == '}') --depth;
    } else if (c == ')') {
      return i;
    } else if (c == ',' || c == ';') {
      return std::nullopt;
    }
  }
  return std::nullopt;
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
    copyString();
  } else if (c == '{') {
    operand(false);
    copyArray();
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
      (at("('$[") || (isWordCharacter(text_[at_]) && !isDigit(text_[at_])))) {
    out_ += '!';
    operandExpected_ = true;
    mayBeSeveral();
  } else {
    out_ += text_.substr(start, at_ - start);
  }
}

void ExpressionWriter::copyString() {
  const std::size_t start = at_++;
  for (; at_ < text_.size(); ++at_) {
    if (text_[at_] != '"') continue;
    if (at_ + 1 < text_.size() && text_[at_ + 1] == '"') {
      ++at_;
      continue;
    }
    ++at_;
    out_ += text_.substr(start, at_ - start);
    return;
  }
  throw Malformed();
}

void ExpressionWriter::copyArray() {
  mayBeSeveral();
  out_ += text_[at_++];
  while (at_ < text_.size()) {
    const char c = text_[at_];
    if (c == '"') {
      copyString();
      continue;
    }
    if (c == '{' || c == '(') throw Malformed();
    out_ += c == ',' ? ';' : c == ';' ? '|' : c;
    ++at_;
    if (c == '}') return;
  }
  throw Malformed();
}

void ExpressionWriter::open(const std::string& function) {
  out_ += text_[at_++];
  frames_.push_back({function, out_.size(), reach_.cells.size()});
  operandExpected_ = true;
}

void ExpressionWriter::close() {
  if (frames_.empty()) throw Malformed();
  const Frame frame = frames_.back();
  if (operandExpected_ && frame.function.empty()) throw Malformed();
  const std::size_t begin = frame.content - frame.function.size() - 1;
  const FunctionCall call{frame.function, out_.substr(frame.content),
                          std::span(reach_.cells).subspan(frame.reached), isCells(frame.content)};
  if (const auto instead = writtenAnew(call, context_, reach_)) {
    out_.erase(begin);
    out_ += *instead;
  } else {
    out_ += ')';
  }
  frames_.pop_back();
  ++at_;
  const bool one =
      frame.function.empty() ? !frame.several : givesOne(frame.function, frame.several);
  if (!one) mayBeSeveral();
  if (frame.function.empty() ? frame.compares : givesTruth(frame.function)) {
    if (isJoined(begin)) out_ = out_.substr(0, begin) + namedTruth(out_.substr(begin));
  }
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
  if (c == '@' && operandExpected_) return;  // one cell of several: what follows decides in Calc
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

void ExpressionWriter::nameOrReference() {
  const bool sheetOnly = text_[at_] == '\'';
  const auto span = readSheetSpan(text_, at_);
  if (sheetOnly && !span) throw Malformed();
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

// Where a sheet is; nothing when the workbook or the sheet is not there.
std::optional<SheetPlace> ExpressionWriter::placeOf(const std::string& book,
                                                    const std::string& sheet) const {
  if (!book.empty() && book != context_.from.book) {
    return context_.elsewhere ? context_.elsewhere(book, sheet) : std::nullopt;
  }
  if (context_.sheets.empty()) return SheetPlace{{context_.from.book, sheet}, calcSheet(sheet)};
  for (const std::string& known : context_.sheets) {
    if (equalIgnoringCase(known, sheet)) {
      return SheetPlace{{context_.from.book, known}, calcSheet(known)};
    }
  }
  return std::nullopt;
}

void ExpressionWriter::reachSpan(const SheetPlace& first, const SheetPlace& last,
                                 const RangeText& range) {
  const auto& all = context_.sheets;
  auto from = std::find(all.begin(), all.end(), first.sheet.sheet);
  auto to = std::find(all.begin(), all.end(), last.sheet.sheet);
  if (from == all.end() || to == all.end() || from == to) {
    reach_.cells.push_back({first.sheet, {areaOf(range)}});
    return;
  }
  if (to < from) std::swap(from, to);
  for (; from <= to; ++from) {
    reach_.cells.push_back({{first.sheet.book, *from}, {areaOf(range)}});
  }
}

void ExpressionWriter::reference(const std::optional<SheetSpan>& span, const RangeText& range) {
  const auto end = [](const CellText& cell) {
    return write({cell, std::nullopt}, ReferenceStyle::a1, {});
  };
  std::string first, last;
  if (span) {
    const auto from = placeOf(span->book, span->first);
    const auto to = span->last.empty() ? from : placeOf(span->book, span->last);
    if (!from || !to) {
      out_ += "#REF!";
      return;
    }
    first = from->text + ".";
    if (!span->last.empty()) last = to->text + ".";
    reachSpan(*from, *to, range);
  } else {
    if (context_.qualify) first = calcSheet(context_.from.sheet) + ".";
    reach_.cells.push_back({context_.from, {areaOf(range)}});
  }
  const std::size_t begin = out_.size();
  out_ += first + end(range.from);
  const bool several = range.to || !last.empty();
  if (several) mayBeSeveral();
  if (several) out_ += ":" + last + end(range.to.value_or(range.from));
  if (!several && isJoined(begin)) {
    out_ = out_.substr(0, begin) + namedIfTruth(out_.substr(begin));
  }
  cells_ = {begin, out_.size()};
}

bool ExpressionWriter::isExponentSign() const {
  const char before = text_[at_ - 1];
  return at("+-") && (before == 'E' || before == 'e');
}

// A number, a function, a defined name or a table.
void ExpressionWriter::word(const std::optional<SheetSpan>& span) {
  const std::size_t start = at_;
  const bool numeric = isDigit(text_[at_]) || text_[at_] == '.';
  while (at_ < text_.size() && (isWordCharacter(text_[at_]) || (numeric && isExponentSign()))) {
    ++at_;
  }
  const std::string word(text_.substr(start, at_ - start));
  if (at("#") && errorLiteral(text_, at_).empty()) throw Malformed();  // a spill reference
  if (word.empty() || (span && (numeric || at("([")))) throw Malformed();
  if (numeric) {
    number(word);
  } else if (at("(")) {
    function(upperCase(word));
  } else if (at("[")) {
    table(word);
  } else {
    name(span, word);
  }
}

// Whether "&" takes the operand just read, which begins there, as it stands: a truth value joined
// to text is its name, where Calc would write its number.
bool ExpressionWriter::isJoined(std::size_t begin) const {
  static constexpr std::string_view tighter = "+-*/^%:!~", behind = "&=<>,;)";
  const std::size_t next = text_.find_first_not_of(" \n\r\t", at_);
  const char after = next < text_.size() ? text_[next] : '\0';
  const std::size_t last = begin == 0 ? begin : out_.find_last_not_of(" \n\r\t", begin - 1);
  const char before = begin > 0 && last < begin ? out_[last] : '\0';
  if (after != '\0' && behind.find(after) == std::string_view::npos) return false;
  if (tighter.find(before) != std::string_view::npos) return false;
  return before == '&' || after == '&';
}

void ExpressionWriter::number(const std::string& word) {
  if (!isNumber(word)) throw Malformed();
  operand(false);
  out_ += word;
}

void ExpressionWriter::function(std::string name) {
  operand(true);
  for (const std::string_view origin : {"_XLFN._XLWS.", "_XLFN."}) {
    if (name.starts_with(origin)) name.erase(0, origin.size());
  }
  if (name == "INDIRECT" && indirect()) return;
  if (name == "ERROR.TYPE" && errorNumber()) return;
  addFunction(reach_, name);
  out_ += name;
  open(name);
}

// Writes the cells that INDIRECT finds, if it has one argument and these are known.
bool ExpressionWriter::indirect() {
  const auto end = endOfOnlyArgument(text_, at_ + 1);
  if (!end || !context_.referent) return false;
  const auto cells = context_.referent(std::string(text_.substr(at_ + 1, *end - at_ - 1)));
  if (!cells) return false;
  at_ = *end + 1;
  if (cells->empty()) {
    out_ += "INDIRECT(\"\")";  // not #REF!, of which some functions make another error
  } else {
    expansion(*cells);
  }
  return true;
}

// Writes what ERROR.TYPE gives, where the error of its argument is known.
bool ExpressionWriter::errorNumber() {
  const auto end = endOfOnlyArgument(text_, at_ + 1);
  if (!end || !context_.errorOf) return false;
  const auto error = context_.errorOf(std::string(text_.substr(at_ + 1, *end - at_ - 1)));
  if (!error) return false;
  at_ = *end + 1;
  out_ += error->empty() ? "#N/A" : std::to_string(errorType(*error));
  reference_ = false;
  return true;
}

// A part of a table is written as the cells it stands for.
void ExpressionWriter::table(const std::string& name) {
  operand(true);
  const auto items = readTableItems(text_, at_);
  if (!items || !context_.tablePart) throw Malformed();
  expansion(context_.tablePart(name, *items));
}

void ExpressionWriter::name(const std::optional<SheetSpan>& span, const std::string& word) {
  operand(true);
  if (!span && (equalIgnoringCase(word, "TRUE") || equalIgnoringCase(word, "FALSE"))) {
    out_ += isJoined(out_.size()) ? '"' + upperCase(word) + '"' : upperCase(word) + "()";
    return;
  }
  SheetRef scope{context_.from.book, {}};
  std::string text;
  if (span) {
    const auto place = placeOf(span->book, span->first);
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

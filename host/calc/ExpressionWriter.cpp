#include "host/calc/ExpressionWriter.h"

#include <algorithm>

#include "host/calc/CellErrors.h"
#include "host/calc/ExcelTokens.h"
#include "host/calc/FunctionCalls.h"
#include "host/calc/FunctionNames.h"
#include "host/calc/HarmlessFunctions.h"
#include "host/calc/ReferenceWriter.h"

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
  names_.crossed += operands_.crossed();
  return std::move(out_);
}

void ExpressionWriter::step() {
  const char c = text_[at_];
  if (isBlank(c)) {
    blanks();
    return;
  }
  ++pieces_;
  bound();
  if (c == '"') {
    operand(false);
    copy(readText(text_, at_));
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
}

// Ends what would grow beyond all bounds.
void ExpressionWriter::bound() const {
  if (out_.size() > longestWritten || reach_.cells.size() > mostReached ||
      names_.entries.size() > mostNames || depthInside() > deepest) {
    throw SpreadsheetError(-50, "The expression is too long with its names written out");
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

void ExpressionWriter::open(const std::string& function) {
  const std::size_t begin = out_.size();
  if (!function.empty()) out_ += calcFunctionName(function);
  out_ += text_[at_++];
  frames_.push_back({function, begin, out_.size(), at_, reach_.cells.size(), signs_});
  operandExpected_ = true;
  open_ += 1 + signs_;
  signs_ = 0;
}

void ExpressionWriter::close() {
  if (frames_.empty()) throw Malformed();
  endArgument();
  const Frame frame = frames_.back();
  const ArrayCall made = arrayCall(frame.function, frame.shapes);
  names_.crossed += made.crossed;
  if (operandExpected_ && frame.function.empty()) throw Malformed();
  const std::size_t begin = frame.begin;
  const auto instead = frame.function.empty() ? std::nullopt : callInstead(frame);
  if (instead) {
    out_.erase(begin);
    out_ += *instead;
  } else {
    out_ += ')';
  }
  frames_.pop_back();
  operands().add(made.shape);
  std::erase_if(parameters_, [&](const Parameter& one) { return one.frame == frames_.size(); });
  open_ -= 1 + frame.signs;
  signs_ = 0;
  ++at_;
  const bool one =
      frame.function.empty() ? !frame.several : givesOne(frame.function, frame.several);
  if (!one) mayBeSeveral();
  const bool truth = frame.function.empty() ? frame.compares : givesTruth(frame.function);
  if (truth && isJoinedFrom(begin)) out_ = out_.substr(0, begin) + namedTruth(out_.substr(begin));
  operandExpected_ = false;
  reference_ = true;
}

// Notes what the call reaches, and gives what stands for it if it is to be written otherwise.
std::optional<std::string> ExpressionWriter::callInstead(const Frame& frame) {
  const std::vector<CallArgument> arguments = argumentsOf(frame);
  leaveOut(reach_, frame.function, arguments, context_);
  if (frame.function == "INDIRECT") keepInside(frame);
  const FunctionCall call{frame.function, out_.substr(frame.content),
                          std::span(reach_.cells).subspan(frame.reached), arguments};
  auto instead = writtenAnew(call, context_, reach_);
  addBeyond(reach_, frame.function, frame.reached);
  return instead;
}

// Whether what was written from there on is a reference and nothing else.
bool ExpressionWriter::isCells(std::size_t from) const {
  constexpr const char* blank = " \n\r\t";
  return cells_.first == out_.find_first_not_of(blank, from) &&
         cells_.second == out_.find_last_not_of(blank) + 1;
}

void ExpressionWriter::endArgument() {
  Frame& frame = frames_.back();
  const std::size_t from = frame.ends.empty() ? frame.content : frame.ends.back().output + 1;
  frame.ends.push_back({at_, out_.size(), reach_.cells.size(), isCells(from)});
  names_.crossed += frame.operands.crossed();
  frame.shapes.push_back(std::exchange(frame.operands, {}).shape());
}

// What LET and LAMBDA call a value cannot be asked about by itself.
std::vector<CallArgument> ExpressionWriter::argumentsOf(const Frame& frame) const {
  std::vector<CallArgument> arguments;
  std::size_t text = frame.text, output = frame.content, reached = frame.reached;
  for (const ArgumentEnd& end : frame.ends) {
    const std::string_view excel = text_.substr(text, end.text - text);
    arguments.push_back({parameters_.empty() ? excel : std::string_view(),
                         out_.substr(output, end.output - output), reached, end.reached,
                         end.isCells});
    text = end.text + 1;
    output = end.output + 1;
    reached = end.reached;
  }
  return arguments;
}

// Inside a function's brackets it parts arguments, elsewhere a comma unites references.
void ExpressionWriter::separator(char c) {
  if (!frames_.empty() && !frames_.back().function.empty()) {
    endArgument();
    out_ += ';';
  } else {
    if (c == ';' || operandExpected_ || !reference_) throw Malformed();
    out_ += '~';
    operands().skip();
    mayBeSeveral();
  }
  ++at_;
  operandExpected_ = true;
  signs_ = 0;
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
      operands().skip();
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

void ExpressionWriter::function(const std::string& name) {
  operand(true);
  if (!context_.asked && !isHarmless(name) && names_.reaching.empty()) names_.reaching = name;
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
  if (!span && (givesParameter(word) || isParameter(word))) {
    out_ += word;
    mayBeSeveral();
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
      const double crossed = names_.crossed;
      ExpressionWriter inner(*excel, context_, reach_, names_, depthInside());
      entry.text = inner.run();
      if (!inner.isOnePiece()) entry.text = "(" + entry.text + ")";
      entry.single = inner.isSingle();
      entry.isCells = inner.isCells();
      entry.shape = inner.shape();
      entry.crossed = std::exchange(names_.crossed, crossed) - crossed;
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
  names_.crossed += entry.crossed;
  const std::size_t begin = out_.size();
  out_ += entry.isThere ? entry.text : "#NAME?";
  if (entry.isCells) cells_ = {begin, out_.size()};
  reach_.cells.insert(reach_.cells.end(), entry.cells.begin(), entry.cells.end());
  bound();
}

// Whether the word, just read, is what LET or LAMBDA calls a value to come.
bool ExpressionWriter::givesParameter(const std::string& word) {
  if (frames_.empty() || word.empty()) return false;
  const Frame& frame = frames_.back();
  const bool ofLet = frame.function == "LET" && frame.ends.size() % 2 == 0;
  if (!ofLet && frame.function != "LAMBDA") return false;
  const std::size_t next = text_.find_first_not_of(" \n\r\t", at_);
  if (next == std::string_view::npos || (text_[next] != ',' && text_[next] != ';')) return false;
  parameters_.push_back({upperCase(word), frames_.size() - 1, frame.ends.size() + (ofLet ? 2 : 1)});
  return true;
}

bool ExpressionWriter::isParameter(const std::string& word) const {
  return std::any_of(parameters_.begin(), parameters_.end(), [&](const Parameter& one) {
    return one.word == upperCase(word) && frames_[one.frame].ends.size() >= one.argument;
  });
}

// Lets the text of INDIRECT name nothing outside.
void ExpressionWriter::keepInside(const Frame& frame) {
  const std::size_t end = frame.ends.front().output;
  const std::string text = out_.substr(frame.content, end - frame.content);
  const auto kept = keptInside(text);
  if (!kept) return;
  reach_.byText = true;
  out_.replace(frame.content, text.size(), *kept);
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

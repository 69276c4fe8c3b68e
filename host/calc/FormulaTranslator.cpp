#include "host/calc/FormulaTranslator.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "host/calc/CalcReference.h"
#include "host/calc/FunctionNames.h"
#include "host/calc/OfficeFiles.h"

namespace quorin::host::calc {
namespace {

constexpr std::array<std::string_view, 5> tableItems{"#All", "#Data", "#Headers", "#Totals",
                                                     "#This Row"};

// Behind these, and at the end, a reference or a number is over.
bool isOperator(char c) {
  static constexpr auto operators = [] {
    std::array<bool, 256> are{};
    for (const char each : std::string_view(");+-*/^&=<>%|}~! "))
      are[static_cast<unsigned char>(each)] = true;
    return are;
  }();
  return operators[static_cast<unsigned char>(c)];
}

bool endsAt(std::string_view text, std::size_t position) {
  return position == text.size() || isOperator(text[position]);
}

// Behind a cell that both grammars write alike, and that is on no sheet's last row or column:
// $AB$12. The position itself for anything else.
std::size_t behindPlainCell(std::string_view text, std::size_t position) {
  constexpr std::size_t mostLetters = 2, mostDigits = 6;
  const auto skip = [&](std::size_t start, std::size_t most, char first, char last) {
    std::size_t at = start;
    while (at < text.size() && at - start < most && text[at] >= first && text[at] <= last) ++at;
    return at;
  };
  const auto skipDollar = [&](std::size_t at) {
    return at < text.size() && text[at] == '$' ? at + 1 : at;
  };
  const std::size_t column = skipDollar(position);
  const std::size_t behindColumn = skip(column, mostLetters, 'A', 'Z');
  if (behindColumn == column) return position;
  const std::size_t row = skipDollar(behindColumn);
  const std::size_t end = skip(row, mostDigits, '0', '9');
  return end == row || text[row] == '0' ? position : end;
}

// The same for one cell or a range of cells behind which an operator follows.
std::size_t behindPlainReference(std::string_view text, std::size_t position) {
  std::size_t end = behindPlainCell(text, position);
  if (end == position) return position;
  if (end < text.size() && text[end] == ':') {
    const std::size_t second = end + 1;
    end = behindPlainCell(text, second);
    if (end == second) return position;
  }
  return endsAt(text, end) ? end : position;
}

}  // namespace

// One formula after the other: what stands here holds for the present one.
class FormulaTranslator::Translation {
 public:
  Translation(ReferenceStyle style, IsSheet isSheet) : style_(style), sheets_(std::move(isSheet)) {}

  std::string run(std::string_view text, FormulaCell cell) {
    text_ = text;
    cell_ = cell;
    at_ = 0;
    out_.clear();
    frames_.clear();
    out_.reserve(text_.size() + 16);
    if (!text_.empty() && text_[at_] == '=') out_ += text_[at_++];
    frames_.push_back({false, false, false, out_.size()});
    while (at_ < text_.size()) step();
    closeArgument();
    return std::move(out_);
  }

 private:
  struct Frame {  // one level of brackets
    bool isArray, isFunction, hasUnion;
    std::size_t argument;  // where the present argument begins in the output
  };

  void step() {
    const char c = text_[at_];
    if (isWordCharacter(c)) {
      if (!plainReference(at_) && !plainWord() && !reference()) word();
    } else if (c == '"') {
      copyString();
    } else if (c == '#' && errorConstant()) {
    } else if (c == '\'' && external()) {
    } else if (c == '$' || c == '\'' || c == '#') {
      if (!plainReference(at_) && !reference()) word();
    } else if (c == '[') {
      copyTableItems();
    } else {
      punctuation(c);
    }
  }

  bool errorConstant() {
    const std::string_view error = errorLiteral(text_, at_);
    if (error.empty() || lostReferenceFollows()) return false;
    out_ += error;
    at_ += error.size();
    return true;
  }

  // "#REF!5" and "#REF!#REF!" are references whose column went, not the literal.
  bool lostReferenceFollows() const {
    std::size_t position = at_;
    const auto cell = readCell(text_, position);
    return cell && cell->lost;
  }

  void copyString() {
    const std::size_t start = at_++;
    while (at_ < text_.size()) {
      if (text_[at_++] != '"') continue;
      if (at_ >= text_.size() || text_[at_] != '"') break;
      ++at_;
    }
    out_ += text_.substr(start, at_ - start);
  }

  // What needs no second look: a function, or a number before an operator or the end.
  bool plainWord() {
    std::size_t end = at_ + 1;
    while (end < text_.size() && isWordCharacter(text_[end])) ++end;
    const std::string_view word = text_.substr(at_, end - at_);
    if (end < text_.size() && text_[end] == '(') {
      at_ = end;
      function(word);
      return true;
    }
    const auto isNumeric = [](char c) { return (c >= '0' && c <= '9') || c == '.'; };
    if (!endsAt(text_, end) || text_.substr(end).starts_with('!') ||
        !std::all_of(word.begin(), word.end(), isNumeric)) {
      return false;
    }
    out_ += word;
    at_ = end;
    return true;
  }

  // Most references are written alike in both grammars, but for the sheet.
  bool plainReference(std::size_t start) {
    if (style_ != ReferenceStyle::a1) return false;
    const std::size_t end = behindPlainReference(text_, start);
    if (end == start) return false;
    out_ += text_.substr(start, end - start);
    at_ = end;
    return true;
  }

  bool reference() {
    std::size_t position = at_;
    auto* const sheet = sheets_.read(text_, position);
    const auto surely = [&] { return !isWordCharacter(text_[at_]) || sheets_.exists(*sheet); };
    if (sheet && plainReferenceOn(*sheet, position, surely)) return true;
    const auto from = readCalcEnd(text_, position, false);
    if (!from) return sheet != nullptr && sheetName(*sheet, position);
    if (sheet && !surely()) return false;
    RangeText range{*from, std::nullopt};
    const auto* lastSheet = sheet;
    if (position < text_.size() && text_[position] == ':') {
      std::size_t behind = position + 1;
      const auto* const second = sheets_.read(text_, behind);
      const auto to = readCalcEnd(text_, behind, true);
      const bool sameKind =
          to && (from->lost || to->lost ||
                 ((to->row == 0) == (from->row == 0) && (to->column == 0) == (from->column == 0)));
      if (sameKind) {
        range.to = to;
        position = behind;
        if (second) lastSheet = second;
      } else if (from->row == 0 || from->column == 0) {
        return false;
      }
    }
    writeReference(sheet, lastSheet, range);
    at_ = position;
    return true;
  }

  template <typename Surely>
  bool plainReferenceOn(const SheetPrefixes::Sheet& sheet, std::size_t start, Surely surely) {
    if (style_ != ReferenceStyle::a1 || sheet.name == "#REF!") return false;
    const std::size_t end = behindPlainReference(text_, start);
    if (end == start || !surely()) return false;
    out_ += sheet.written;
    out_ += '!';
    out_ += text_.substr(start, end - start);
    at_ = end;
    return true;
  }

  void writeReference(const SheetPrefixes::Sheet* first, const SheetPrefixes::Sheet* last,
                      RangeText range) {
    if ((first && first->name == "#REF!") || (last && last->name == "#REF!")) {
      out_ += "#REF!";
      return;
    }
    if (first && last->name != first->name) {
      if (range.to == range.from) range.to.reset();
      out_ += excelSheet(first->name + ":" + last->name);
      out_ += '!';
    } else if (first) {
      out_ += first->written;
      out_ += '!';
    }
    append(out_, range, style_, cell_);
  }

  // A name that belongs to a sheet: $Sheet1.rate. Without the dollar sign or quotes it is one word.
  bool sheetName(const SheetPrefixes::Sheet& sheet, std::size_t position) {
    if (text_[at_] != '$' && text_[at_] != '\'') return false;
    if (position >= text_.size() || !isWordCharacter(text_[position])) return false;
    if (sheet.name != "#REF!") out_ += sheet.written + "!";
    at_ = position;
    word();
    return true;
  }

  // 'file:///folder/book.xlsx'#$Sheet.A1, and with a name behind "#".
  bool external() {
    std::size_t position = at_;
    const auto url = readQuoted(text_, position);
    if (!url || position >= text_.size() || text_[position] != '#') return false;
    const std::filesystem::path path = pathOfUrl(*url);
    const std::size_t slash = url->rfind('/') + 1;
    const std::string folder =
        path.empty() ? url->substr(0, slash) : (path.parent_path() / "").string();
    const std::string file = path.empty() ? url->substr(slash) : path.filename().string();
    ++position;
    std::size_t behind = position;
    const auto sheet = readCalcSheet(text_, behind);
    at_ = sheet ? behind : position;
    out_ += excelSheet(sheet ? folder + "[" + file + "]" + *sheet : folder + file) + "!";
    std::size_t before = at_;
    const auto from = readCalcEnd(text_, at_, false);
    if (!from) {
      at_ = before;
      word();
      return true;
    }
    RangeText range{*from, std::nullopt};
    if (at_ < text_.size() && text_[at_] == ':') {
      before = at_++;
      range.to = readCalcEnd(text_, at_, true);
      if (!range.to) at_ = before;
    }
    append(out_, range, style_, cell_);
    return true;
  }

  // A function's or a defined name, or a number.
  void word() {
    const std::size_t start = at_;
    if (text_[at_] == '\'') {  // a label in quotes, which Excel does not know
      const auto label = readQuoted(text_, at_);
      if (at_ == start) ++at_;
      const bool isSheet = label && lostReferenceBehind();
      out_ += isSheet ? excelSheet(*label) : std::string(text_.substr(start, at_ - start));
      copyLostReference();
      return;
    }
    const bool number = text_[at_] >= '0' && text_[at_] <= '9';
    ++at_;
    while (at_ < text_.size() && (isWordCharacter(text_[at_]) || (number && isExponentSign()))) {
      ++at_;
    }
    const std::string_view word = text_.substr(start, at_ - start);
    const bool isFunction = at_ < text_.size() && text_[at_] == '(';
    if (isFunction) {
      function(word);
    } else if (equalIgnoringCase(word.substr(0, 6), "_xlpm.")) {
      out_ += word.substr(6);
    } else {
      out_ += word;
    }
    if (!isFunction) copyLostReference();
  }

  // A call: its brackets are next.
  void function(std::string_view word) {
    if (isBooleanCall(word)) {
      out_ += upperCase(word);  // Calc writes the constant as a call
      at_ += 2;
    } else {
      appendExcelFunctionName(out_, word);
    }
  }

  // What the office could not resolve keeps its "!": values!#ref!
  bool lostReferenceBehind() const {
    return at_ < text_.size() && text_[at_] == '!' && errorLiteral(text_, at_ + 1) == "#REF!";
  }

  void copyLostReference() {
    if (!lostReferenceBehind()) return;
    out_ += "!#REF!";
    at_ += std::string_view("!#REF!").size();
  }

  bool isBooleanCall(std::string_view word) const {
    return text_.substr(at_, 2) == "()" &&
           (equalIgnoringCase(word, "TRUE") || equalIgnoringCase(word, "FALSE"));
  }

  bool isExponentSign() const {
    const char before = text_[at_ - 1];
    return (text_[at_] == '+' || text_[at_] == '-') && (before == 'E' || before == 'e');
  }

  // The brackets behind a table's name. Only the separator between two items changes.
  void copyTableItems() {
    int depth = 0;
    do {
      const char c = text_[at_];
      if (c == '\'' && at_ + 1 < text_.size()) {  // escapes the next character
        out_ += text_.substr(at_, 2);
        at_ += 2;
        continue;
      }
      if (c == '[') ++depth;
      if (c == ']') --depth;
      out_ += c == ';' && depth == 1 ? ',' : c;
      ++at_;
      if (c == '[') copyTableItem();
    } while (depth > 0 && at_ < text_.size());
  }

  void copyTableItem() {
    for (const std::string_view item : tableItems) {
      if (equalIgnoringCase(text_.substr(at_, item.size()), item)) {
        out_ += item;
        at_ += item.size();
        return;
      }
    }
  }

  void punctuation(char c) {
    ++at_;
    switch (c) {
      case '(': {
        const bool function = !out_.empty() && isWordCharacter(out_.back());
        out_ += c;
        frames_.push_back({false, function, false, out_.size()});
        return;
      }
      case '{':
        out_ += c;
        frames_.push_back({true, false, false, out_.size()});
        return;
      case ')':
      case '}':
        if (frames_.size() > 1) {
          closeArgument();
          frames_.pop_back();
        }
        out_ += c;
        return;
      case ';':
        closeArgument();
        out_ += ',';
        frames_.back().argument = out_.size();
        return;
      case '|':
        out_ += frames_.back().isArray ? ';' : c;
        return;
      case '~':
        frames_.back().hasUnion = true;
        out_ += ',';
        return;
      case '!':
        out_ += ' ';
        return;
      default:
        out_ += c;
    }
  }

  // A union needs brackets of its own wherever a comma would part arguments.
  void closeArgument() {
    Frame& frame = frames_.back();
    if (frame.hasUnion && (frame.isFunction || frames_.size() == 1)) {
      out_.insert(frame.argument, "(");
      out_ += ')';
    }
    frame.hasUnion = false;
  }

  const ReferenceStyle style_;
  SheetPrefixes sheets_;
  std::string_view text_;
  FormulaCell cell_;
  std::size_t at_ = 0;
  std::string out_;
  std::vector<Frame> frames_;
};

FormulaTranslator::FormulaTranslator(ReferenceStyle style, IsSheet isSheet)
    : translation_(std::make_unique<Translation>(style, std::move(isSheet))) {}
FormulaTranslator::~FormulaTranslator() = default;

std::string FormulaTranslator::excelFormula(std::string_view formula, FormulaCell cell) {
  if (formula.starts_with("{=") && formula.ends_with('}')) {
    formula = formula.substr(1, formula.size() - 2);
  }
  return translation_->run(formula, cell);
}

std::string excelFormula(std::string_view formula, ReferenceStyle style, FormulaCell cell,
                         const IsSheet& isSheet) {
  return FormulaTranslator(style, isSheet).excelFormula(formula, cell);
}

}  // namespace quorin::host::calc

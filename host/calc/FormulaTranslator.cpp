#include "host/calc/FormulaTranslator.h"

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

class Translation {
 public:
  Translation(std::string_view text, ReferenceStyle style, FormulaCell cell, const IsSheet& isSheet)
      : text_(text), style_(style), cell_(cell), isSheet_(isSheet) {}

  std::string run() {
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
    if (c == '"') {
      copyString();
    } else if (const std::string_view error = errorLiteral(text_, at_);
               !error.empty() && !lostReferenceFollows()) {
      out_ += error;
      at_ += error.size();
    } else if (c == '\'' && external()) {
    } else if (c == '$' || c == '\'' || c == '#' || isWordCharacter(c)) {
      if (!reference()) word();
    } else if (c == '[') {
      copyTableItems();
    } else {
      punctuation(c);
    }
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

  bool reference() {
    std::size_t position = at_;
    const auto sheet = readCalcSheet(text_, position);
    const auto from = readCalcEnd(text_, position, false);
    if (!from) return sheet ? sheetName(*sheet, position) : false;
    if (sheet && isWordCharacter(text_[at_]) && isSheet_ && !isSheet_(*sheet)) return false;
    RangeText range{*from, std::nullopt};
    auto lastSheet = sheet;
    if (position < text_.size() && text_[position] == ':') {
      std::size_t behind = position + 1;
      const auto second = readCalcSheet(text_, behind);
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

  void writeReference(const std::optional<std::string>& first,
                      const std::optional<std::string>& last, RangeText range) {
    if (first == "#REF!" || last == "#REF!") {
      out_ += "#REF!";
      return;
    }
    if (first) {
      const bool several = last && *last != *first;
      if (several && range.to == range.from) range.to.reset();
      out_ += excelSheet(several ? *first + ":" + *last : *first) + "!";
    }
    out_ += write(range, style_, cell_);
  }

  // A name that belongs to a sheet: $Sheet1.rate. Without the dollar sign or quotes it is one word.
  bool sheetName(const std::string& sheet, std::size_t position) {
    if (text_[at_] != '$' && text_[at_] != '\'') return false;
    if (position >= text_.size() || !isWordCharacter(text_[position])) return false;
    if (sheet != "#REF!") out_ += excelSheet(sheet) + "!";
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
    out_ += write(range, style_, cell_);
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
    std::string word(text_.substr(start, at_ - start));
    const bool isFunction = at_ < text_.size() && text_[at_] == '(';
    if (isFunction && isBooleanCall(word)) {
      out_ += upperCase(word);  // Calc writes the constant as a call
      at_ += 2;
    } else if (isFunction) {
      out_ += excelFunctionName(word);
    } else if (equalIgnoringCase(word.substr(0, 6), "_xlpm.")) {
      out_ += word.substr(6);
    } else {
      out_ += word;
    }
    if (!isFunction) copyLostReference();
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

  const std::string_view text_;
  const ReferenceStyle style_;
  const FormulaCell cell_;
  const IsSheet& isSheet_;
  std::size_t at_ = 0;
  std::string out_;
  std::vector<Frame> frames_;
};

}  // namespace

std::string excelFormula(std::string_view formula, ReferenceStyle style, FormulaCell cell,
                         const IsSheet& isSheet) {
  if (formula.starts_with("{=") && formula.ends_with('}')) {
    formula = formula.substr(1, formula.size() - 2);
  }
  return Translation(formula, style, cell, isSheet).run();
}

}  // namespace quorin::host::calc

#include "host/calc/grammar/FormulaTranslator.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "host/calc/grammar/FunctionNames.h"
#include "host/calc/grammar/PlainReference.h"
#include "host/calc/grammar/ReferenceTranslator.h"
#include "host/calc/grammar/TableItems.h"

namespace quorin::host::calc {

// One formula after the other: what stands here holds for the present one.
class FormulaTranslator::Translation {
 public:
  Translation(ReferenceStyle style, IsSheet isSheet)
      : references_(style, std::move(isSheet), formula_) {}

  std::string run(std::string_view text, FormulaCell cell) {
    formula_.text = text;
    formula_.cell = cell;
    formula_.at = 0;
    formula_.out.clear();
    frames_.clear();
    formula_.out.reserve(text.size() + 16);
    if (formula_.isNext('=')) formula_.out += text[formula_.at++];
    frames_.push_back({false, false, false, formula_.out.size()});
    while (!formula_.isOver()) step();
    closeArgument();
    return std::move(formula_.out);
  }

 private:
  struct Frame {  // one level of brackets
    bool isArray, isFunction, hasUnion;
    std::size_t argument;  // where the present argument begins in the output
  };

  void step() {
    const char c = formula_.next();
    if (isWordCharacter(c)) {
      if (!references_.plainReference() && !plainWord() && !references_.reference()) word();
    } else if (c == '"') {
      copyString();
    } else if (c == '#' && errorConstant()) {
    } else if (c == '\'' && references_.externalSheet()) {
      if (!references_.externalCells() && !formula_.isOver()) word();
    } else if (c == '$' || c == '\'' || c == '#') {
      if (!references_.plainReference() && !references_.reference()) word();
    } else if (c == '[') {
      appendExcelTableItems(formula_.out, formula_.text, formula_.at);
    } else {
      punctuation(c);
    }
  }

  bool errorConstant() {
    const std::string_view error = errorLiteral(formula_.text, formula_.at);
    if (error.empty() || lostReferenceFollows()) return false;
    formula_.out += error;
    formula_.at += error.size();
    return true;
  }

  // "#REF!5" and "#REF!#REF!" are references whose column went, not the literal.
  bool lostReferenceFollows() const {
    std::size_t position = formula_.at;
    const auto cell = readCell(formula_.text, position);
    return cell && cell->lost;
  }

  void copyString() {
    const std::size_t start = formula_.at++;
    while (!formula_.isOver()) {
      if (formula_.text[formula_.at++] != '"') continue;
      if (!formula_.isNext('"')) break;
      ++formula_.at;
    }
    formula_.out += formula_.text.substr(start, formula_.at - start);
  }

  // What needs no second look: a function, or a number before an operator or the end.
  bool plainWord() {
    const std::string_view text = formula_.text;
    std::size_t end = formula_.at + 1;
    while (end < text.size() && isWordCharacter(text[end])) ++end;
    const std::string_view word = text.substr(formula_.at, end - formula_.at);
    if (end < text.size() && text[end] == '(') {
      formula_.at = end;
      function(word);
      return true;
    }
    const auto isNumeric = [](char c) { return (c >= '0' && c <= '9') || c == '.'; };
    if (!endsOperand(text, end) || text.substr(end).starts_with('!') ||
        !std::all_of(word.begin(), word.end(), isNumeric)) {
      return false;
    }
    formula_.out += word;
    formula_.at = end;
    return true;
  }

  // A function's or a defined name, or a number.
  void word() {
    const std::size_t start = formula_.at;
    if (formula_.next() == '\'') {  // a label in quotes, which Excel does not know
      const auto label = readQuoted(formula_.text, formula_.at);
      if (formula_.at == start) ++formula_.at;
      const bool isSheet = label && lostReferenceBehind();
      formula_.out += isSheet ? excelSheet(*label)
                              : std::string(formula_.text.substr(start, formula_.at - start));
      copyLostReference();
      return;
    }
    const bool number = formula_.next() >= '0' && formula_.next() <= '9';
    ++formula_.at;
    while (!formula_.isOver() &&
           (isWordCharacter(formula_.next()) || (number && isExponentSign()))) {
      ++formula_.at;
    }
    const std::string_view word = formula_.text.substr(start, formula_.at - start);
    const bool isFunction = formula_.isNext('(');
    if (isFunction) {
      function(word);
    } else if (equalIgnoringCase(word.substr(0, 6), "_xlpm.")) {
      formula_.out += word.substr(6);
    } else if (number) {
      appendNumber(word);
    } else {
      formula_.out += word;
    }
    if (!isFunction) copyLostReference();
  }

  // "1E-16" for Calc's 1E-016.
  void appendNumber(std::string_view word) {
    const std::size_t exponent = word.find_first_of("eE");
    if (exponent == std::string_view::npos) {
      formula_.out += word;
      return;
    }
    const std::size_t digits = word.find_first_not_of("eE+-", exponent);
    const std::size_t first = std::min(word.find_first_not_of('0', digits), word.size() - 1);
    formula_.out += word.substr(0, digits);
    formula_.out += word.substr(first);
  }

  // A call: its brackets are next.
  void function(std::string_view word) {
    if (isBooleanCall(word)) {
      formula_.out += upperCase(word);  // Calc writes the constant as a call
      formula_.at += 2;
    } else {
      appendExcelFunctionName(formula_.out, word);
    }
  }

  // What the office could not resolve keeps its "!": values!#ref!
  bool lostReferenceBehind() const {
    return formula_.isNext('!') && errorLiteral(formula_.text, formula_.at + 1) == "#REF!";
  }

  void copyLostReference() {
    if (!lostReferenceBehind()) return;
    formula_.out += "!#REF!";
    formula_.at += std::string_view("!#REF!").size();
  }

  bool isBooleanCall(std::string_view word) const {
    return formula_.text.substr(formula_.at, 2) == "()" &&
           (equalIgnoringCase(word, "TRUE") || equalIgnoringCase(word, "FALSE"));
  }

  bool isExponentSign() const {
    const char before = formula_.text[formula_.at - 1];
    return (formula_.isNext('+') || formula_.isNext('-')) && (before == 'E' || before == 'e');
  }

  void punctuation(char c) {
    ++formula_.at;
    switch (c) {
      case '(': {
        const bool function = !formula_.out.empty() && isWordCharacter(formula_.out.back());
        formula_.out += c;
        frames_.push_back({false, function, false, formula_.out.size()});
        return;
      }
      case '{':
        formula_.out += c;
        frames_.push_back({true, false, false, formula_.out.size()});
        return;
      case ')':
      case '}':
        if (frames_.size() > 1) {
          closeArgument();
          frames_.pop_back();
        }
        formula_.out += c;
        return;
      case ';':
        closeArgument();
        formula_.out += ',';
        frames_.back().argument = formula_.out.size();
        return;
      case '|':
        formula_.out += frames_.back().isArray ? ';' : c;
        return;
      case '~':
        frames_.back().hasUnion = true;
        formula_.out += ',';
        return;
      case '!':
        formula_.out += ' ';
        return;
      default:
        formula_.out += c;
    }
  }

  // A union needs brackets of its own wherever a comma would part arguments.
  void closeArgument() {
    Frame& frame = frames_.back();
    if (frame.hasUnion && (frame.isFunction || frames_.size() == 1)) {
      formula_.out.insert(frame.argument, "(");
      formula_.out += ')';
    }
    frame.hasUnion = false;
  }

  FormulaInPassing formula_;
  ReferenceTranslator references_;
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

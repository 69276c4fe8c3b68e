#include "tests/fakes/MemoryEvaluator.h"

#include <algorithm>
#include <array>

#include "tests/fakes/FormulaTokens.h"
#include "tests/fakes/FormulaValues.h"

namespace quorin::fakes {
namespace {

using host::CellError;
using host::CellValue;
using host::Evaluation;
using host::Grid;
using host::RangeRef;
using Kind = FormulaToken::Kind;
using namespace formula;

struct NotAFormula {};

// In the order of the numbers that ERROR.TYPE gives.
constexpr std::array errorTexts = {"#NULL!", "#DIV/0!", "#VALUE!", "#REF!",
                                   "#NAME?", "#NUM!",   "#N/A"};

class Evaluator {
 public:
  Evaluator(std::string_view formula, const host::SheetRef& from, const FormulaContext& context)
      : tokens_(formulaTokens(formula)), from_(from), context_(context) {}

  Evaluation run() {
    takeSign({"="});
    Evaluation result = comparison();
    if (position_ != tokens_.size()) throw NotAFormula();
    return result;
  }

 private:
  using Level = Evaluation (Evaluator::*)();

  std::optional<std::string> takeSign(std::initializer_list<std::string_view> signs) {
    if (position_ == tokens_.size() || tokens_[position_].kind != Kind::sign) return std::nullopt;
    for (std::string_view sign : signs)
      if (tokens_[position_].spelling == sign) return tokens_[position_++].spelling;
    return std::nullopt;
  }

  void expect(std::string_view sign) {
    if (!takeSign({sign})) throw NotAFormula();
  }

  Evaluation leftToRight(std::initializer_list<std::string_view> signs, Level next) {
    Evaluation left = (this->*next)();
    while (const auto sign = takeSign(signs)) {
      const Evaluation right = (this->*next)();
      left = binary(*sign, single(left), single(right));
    }
    return left;
  }

  Evaluation comparison() {
    return leftToRight({"=", "<>", "<", ">", "<=", ">="}, &Evaluator::joining);
  }
  Evaluation joining() { return leftToRight({"&"}, &Evaluator::sum); }
  Evaluation sum() { return leftToRight({"+", "-"}, &Evaluator::product); }
  Evaluation product() { return leftToRight({"*", "/"}, &Evaluator::power); }
  Evaluation power() { return leftToRight({"^"}, &Evaluator::percent); }

  Evaluation percent() {
    Evaluation value = unary();
    while (takeSign({"%"})) value = binary("/", single(value), 100.0);
    return value;
  }

  Evaluation unary() {
    if (takeSign({"-"})) return binary("-", 0.0, single(unary()));
    if (takeSign({"+"})) return unary();
    return primary();
  }

  Evaluation primary() {
    if (position_ == tokens_.size() || ++depth_ > 200) throw NotAFormula();
    struct Leave {
      int& depth;
      ~Leave() { --depth; }
    } leave{depth_};
    if (takeSign({"("})) {
      Evaluation value = comparison();
      expect(")");
      return value;
    }
    if (takeSign({"{"})) return array();
    const FormulaToken token = tokens_[position_++];
    switch (token.kind) {
      case Kind::number:
        return CellValue(parsedNumber(token.spelling).value_or(0));
      case Kind::text:
        return CellValue(token.spelling);
      case Kind::error:
        return CellValue(CellError{token.spelling});
      case Kind::boolean:
        return CellValue(upper(token.spelling) == "TRUE");
      case Kind::reference:
      case Kind::name:
        return reference(token);
      case Kind::function:
        return call(upper(token.spelling));
      default:
        throw NotAFormula();
    }
  }

  Evaluation array() {
    Grid<CellValue> grid{.rows = 1, .columns = 0, .cells = {}};
    for (int column = 1;; ++column) {
      grid.cells.push_back(single(unary()));
      if (grid.rows == 1) grid.columns = column;
      if (takeSign({","})) continue;
      if (column != grid.columns) throw NotAFormula();
      if (takeSign({"}"})) return grid;
      expect(";");
      ++grid.rows;
      column = 0;
    }
  }

  Evaluation reference(const FormulaToken& token) {
    host::SheetRef sheet = from_;
    if (token.sheet) {
      const auto found = context_.sheet(from_, token.book, *token.sheet);
      if (!found) return error("#REF!");
      sheet = *found;
    }
    if (token.kind == Kind::reference) return RangeRef{sheet, token.areas};
    const auto named = context_.name(sheet, token.spelling);
    return named ? Evaluation(*named) : error("#NAME?");
  }

  // One value: of a reference to one cell that cell's, of several #VALUE!.
  CellValue single(const Evaluation& evaluation) const {
    if (const CellValue* value = std::get_if<CellValue>(&evaluation)) return *value;
    const Grid<CellValue> grid = all(evaluation);
    return grid.cells.size() == 1 ? grid.cells.front() : error("#VALUE!");
  }

  Grid<CellValue> all(const Evaluation& evaluation) const {
    if (const auto* grid = std::get_if<Grid<CellValue>>(&evaluation)) return *grid;
    if (const auto* range = std::get_if<RangeRef>(&evaluation))
      return context_.cells(range->sheet, range->areas.front());
    return {1, 1, {std::get<CellValue>(evaluation)}};
  }

  Evaluation call(const std::string& name) {
    expect("(");
    std::vector<Evaluation> arguments;
    if (!takeSign({")"})) {
      do arguments.push_back(comparison());
      while (takeSign({",", ";"}));
      expect(")");
    }
    if (name == "IF" && (arguments.size() == 2 || arguments.size() == 3)) {
      const CellValue test = number(single(arguments[0]));
      if (isError(test)) return test;
      if (std::get<double>(test) != 0) return arguments[1];
      return arguments.size() == 3 ? arguments[2] : Evaluation(CellValue(false));
    }
    if (name == "IFERROR" && arguments.size() == 2)
      return isError(single(arguments[0])) ? arguments[1] : arguments[0];
    if (name == "ISERROR" && arguments.size() == 1) return CellValue(isError(single(arguments[0])));
    if (name == "ERROR.TYPE" && arguments.size() == 1) return errorType(single(arguments[0]));
    if (name == "NA" && arguments.empty()) return error("#N/A");
    if (name == "SUM") return sumOf(arguments);
    if (name == "NOT" && arguments.size() == 1) {
      const CellValue value = number(single(arguments[0]));
      return isError(value) ? value : CellValue(std::get<double>(value) == 0);
    }
    return error("#NAME?");
  }

  static CellValue errorType(const CellValue& value) {
    if (!isError(value)) return error("#N/A");
    const auto* const it =
        std::find(errorTexts.begin(), errorTexts.end(), std::get<CellError>(value).text);
    if (it == errorTexts.end()) return error("#N/A");
    return static_cast<double>(it - errorTexts.begin() + 1);
  }

  // Text and booleans count where they are arguments, not where they stand in cells.
  CellValue sumOf(const std::vector<Evaluation>& arguments) const {
    double sum = 0;
    for (const Evaluation& argument : arguments) {
      const bool isValue = std::holds_alternative<CellValue>(argument);
      for (const CellValue& cell : all(argument).cells) {
        if (!isValue && !isError(cell) && !std::holds_alternative<double>(cell)) continue;
        const CellValue value = number(cell);
        if (isError(value)) return value;
        sum += std::get<double>(value);
      }
    }
    return finite(sum);
  }

  std::vector<FormulaToken> tokens_;
  std::size_t position_ = 0;
  int depth_ = 0;
  host::SheetRef from_;
  const FormulaContext& context_;
};

}  // namespace

Evaluation evaluateFormula(std::string_view formula, const host::SheetRef& from,
                           const FormulaContext& context) {
  try {
    return Evaluator(formula, from, context).run();
  } catch (const NotAFormula&) {
    return error("#NAME?");
  }
}

}  // namespace quorin::fakes

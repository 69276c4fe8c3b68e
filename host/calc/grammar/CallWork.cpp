#include "host/calc/grammar/CallWork.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/calc/grammar/FunctionWork.h"
#include "host/calc/grammar/MadeArrays.h"
#include "host/calc/grammar/ReferenceText.h"
#include "host/calc/grammar/Words.h"

namespace quorin::host::calc {
namespace {

// Which arguments of a function Calc looks through for each value of the others, and how many
// ten millionths of a second it takes for one cell of them.
struct Searching {
  std::string_view function;
  std::string_view through;  // a letter for each argument, "r" for these; the last two go on
  double times;
};
constexpr std::array<Searching, 41> searching{{
    {"AVERAGEIF", "rvr", 0.5},     {"AVERAGEIFS", "rrv", 1},
    {"COUNTIF", "rv", 0.5},        {"COUNTIFS", "rv", 1},
    {"FORECAST", "vrr", 2},        {"FORECAST.LINEAR", "vrr", 2},
    {"HLOOKUP", "vrvv", 1},        {"LARGE", "rv", 5},
    {"LOOKUP", "vrr", 0.01},       {"MATCH", "vrv", 1},
    {"MAXIFS", "rrv", 1},          {"MINIFS", "rrv", 1},
    {"PERCENTILE", "rv", 5},       {"PERCENTILE.EXC", "rv", 5},
    {"PERCENTILE.INC", "rv", 5},   {"PERCENTRANK", "rvv", 3},
    {"PERCENTRANK.EXC", "rvv", 3}, {"PERCENTRANK.INC", "rvv", 3},
    {"PROB", "rrvv", 1},           {"QUARTILE", "rv", 5},
    {"QUARTILE.EXC", "rv", 5},     {"QUARTILE.INC", "rv", 5},
    {"RANK", "vrv", 1.5},          {"RANK.AVG", "vrv", 2},
    {"RANK.EQ", "vrv", 2},         {"SMALL", "rv", 5},
    {"SUMIF", "rvr", 0.5},         {"SUMIFS", "rrv", 1},
    {"TRIMMEAN", "rv", 4},         {"VLOOKUP", "vrvv", 1},
    {"XLOOKUP", "vrrvvv", 1},      {"XMATCH", "vrvv", 1},
    {"Z.TEST", "rvv", 1},          {"ZTEST", "rvv", 1},
    {"NETWORKDAYS", "vvr", 10},    {"NETWORKDAYS.INTL", "vvvr", 10},
    {"WORKDAY", "vvr", 10},        {"WORKDAY.INTL", "vvvr", 10},
    {"AGGREGATE", "vvrv", 5},      {"IRR", "rv", 20},
    {"SERIESSUM", "vvvr", 1.5},
}};

// True if Calc looks through the argument; `through` goes on with its last two letters.
bool isLookedThrough(std::string_view through, std::size_t argument) {
  if (argument < through.size()) return through[argument] == 'r';
  const std::size_t from = through.size() - 2;
  return through[from + (argument - from) % 2] == 'r';
}

bool makesText(std::string_view function) {
  static constexpr std::array<std::string_view, 5> names{"CONCATENATE", "REPLACE", "REPT",
                                                         "SUBSTITUTE", "TEXT"};
  return contains(names, function);
}

// The length of a text that stands there.
std::optional<double> textLength(std::string_view calc) {
  calc = trimmed(calc);
  if (calc.size() < 2 || calc.front() != '"' || calc.find('"', 1) != calc.size() - 1) {
    return std::nullopt;
  }
  return static_cast<double>(calc.size() - 2);
}

// What the search goes through: cells that an argument is, else the values of an array.
void addItems(OfficeWork::Search& search, const WorkingCall& call, std::size_t argument) {
  const CallArgument& part = call.arguments[argument];
  if (part.isCells) {
    for (std::size_t i = part.from; i < part.upTo; ++i) search.cells.push_back(call.reached[i]);
  } else {
    search.items += call.shapes[argument].count();
  }
}

// Calc halves what is sorted, and that is the rule where nothing else is said.
bool findsByHalves(const WorkingCall& call) {
  const bool isMatch = call.function == "MATCH";
  if (!isMatch && call.function != "VLOOKUP" && call.function != "HLOOKUP") return false;
  const std::size_t how = isMatch ? 2 : 3;
  if (call.arguments.size() <= how) return true;
  const std::string_view said = trimmed(call.arguments[how].calc);
  return said == "1" || said == "TRUE()";
}

// Gives the values that come of it.
ArrayOperands searched(OfficeWork& work, const WorkingCall& call, const Searching& how) {
  ArrayOperands values;
  OfficeWork::Search search;
  for (std::size_t i = 0; i < call.arguments.size(); ++i) {
    if (isLookedThrough(how.through, i)) {
      addItems(search, call, i);
    } else {
      values.add(call.shapes[i]);
    }
  }
  constexpr double halving = 0.01;
  search.times = values.shape().count() * (findsByHalves(call) ? halving : how.times);
  if (values.shape().count() > 1) work.searches.push_back(std::move(search));
  return values;
}

// What replaces a text may stand in it as often as it has characters.
void addReplaced(OfficeWork& work, const WorkingCall& call, double values) {
  constexpr double character = 0.15;       // steps
  if (call.arguments.size() != 3) return;  // or it is replaced once
  if (const auto length = textLength(call.arguments[2].calc)) {
    work.replaced += values * *length * character;
  } else {
    work.replacedByAny += values * character;
  }
}

void addJoined(OfficeWork& work, const WorkingCall& call) {
  constexpr double character = 0.15;
  const auto length = textLength(call.arguments.front().calc);
  OfficeWork::Search search{.times = character * length.value_or(1), .perCharacter = !length};
  for (std::size_t i = 2; i < call.arguments.size(); ++i) addItems(search, call, i);
  work.searches.push_back(std::move(search));
}

void addRepeatedText(OfficeWork& work, const WorkingCall& call) {
  const auto times = call.arguments.size() > 1 ? numberIn(call.arguments[1].calc) : std::nullopt;
  const auto length = textLength(call.arguments.front().calc);
  const double characters = times && length ? *times * *length : longestOfCell;
  work.written = std::max(work.written, std::min(characters, longestOfCell));
}

// How often these go through all of their cells, at the worst.
void addRepeated(OfficeWork& work, const WorkingCall& call) {
  OfficeWork::Search search;
  if (call.function.starts_with("FORECAST.ETS")) {
    search.times = 0.15;
    search.perItem = true;
    for (std::size_t i = 1; i < std::min<std::size_t>(call.arguments.size(), 2); ++i)
      addItems(search, call, i);
  } else if (call.function == "XIRR") {
    search.times = 6000;
    addItems(search, call, 0);
  } else {
    return;
  }
  work.searches.push_back(std::move(search));
}

// Of matrices with so many rows or columns.
void addMatrix(OfficeWork& work, const WorkingCall& call) {
  static constexpr std::array<std::string_view, 4> fitted{"GROWTH", "LINEST", "LOGEST", "TREND"};
  const ArrayShape& first = call.shapes.front();
  if (call.function == "MINVERSE" || call.function == "MDETERM") {
    const double side = std::max(first.rows, first.columns);
    work.values += side * side * side;
  } else if (contains(fitted, call.function) && call.shapes.size() > 1) {
    const ArrayShape& known = call.shapes[1];
    work.values += known.count() * std::min(known.rows, known.columns);
  }
}

// The text of a pattern, asked for where it does not stand there.
std::optional<std::string> patternOf(const CallArgument& argument,
                                     const ExpressionContext& context) {
  const std::string_view stands = trimmed(argument.calc);
  if (textLength(stands)) return std::string(stands);
  const auto told = context.told(argument.excel);
  const auto* text = told ? std::get_if<std::string>(&*told) : nullptr;
  return text != nullptr ? std::optional(*text) : std::nullopt;
}

// Calc gives a single value up after some seconds. With one repetition at most it takes as many
// steps as the text has pairs of characters.
void addPattern(OfficeWork& work, const WorkingCall& call, double values) {
  constexpr double givenUp = 2e7, pair = 0.05;
  constexpr std::string_view repetitions = "*+{";
  const auto pattern = call.arguments.size() > 1 ? patternOf(call.arguments[1], call.context)
                                                 : std::optional<std::string>("");
  const auto count = !pattern ? 2 : std::count_if(pattern->begin(), pattern->end(), [&](char c) {
    return repetitions.find(c) != repetitions.npos;
  });
  if (count > 1) {
    work.values += values * givenUp;
  } else {
    work.replacedByAny += values * pair;
  }
}

}  // namespace

void addCall(OfficeWork& work, const WorkingCall& call, ArrayCall& made) {
  const std::string_view function = call.function;
  const auto* const search =
      std::find_if(searching.begin(), searching.end(),
                   [&](const Searching& one) { return one.function == function; });
  const auto makes = [&made](const ArrayOperands& operands) {
    if (made.shape.count() <= 1) made = {operands.shape(), operands.crossed()};
  };
  if (search != searching.end()) {
    makes(searched(work, call, *search));
  } else if (!takesWhole(function) && !makesArray(function)) {
    ArrayOperands all;
    for (const ArrayShape& one : call.shapes) all.add(one);
    makes(all);
  }
  if (function == "MINVERSE") made.shape = call.shapes.front();
  addRepeated(work, call);
  addMatrix(work, call);
  const double values = made.shape.count();
  const double steps = stepsOf(function, call.shapes);
  if (values > 1 || steps > 1) work.values += values * steps;
  if (looksForPattern(function)) addPattern(work, call, values);
  if (makesText(function) && values > 1) work.texts += values;
  if (function == "TEXTJOIN") addJoined(work, call);
  if (function == "SUBSTITUTE") addReplaced(work, call, values);
  if (function == "REPT") addRepeatedText(work, call);
}

}  // namespace quorin::host::calc

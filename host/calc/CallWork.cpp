#include "host/calc/CallWork.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "host/calc/FunctionCalls.h"
#include "host/calc/ReferenceText.h"

namespace quorin::host::calc {
namespace {

template <std::size_t count>
bool contains(const std::array<std::string_view, count>& words, std::string_view word) {
  return std::find(words.begin(), words.end(), word) != words.end();
}

// Which arguments of a function Calc looks through for each value of the others, and how many
// ten millionths of a second it takes for one cell of them.
struct Searching {
  std::string_view function;
  std::string_view through;  // a letter for each argument, "r" for these; the last two go on
  double times;
};
constexpr std::array<Searching, 39> searching{{
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
    {"AGGREGATE", "vvrv", 5},
}};

// Whether Calc looks through the argument; `through` goes on with its last two letters.
bool isLookedThrough(std::string_view through, std::size_t argument) {
  if (argument < through.size()) return through[argument] == 'r';
  const std::size_t from = through.size() - 2;
  return through[from + (argument - from) % 2] == 'r';
}

// Of these one value comes for each.
bool takesOneEach(std::string_view function) {
  static constexpr std::array<std::string_view, 64> more{
      "ACOS",        "ASIN",      "ATAN",      "ATAN2",   "BITAND",     "CHAR",      "CLEAN",
      "CODE",        "COMBIN",    "COMBINA",   "COS",     "COSH",       "DATEVALUE", "DEGREES",
      "DOLLAR",      "EDATE",     "EOMONTH",   "ERF",     "ERFC",       "EVEN",      "FACT",
      "FIXED",       "FV",        "GAMMA",     "GAMMALN", "ISEVEN",     "ISLOGICAL", "ISNONTEXT",
      "ISODD",       "LOG",       "LOG10",     "MINUTE",  "MROUND",     "NORM.DIST", "NORM.INV",
      "NORM.S.DIST", "NORMDIST",  "NORMSDIST", "NPER",    "ODD",        "PERMUT",    "PMT",
      "PROPER",      "PV",        "QUOTIENT",  "RADIANS", "REPLACE",    "REPT",      "ROMAN",
      "SEARCH",      "SECOND",    "SIN",       "SINH",    "SUBSTITUTE", "TAN",       "TANH",
      "TIME",        "TIMEVALUE", "TRUNC",     "UNICHAR", "UNICODE",    "VALUE",     "WEEKDAY",
      "WEEKNUM"};
  return contains(more, function) || (givesOne(function, false) && !givesOne(function, true));
}

bool makesText(std::string_view function) {
  static constexpr std::array<std::string_view, 5> names{"CONCATENATE", "REPLACE", "REPT",
                                                         "SUBSTITUTE", "TEXT"};
  return contains(names, function);
}

// What the argument comes to, if that is one number; 0 for any other one value.
std::optional<double> toldNumber(const CallArgument& argument, const ExpressionContext& context) {
  if (const auto stands = numberIn(argument.calc)) return stands;
  if (!context.valueOf || argument.excel.empty()) return std::nullopt;
  const auto told = context.valueOf(argument.excel);
  if (!told) return std::nullopt;
  const auto* value = std::get_if<double>(&*told);
  return value != nullptr ? *value : 0;
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

// Up to which of their arguments these count.
struct Counting {
  std::string_view function;
  int argument;  // -1: each
};
constexpr std::array<Counting, 22> counting{{
    {"AMORDEGRC", 4},     {"BESSELI", 1},      {"BESSELJ", 1},     {"BESSELK", 1},
    {"BESSELY", 1},       {"BINOM.INV", 0},    {"COMBIN", 1},      {"COMBINA", 1},
    {"CRITBINOM", 0},     {"CUMIPMT", 4},      {"CUMIPMT_ADD", 4}, {"CUMPRINC", 4},
    {"CUMPRINC_ADD", 4},  {"HYPGEOM.DIST", 1}, {"HYPGEOMDIST", 1}, {"MULTINOMIAL", -1},
    {"NEGBINOM.DIST", 0}, {"NEGBINOMDIST", 0}, {"PERMUT", 1},      {"VDB", 4},
    {"WORKDAY", 1},       {"WORKDAY.INTL", 1},
}};

}  // namespace

void addCall(OfficeWork& work, const WorkingCall& call, ArrayCall& made) {
  const std::string_view function = call.function;
  const auto* const search =
      std::find_if(searching.begin(), searching.end(),
                   [&](const Searching& one) { return one.function == function; });
  const auto makes = [&made](const ArrayOperands& operands) {
    if (made.shape.count() <= 1) made = {operands.shape(), operands.crossed()};
  };
  if (search != searching.end()) makes(searched(work, call, *search));
  if (takesOneEach(function)) {
    ArrayOperands all;
    for (const ArrayShape& one : call.shapes) all.add(one);
    makes(all);
  }
  if (function == "MINVERSE") made.shape = call.shapes.front();
  addRepeated(work, call);
  addMatrix(work, call);
  const double values = made.shape.count();
  if (values > 1) work.values += values;
  if (makesText(function) && values > 1) work.texts += values;
  if (function == "TEXTJOIN") addJoined(work, call);
  if (function == "SUBSTITUTE") addReplaced(work, call, values);
  if (function == "REPT") addRepeatedText(work, call);
}

std::optional<std::string> countedCall(OfficeWork& work, const WorkingCall& call,
                                       const ArrayShape& shape, const ExpressionContext& context) {
  const double values = shape.count();
  constexpr double mostCounted = 2e7;
  const auto* const how = std::find_if(counting.begin(), counting.end(), [&](const Counting& one) {
    return one.function == call.function;
  });
  if (how == counting.end()) return std::nullopt;
  const double most = std::floor(mostCounted / std::max(values, 1.0));
  std::string written;
  bool anew = false;
  for (std::size_t i = 0; i < call.arguments.size(); ++i) {
    const CallArgument& argument = call.arguments[i];
    if (i > 0) written += ';';
    if ((how->argument >= 0 && static_cast<std::size_t>(how->argument) != i) ||
        trimmed(argument.calc).empty()) {
      written += argument.calc;
      continue;
    }
    const auto told = toldNumber(argument, context);
    work.counted += (told ? std::abs(*told) : most) * std::max(values, 1.0);
    if (numberIn(argument.calc)) {
      written += argument.calc;
    } else {
      anew = true;
      written += "IF(ABS(" + argument.calc + ")>" + std::to_string(std::llround(most)) + ";NA();" +
                 argument.calc + ")";
    }
  }
  return anew ? std::optional(written) : std::nullopt;
}

}  // namespace quorin::host::calc

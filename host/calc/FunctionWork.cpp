#include "host/calc/FunctionWork.h"

#include <algorithm>
#include <array>

#include "host/calc/FunctionCalls.h"
#include "host/calc/Words.h"

namespace quorin::host::calc {
namespace {

struct Slow {
  std::string_view function;
  double steps;          // for one value
  std::size_t optional;  // from this argument on an array is given whole to the work of each value
};
constexpr std::size_t none = 99;
constexpr std::array<Slow, 38> slow{{
    {"ACCRINT", 500, 4},
    {"ACCRINTM", 500, 3},
    {"AMORDEGRC", 500, 6},
    {"AMORLINC", 500, 6},
    {"COUPDAYBS", 100, 3},
    {"COUPDAYS", 100, 3},
    {"COUPDAYSNC", 100, 3},
    {"COUPNCD", 100, 3},
    {"COUPNUM", 100, 3},
    {"COUPPCD", 100, 3},
    {"DATEVALUE", 100, none},
    {"DISC", 100, 4},
    {"DURATION", 1'500, 5},
    {"ERF", 10, 1},
    {"INTRATE", 100, 4},
    {"MDURATION", 1'500, 5},
    {"NETWORKDAYS", 1'600, none},
    {"NETWORKDAYS.INTL", 1'600, none},
    {"NETWORKDAYS_EXCEL2003", 1'600, none},
    {"ODDLPRICE", 500, 7},
    {"ODDLYIELD", 500, 7},
    {"PRICE", 1'500, 6},
    {"PRICEDISC", 100, 4},
    {"PRICEMAT", 200, 5},
    {"RATE", 2'400, none},
    {"RECEIVED", 100, 4},
    {"TBILLEQ", 500, none},
    {"TBILLPRICE", 500, none},
    {"TBILLYIELD", 500, none},
    {"TEXT", 30, none},
    {"TIMEVALUE", 100, none},
    {"VALUE", 30, none},
    {"WORKDAY", 500, none},
    {"WORKDAY.INTL", 500, none},
    {"YEARFRAC", 150, 2},
    {"YIELD", 31'000, 6},
    {"YIELDDISC", 100, 4},
    {"YIELDMAT", 200, 5},
}};

}  // namespace

bool takesWhole(std::string_view function) {
  // What is looked up, searched and counted is in CallWork.
  static constexpr std::array<std::string_view, 109> names{
      "ADDRESS",     "AGGREGATE",    "AREAS",        "AVEDEV",
      "AVERAGEIF",   "AVERAGEIFS",   "CELL",         "COLUMN",
      "CONCAT",      "CORREL",       "COUNTBLANK",   "COUNTIF",
      "COUNTIFS",    "COVAR",        "COVARIANCE.P", "COVARIANCE.S",
      "DAVERAGE",    "DCOUNT",       "DCOUNTA",      "DEVSQ",
      "DGET",        "DMAX",         "DMIN",         "DPRODUCT",
      "DSTDEV",      "DSTDEVP",      "DSUM",         "DVAR",
      "DVARP",       "FILTER",       "FORECAST.ETS", "FORECAST.ETS.CONFINT",
      "FORMULATEXT", "FREQUENCY",    "FVSCHEDULE",   "GCD",
      "GEOMEAN",     "GETPIVOTDATA", "GROWTH",       "HARMEAN",
      "IMPRODUCT",   "IMSUM",        "INDEX",        "INDIRECT",
      "INTERCEPT",   "IRR",          "KURT",         "LAMBDA",
      "LCM",         "LET",          "LINEST",       "LOGEST",
      "MAXIFS",      "MDETERM",      "MINIFS",       "MINVERSE",
      "MIRR",        "MMULT",        "MODE",         "MODE.MULT",
      "MODE.SNGL",   "MULTINOMIAL",  "NPV",          "OFFSET",
      "PEARSON",     "ROW",          "RSQ",          "SERIESSUM",
      "SHEET",       "SHEETS",       "SINGLE",       "SKEW",
      "SKEW.P",      "SLOPE",        "SORT",         "SORTBY",
      "STDEV.P",     "STDEV.S",      "STDEVA",       "STDEVP",
      "STDEVPA",     "STEYX",        "SUBTOTAL",     "SUMIF",
      "SUMIFS",      "SUMX2MY2",     "SUMX2PY2",     "SUMXMY2",
      "TABLE",       "TEXTJOIN",     "TRANSPOSE",    "TREND",
      "TRIMRANGE",   "UNIQUE",       "VAR.P",        "VAR.S",
      "VARA",        "VARP",         "VARPA",        "XIRR",
      "XLOOKUP",     "XMATCH",       "XNPV",         "MULTIPLE.OPERATIONS",
      "DROP",        "TAKE",         "ANCHORARRAY",  "FORECAST.ETS.SEASONALITY",
      "ISREF"};
  return contains(names, function) || function == "FORECAST.ETS.STAT" || givesOne(function, true);
}

double stepsOf(std::string_view function, std::span<const ArrayShape> shapes) {
  constexpr double handedOver = 10;  // steps for a value
  const auto* const found = std::find_if(slow.begin(), slow.end(),
                                         [&](const Slow& one) { return one.function == function; });
  if (found == slow.end()) return 1;
  double steps = found->steps;
  for (std::size_t i = found->optional; i < shapes.size(); ++i) {
    if (shapes[i].count() > 1) steps += handedOver * shapes[i].count();
  }
  return steps;
}

bool looksForPattern(std::string_view function) {
  static constexpr std::array<std::string_view, 4> names{"ORG.LIBREOFFICE.REGEX", "REGEXEXTRACT",
                                                         "REGEXREPLACE", "REGEXTEST"};
  return contains(names, function);
}

}  // namespace quorin::host::calc

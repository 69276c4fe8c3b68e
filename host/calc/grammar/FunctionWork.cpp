#include "host/calc/grammar/FunctionWork.h"

#include <algorithm>
#include <array>

#include "host/calc/grammar/FunctionCalls.h"
#include "host/calc/grammar/Words.h"

namespace quorin::host::calc {
namespace {

struct Slow {
  std::string_view function;
  double steps;          // for one value
  std::size_t optional;  // from this argument on an array is given whole to the work of each value
};
constexpr std::size_t none = 99;
constexpr std::array<Slow, 130> slow{{
    {"ACCRINT", 500, 4},
    {"ACCRINTM", 500, 3},
    {"AMORDEGRC", 500, 6},
    {"AMORLINC", 500, 6},
    {"BESSELI", 80, none},
    {"BESSELJ", 80, none},
    {"BESSELK", 80, none},
    {"BESSELY", 80, none},
    {"BETA.DIST", 20, none},
    {"BETA.INV", 70, none},
    {"BETADIST", 20, none},
    {"BETAINV", 70, none},
    {"BIN2DEC", 100, none},
    {"BIN2HEX", 100, none},
    {"BIN2OCT", 100, none},
    {"CHIINV", 30, none},
    {"CHISQ.INV", 30, none},
    {"CHISQ.INV.RT", 30, none},
    {"COMPLEX", 80, none},
    {"CONVERT", 50, none},
    {"COUPDAYBS", 100, 3},
    {"COUPDAYS", 100, 3},
    {"COUPDAYSNC", 100, 3},
    {"COUPNCD", 100, 3},
    {"COUPNUM", 100, 3},
    {"COUPPCD", 100, 3},
    {"DATEVALUE", 100, none},
    {"DEC2BIN", 100, none},
    {"DEC2HEX", 100, none},
    {"DEC2OCT", 100, none},
    {"DELTA", 25, none},
    {"DISC", 100, 4},
    {"DOLLAR", 30, none},
    {"DOLLARDE", 25, none},
    {"DOLLARFR", 25, none},
    {"DURATION", 1'500, 5},
    {"EDATE", 50, none},
    {"EOMONTH", 50, none},
    {"ERF", 90, 1},
    {"ERF.PRECISE", 90, none},
    {"ERFC", 90, none},
    {"ERFC.PRECISE", 90, none},
    {"EXACT", 15, none},
    {"F.DIST", 20, none},
    {"F.DIST.RT", 20, none},
    {"F.INV", 70, none},
    {"F.INV.RT", 70, none},
    {"FACTDOUBLE", 25, none},
    {"FDIST", 20, none},
    {"FINV", 70, none},
    {"FIXED", 60, none},
    {"GAMMA.INV", 70, none},
    {"GAMMAINV", 70, none},
    {"GESTEP", 25, none},
    {"HEX2BIN", 100, none},
    {"HEX2DEC", 100, none},
    {"HEX2OCT", 100, none},
    {"HYPGEOM.DIST", 20, none},
    {"HYPGEOMDIST", 20, none},
    {"IMABS", 80, none},
    {"IMAGINARY", 80, none},
    {"IMARGUMENT", 80, none},
    {"IMCONJUGATE", 80, none},
    {"IMCOS", 80, none},
    {"IMCOSH", 80, none},
    {"IMCOT", 80, none},
    {"IMCSC", 80, none},
    {"IMCSCH", 80, none},
    {"IMDIV", 80, none},
    {"IMEXP", 80, none},
    {"IMLN", 80, none},
    {"IMLOG10", 80, none},
    {"IMLOG2", 80, none},
    {"IMPOWER", 80, none},
    {"IMREAL", 80, none},
    {"IMSEC", 80, none},
    {"IMSECH", 80, none},
    {"IMSIN", 80, none},
    {"IMSINH", 80, none},
    {"IMSQRT", 80, none},
    {"IMSUB", 80, none},
    {"IMTAN", 80, none},
    {"INTRATE", 100, 4},
    {"LOGINV", 15, none},
    {"LOGNORM.INV", 15, none},
    {"LOWER", 25, none},
    {"MDURATION", 1'500, 5},
    {"MID", 15, none},
    {"MIDB", 15, none},
    {"MROUND", 25, none},
    {"NETWORKDAYS", 1'600, none},
    {"NETWORKDAYS.INTL", 1'600, none},
    {"NETWORKDAYS_EXCEL2003", 1'600, none},
    {"NORM.INV", 15, none},
    {"NORM.S.INV", 15, none},
    {"NORMINV", 15, none},
    {"NORMSINV", 15, none},
    {"OCT2BIN", 100, none},
    {"OCT2DEC", 100, none},
    {"OCT2HEX", 100, none},
    {"ODDLPRICE", 500, 7},
    {"ODDLYIELD", 500, 7},
    {"PRICE", 1'500, 6},
    {"PRICEDISC", 100, 4},
    {"PRICEMAT", 200, 5},
    {"PROPER", 15, none},
    {"QUOTIENT", 25, none},
    {"RATE", 2'400, none},
    {"RECEIVED", 100, 4},
    {"SEARCH", 20, none},
    {"SEARCHB", 20, none},
    {"SQRTPI", 25, none},
    {"SUBSTITUTE", 15, none},
    {"T.INV", 20, none},
    {"T.INV.2T", 20, none},
    {"TBILLEQ", 500, none},
    {"TBILLPRICE", 500, none},
    {"TBILLYIELD", 500, none},
    {"TEXT", 100, none},
    {"TIMEVALUE", 100, none},
    {"TINV", 20, none},
    {"TRIM", 20, none},
    {"UPPER", 25, none},
    {"VALUE", 30, none},
    {"WORKDAY", 500, none},
    {"WORKDAY.INTL", 500, none},
    {"YEARFRAC", 150, 2},
    {"YIELD", 31'000, 6},
    {"YIELDDISC", 100, 4},
    {"YIELDMAT", 200, 5},
}};

// What a function takes for one value that is not among the slow ones: the slower half of what was
// measured with numbers, and less than with errors.
constexpr double ordinary = 6;
// These come with the array itself.
constexpr std::array<std::string_view, 13> quick{
    "IF",   "IFERROR",   "IFNA",     "ISBLANK", "ISERR", "ISERROR", "ISLOGICAL",
    "ISNA", "ISNONTEXT", "ISNUMBER", "ISTEXT",  "N",     "NOT"};

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
  if (found == slow.end()) return contains(quick, function) ? 1 : ordinary;
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

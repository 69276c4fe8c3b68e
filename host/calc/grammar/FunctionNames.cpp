#include "host/calc/grammar/FunctionNames.h"

#include <algorithm>
#include <array>
#include <utility>

#include "host/calc/grammar/ReferenceText.h"

namespace quorin::host::calc {
namespace {

using Pair = std::pair<std::string_view, std::string_view>;

// Calc's name and Excel's, by Calc's. CEILING and FLOOR are Excel's names of other functions than
// Calc's: these refuse arguments of different signs.
constexpr std::array renamed{
    Pair{"B", "BINOM.DIST.RANGE"},
    Pair{"CEILING", "ORG.OPENOFFICE.CEILING"},
    Pair{"CEILING.XCL", "CEILING"},
    Pair{"COLOR", "ORG.LIBREOFFICE.COLOR"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.ANALYSIS.GETCUMIPMT", "CUMIPMT_ADD"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.ANALYSIS.GETCUMPRINC", "CUMPRINC_ADD"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.ANALYSIS.GETEFFECT", "EFFECT_ADD"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.ANALYSIS.GETGCD", "GCD_EXCEL2003"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.ANALYSIS.GETISEVEN", "ISEVEN_ADD"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.ANALYSIS.GETISODD", "ISODD_ADD"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.ANALYSIS.GETLCM", "LCM_EXCEL2003"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.ANALYSIS.GETNETWORKDAYS", "NETWORKDAYS_EXCEL2003"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.ANALYSIS.GETNOMINAL", "NOMINAL_ADD"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.ANALYSIS.GETWEEKNUM", "WEEKNUM_EXCEL2003"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.DATEFUNCTIONS.GETDAYSINMONTH", "ORG.OPENOFFICE.DAYSINMONTH"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.DATEFUNCTIONS.GETDAYSINYEAR", "ORG.OPENOFFICE.DAYSINYEAR"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.DATEFUNCTIONS.GETDIFFMONTHS", "ORG.OPENOFFICE.MONTHS"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.DATEFUNCTIONS.GETDIFFWEEKS", "ORG.OPENOFFICE.WEEKS"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.DATEFUNCTIONS.GETDIFFYEARS", "ORG.OPENOFFICE.YEARS"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.DATEFUNCTIONS.GETISLEAPYEAR", "ORG.OPENOFFICE.ISLEAPYEAR"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.DATEFUNCTIONS.GETROT13", "ORG.OPENOFFICE.ROT13"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.DATEFUNCTIONS.GETWEEKSINYEAR", "ORG.OPENOFFICE.WEEKSINYEAR"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.PRICINGFUNCTIONS.GETOPTBARRIER", "OPT_BARRIER"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.PRICINGFUNCTIONS.GETOPTPROBHIT", "OPT_PROB_HIT"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.PRICINGFUNCTIONS.GETOPTPROBINMONEY", "OPT_PROB_INMONEY"},
    Pair{"COM.SUN.STAR.SHEET.ADDIN.PRICINGFUNCTIONS.GETOPTTOUCH", "OPT_TOUCH"},
    Pair{"CONVERT", "ORG.OPENOFFICE.CONVERT"},
    Pair{"CURRENT", "ORG.OPENOFFICE.CURRENT"},
    Pair{"DURATION", "PDURATION"},
    Pair{"EASTERSUNDAY", "ORG.OPENOFFICE.EASTERSUNDAY"},
    Pair{"EFFECTIVE", "EFFECT"},
    Pair{"ERRORTYPE", "ORG.OPENOFFICE.ERRORTYPE"},
    Pair{"FLOOR", "ORG.OPENOFFICE.FLOOR"},
    Pair{"FLOOR.XCL", "FLOOR"},
    Pair{"FORECAST.ETS.ADD", "FORECAST.ETS"},
    Pair{"FORECAST.ETS.MULT", "ORG.LIBREOFFICE.FORECAST.ETS.MULT"},
    Pair{"FORECAST.ETS.PI.ADD", "FORECAST.ETS.CONFINT"},
    Pair{"FORECAST.ETS.PI.MULT", "ORG.LIBREOFFICE.FORECAST.ETS.PI.MULT"},
    Pair{"FORECAST.ETS.STAT.ADD", "FORECAST.ETS.STAT"},
    Pair{"FORECAST.ETS.STAT.MULT", "ORG.LIBREOFFICE.FORECAST.ETS.STAT.MULT"},
    Pair{"FORMULA", "FORMULATEXT"},
    Pair{"FOURIER", "ORG.LIBREOFFICE.FOURIER"},
    Pair{"GOALSEEK", "ORG.OPENOFFICE.GOALSEEK"},
    Pair{"MULTIRANGE", "ORG.OPENOFFICE.MULTIRANGE"},
    Pair{"RAND.NV", "ORG.LIBREOFFICE.RAND.NV"},
    Pair{"RANDBETWEEN.NV", "ORG.LIBREOFFICE.RANDBETWEEN.NV"},
    Pair{"RAWSUBTRACT", "ORG.LIBREOFFICE.RAWSUBTRACT"},
    Pair{"REGEX", "ORG.LIBREOFFICE.REGEX"},
    Pair{"ROUNDSIG", "ORG.LIBREOFFICE.ROUNDSIG"},
    Pair{"SKEWP", "SKEW.P"},
    Pair{"STYLE", "ORG.OPENOFFICE.STYLE"},
    Pair{"WEEKNUM_OOO", "ORG.LIBREOFFICE.WEEKNUM_OOO"},
    Pair{"ZGZ", "RRI"},
};

// Functions of Calc's analysis add-in that Excel knows by the same name.
constexpr std::string_view analysis = "COM.SUN.STAR.SHEET.ADDIN.ANALYSIS.GET";
constexpr std::array<std::string_view, 91> ofAnalysis{
    "ACCRINT",   "ACCRINTM",   "AMORDEGRC",  "AMORLINC",   "BESSELI",     "BESSELJ",
    "BESSELK",   "BESSELY",    "BIN2DEC",    "BIN2HEX",    "BIN2OCT",     "COMPLEX",
    "CONVERT",   "COUPDAYBS",  "COUPDAYS",   "COUPDAYSNC", "COUPNCD",     "COUPNUM",
    "COUPPCD",   "DEC2BIN",    "DEC2HEX",    "DEC2OCT",    "DELTA",       "DISC",
    "DOLLARDE",  "DOLLARFR",   "DURATION",   "EDATE",      "EOMONTH",     "ERF",
    "ERFC",      "FACTDOUBLE", "FVSCHEDULE", "GESTEP",     "HEX2BIN",     "HEX2DEC",
    "HEX2OCT",   "IMABS",      "IMAGINARY",  "IMARGUMENT", "IMCONJUGATE", "IMCOS",
    "IMCOSH",    "IMCOT",      "IMCSC",      "IMCSCH",     "IMDIV",       "IMEXP",
    "IMLN",      "IMLOG10",    "IMLOG2",     "IMPOWER",    "IMPRODUCT",   "IMREAL",
    "IMSEC",     "IMSECH",     "IMSIN",      "IMSINH",     "IMSQRT",      "IMSUB",
    "IMSUM",     "IMTAN",      "INTRATE",    "MDURATION",  "MROUND",      "MULTINOMIAL",
    "OCT2BIN",   "OCT2DEC",    "OCT2HEX",    "ODDFPRICE",  "ODDFYIELD",   "ODDLPRICE",
    "ODDLYIELD", "PRICE",      "PRICEDISC",  "PRICEMAT",   "QUOTIENT",    "RANDBETWEEN",
    "RECEIVED",  "SERIESSUM",  "SQRTPI",     "TBILLEQ",    "TBILLPRICE",  "TBILLYIELD",
    "WORKDAY",   "XIRR",       "XNPV",       "YEARFRAC",   "YIELD",       "YIELDDISC",
    "YIELDMAT"};

constexpr bool byCalcName(const Pair& pair, std::string_view name) {
  return pair.first < name;
}

constexpr auto byExcel = [] {
  auto pairs = renamed;
  std::sort(pairs.begin(), pairs.end(),
            [](const Pair& a, const Pair& b) { return a.second < b.second; });
  return pairs;
}();

static_assert(std::is_sorted(renamed.begin(), renamed.end()));
static_assert(std::is_sorted(ofAnalysis.begin(), ofAnalysis.end()));

// Prefixes of names in files that only tell how new a function is.
constexpr std::array<std::string_view, 3> ages{"_XLFN._XLWS.", "_XLFN.", "_XLWS."};

std::size_t lengthOfAge(std::string_view name) {
  if (!name.starts_with('_')) return 0;
  for (const std::string_view age : ages) {
    if (name.starts_with(age)) return age.size();
  }
  return 0;
}

}  // namespace

void appendExcelFunctionName(std::string& text, std::string_view calcName) {
  const std::size_t start = text.size();
  text += calcName;
  for (std::size_t i = start; i < text.size(); ++i) text[i] = upperCase(text[i]);
  const std::string_view name = std::string_view(text).substr(start);
  const auto* const found = std::lower_bound(renamed.begin(), renamed.end(), name, byCalcName);
  if (found != renamed.end() && found->first == name) {
    text.replace(start, text.npos, found->second);
  } else if (name.starts_with(analysis)) {
    text.erase(start, analysis.size());
  } else {
    text.erase(start, lengthOfAge(name));
  }
}

std::string plainFunctionName(std::string_view excelName) {
  std::string name = upperCase(excelName);
  name.erase(0, lengthOfAge(name));
  return name;
}

std::string calcFunctionName(std::string_view excelName) {
  const std::string name = plainFunctionName(excelName);
  const auto* const found =
      std::lower_bound(byExcel.begin(), byExcel.end(), name,
                       [](const Pair& pair, std::string_view text) { return pair.second < text; });
  if (found != byExcel.end() && found->second == name) return std::string(found->first);
  if (std::binary_search(ofAnalysis.begin(), ofAnalysis.end(), std::string_view(name))) {
    return std::string(analysis) + name;
  }
  return name;
}

}  // namespace quorin::host::calc

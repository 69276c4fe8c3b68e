#include "host/calc/grammar/BoundedCall.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <span>

#include "host/calc/grammar/ReferenceText.h"

namespace quorin::host::calc {
namespace {

// Arguments that are bounded, counted from 0; each where there are none.
struct Bounded {
  std::string_view function, arguments;
};
bool bounds(const Bounded& one, std::size_t argument) {
  return one.arguments.empty() ||
         one.arguments.find(static_cast<char>('0' + argument)) != std::string_view::npos;
}

// Up to these Calc counts.
constexpr std::array<Bounded, 22> counting{{
    {"AMORDEGRC", "4"},     {"BESSELI", "01"},     {"BESSELJ", "01"},    {"BESSELK", "01"},
    {"BESSELY", "01"},      {"BINOM.INV", "0"},    {"COMBIN", "1"},      {"COMBINA", "1"},
    {"CRITBINOM", "0"},     {"CUMIPMT", "4"},      {"CUMIPMT_ADD", "4"}, {"CUMPRINC", "4"},
    {"CUMPRINC_ADD", "4"},  {"HYPGEOM.DIST", "1"}, {"HYPGEOMDIST", "1"}, {"MULTINOMIAL", ""},
    {"NEGBINOM.DIST", "0"}, {"NEGBINOMDIST", "0"}, {"PERMUT", "1"},      {"VDB", "4"},
    {"WORKDAY", "1"},       {"WORKDAY.INTL", "1"},
}};

// These are dates, and Calc goes through the years or days up to them.
constexpr std::array<Bounded, 39> dated{{
    {"ACCRINT", "012"},
    {"ACCRINTM", "01"},
    {"AMORDEGRC", "12"},
    {"AMORLINC", "12"},
    {"COUPDAYBS", "01"},
    {"COUPDAYS", "01"},
    {"COUPDAYSNC", "01"},
    {"COUPNCD", "01"},
    {"COUPNUM", "01"},
    {"COUPPCD", "01"},
    {"DISC", "01"},
    {"DURATION", "01"},
    {"EDATE", "0"},
    {"EOMONTH", "0"},
    {"INTRATE", "01"},
    {"MDURATION", "01"},
    {"NETWORKDAYS", "01"},
    {"NETWORKDAYS.INTL", "01"},
    {"NETWORKDAYS_EXCEL2003", "01"},
    {"ODDLPRICE", "012"},
    {"ODDLYIELD", "012"},
    {"ORG.OPENOFFICE.DAYSINMONTH", "0"},
    {"ORG.OPENOFFICE.DAYSINYEAR", "0"},
    {"ORG.OPENOFFICE.ISLEAPYEAR", "0"},
    {"ORG.OPENOFFICE.MONTHS", "01"},
    {"ORG.OPENOFFICE.WEEKS", "01"},
    {"ORG.OPENOFFICE.WEEKSINYEAR", "0"},
    {"ORG.OPENOFFICE.YEARS", "01"},
    {"PRICE", "01"},
    {"PRICEDISC", "01"},
    {"PRICEMAT", "012"},
    {"RECEIVED", "01"},
    {"TBILLEQ", "01"},
    {"TBILLPRICE", "01"},
    {"TBILLYIELD", "01"},
    {"YEARFRAC", "01"},
    {"YIELD", "01"},
    {"YIELDDISC", "01"},
    {"YIELDMAT", "012"},
}};

template <std::size_t count>
bool isIn(const std::array<Bounded, count>& table, std::string_view function,
          std::size_t argument) {
  const auto* const found = std::find_if(
      table.begin(), table.end(), [&](const Bounded& one) { return one.function == function; });
  return found != table.end() && bounds(*found, argument);
}

// What the argument comes to, if that is one number; 0 for any other one value.
std::optional<double> toldNumber(const CallArgument& argument, const ExpressionContext& context) {
  if (const auto stands = numberIn(argument.calc)) return stands;
  const auto told = context.told(argument.excel);
  if (!told) return std::nullopt;
  const auto* value = std::get_if<double>(&*told);
  return value != nullptr ? *value : 0;
}

std::string upTo(double most, const std::string& argument, const char* error) {
  return "IF(ABS(" + argument + ")>" + std::to_string(std::llround(most)) + ";" + error + ";" +
         argument + ")";
}

std::string boundedCount(OfficeWork& work, const WorkingCall& call, const CallArgument& argument,
                         double values) {
  constexpr double mostCounted = 2e7;
  const double most = std::floor(mostCounted / values);
  const auto told = toldNumber(argument, call.context);
  work.counted += (told ? std::abs(*told) : most) * values;
  return numberIn(argument.calc) ? argument.calc : upTo(most, argument.calc, "NA()");
}

std::string boundedDate(const WorkingCall& call, const CallArgument& argument, double values) {
  constexpr double latest = 2'958'465;      // the last day of 9999
  constexpr double latestOfMany = 100'000;  // in 2173, for what counts days one by one
  const bool byDays = call.function.starts_with("NETWORKDAYS");
  const double most = byDays && values > 1 ? latestOfMany : latest;
  if (const auto number = numberIn(argument.calc))
    return std::abs(*number) <= most ? argument.calc : "#NUM!";
  return upTo(most, argument.calc, "#NUM!");
}

}  // namespace

std::optional<std::string> boundedCall(OfficeWork& work, const WorkingCall& call,
                                       const ArrayShape& shape) {
  double values = std::max(shape.count(), 1.0);
  for (const ArrayShape& one : call.shapes) values = std::max(values, one.count());
  std::string written;
  bool anew = false;
  for (std::size_t i = 0; i < call.arguments.size(); ++i) {
    const CallArgument& argument = call.arguments[i];
    std::string bounded = argument.calc;
    if (!trimmed(argument.calc).empty()) {
      if (isIn(counting, call.function, i)) bounded = boundedCount(work, call, argument, values);
      if (isIn(dated, call.function, i)) bounded = boundedDate(call, argument, values);
    }
    anew = anew || bounded != argument.calc;
    written += (i > 0 ? ";" : "") + bounded;
  }
  return anew ? std::optional(written) : std::nullopt;
}

}  // namespace quorin::host::calc

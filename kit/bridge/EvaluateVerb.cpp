// The verb "evaluate": an expression's value, or the name of the error that it gives.
#include <charconv>
#include <exception>
#include <string_view>

#include "kit/bridge/Bridge.h"
#include "kit/shapes/DeepEvalShapes.h"
#include "kit/shapes/ErrorLiterals.h"
#include "kit/value/CallTerms.h"
#include "kit/value/EventErrors.h"
#include "kit/value/Marshal.h"
#include "kit/value/Unicode.h"

namespace quorin {

namespace {

constexpr std::size_t longestExpression = 255;  // what Excel's evaluate takes, in characters
constexpr std::string_view errorTag = "__ERR:";

std::size_t characters(const std::string& text) {
  return graphemeCount(text).value_or(text.size());
}

}  // namespace

JSONValue Bridge::evaluate(const std::string& expr, bool asked) {
  try {
    return okValue(call("evaluate", "qx_evaluate", {expr}, asked));
  } catch (const ExcelError& error) {
    log_.log("ERROR", "evaluate failed code=" + std::to_string(error.code()) +
                          " len=" + std::to_string(characters(expr)));
    if (error.code() == ExcelError::timedOut) return fail("timeout", error.message());
    if (error.code() == onlyWhenAsked) return BridgeShapes::onlyWhenAskedFailure(error.message());
    if (error.code() != eventErrors::notUnderstood) return fail("transport", error.message());
    return evaluateWrapped(expr, error.message(), asked);
  } catch (const std::exception& error) {
    return fail("transport", error.what());
  }
}

// Asks again in a form in which an error is text, to learn which error it is.
JSONValue Bridge::evaluateWrapped(const std::string& expr, const std::string& firstMessage,
                                  bool asked) {
  const std::optional<std::string> wrapper = wrapForErrorType(expr, argSeparator_);
  if (!wrapper) return fail("excelError", firstMessage);
  JSONValue result;
  try {
    result = call("evaluate", "qx_evaluate", {*wrapper}, asked);
  } catch (const std::exception&) {
    return fail("excelError", firstMessage);
  }
  if (const std::optional<long long> errorType = parseErrTag(result))
    return fail("excelError", std::string(BridgeShapes::errorLiteral(*errorType)));
  return okValue(result);
}

JSONValue Bridge::okValue(const JSONValue& value) {
  if (Marshal::containsUnmarshalled(value))
    return fail("transport", "evaluate result could not be marshalled");
  return JSONValue::Object{{"ok", true}, {"value", value}};
}

std::optional<std::string> Bridge::wrapForErrorType(const std::string& expr,
                                                    const std::string& separator) {
  std::string wrapper = "IFERROR(" + expr + separator + "\"__ERR:\"&ERROR.TYPE(" + expr + "))";
  if (characters(wrapper) > longestExpression) return std::nullopt;
  return wrapper;
}

std::optional<long long> Bridge::parseErrTag(const JSONValue& value) {
  const std::string* const text = value.string();
  if (!text || !text->starts_with(errorTag)) return std::nullopt;
  std::string_view digits = std::string_view(*text).substr(errorTag.size());
  // A sign may stand in front, as the integers of any text do; from_chars knows the minus alone.
  if (digits.starts_with('+') && !digits.starts_with("+-")) digits.remove_prefix(1);
  long long number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return number;
}

}  // namespace quorin

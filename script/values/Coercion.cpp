#include "script/values/Coercion.h"

#include <cmath>

#include "script/lex/Numbers.h"
#include "script/values/Dates.h"
#include "script/values/Display.h"
#include "script/values/Failure.h"
#include "script/values/LocalObjects.h"

namespace quorin::script {
namespace {

constexpr FourCharCode typeText = fourCharCode("ctxt");
constexpr FourCharCode typeInteger = fourCharCode("long");
constexpr FourCharCode typeReal = fourCharCode("doub");
constexpr FourCharCode typeNumber = fourCharCode("nmbr");
constexpr FourCharCode typeBoolean = fourCharCode("bool");
constexpr FourCharCode typeList = fourCharCode("list");

class TextBuilder {
 public:
  explicit TextBuilder(const TextRules& rules) : rules_(rules) {}
  std::string text;

  void add(const Value& value, int depth) {
    if (depth > maximumValueDepth) failStackOverflow();
    budget_.spend();
    if (const auto* string = value.text()) {
      append(*string);
    } else if (const auto* integer = value.as<std::int32_t>()) {
      append(textOf(*integer));
    } else if (const auto* real = value.as<double>()) {
      append(textOf(*real));
    } else if (const auto* flag = value.as<bool>()) {
      append(*flag ? "true" : "false");
    } else if (const auto* constant = value.as<Constant>()) {
      append(displayConstant(*constant));
    } else if (const auto* date = value.as<Date>()) {
      append(dateText(*date) + " " + timeText(*date));
    } else if (const auto* list = value.list()) {
      addList((*list)->items(), depth);
    } else if (const auto* reference = value.reference()) {
      add(fetch(*reference), depth + 1);
    } else if (value.as<LanguageSelf>()) {
      append("AppleScript");
    } else {
      failCannotCoerce(value, typeText);
    }
  }

 private:
  void addList(const std::vector<Value>& items, int depth) {
    bool first = true;
    for (const Value& item : items) {
      if (!first && !rules_.delimiters.empty()) append(rules_.delimiters.front());
      first = false;
      add(item, depth + 1);
    }
  }
  void append(std::string_view part) {
    if (text.size() + part.size() > rules_.maximumText) failOutOfMemory();
    text += part;
  }

  const TextRules& rules_;
  WorkBudget budget_;
};

// The value itself, or what a reference means, or the only item of a list, where that is wanted.
Value single(const Value& value) {
  Value current = dereference(value);
  for (int depth = 0; current.list() && (*current.list())->size() == 1; ++depth) {
    if (depth > maximumValueDepth) failStackOverflow();
    current = dereference(Value((*current.list())->items().front()));
  }
  return current;
}

Value numberOf(const Value& value, FourCharCode type) {
  const Value plain = single(value);
  if (plain.isNumber()) return plain;
  if (const auto* text = plain.text()) {
    const auto parsed = parseNumber(*text);
    if (!parsed) failCannotCoerce(plain, type);
    return parsed->isInteger ? Value(static_cast<std::int32_t>(parsed->value))
                             : Value(parsed->value);
  }
  if (const auto* constant = plain.as<Constant>()) {
    if (const auto month = monthNumber(constant->code)) return *month;
  }
  if (const auto* flag = plain.as<bool>(); flag && type == typeInteger) return *flag ? 1 : 0;
  failCannotCoerce(plain, type);
}

}  // namespace

std::string toText(const Value& value, const TextRules& rules) {
  TextBuilder builder(rules);
  builder.add(value, 0);
  return std::move(builder.text);
}

Value toNumber(const Value& value) {
  return numberOf(value, typeNumber);
}

double toReal(const Value& value) {
  return numberOf(value, typeReal).number();
}

std::int32_t toInteger(const Value& value) {
  const Value number = numberOf(value, typeInteger);
  if (const auto* integer = number.as<std::int32_t>()) return *integer;
  const double rounded = roundToEven(number.number());
  if (!(std::abs(rounded) <= maximumInteger)) failCannotCoerce(value, typeInteger);
  return static_cast<std::int32_t>(rounded);
}

bool toBoolean(const Value& value) {
  const Value plain = dereference(value);
  if (const auto* flag = plain.as<bool>()) return *flag;
  failCannotCoerce(plain, typeBoolean);
}

Value coerce(const Value& value, FourCharCode type, const TextRules& rules) {
  // The same class leaves a value as it is, so that lists stay shared.
  if (!value.reference() && isOfClass(value, type)) return value;
  switch (type) {
    case typeText:
      return toText(single(value), rules);
    case typeInteger:
      return toInteger(value);
    case typeReal:
      return toReal(value);
    case typeNumber:
      return toNumber(value);
    case typeList: {
      const Value plain = dereference(value);
      return plain.list() ? plain : Value::makeList(toListItems(plain));
    }
    case fourCharCode("obj "):
      if (value.reference() || value.specifier()) return value;
      break;
    case typeBoolean: {
      const Value plain = single(value);
      if (plain.as<bool>()) return plain;
      if (const auto* number = plain.as<std::int32_t>()) {
        if (*number == 0 || *number == 1) return *number == 1;
      }
      if (const auto* text = plain.text()) {
        if (*text == "true") return true;
        if (*text == "false") return false;
      }
      break;
    }
    default: {
      const Value plain = single(value);
      if (isOfClass(plain, type)) return plain;
      if (type == fourCharCode("enum") && plain.as<Constant>()) return plain;
      break;
    }
  }
  failCannotCoerce(dereference(value), type);
}

}  // namespace quorin::script

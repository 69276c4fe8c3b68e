#include "script/values/Operations.h"

#include <algorithm>
#include <cmath>

#include "kit/value/EventErrors.h"
#include "script/lex/Numbers.h"
#include "script/values/Coercion.h"
#include "script/values/Display.h"
#include "script/values/Failure.h"
#include "script/values/LocalObjects.h"
#include "script/values/TextComparison.h"

namespace quorin::script {
namespace {

Value arithmeticResult(double value, bool integer) {
  if (!std::isfinite(value)) {
    throw Failure{eventErrors::tooLarge, "The result of a numeric operation was too large."};
  }
  return integer ? Value::number(value) : Value(value);
}

[[noreturn]] void failDivision(const Value& left) {
  throw Failure{eventErrors::divideByZero, "Can't divide " + displayText(left) + " by zero.", left};
}

Value dateArithmetic(Operator operation, const Date& date, const Value& right) {
  if (const auto* other = right.as<Date>(); other && operation == Operator::subtract) {
    return Value::number(static_cast<double>(date.seconds - other->seconds));
  }
  const double seconds = toReal(right);
  if (!(std::abs(seconds) < 1e15)) failCannotCoerce(right, fourCharCode("long"));
  const auto change = static_cast<std::int64_t>(seconds);
  // Far beyond any calendar, but still far from overflow.
  constexpr std::int64_t bound = std::int64_t{1} << 60;
  const std::int64_t sum = date.seconds + (operation == Operator::add ? change : -change);
  return Date{std::min(std::max(sum, -bound), bound)};
}

Value arithmetic(Operator operation, const Value& leftOperand, const Value& rightOperand) {
  const Value left = dereference(leftOperand), right = dereference(rightOperand);
  if (const auto* date = left.as<Date>();
      date && (operation == Operator::add || operation == Operator::subtract)) {
    return dateArithmetic(operation, *date, right);
  }
  const Value a = toNumber(left), b = toNumber(right);
  const bool integers = a.as<std::int32_t>() && b.as<std::int32_t>();
  const double x = a.number(), y = b.number();
  switch (operation) {
    case Operator::add:
      return arithmeticResult(x + y, integers);
    case Operator::subtract:
      return arithmeticResult(x - y, integers);
    case Operator::multiply:
      return arithmeticResult(x * y, integers);
    case Operator::divide:
      if (y == 0) failDivision(a);
      return arithmeticResult(x / y, false);
    case Operator::wholeDivide:
      if (y == 0) failDivision(a);
      return arithmeticResult(std::trunc(x / y), true);
    case Operator::modulo:
      if (y == 0) failDivision(a);
      return arithmeticResult(std::fmod(x, y), integers);
    default:
      return arithmeticResult(std::pow(x, y), false);
  }
}

Value concatenate(const Value& leftOperand, const Value& rightOperand, const TextRules& rules) {
  const Value left = dereference(leftOperand), right = dereference(rightOperand);
  if (const auto* text = left.text()) {
    const std::string added = toText(right, rules);
    if (text->size() + added.size() > rules.maximumText) failOutOfMemory();
    return *text + added;
  }
  if (left.record() && right.record()) {
    std::vector<RecordData::Field> fields = (*left.record())->fields();
    RecordData merged(fields);
    for (const auto& field : (*right.record())->fields()) {
      if (!merged.find(field.first)) fields.push_back(field);
    }
    return std::make_shared<RecordData>(std::move(fields));
  }
  if (left.record()) failCannotCoerce(right, fourCharCode("reco"));
  std::vector<Value> items = toListItems(left);
  const std::vector<Value> added = toListItems(right);
  if (items.size() + added.size() > rules.maximumItems) failOutOfMemory();
  items.insert(items.end(), added.begin(), added.end());
  return Value::makeList(std::move(items));
}

class Equality {
 public:
  explicit Equality(const TextRules& rules) : rules_(rules) {}

  bool operator()(const Value& left, const Value& right, int depth = 0) {
    if (depth > maximumValueDepth) failStackOverflow();
    budget_.spend();
    if (left.isNumber() && right.isNumber()) return left.number() == right.number();
    if (left.data().index() != right.data().index()) return false;
    if (const auto* text = left.text()) return textEquals(*text, *right.text(), rules_);
    if (const auto* list = left.list()) return lists(**list, **right.list(), depth);
    if (const auto* record = left.record()) return records(**record, **right.record(), depth);
    if (const auto* specifier = left.specifier()) {
      return specifier->application == right.specifier()->application &&
             specifier->descriptor == right.specifier()->descriptor;
    }
    if (const auto* reference = left.reference()) {
      return references(*reference, *right.reference(), depth);
    }
    if (const auto* opaque = left.as<Value::OpaquePointer>()) {
      return **opaque == **right.as<Value::OpaquePointer>();
    }
    return left.data() == right.data();
  }

 private:
  bool lists(ListData& left, ListData& right, int depth) {
    if (&left == &right) return true;
    if (left.size() != right.size()) return false;
    const auto &ours = left.items(), &theirs = right.items();
    for (std::size_t i = 0; i < ours.size(); ++i) {
      if (!(*this)(ours[i], theirs[i], depth + 1)) return false;
    }
    return true;
  }
  bool records(RecordData& left, RecordData& right, int depth) {
    if (&left == &right) return true;
    if (left.fields().size() != right.fields().size()) return false;
    for (const auto& [key, value] : left.fields()) {
      const Value* other = right.find(key);
      if (!other || !(*this)(value, *other, depth + 1)) return false;
    }
    return true;
  }
  bool references(const Reference& left, const Reference& right, int depth) {
    const Selector &a = left.selector, &b = right.selector;
    return left.variable == right.variable && a.form == b.form && a.code == b.code &&
           a.label == b.label && (*this)(a.key, b.key, depth + 1) &&
           (*this)(left.container, right.container, depth + 1);
  }

  const TextRules& rules_;
  WorkBudget budget_;
};

int order(const Value& leftOperand, const Value& rightOperand, const TextRules& rules) {
  const Value left = dereference(leftOperand), right = dereference(rightOperand);
  if (left.isNumber()) {
    const double x = left.number(), y = toReal(right);
    return x < y ? -1 : x > y ? 1 : 0;
  }
  if (const auto* text = left.text()) return textOrder(*text, toText(right, rules), rules);
  if (const auto* date = left.as<Date>()) {
    const auto* other = right.as<Date>();
    if (!other) failCannotCoerce(right, fourCharCode("ldt "));
    return date->seconds < other->seconds ? -1 : date->seconds > other->seconds ? 1 : 0;
  }
  const Value number = toNumber(left);
  const double x = number.number(), y = toReal(right);
  return x < y ? -1 : x > y ? 1 : 0;
}

using Items = std::vector<Value>;

// The items of a list where they are, those of any other value as a list of its own.
class ItemsOf {
 public:
  explicit ItemsOf(const Value& value)
      : list_(value.list() ? *value.list() : nullptr),
        made_(list_ ? Items() : toListItems(value)) {}
  const Items& operator*() const { return list_ ? list_->items() : made_; }

 private:
  const Value::List list_;
  const Items made_;
};

// False where it shows at first sight: most items of a long list are of another kind or size.
bool mayBeEqual(const Value& left, const Value& right, const TextRules& rules) {
  if (left.isNumber()) return right.isNumber();
  if (left.data().index() != right.data().index()) return false;
  if (const auto* text = left.text()) return !textsDifferInLength(*text, *right.text(), rules);
  if (!left.list()) return true;
  const Items &ours = (*left.list())->items(), &theirs = (*right.list())->items();
  if (ours.size() != theirs.size()) return false;
  if (ours.empty()) return true;
  const auto *text = ours.front().text(), *other = theirs.front().text();
  return !text || !other || !textsDifferInLength(*text, *other, rules);
}

bool itemsMatchAt(const Items& whole, std::size_t at, const Items& part, const TextRules& rules) {
  if (at + part.size() > whole.size()) return false;
  for (std::size_t i = 0; i < part.size(); ++i) {
    if (!mayBeEqual(whole[at + i], part[i], rules)) return false;
    if (!areEqual(whole[at + i], part[i], rules)) return false;
  }
  return true;
}

bool recordContains(const Value::Record& whole, const Value& part, const TextRules& rules) {
  if (!part.record()) failCannotCoerce(part, fourCharCode("reco"));
  const auto& fields = (*part.record())->fields();
  return std::all_of(fields.begin(), fields.end(), [&](const RecordData::Field& field) {
    const Value* value = whole->find(field.first);
    return value && areEqual(*value, field.second, rules);
  });
}

bool contains(const Value& wholeOperand, const Value& partOperand, const TextRules& rules) {
  const Value whole = dereference(wholeOperand), part = dereference(partOperand);
  if (const auto* text = whole.text()) return textContains(*text, toText(part, rules), rules);
  if (whole.record()) return recordContains(*whole.record(), part, rules);
  const ItemsOf wholeItems(whole), partItems(part);
  const Items &all = *wholeItems, &sought = *partItems;
  if (sought.empty()) return true;
  for (std::size_t at = 0; at + sought.size() <= all.size(); ++at) {
    if (itemsMatchAt(all, at, sought, rules)) return true;
  }
  return false;
}

bool beginsOrEnds(const Value& wholeOperand, const Value& partOperand, bool atEnd,
                  const TextRules& rules) {
  const Value whole = dereference(wholeOperand), part = dereference(partOperand);
  if (const auto* text = whole.text()) {
    const std::string sought = toText(part, rules);
    return atEnd ? textEndsWith(*text, sought, rules) : textBeginsWith(*text, sought, rules);
  }
  const ItemsOf wholeItems(whole), partItems(part);
  const Items &all = *wholeItems, &sought = *partItems;
  if (sought.size() > all.size()) return false;
  return itemsMatchAt(all, atEnd ? all.size() - sought.size() : 0, sought, rules);
}

}  // namespace

bool areEqual(const Value& left, const Value& right, const TextRules& rules) {
  return Equality(rules)(left, right);
}

Value negate(const Value& value) {
  const Value number = toNumber(value);
  if (const auto* integer = number.as<std::int32_t>()) return -*integer;
  return -number.number();
}

Value apply(Operator operation, const Value& left, const Value& right, const TextRules& rules) {
  switch (operation) {
    case Operator::concatenate:
      return concatenate(left, right, rules);
    case Operator::equal:
      return areEqual(left, right, rules);
    case Operator::notEqual:
      return !areEqual(left, right, rules);
    case Operator::less:
      return order(left, right, rules) < 0;
    case Operator::lessOrEqual:
      return order(left, right, rules) <= 0;
    case Operator::greater:
      return order(left, right, rules) > 0;
    case Operator::greaterOrEqual:
      return order(left, right, rules) >= 0;
    case Operator::contains:
      return contains(left, right, rules);
    case Operator::notContains:
      return !contains(left, right, rules);
    case Operator::isIn:
      return contains(right, left, rules);
    case Operator::isNotIn:
      return !contains(right, left, rules);
    case Operator::beginsWith:
      return beginsOrEnds(left, right, false, rules);
    case Operator::endsWith:
      return beginsOrEnds(left, right, true, rules);
    default:
      return arithmetic(operation, left, right);
  }
}

}  // namespace quorin::script

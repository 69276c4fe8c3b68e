#include "host/model/WhoseTest.h"

#include <algorithm>
#include <compare>
#include <string>

#include "host/model/Codes.h"
#include "host/model/Resolver.h"
#include "kit/value/EventErrors.h"

namespace quorin::host {
namespace {

using Descriptor = AppleEventDescriptor;

constexpr int deepestTest = 50;

const Descriptor& part(const Descriptor& test, FourCharCode keyword) {
  const Descriptor* const field = test.field(keyword);
  if (field == nullptr) throw EventError(eventErrors::invalidComparison);
  return *field;
}

std::optional<std::string> folded(const Descriptor& value) {
  const auto text = value.stringValue();
  if (!text) return std::nullopt;
  std::string letters(*text);
  for (char& c : letters)
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c | 0x20);
  return letters;
}

std::partial_ordering compare(const Descriptor& left, const Descriptor& right) {
  if (left.doubleValue() && right.doubleValue())
    return *left.doubleValue() <=> *right.doubleValue();
  const auto leftText = folded(left), rightText = folded(right);
  if (leftText && rightText) return *leftText <=> *rightText;
  return left == right ? std::partial_ordering::equivalent : std::partial_ordering::unordered;
}

bool contains(const Descriptor& whole, const Descriptor& wanted) {
  if (whole.type() == codes::list)
    return std::any_of(whole.items().begin(), whole.items().end(),
                       [&](const Descriptor& item) { return compare(item, wanted) == 0; });
  const auto text = folded(whole), sought = folded(wanted);
  return text && sought && text->find(*sought) != std::string::npos;
}

bool holds(FourCharCode relation, const Descriptor& left, const Descriptor& right) {
  switch (relation) {
    case codes::equal:
      return compare(left, right) == 0;
    case codes::less:
      return compare(left, right) < 0;
    case codes::lessOrEqual:
      return compare(left, right) <= 0;
    case codes::greater:
      return compare(left, right) > 0;
    case codes::greaterOrEqual:
      return compare(left, right) >= 0;
    case codes::containing:
      return contains(left, right);
    case codes::beginsWith:
    case codes::endsWith: {
      const auto text = folded(left), sought = folded(right);
      if (!text || !sought) return false;
      return relation == codes::beginsWith ? text->starts_with(*sought) : text->ends_with(*sought);
    }
    default:
      throw EventError(eventErrors::invalidComparison);
  }
}

bool passes(Session& session, const Object& object, const Descriptor& test, int depth = 0) {
  if (depth > deepestTest) throw EventError(eventErrors::invalidComparison);
  if (test.type() == codes::comparison)
    return holds(part(test, codes::relation).codeValue().value_or(0),
                 valueFor(session, part(test, codes::leftOperand), object),
                 valueFor(session, part(test, codes::rightOperand), object));
  if (test.type() != codes::logical) {
    // A boolean property alone.
    const auto flag = valueFor(session, test, object).booleanValue();
    if (!flag) throw EventError(eventErrors::invalidComparison);
    return *flag;
  }
  const auto& terms = part(test, codes::terms).items();
  const auto term = [&](const Descriptor& each) {
    return passes(session, object, each, depth + 1);
  };
  switch (part(test, codes::connective).codeValue().value_or(0)) {
    case codes::logicalAnd:
      return std::all_of(terms.begin(), terms.end(), term);
    case codes::logicalOr:
      return std::any_of(terms.begin(), terms.end(), term);
    case codes::logicalNot:
      return std::none_of(terms.begin(), terms.end(), term);
    default:
      throw EventError(eventErrors::invalidComparison);
  }
}

}  // namespace

Objects thoseThatPass(Session& session, Objects objects, const Descriptor& test) {
  std::erase_if(objects, [&](const Object& object) { return !passes(session, object, test); });
  return objects;
}

}  // namespace quorin::host

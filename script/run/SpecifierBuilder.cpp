#include "script/run/SpecifierBuilder.h"

#include <cmath>

#include "kit/value/EventErrors.h"
#include "script/values/Failure.h"
#include "script/values/ValueDescriptors.h"

namespace quorin::script {
namespace {

constexpr FourCharCode keyWant = fourCharCode("want");
constexpr FourCharCode keyForm = fourCharCode("form");
constexpr FourCharCode keyData = fourCharCode("seld");
constexpr FourCharCode keyContainer = fourCharCode("from");

constexpr int maximumContainers = 100;

void checkDepth(const AppleEventDescriptor& container) {
  int depth = 0;
  for (const AppleEventDescriptor* at = &container; at; at = at->field(keyContainer)) {
    if (++depth > maximumContainers) failStackOverflow();
  }
}

AppleEventDescriptor ordinal(FourCharCode code) {
  return AppleEventDescriptor::withInteger(fourCharCode("abso"), code);
}

AppleEventDescriptor object(FourCharCode want, FourCharCode form, AppleEventDescriptor data,
                            AppleEventDescriptor container) {
  AppleEventDescriptor::Fields fields;
  fields.reserve(4);
  fields.push_back({keyWant, AppleEventDescriptor::typeCode(want)});
  fields.push_back({keyForm, AppleEventDescriptor::enumerator(form)});
  fields.push_back({keyData, std::move(data)});
  fields.push_back({keyContainer, std::move(container)});
  return AppleEventDescriptor::specifier(std::move(fields));
}

// An index is an integer even where the script counted in reals.
AppleEventDescriptor keyDescriptor(const Value& key) {
  return toDescriptor(key.isNumber() ? Value::number(key.number()) : key);
}

FourCharCode formOfKey(const Value& key) {
  return key.text() ? fourCharCode("name") : fourCharCode("indx");
}

AppleEventDescriptor range(const Selector& selector) {
  const auto bound = [&](const Value& key) {
    return object(selector.code, formOfKey(key), keyDescriptor(key),
                  AppleEventDescriptor::withData(fourCharCode("ccnt"), {}));
  };
  AppleEventDescriptor::Fields fields;
  fields.push_back({fourCharCode("star"), bound(selector.key)});
  fields.push_back({fourCharCode("stop"), bound(selector.upper)});
  return AppleEventDescriptor::withFields(fourCharCode("rang"), std::move(fields));
}

}  // namespace

AppleEventDescriptor buildSpecifier(const Selector& selector, AppleEventDescriptor container) {
  checkDepth(container);
  const auto element = [&](FourCharCode form, AppleEventDescriptor data) {
    return object(selector.code, form, std::move(data), std::move(container));
  };
  const auto absolute = [&](FourCharCode code) {
    return element(fourCharCode("indx"), ordinal(code));
  };
  switch (selector.form) {
    case Form::property:
      return object(fourCharCode("prop"), fourCharCode("prop"),
                    AppleEventDescriptor::typeCode(selector.code), std::move(container));
    case Form::label:
      throw Failure{eventErrors::noSuchObject, "Can't get " + selector.label + "."};
    case Form::index:
      return element(formOfKey(selector.key), keyDescriptor(selector.key));
    case Form::name:
      return element(fourCharCode("name"), keyDescriptor(selector.key));
    case Form::id:
      return element(fourCharCode("ID  "), keyDescriptor(selector.key));
    case Form::first:
      return absolute(fourCharCode("firs"));
    case Form::middle:
      return absolute(fourCharCode("midd"));
    case Form::last:
      return absolute(fourCharCode("last"));
    case Form::any:
      return absolute(fourCharCode("any "));
    case Form::all:
      return absolute(fourCharCode("all "));
    case Form::range:
      return element(fourCharCode("rang"), range(selector));
    case Form::next:
      return element(fourCharCode("rele"), AppleEventDescriptor::enumerator(fourCharCode("next")));
    case Form::previous:
      return element(fourCharCode("rele"), AppleEventDescriptor::enumerator(fourCharCode("prev")));
    case Form::test:
      return element(fourCharCode("test"), selector.test);
  }
  return {};
}

AppleEventDescriptor buildInsertion(FourCharCode position, AppleEventDescriptor target) {
  AppleEventDescriptor::Fields fields;
  fields.push_back({fourCharCode("kobj"), std::move(target)});
  fields.push_back({fourCharCode("kpos"), AppleEventDescriptor::enumerator(position)});
  return AppleEventDescriptor::withFields(fourCharCode("insl"), std::move(fields));
}

AppleEventDescriptor examinedObject() {
  return AppleEventDescriptor::withData(fourCharCode("exmn"), {});
}

bool isRootedInExamined(const AppleEventDescriptor& descriptor) {
  const AppleEventDescriptor* at = &descriptor;
  while (const AppleEventDescriptor* container = at->field(keyContainer)) at = container;
  return at->type() == fourCharCode("exmn");
}

AppleEventDescriptor buildComparison(Operator operation, AppleEventDescriptor left,
                                     AppleEventDescriptor right) {
  FourCharCode code = 0;
  bool negated = false;
  switch (operation) {
    case Operator::notEqual:
      negated = true;
      [[fallthrough]];
    case Operator::equal:
      code = fourCharCode("=   ");
      break;
    case Operator::less:
      code = fourCharCode("<   ");
      break;
    case Operator::lessOrEqual:
      code = fourCharCode("<=  ");
      break;
    case Operator::greater:
      code = fourCharCode(">   ");
      break;
    case Operator::greaterOrEqual:
      code = fourCharCode(">=  ");
      break;
    case Operator::beginsWith:
      code = fourCharCode("bgwt");
      break;
    case Operator::endsWith:
      code = fourCharCode("ends");
      break;
    case Operator::notContains:
      negated = true;
      [[fallthrough]];
    case Operator::contains:
      code = fourCharCode("cont");
      break;
    case Operator::isNotIn:
      negated = true;
      [[fallthrough]];
    case Operator::isIn:
      code = fourCharCode("cont");
      std::swap(left, right);
      break;
    default:
      throw Failure{-1726, "Invalid comparison."};
  }
  AppleEventDescriptor::Fields fields;
  fields.push_back({fourCharCode("relo"), AppleEventDescriptor::enumerator(code)});
  fields.push_back({fourCharCode("obj1"), std::move(left)});
  fields.push_back({fourCharCode("obj2"), std::move(right)});
  AppleEventDescriptor comparison =
      AppleEventDescriptor::withFields(fourCharCode("cmpd"), std::move(fields));
  if (!negated) return comparison;
  AppleEventDescriptor::Items terms;
  terms.push_back(std::move(comparison));
  return buildLogical(fourCharCode("NOT "), std::move(terms));
}

AppleEventDescriptor buildLogical(FourCharCode connective, AppleEventDescriptor::Items terms) {
  AppleEventDescriptor::Fields fields;
  fields.push_back({fourCharCode("logc"), AppleEventDescriptor::enumerator(connective)});
  fields.push_back({fourCharCode("term"), AppleEventDescriptor::list(std::move(terms))});
  return AppleEventDescriptor::withFields(fourCharCode("logi"), std::move(fields));
}

}  // namespace quorin::script

#include "host/model/Resolver.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "host/Address.h"
#include "host/model/Codes.h"
#include "host/model/Neighbours.h"
#include "host/model/ObjectClass.h"
#include "host/model/RangeText.h"
#include "host/model/WhoseTest.h"
#include "kit/value/EventErrors.h"

namespace quorin::host {
namespace {

using Descriptor = AppleEventDescriptor;

constexpr int deepestChain = 100;
constexpr long long mostElementsListed = 100'000;
constexpr std::size_t mostValuesListed = 1'000'000;

struct NotThere {};  // becomes -1728 with the specifier that was being resolved

const Descriptor& part(const Descriptor& specifier, FourCharCode keyword) {
  static const Descriptor absent;
  const Descriptor* const field = specifier.field(keyword);
  return field == nullptr ? absent : *field;
}

template <typename T>
Resolution propertyOf(Session& session, const T& object, FourCharCode code) {
  const ClassTable<T>& table = classTable(object);
  if (code == codes::classOf) return {Descriptor::typeCode(table.code)};
  const auto* const entry = table.property(code);
  if (entry == nullptr) throw NotThere();
  return {entry->get(session, object), entry->kind == PropertyEntry<T>::Kind::dynamic};
}

Descriptor asValue(Session& session, Resolved resolved) {
  if (auto* const value = std::get_if<Descriptor>(&resolved)) return std::move(*value);
  if (const auto* const object = std::get_if<Object>(&resolved)) return specifierOf(*object);
  Descriptor::Items items;
  for (const Object& object : objectsOf(session, resolved)) items.push_back(specifierOf(object));
  return Descriptor::list(std::move(items));
}

std::size_t valuesIn(const Descriptor& value) {
  std::size_t count = 1;
  for (const Descriptor& item : value.items()) count += valuesIn(item);
  return count;
}

// One value for each object; Excel gives missing value where there are none. Each may be a whole
// column: -50 before they fill the memory.
Resolution propertyOfEach(Session& session, const Objects& objects, FourCharCode code) {
  Descriptor::Items values;
  std::size_t listed = 0;
  for (const Object& object : objects) {
    Resolution value =
        std::visit([&](const auto& typed) { return propertyOf(session, typed, code); }, object);
    values.push_back(asValue(session, std::move(value.what)));
    listed += valuesIn(values.back());
    if (listed > mostValuesListed) throw EventError(eventErrors::badParameter);
  }
  if (values.empty()) return {Descriptor::missingValue()};
  return {Descriptor::list(std::move(values))};
}

Resolution property(Session& session, const Resolved& container, FourCharCode code) {
  if (const auto* const object = std::get_if<Object>(&container))
    return std::visit([&](const auto& typed) { return propertyOf(session, typed, code); }, *object);
  if (!std::holds_alternative<Descriptor>(container))
    return propertyOfEach(session, objectsOf(session, container), code);
  // `name of active workbook` is missing value when nothing is open.
  if (std::get<Descriptor>(container).isMissingValue()) return {Descriptor::missingValue()};
  throw NotThere();
}

// `first`, `all` and the like, which travel as a type of their own or as an enumerator.
std::optional<FourCharCode> ordinalOf(const Descriptor& data) {
  if (data.type() == codes::absoluteOrdinal && data.integerValue())
    return static_cast<FourCharCode>(*data.integerValue());
  return data.codeValue();
}

// Which of `count` elements an index means, negative ones from the end.
long long elementIndex(const Descriptor& data, long long count) {
  long long index = 0;
  if (const auto ordinal = ordinalOf(data)) {
    if (*ordinal == codes::first || *ordinal == codes::any) index = 1;
    if (*ordinal == codes::last) index = count;
    if (*ordinal == codes::middle) index = (count + 1) / 2;
  } else if (const auto integer = data.integerValue()) {
    index = *integer < 0 ? count + 1 + *integer : *integer;
  }
  if (index < 1 || index > count) throw NotThere();
  return index;
}

// An end of `cells 2 thru 4`: an index, or the specifier of one by index.
const Descriptor& rangeEnd(const Descriptor& data, FourCharCode keyword) {
  const Descriptor& end = part(data, keyword);
  return end.type() == codes::objectSpecifier ? part(end, codes::keyData) : end;
}

template <typename T>
Object elementByName(Session& session, const T& owner, const ElementEntry<T>& entry,
                     const Descriptor& data) {
  const auto name = data.stringValue();
  auto found = name && entry.named != nullptr ? entry.named(session, owner, std::string(*name))
                                              : std::optional<Object>();
  if (!found) throw NotThere();
  return std::move(*found);
}

template <typename T>
Object elementByID(Session& session, const T& owner, const ElementEntry<T>& entry,
                   const Descriptor& data) {
  const auto id = data.integerValue();
  auto found = id && entry.identified != nullptr ? entry.identified(session, owner, *id)
                                                 : std::optional<Object>();
  if (!found) throw NotThere();
  return std::move(*found);
}

template <typename T>
Resolved elementOf(Session& session, const T& owner, const Descriptor& specifier) {
  const auto elementClass = part(specifier, codes::desiredClass).codeValue();
  const auto form = part(specifier, codes::keyForm).codeValue();
  const Descriptor& data = part(specifier, codes::keyData);
  if (!elementClass || !form) throw NotThere();
  if (*form == codes::formRelative) {
    auto found =
        neighbour(session, owner, *elementClass, data.codeValue() == codes::previous ? -1 : 1);
    if (!found) throw NotThere();
    return std::move(*found);
  }
  const auto* const entry = classTable(owner).element(*elementClass);
  if (entry == nullptr) throw NotThere();
  switch (*form) {
    case codes::formName:
      return elementByName(session, owner, *entry, data);
    case codes::formID:
      return elementByID(session, owner, *entry, data);
    case codes::formTest: {
      const long long last = entry->count(session, owner);
      return thoseThatPass(session, objectsOf(session, Elements{owner, *elementClass, 1, last}),
                           data);
    }
    case codes::formRange: {
      const long long count = entry->count(session, owner);
      const long long first = elementIndex(rangeEnd(data, codes::rangeStart), count);
      const long long last = elementIndex(rangeEnd(data, codes::rangeStop), count);
      return Elements{owner, *elementClass, std::min(first, last), std::max(first, last)};
    }
    case codes::formIndex: {
      const long long count = entry->count(session, owner);
      if (ordinalOf(data) == codes::all) return Elements{owner, *elementClass, 1, count};
      return entry->at(session, owner, elementIndex(data, count));
    }
    default:
      throw NotThere();
  }
}

Resolution resolveAt(Session& session, const Descriptor& specifier, const Object* examined,
                     int depth) {
  if (specifier.type() == codes::null) return {Object(ApplicationObject())};
  if (specifier.type() == codes::examined && examined != nullptr) return {*examined};
  if (specifier.type() != codes::objectSpecifier) return {specifier};
  if (depth > deepestChain) throw EventError(eventErrors::noSuchObject);
  const Resolved container =
      resolveAt(session, part(specifier, codes::container), examined, depth + 1).what;
  try {
    if (part(specifier, codes::keyForm).codeValue() == codes::formProperty) {
      const auto code = part(specifier, codes::keyData).codeValue();
      if (!code) throw NotThere();
      return property(session, container, *code);
    }
    const auto* const owner = std::get_if<Object>(&container);
    if (owner == nullptr) throw NotThere();
    return {std::visit([&](const auto& typed) { return elementOf(session, typed, specifier); },
                       *owner)};
  } catch (const NotThere&) {
    throw EventError(eventErrors::noSuchObject, specifier);
  } catch (const SpreadsheetError& error) {
    if (error.number() != eventErrors::noSuchObject) throw;
    throw EventError(eventErrors::noSuchObject, specifier, error.what());
  }
}

bool areAll(Session& session, const Elements& elements) {
  return elements.first == 1 &&
         elements.last == countOf(session, elements.owner, elements.elementClass);
}

}  // namespace

Resolution resolve(Session& session, const Descriptor& specifier) {
  return resolveAt(session, specifier, nullptr, 0);
}

Descriptor valueFor(Session& session, const Descriptor& operand, const Object& examined) {
  return asValue(session, resolveAt(session, operand, &examined, 0).what);
}

Object resolveObject(Session& session, const Descriptor& given) {
  Resolved what = resolve(session, given).what;
  auto* const object = std::get_if<Object>(&what);
  if (object == nullptr) throw EventError(eventErrors::notUnderstood, given);
  return std::move(*object);
}

RangeRef resolveRange(Session& session, const Descriptor& given) {
  if (const auto text = given.stringValue()) {
    auto bound = bindRangeText(session, std::nullopt, *text);
    if (!bound) throw EventError(eventErrors::noSuchObject, given);
    return std::move(*bound);
  }
  const Resolved what = resolve(session, given).what;
  if (const auto* const object = std::get_if<Object>(&what)) {
    if (const auto* const range = std::get_if<RangeObject>(object)) return range->range;
  } else if (const auto* const elements = std::get_if<Elements>(&what)) {
    const auto* const range = std::get_if<RangeObject>(&elements->owner);
    if (range != nullptr && areAll(session, *elements)) return range->range;
  } else if (const auto* const value = std::get_if<Descriptor>(&what)) {
    // The selection of no workbook.
    if (value->isMissingValue()) throw EventError(eventErrors::noSuchObject, given);
  }
  throw EventError(eventErrors::notUnderstood, given);
}

void setProperty(Session& session, const Descriptor& specifier, const Descriptor& value) {
  if (part(specifier, codes::keyForm).codeValue() != codes::formProperty)
    throw EventError(eventErrors::notModifiable, specifier);
  const auto code = part(specifier, codes::keyData).codeValue();
  const Resolved container = resolve(session, part(specifier, codes::container)).what;
  if (std::holds_alternative<Descriptor>(container) || !code)
    throw EventError(eventErrors::notModifiable, specifier);
  const auto* const single = std::get_if<Object>(&container);
  const Objects objects = single != nullptr ? Objects{*single} : objectsOf(session, container);
  for (const Object& object : objects)
    std::visit(
        [&](const auto& typed) {
          const auto* const entry = classTable(typed).property(*code);
          if (entry == nullptr || entry->set == nullptr)
            throw EventError(eventErrors::notModifiable, specifier);
          entry->set(session, typed, value);
        },
        object);
}

Objects objectsOf(Session& session, const Resolved& resolved) {
  if (const auto* const elements = std::get_if<Elements>(&resolved))
    return objectsOf(session, *elements);
  if (const auto* const objects = std::get_if<Objects>(&resolved)) return *objects;
  if (const auto* const object = std::get_if<Object>(&resolved)) return {*object};
  return {};
}

Objects objectsOf(Session& session, const Elements& elements) {
  return std::visit(
      [&](const auto& owner) {
        const auto& entry = *classTable(owner).element(elements.elementClass);
        if (entry.all != nullptr && areAll(session, elements)) return entry.all(session, owner);
        if (elements.last - elements.first >= mostElementsListed)
          throw EventError(eventErrors::badParameter, specifierOf(elements.owner));
        std::vector<Object> objects;
        for (long long i = elements.first; i <= elements.last; ++i)
          objects.push_back(entry.at(session, owner, i));
        return objects;
      },
      elements.owner);
}

long long countOf(Session& session, const Object& owner, FourCharCode elementClass) {
  return std::visit(
      [&](const auto& typed) {
        const auto* const entry = classTable(typed).element(elementClass);
        if (entry == nullptr) throw EventError(eventErrors::noSuchObject, specifierOf(owner));
        return entry->count(session, typed);
      },
      owner);
}

}  // namespace quorin::host

// Builds object specifiers and Apple events the way a compiled script sends them to Excel.
#pragma once

#include <string>

#include "host/model/Codes.h"
#include "kit/value/AppleEvent.h"

namespace quorin::host::events {

using Descriptor = AppleEventDescriptor;

inline Descriptor application() {
  return Descriptor::null();
}

inline Descriptor element(FourCharCode elementClass, FourCharCode form, Descriptor data,
                          Descriptor container = application()) {
  return Descriptor::specifier({{codes::desiredClass, Descriptor::typeCode(elementClass)},
                                {codes::keyForm, Descriptor::enumerator(form)},
                                {codes::keyData, std::move(data)},
                                {codes::container, std::move(container)}});
}

inline Descriptor named(FourCharCode elementClass, std::string name,
                        Descriptor container = application()) {
  return element(elementClass, codes::formName, Descriptor::text(std::move(name)),
                 std::move(container));
}

inline Descriptor indexed(FourCharCode elementClass, int index,
                          Descriptor container = application()) {
  return element(elementClass, codes::formIndex, Descriptor::integer(index), std::move(container));
}

inline Descriptor ordinal(FourCharCode elementClass, FourCharCode which,
                          Descriptor container = application()) {
  return element(elementClass, codes::formIndex,
                 Descriptor::withInteger(codes::absoluteOrdinal, which), std::move(container));
}

inline Descriptor every(FourCharCode elementClass, Descriptor container = application()) {
  return ordinal(elementClass, codes::all, std::move(container));
}

inline Descriptor property(FourCharCode code, Descriptor container = application()) {
  return element(codes::propertyType, codes::formProperty, Descriptor::typeCode(code),
                 std::move(container));
}

inline Descriptor range(std::string text, Descriptor container = application()) {
  return named(codes::range, std::move(text), std::move(container));
}

inline Descriptor worksheet(std::string name, Descriptor container = application()) {
  return named(codes::worksheet, std::move(name), std::move(container));
}

inline Descriptor workbook(std::string name) {
  return named(codes::workbook, std::move(name));
}

inline AppleEvent event(FourCharCode suite, FourCharCode command,
                        AppleEventDescriptor::Fields parameters = {}) {
  return {suite, command, std::move(parameters), {}};
}

inline AppleEvent get(Descriptor object) {
  return event(codes::coreSuite, codes::get, {{keyDirectObject, std::move(object)}});
}

inline AppleEvent getAddress(Descriptor object) {
  return event(codes::tableSuite, codes::getAddress, {{keyDirectObject, std::move(object)}});
}

inline AppleEvent evaluate(std::string expression) {
  return event(codes::excelSuite, codes::evaluate,
               {{codes::name, Descriptor::text(std::move(expression))}});
}

}  // namespace quorin::host::events

// Argument lists for UNO calls.
#pragma once

#include <com/sun/star/beans/PropertyValue.hpp>
#include <com/sun/star/uno/Sequence.hxx>
#include <initializer_list>
#include <vector>

namespace quorin::host::calc {

template <typename T>
css::uno::Sequence<T> sequenceOf(std::initializer_list<T> items) {
  return {items.begin(), static_cast<sal_Int32>(items.size())};
}

template <typename T>
css::uno::Sequence<T> sequenceOf(const std::vector<T>& items) {
  return {items.data(), static_cast<sal_Int32>(items.size())};
}

template <typename T>
css::beans::PropertyValue argument(const char* name, const T& value) {
  css::beans::PropertyValue result;
  result.Name = rtl::OUString::createFromAscii(name);
  result.Value <<= value;
  return result;
}

}  // namespace quorin::host::calc

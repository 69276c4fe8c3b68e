#include "host/calc/office/OfficeConfiguration.h"

#include <com/sun/star/beans/NamedValue.hpp>
#include <com/sun/star/configuration/theDefaultProvider.hpp>

#include "host/calc/uno/Arguments.h"

namespace quorin::host::calc {

using css::uno::Any;
using css::uno::Reference;

Reference<css::uno::XInterface> configurationAt(
    const Reference<css::uno::XComponentContext>& context, const char* path, ConfigurationUse use) {
  const char* const service = use == ConfigurationUse::changing
                                  ? "com.sun.star.configuration.ConfigurationUpdateAccess"
                                  : "com.sun.star.configuration.ConfigurationAccess";
  const css::beans::NamedValue node("nodepath", Any(rtl::OUString::createFromAscii(path)));
  return css::configuration::theDefaultProvider::get(context)->createInstanceWithArguments(
      rtl::OUString::createFromAscii(service), sequenceOf({Any(node)}));
}

}  // namespace quorin::host::calc

#include "host/calc/office/AskedNetwork.h"

#include <com/sun/star/util/XChangesBatch.hpp>

#include "host/calc/office/OfficeConfiguration.h"

namespace quorin::host::calc {
namespace {

using css::beans::XPropertySet;
using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

constexpr const char* proxyType = "ooInetProxyType";
constexpr sal_Int32 noProxy = 0;

void commit(const Reference<XPropertySet>& settings) {
  Reference<css::util::XChangesBatch>(settings, UNO_QUERY_THROW)->commitChanges();
}

}  // namespace

AskedNetwork::AskedNetwork(const Reference<css::uno::XComponentContext>& context, bool asked) {
  if (!asked) return;
  settings_.set(
      configurationAt(context, "/org.openoffice.Inet/Settings", ConfigurationUse::changing),
      UNO_QUERY_THROW);
  rtl::OUString direct;
  settings_->getPropertyValue("ooInetNoProxy") >>= direct;
  if (!direct.equalsAscii(noHost)) return;
  closed_ = settings_->getPropertyValue(rtl::OUString::createFromAscii(proxyType));
  settings_->setPropertyValue(rtl::OUString::createFromAscii(proxyType), Any(noProxy));
  commit(settings_);
}

AskedNetwork::~AskedNetwork() {
  if (!closed_.hasValue()) return;
  try {
    settings_->setPropertyValue(rtl::OUString::createFromAscii(proxyType), closed_);
    commit(settings_);
  } catch (const css::uno::Exception&) {
    // The office is gone.
  }
}

}  // namespace quorin::host::calc

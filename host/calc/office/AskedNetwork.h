// AskedNetwork: a private office sends whatever it asks of servers to a proxy that is not there
// (PrivateOffice), for a workbook may have it ask when it is opened. While one of these lives, the
// office asks them without a proxy. An office that the user has started is left as it is. Call
// thread.
#pragma once

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>

namespace quorin::host::calc {

class AskedNetwork {
 public:
  // Does nothing unless the user `asked`. Throws UNO's exceptions.
  AskedNetwork(const css::uno::Reference<css::uno::XComponentContext>& context, bool asked);
  ~AskedNetwork();
  AskedNetwork(const AskedNetwork&) = delete;
  AskedNetwork& operator=(const AskedNetwork&) = delete;

  // The only host that a private office reaches without that proxy; there never is one of that
  // name. Tells such an office from others.
  static constexpr const char* noHost = "quorin.invalid";

 private:
  css::uno::Reference<css::beans::XPropertySet> settings_;
  css::uno::Any closed_;  // the kind of proxy that is set again; none where nothing was changed
};

}  // namespace quorin::host::calc

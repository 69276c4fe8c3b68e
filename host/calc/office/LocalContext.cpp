#include "host/calc/office/LocalContext.h"

#include <com/sun/star/uno/RuntimeException.hpp>
#include <cppuhelper/bootstrap.hxx>
#include <cppuhelper/exc_hlp.hxx>
#include <csignal>
#include <rtl/bootstrap.hxx>
#include <signal.h>

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::XComponentContext;

// The office's libraries write to a pipe whose other end may be gone. By itself that ends a
// process.
void outliveClosedPipes() {
  struct sigaction present {};
  if (::sigaction(SIGPIPE, nullptr, &present) == 0 && present.sa_handler == SIG_DFL) {
    std::signal(SIGPIPE, SIG_IGN);
  }
}

// An office that dies makes two threads at once hand on an exception: the one that reads from it
// and the one that asks. What the libraries use for that they describe to themselves the first
// time, and tell others that they have before they have done so; a thread that believes it follows
// a null pointer. So the first time is here.
void handOnAnException() {
  try {
    throw css::uno::RuntimeException();
  } catch (const css::uno::RuntimeException&) {
    cppu::getCaughtException();
  }
}

Reference<XComponentContext> makeContext() {
  outliveClosedPipes();
  handOnAnException();
  // The office's interfaces are not among the types that the libraries load by themselves, and the
  // first call through one of them would crash.
  rtl::Bootstrap::set("URE_MORE_TYPES", "<file://" QUORIN_OFFICE_FOLDER "/program/types>*");
  return cppu::defaultBootstrap_InitialComponentContext();
}

}  // namespace

const Reference<XComponentContext>& localContext() {
  static const auto& context = *new Reference<XComponentContext>(makeContext());
  return context;
}

}  // namespace quorin::host::calc

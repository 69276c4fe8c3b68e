// LocalContext: our own side of LibreOffice's libraries.
#pragma once

#include <com/sun/star/uno/XComponentContext.hpp>

namespace quorin::host::calc {

// Our own component context, one for the process, made ready at the first call, which has to come
// before any connection and may come from any thread. Never destroyed: threads of the libraries may
// still be at work when the process ends.
const css::uno::Reference<css::uno::XComponentContext>& localContext();

}  // namespace quorin::host::calc

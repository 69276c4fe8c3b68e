// answered(): what a call gave. Parts of a workbook that was closed meanwhile give nothing, without
// an error.
#pragma once

#include <com/sun/star/lang/DisposedException.hpp>
#include <com/sun/star/uno/Reference.hxx>

namespace quorin::host::calc {

// DisposedException when it is nothing.
template <typename Interface>
css::uno::Reference<Interface> answered(css::uno::Reference<Interface> given) {
  if (!given.is()) throw css::lang::DisposedException("The workbook was closed", {});
  return given;
}

}  // namespace quorin::host::calc

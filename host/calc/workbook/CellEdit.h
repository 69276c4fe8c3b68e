// CellEdit: whether the user is typing into a cell. Selecting anything would enter what is half
// typed, so whatever moves the selection asks first.
#pragma once

#include <com/sun/star/frame/XFrame.hpp>

namespace quorin::host::calc {

// The overwrite switch exists only while text is being edited, in the cell or in the formula bar:
// its command's state, which the office works out when asked, is the sign. Nothing is changed.
bool isEditing(const css::uno::Reference<css::frame::XFrame>& frame);

}  // namespace quorin::host::calc

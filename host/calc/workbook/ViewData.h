// ViewData: what a Calc view's own text about itself says, for instance
// "100/60/0;1;tw:738;2/14/0/0/0/0/2/0/0/0/0;9/53/0/0/0/0/2/0/0/0/0": the tab on top and the cursor
// of each tab. It is the only live source of the active cell, which stays where it is while a
// selection is extended.
#pragma once

#include <optional>
#include <string_view>

namespace quorin::host::calc {

struct ViewPosition {
  int tab = 0;              // 0-based, hidden sheets included
  int row = 1, column = 1;  // 1-based, of the active cell
  bool operator==(const ViewPosition&) const = default;
};

// Nothing when the text is not of that form.
std::optional<ViewPosition> viewPosition(std::string_view viewData);

}  // namespace quorin::host::calc

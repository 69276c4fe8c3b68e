// What the text in `range "..."` binds to: addresses, sheet-qualified addresses and defined names,
// several of them parted by commas.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/model/Session.h"

namespace quorin::host {

// Binds on `container`, or without one on the active sheet. Nothing when the text is no address
// and no name of a range, when it names a book or sheet that is not there, when its parts lie on
// several sheets, or when it leads away from a container that was given. Excel for Mac itself opens
// a dialog for a sheet that the workbook lacks; membership is checked here before binding.
std::optional<RangeRef> bindRangeText(Session& session, const std::optional<SheetRef>& container,
                                      std::string_view text);

// What the text of a name's reference, without its "=", leads to as seen from a sheet.
std::optional<RangeRef> bindReference(Session& session, const SheetRef& from,
                                      std::string_view text);

// The workbook or sheet of that name in any case of its letters, in its own spelling.
std::optional<std::string> findWorkbook(Session& session, const std::string& name);
std::optional<SheetRef> findWorksheet(Session& session, const std::string& book,
                                      const std::string& name);

}  // namespace quorin::host

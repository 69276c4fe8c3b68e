// Which window shows which workbook. Every workbook has one; the active one's is the first, the
// others follow in the order of opening.
#pragma once

#include <optional>
#include <string>

#include "host/model/Object.h"
#include "host/model/Session.h"

namespace quorin::host {

// The workbook that a window shows; EventError -1728 when there is no such window.
std::string workbookOf(Session& session, const WindowObject& window);

// The window of a workbook in its own spelling; nothing when it is not open.
std::optional<WindowObject> windowOf(Session& session, const std::string& book);

// A window's id stays with its workbook when others come to the front.
int idOf(Session& session, const WindowObject& window);
std::optional<WindowObject> windowOfID(Session& session, long long id);

}  // namespace quorin::host

// What a process does that is to be killed: the stores and the bridge over a spreadsheet, serving
// the requests that the test sends until it sends no more.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>

#include "host/Spreadsheet.h"
#include "kit/support/FileSystem.h"
#include "tests/kit/crash/Victim.h"

namespace quorin::crash {

// The stores and the log are in `folder`. Every step of the stores is a point, and of what else
// goes by these `files`; those of the spreadsheet are its own affair. Besides the verbs of the page
// there are "restoreStranded" and "terminate".
void serve(Victim& victim, const std::filesystem::path& folder,
           const std::function<std::unique_ptr<host::Spreadsheet>(FileSystem& files)>& spreadsheet);

}  // namespace quorin::crash

// ReviewFile: what was said of findings, in a file that the panel keeps.
#pragma once

#include <filesystem>
#include <string>

#include "kit/value/JSONValue.h"

namespace quorin::ctl {

// What was said in the workbook of this name; null where nothing was. Throws Unserved for a file
// that is not there, cannot be read or is malformed.
JSONValue reviewIn(const std::filesystem::path& file, const std::string& book);

}  // namespace quorin::ctl

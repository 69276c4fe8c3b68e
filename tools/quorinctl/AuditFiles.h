// AuditFiles: which workbooks `quorinctl audit` was asked for.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "kit/value/JSONValue.h"

namespace quorin::ctl {

// The given files, whatever they are, and instead of a folder all workbooks in it and in its
// folders, sorted, without the files that programs keep beside an open one; each once. Throws
// std::filesystem::filesystem_error for a folder that cannot be read.
std::vector<std::filesystem::path> workbooksOf(const std::vector<std::filesystem::path>& given);

// What tells whether a file has changed: {"modified": a date with milliseconds, "size": bytes}.
// Empty when it cannot be looked at.
JSONValue::Object stampOf(const std::filesystem::path& file);

}  // namespace quorin::ctl

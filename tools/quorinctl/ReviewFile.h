// ReviewFile: what was said of findings, in a file that the panel keeps.
#pragma once

#include <filesystem>

#include "kit/reviews/ReviewStore.h"
#include "kit/value/JSONValue.h"

namespace quorin::ctl {

// What was said in the workbook; null where nothing was. Throws Unserved for a file
// that is not there, cannot be read or is malformed.
JSONValue reviewIn(const std::filesystem::path& file, const ReviewedBook& book);

}  // namespace quorin::ctl

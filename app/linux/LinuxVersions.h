// LinuxVersions: what a problem report tells of the machine, as its files say it. Any thread.
#pragma once

#include <filesystem>

#include "kit/platform/Environment.h"
#include "kit/support/ProblemReport.h"

namespace quorin {

// The distribution by its pretty name, and the LibreOffice whose starter is found first in PATH.
SystemVersions linuxVersions(const Environment& environment, const std::filesystem::path& release);

}  // namespace quorin

// MacSelfTest: the self-test on a Mac: looks whether the frameworks have what the adapters call,
// tries the handler library in Excel and saves the report on the desktop.
#pragma once

#include <filesystem>

#include "app/shell/SelfTest.h"

namespace quorin {

// Main thread. Asks the running frameworks for every class and selector of Selectors.inc, and for
// the constants whose values the portable code relies on.
SelfTest::PlatformFindings checkFrameworks();

// Any thread but the main one, for some minutes. The report that was saved: on the desktop, or
// among the temporary files where the desktop cannot be written; none where neither can.
std::filesystem::path runSelfTest(const SelfTest::PlatformFindings& platform);

// Opens it with the user's program for texts. Main thread.
void openReport(const std::filesystem::path& report);

}  // namespace quorin

#import "app/macos/MacSelfTest.h"

#import <AppKit/AppKit.h>
#import <Carbon/Carbon.h>
#include <fstream>
#include <mutex>

#import "app/macos/AppleScriptRunner.h"
#include "app/macos/MacBundle.h"
#include "app/macos/MacSystem.h"
#import "app/macos/Text.h"
#include "app/shell/ports/HotKeyService.h"

namespace quorin {
namespace {

// What the portable code takes for given.
static_assert(eventNotHandledErr == HotKeyService::notHandled);
static_assert(cmdKey == 256 && shiftKey == 512 && optionKey == 2048 && controlKey == 4096);
static_assert(kVK_LeftArrow == 123 && kVK_RightArrow == 124);
static_assert(kEventHotKeyPressed == 5 && kEventClassKeyboard == 'keyb');
static_assert(NSAlertFirstButtonReturn == 1000);

struct SentMessage {
  const char* owner;
  const char* selector;
  char kind;  // '+' to the class, '-' to an instance
};

const SentMessage sentMessages[] = {
#include "app/macos/Selectors.inc"
};

bool isThere(const SentMessage& message) {
  Class owner = NSClassFromString(toNSString(message.owner));
  SEL selector = NSSelectorFromString(toNSString(message.selector));
  return message.kind == '+' ? [owner respondsToSelector:selector]
                             : [owner instancesRespondToSelector:selector];
}

// Both scripts of the test live at once, each on a thread of its own, and AppleScript is asked by
// one of them at a time: also when a call was given up that still runs.
class OneAtATime : public ScriptRunner {
 public:
  std::optional<ScriptErrorInfo> compile(std::string_view source) override {
    const std::lock_guard turn(turns);
    return runner_.compile(source);
  }
  ScriptReply execute(const AppleEvent& event) override {
    const std::lock_guard turn(turns);
    return runner_.execute(event);
  }

 private:
  static inline std::mutex turns;
  AppleScriptRunner runner_;
};

std::unique_ptr<ScriptRunner> makeRunner(CallThreadPost) {
  return std::make_unique<OneAtATime>();
}

// The user may have kept us from the desktop; the report opens from wherever it is.
std::filesystem::path saved(const std::string& report, const std::string& name) {
  for (const std::filesystem::path& folder : {MacFolders().desktop(), MacFolders().temporary()}) {
    std::ofstream file(folder / name);
    if (file << report << std::flush) return folder / name;
  }
  NSLog(@"%s", report.c_str());
  return {};
}

}  // namespace

SelfTest::PlatformFindings checkFrameworks() {
  SelfTest::PlatformFindings findings;
  const auto note = [&](bool there, const std::string& name) {
    ++findings.checked;
    if (!there) findings.missing.push_back(name);
  };
  for (const SentMessage& message : sentMessages) {
    note(isThere(message),
         std::string(1, message.kind) + "[" + message.owner + " " + message.selector + "]");
  }
  note(NSFloatingWindowLevel == 3, "NSFloatingWindowLevel is not 3");
  note(NSApplicationActivationPolicyAccessory == 1, "the accessory policy is not 1");
  return findings;
}

std::filesystem::path runSelfTest(const SelfTest::PlatformFindings& platform) {
  DiagLog& log = DiagLog::shared();
  ExcelThread library(makeRunner, log);
  ExcelThread experiments(makeRunner, log, {std::string(SelfTest::experimentsSource())});
  SelfTest test({library, experiments, MacBundle().infoString("CFBundleShortVersionString"),
                 macVersions(), platform});
  const std::string stamp = ProblemReport::stamp(
      std::chrono::time_point_cast<ISO::Date::duration>(std::chrono::system_clock::now()));
  return saved(test.run(), "Quorin self-test " + stamp + ".txt");
}

void openReport(const std::filesystem::path& report) {
  if (report.empty()) return;
  [NSWorkspace.sharedWorkspace openURL:toFileURL(report)];
}

}  // namespace quorin

// AppleScriptRunner: runs the handler library through the system's AppleScript, which drives Excel.
// Made, used and destroyed on the Excel call thread; the script itself lives on a thread of its
// own, because AppleScript wants a run loop where the call thread waits.
#pragma once

#import <Foundation/Foundation.h>

#include "kit/excel/ScriptRunner.h"

NS_ASSUME_NONNULL_BEGIN

@class QXScriptThread;

namespace quorin {

class AppleScriptRunner : public ScriptRunner {
 public:
  AppleScriptRunner();
  ~AppleScriptRunner() override;
  AppleScriptRunner(const AppleScriptRunner&) = delete;
  AppleScriptRunner& operator=(const AppleScriptRunner&) = delete;

  std::optional<ScriptErrorInfo> compile(std::string_view source) override;
  ScriptReply execute(const AppleEvent& event) override;

 private:
  QXScriptThread* thread_;
};

}  // namespace quorin

NS_ASSUME_NONNULL_END

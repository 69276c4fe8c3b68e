// MacApplication: the process as an accessory application, through NSApplication. Signals that ask
// the process to end (EndingSignals) end the application like the user does. Main thread only.
#pragma once

#import <AppKit/AppKit.h>
#include <vector>

#include "app/shell/ports/Application.h"

NS_ASSUME_NONNULL_BEGIN

@class QXApplicationDelegate;

namespace quorin {

class MacApplication : public Application {
 public:
  MacApplication();
  ~MacApplication() override;
  MacApplication(const MacApplication&) = delete;
  MacApplication& operator=(const MacApplication&) = delete;

  void setAccessory() override;
  void setDelegate(ApplicationDelegate& delegate) override;
  void run() override;
  void terminate() override;
  void activate() override;

 private:
  dispatch_source_t endAt(int signal);

  NSApplication* application_;
  QXApplicationDelegate* delegate_;  // NSApplication does not keep its delegate
  std::vector<dispatch_source_t> signals_;
};

}  // namespace quorin

NS_ASSUME_NONNULL_END

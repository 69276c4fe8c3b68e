// MacApplication: the process as an accessory application, through NSApplication. Main thread only.
#pragma once

#import <AppKit/AppKit.h>

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
  NSApplication* application_;
  QXApplicationDelegate* delegate_;  // NSApplication does not keep its delegate
};

}  // namespace quorin

NS_ASSUME_NONNULL_END

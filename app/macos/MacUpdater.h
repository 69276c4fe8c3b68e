// MacUpdater: updates through Sparkle, which lies among the bundle's frameworks where a release was
// built with it, and is loaded when it is first asked for. Main thread only.
#pragma once

#import <Foundation/Foundation.h>

#include "app/shell/ports/Updater.h"

@class SPUStandardUpdaterController;

namespace quorin {

class MacUpdater : public Updater {
 public:
  std::optional<std::string> unavailable() const override;
  void checkForUpdates() override;

 private:
  void start() const;

  mutable bool started_ = false;
  mutable std::optional<std::string> reason_;
  mutable SPUStandardUpdaterController* _Nullable controller_ = nil;  // nobody else keeps it
};

}  // namespace quorin

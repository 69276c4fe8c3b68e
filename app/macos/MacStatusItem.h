// MacStatusItem: the icon in the menu bar and its menu, through NSStatusItem. Main thread only.
#pragma once

#import <AppKit/AppKit.h>

#include "app/shell/ports/StatusItem.h"

NS_ASSUME_NONNULL_BEGIN

@class QXMenuReceiver;

namespace quorin {

class MacStatusItem : public StatusItem {
 public:
  explicit MacStatusItem(const std::string& imageName);
  ~MacStatusItem() override;
  MacStatusItem(const MacStatusItem&) = delete;
  MacStatusItem& operator=(const MacStatusItem&) = delete;

  void setDelegate(StatusItemDelegate* _Nullable delegate) override;
  void setMenu(const std::vector<MenuItem>& items) override;
  void setItem(std::size_t index, const MenuItem& item) override;

 private:
  NSStatusItem* item_;
  NSMenu* menu_;
  QXMenuReceiver* receiver_;  // the menu does not keep its delegate
};

}  // namespace quorin

NS_ASSUME_NONNULL_END

// MacPanelWindow: the panel as an NSPanel. AppKit keeps and restores its frame by itself. Main
// thread only.
#pragma once

#import <AppKit/AppKit.h>

#include "app/shell/ports/PanelWindow.h"

NS_ASSUME_NONNULL_BEGIN

@class QXPanel;

namespace quorin {

class MacPanelWindow : public PanelWindow {
 public:
  explicit MacPanelWindow(const PanelWindowOptions& options);
  ~MacPanelWindow() override;
  MacPanelWindow(const MacPanelWindow&) = delete;
  MacPanelWindow& operator=(const MacPanelWindow&) = delete;

  void setDelegate(PanelWindowDelegate* _Nullable delegate) override;
  void setContent(WebView& view) override;
  ScreenFrame frame() const override;
  void setFrame(const ScreenFrame& frame) override;
  ScreenSize minimumContentSize() const override;
  void setWidening(double, double) override {}  // the frame is saved as the user sees it
  bool isVisible() const override;
  bool isKey() const override;
  void orderFront() override;
  void makeKeyAndOrderFront() override;
  void resignKey() override;
  void orderOut() override;
  std::vector<Screen> screens() const override;
  std::optional<Screen> screen() const override;
  std::optional<Screen> mainScreen() const override;

 private:
  QXPanel* panel_;
};

}  // namespace quorin

NS_ASSUME_NONNULL_END

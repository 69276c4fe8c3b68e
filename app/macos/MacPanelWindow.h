// MacPanelWindow: the panel as an NSPanel. It saves the frame that the user gives it, and no other:
// AppKit's own saving would take every change for the user's. Main thread only.
#pragma once

#import <AppKit/AppKit.h>

#include "app/shell/ports/PanelWindow.h"

NS_ASSUME_NONNULL_BEGIN

@class QXFrameObserver, QXPanel;

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
  void setWidening(double width, double shift) override;
  bool isVisible() const override;
  bool isKey() const override;
  void orderFront() override;
  void makeKeyAndOrderFront() override;
  void resignKey() override;
  void orderOut() override;
  std::vector<Screen> screens() const override;
  std::optional<Screen> screen() const override;
  std::optional<Screen> mainScreen() const override;

  // The panel has another frame now, through us or through the user.
  void frameChanged();

 private:
  template <typename Change>
  void change(const Change& make);
  void restoreFrame();

  const std::string frameKey_;
  QXPanel* panel_;
  QXFrameObserver* observer_;  // the panel does not keep its delegate
  bool changing_ = false;      // what happens to the frame is ours
  double widening_ = 0, shift_ = 0;
};

}  // namespace quorin

NS_ASSUME_NONNULL_END

// WaylandWindowList: the list of windows that compositors of the wlroots family give to any
// program. Main thread only.
#pragma once

#include <list>
#include <memory>

#include "app/linux/WaylandConnection.h"
#include "app/linux/WindowList.h"

namespace quorin {

class WaylandWindowList : public WindowList {
 public:
  // None where the compositor gives no such list. The connection must outlive it.
  static std::unique_ptr<WaylandWindowList> open(WaylandConnection& connection);
  ~WaylandWindowList() override;
  WaylandWindowList(const WaylandWindowList&) = delete;
  WaylandWindowList& operator=(const WaylandWindowList&) = delete;

  std::vector<ListedWindow> windows() const override;
  void activate(std::uint32_t id) override;
  void setOnChanged(std::function<void()> handler) override { changed_ = std::move(handler); }

 private:
  struct Window {
    WaylandWindowList* list = nullptr;
    wl_proxy* handle = nullptr;
    ListedWindow told;
    bool complete = false;  // all of it has been told at least once
  };
  struct Events;

  WaylandWindowList(WaylandConnection& connection, wl_proxy* manager);
  void tell() const;

  WaylandConnection& connection_;
  wl_proxy* manager_;
  wl_seat* seat_;
  std::list<Window> windows_;
  std::uint32_t lastId_ = 0;
  std::function<void()> changed_;
};

}  // namespace quorin

#include "host/calc/keeper/UndoList.h"

#include <algorithm>
#include <com/sun/star/document/XUndoManagerListener.hpp>
#include <com/sun/star/document/XUndoManagerSupplier.hpp>
#include <cppuhelper/implbase1.hxx>
#include <mutex>
#include <utility>

namespace quorin::host::calc {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

// Several changes can be one step, which is taken when their outermost context is left. Hidden
// contexts add to the step before them.
class UndoList::News : public cppu::WeakImplHelper1<css::document::XUndoManagerListener> {
 public:
  using Event = css::document::UndoManagerEvent;
  explicit News(std::function<void()> undone) : undone_(std::move(undone)) {}

  void SAL_CALL undoActionAdded(const Event&) override {
    const std::lock_guard lock(mutex_);
    ++news_;
    if (contexts_ == 0) ++now_;
  }
  void SAL_CALL actionUndone(const Event&) override { move(-1); }
  void SAL_CALL actionRedone(const Event&) override { move(1); }
  void SAL_CALL enteredContext(const Event&) override { enter(); }
  void SAL_CALL enteredHiddenContext(const Event&) override { enter(); }
  void SAL_CALL leftContext(const Event&) override { leave(1); }
  void SAL_CALL leftHiddenContext(const Event&) override { leave(0); }
  void SAL_CALL cancelledContext(const Event&) override { leave(0); }
  void SAL_CALL allActionsCleared(const css::lang::EventObject&) override {}
  void SAL_CALL redoActionsCleared(const css::lang::EventObject&) override {}
  void SAL_CALL resetAll(const css::lang::EventObject&) override {
    const std::lock_guard lock(mutex_);
    contexts_ = 0;
  }
  void SAL_CALL disposing(const css::lang::EventObject&) override {}

  Place place() {
    const std::lock_guard lock(mutex_);
    return {now_, std::exchange(lowest_, now_), news_};
  }
  int news() {
    const std::lock_guard lock(mutex_);
    return news_;
  }

 private:
  void move(int steps) {
    {
      const std::lock_guard lock(mutex_);
      ++news_;
      now_ += steps;
      lowest_ = std::min(lowest_, now_);
    }
    undone_();
  }
  void enter() {
    const std::lock_guard lock(mutex_);
    ++contexts_;
  }
  void leave(int steps) {
    const std::lock_guard lock(mutex_);
    ++news_;
    if (contexts_ > 0) --contexts_;  // it may have been entered before we listened
    if (contexts_ == 0) now_ += steps;
  }

  const std::function<void()> undone_;
  std::mutex mutex_;  // guards what follows
  int contexts_ = 0, now_ = 0, lowest_ = 0, news_ = 0;
};

UndoList::UndoList(const Reference<css::frame::XModel>& workbook, std::function<void()> undone)
    : manager_(Reference<css::document::XUndoManagerSupplier>(workbook, UNO_QUERY_THROW)
                   ->getUndoManager()),
      news_(new News(std::move(undone))) {
  manager_->addUndoManagerListener(news_.get());
}

UndoList::~UndoList() {
  try {
    manager_->removeUndoManagerListener(news_.get());
  } catch (const css::uno::Exception&) {
    // The workbook is gone.
  }
}

UndoList::Place UndoList::place() const {
  return news_->place();
}

bool UndoList::isStill(const Place& place) const {
  return news_->news() == place.news;
}

}  // namespace quorin::host::calc

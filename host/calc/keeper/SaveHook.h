// SaveHook: hears of every workbook that the office is about to save, export or mail, takes our
// marks out of it and hides the rows that we have shown before the office goes on, and puts them
// back and shows them when it is through. It also hears when the user has got another workbook to
// look at. The office
// waits for the callback, which therefore makes its calls inline and never waits for a thread that
// may be in a call itself. Callbacks come on threads of the bridge; the rest is for any thread.
#pragma once

#include <com/sun/star/document/XDocumentEventListener.hpp>
#include <cppuhelper/implbase1.hxx>
#include <functional>
#include <mutex>
#include <optional>
#include <vector>

#include "host/calc/keeper/DocumentMarks.h"
#include "host/calc/reveal/RowsBack.h"
#include "host/calc/reveal/RowsNote.h"

namespace quorin::host::calc {

class SaveHook : public cppu::WeakImplHelper1<css::document::XDocumentEventListener> {
 public:
  // On any thread `over` is told when marks that were taken out are back, and `opened` when a
  // document has been loaded or has got a window.
  SaveHook(const Owner& owner, QuietChanges& changes, const ShownRows& shown,
           std::function<void()> over, std::function<void()> opened)
      : owner_(owner),
        changes_(changes),
        shown_(shown),
        over_(std::move(over)),
        opened_(std::move(opened)) {}

  // From now on nothing is put back. Waits for a callback that is doing so, hence never to be
  // called in one.
  void letGo();

  // Counts the saves. What was seen of the marks between two equal answers is how they are; while
  // some are out, there is no answer.
  std::optional<int> turn() const;

  void SAL_CALL documentEventOccured(const css::document::DocumentEvent& event) override;
  void SAL_CALL disposing(const css::lang::EventObject&) override {}

 private:
  struct Saving {
    Workbook workbook;
    std::vector<TakenMark> marks;
    std::vector<HiddenRows> rows;
    ShownRows::Entries shown;  // what is remembered of these
    std::vector<TakenNote> notes;
  };
  struct Made {
    css::uno::Reference<css::frame::XModel> document;
    css::uno::Reference<css::drawing::XShape> shape;
  };
  void takeOut(const css::uno::Reference<css::uno::XInterface>& document);
  void showAgain(const Saving& saving);
  void putBackInto(const css::uno::Reference<css::uno::XInterface>& document);

  const Owner& owner_;
  QuietChanges& changes_;
  const ShownRows& shown_;
  const std::function<void()> over_, opened_;
  std::mutex puttingBack_;    // held while marks are put back
  bool letGo_ = false;        // under it, like the next
  std::vector<Made> made_;    // held until the next save: somebody may be looking for them
  mutable std::mutex mutex_;  // guards what follows, never held during a call
  std::vector<Saving> savings_;
  int taking_ = 0, turn_ = 0;
};

}  // namespace quorin::host::calc

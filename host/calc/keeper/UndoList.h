// UndoList: where the user stands in the undo list of one workbook. Steps are counted from when
// this is made: one that they take adds one, undoing it takes one away, so that a place told later
// that is not beyond an earlier one says that everything since has been undone. Nothing tells it
// otherwise: the list itself loses its oldest steps, and titles of steps are alike.
//
// The office waits for each of its news, which is only counted.
#pragma once

#include <com/sun/star/document/XUndoManager.hpp>
#include <com/sun/star/frame/XModel.hpp>
#include <functional>
#include <rtl/ref.hxx>

namespace quorin::host::calc {

class UndoList {
 public:
  // `undone` is told, on any thread, when a step was undone or redone: the office tells that the
  // workbook has changed before it tells this. Throws UNO's exceptions.
  UndoList(const css::uno::Reference<css::frame::XModel>& workbook, std::function<void()> undone);
  ~UndoList();
  UndoList(const UndoList&) = delete;
  UndoList& operator=(const UndoList&) = delete;

  struct Place {
    int now = 0;
    int lowest = 0;  // since the last time that this was asked for
    int news = 0;
  };
  Place place() const;
  // Nothing has come since: what was asked of the office in between is as it is there.
  bool isStill(const Place& place) const;

 private:
  class News;
  css::uno::Reference<css::document::XUndoManager> manager_;
  const rtl::Reference<News> news_;
};

}  // namespace quorin::host::calc

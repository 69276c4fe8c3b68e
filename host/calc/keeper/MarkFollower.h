// MarkFollower: lets the marks of one workbook follow what the user does to its cells, rows,
// columns and sheets. Each mark is tied to a range object of the office, which the office adapts by
// itself; when the workbook has changed, the shapes are drawn anew where their cells are then. Used
// on the keeper's main thread; the office's news comes on others and is only noted.
#pragma once

#include <com/sun/star/sheet/XSheetCellRanges.hpp>
#include <com/sun/star/uno/Sequence.hxx>
#include <functional>
#include <list>
#include <optional>
#include <rtl/ref.hxx>
#include <string>
#include <vector>

#include "host/calc/keeper/SaveHook.h"
#include "host/calc/keeper/TakenRows.h"
#include "host/calc/keeper/UndoList.h"
#include "host/calc/reveal/RowsBack.h"

namespace quorin::host::calc {

class MarkFollower {
 public:
  // `changed` is told on any thread that there is something to look at.
  MarkFollower(std::string uid, const Owner& owner, Workbook workbook, QuietChanges& changes,
               const SaveHook& hook, const std::function<void()>& changed);
  ~MarkFollower();
  MarkFollower(const MarkFollower&) = delete;
  MarkFollower& operator=(const MarkFollower&) = delete;

  // Ties the marks that the owner has just made or moved to their cells. The next look draws them.
  void tieNew();

  // Has the next look tie the marks that are there: those that the workbook's file was saved with,
  // but not those that came with a sheet of another workbook.
  void tieWithNextLook();

  // Draws anew what has to be, and takes off what is not known: it came with the copy of a sheet,
  // or an undo brought it back. While the workbook is being saved this does nothing, and remains
  // to be done. Throws UNO's exceptions when it fails, and remains to be done then too.
  void look();

  // The same, but leaves the marks of a sheet alone when none of their cells has moved. Whether
  // rows or columns have another size then, which takes long to find out, the next look sees.
  void followCells();

  // Leaves shown rows to the user that he has hidden or made visible himself, takes back what he
  // undoes of that, and hides them on the copies of their sheet. It fails and waits as look() does.
  void lookAtRows(const ShownRows& shown);

  bool isChanged() const;
  bool hasMarks() const { return !followed_.empty(); }  // that were tied
  bool isOpen() const;  // false once the workbook or the office is gone
  const std::string& uid() const { return uid_; }

 private:
  class News;
  struct Followed {
    int number = 0;
    Mark mark;                // as its shape tells
    std::vector<Area> areas;  // where the office had its cells when that was written
    css::uno::Reference<css::sheet::XSheetCellRanges> cells;
    css::uno::Reference<css::drawing::XShape> shape;           // see DocumentMarks.h
    std::optional<css::drawing::PointSequenceSequence> drawn;  // nothing when that is not known
    // Of the present survey:
    sal_Int32 sheet = -1;  // where its cells are; none when they are deleted
    std::vector<Area> now;
    bool seen = false;
  };
  enum class Extent { moved, all };
  void tie();
  bool survey(std::vector<MarkedSheet>& sheets);
  void look(Extent extent);
  void lookAt(const MarkedSheet& sheet, Extent extent);
  Followed* find(const MarkedSheet& sheet, const PlacedMark& mark);
  Followed tied(const MarkedSheet& sheet, const PlacedMark& mark) const;
  bool isOfAnother(const Mark& mark) const;
  void take(const ShownRows& shown, ShownRows::Entries rows, ShownRows::State otherwise);
  struct LookedAt {
    UsersRows users;
    SeenRows taken;  // what is the user's until he undoes it
    css::uno::Sequence<rtl::OUString> sheets;
  };
  std::optional<LookedAt> readRows(const ShownRows& shown);
  void takeBackUndone(const ShownRows& shown, const SeenRows& taken);
  void draw(const MarkedSheet& sheet, const PlacedMark& mark, Followed& followed,
            const std::vector<Area>& areas);

  const std::string uid_;
  const Owner& owner_;
  const Workbook workbook_;
  QuietChanges& changes_;
  const SaveHook& hook_;
  const rtl::Reference<News> news_;
  const UndoList undo_;
  TakenRows taken_;
  std::list<Followed> followed_;
  css::uno::Sequence<rtl::OUString> sheets_;  // their names when copies were last looked for
  bool untied_ = false;                       // marks that the owner made wait for their ties
  bool onlyOwn_ = false;         // but not those that were asked for in another workbook
  std::optional<int> turn_ = 0;  // the hook's at the last survey
};

}  // namespace quorin::host::calc

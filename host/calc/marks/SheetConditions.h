// SheetConditions: the format conditions of one sheet, as they were when this was made and as it
// has changed them since: the user's rules, which are read alone, and only when somebody asks for
// conditions, for a sheet may have thousands of them; and after them our own marks,
// which are drawn over the cells. A cell with several marks is coloured by the first of them. A
// mark that the user's edits have moved counts as touching the cells that it was asked for as well
// as those that it is on, and goes when either are taken from it. Call thread.
//
// An id that is none is SpreadsheetError -1728, changing a rule of the user's -10006, and making a
// condition with another formula than a mark's -1708. After any failure of a change this is no
// longer true to the sheet.
#pragma once

#include "host/calc/marks/MarkShape.h"
#include "host/calc/marks/Owner.h"
#include "host/calc/marks/UserRules.h"
#include "host/calc/workbook/QuietChanges.h"

namespace quorin::host::calc {

class SheetConditions {
 public:
  // -1728 when the workbook has no such sheet, -1712 when the limits are reached among its shapes.
  // What it adds and changes is that owner's from then on. `changes` and `owner` outlive it.
  SheetConditions(QuietChanges& changes, const Owner& owner, const Workbook& workbook,
                  const std::string& sheet, const CallLimits& limits);

  const Workbook& workbook() const { return workbook_; }
  const std::string& sheet() const { return name_; }
  bool isTrue() const { return !changing_; }

  // -1712 when the limits are reached.
  std::vector<FormatCondition> touching(const std::vector<Area>& range, const CallLimits& limits);
  std::string add(const std::vector<Area>& range, const std::string& formula);
  void setFill(const std::string& id, const std::optional<Color>& fill);
  // Marks keep their place; what is asked is only looked at.
  void setPriority(const std::string& id, int priority) const;
  void setRange(const std::vector<Area>& range, const std::string& id);
  void erase(const std::vector<Area>& range, const std::string& id);
  // Takes off what nobody can ask for any more: it was asked for under another name of the workbook
  // or the sheet.
  void removeUnreachable();
  void removeMarks();  // all of them
  // Draws all marks where their cells are now, after rows or columns were shown or hidden.
  void redraw();

 private:
  SheetRef place() const { return {workbook_.name, name_}; }
  bool isFor(const Mark& mark, const std::vector<Area>& range) const;
  std::size_t placeOf(const std::string& id) const;  // among the marks
  template <typename Edit>
  void change(const std::string& id, Edit edit);
  void draw(std::vector<PlacedMark> wanted);
  void put(PlacedMark& mark, const std::vector<Area>& drawn);
  void redraw(PlacedMark& mark, const std::vector<Area>& drawn);

  QuietChanges& changes_;
  const Owner& owner_;
  const Workbook workbook_;
  const std::string name_;
  const css::uno::Reference<css::sheet::XSpreadsheet> sheet_;
  const css::uno::Reference<css::drawing::XDrawPage> page_;
  std::optional<UserRules> rules_;  // once they are asked for
  std::vector<PlacedMark> marks_;
  bool changing_ = false;
};

}  // namespace quorin::host::calc

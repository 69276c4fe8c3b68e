#include "host/model/Neighbours.h"

#include <algorithm>

#include "host/Address.h"
#include "host/model/Codes.h"
#include "host/model/ObjectClass.h"

namespace quorin::host {
namespace {

std::optional<std::string> nameAt(const std::vector<std::string>& names, const std::string& from,
                                  int step) {
  const auto it = std::find(names.begin(), names.end(), from);
  if (it == names.end()) return std::nullopt;
  const std::ptrdiff_t place = it - names.begin() + step;
  if (place < 0 || place >= std::ssize(names)) return std::nullopt;
  return names[static_cast<std::size_t>(place)];
}

struct Neighbour {
  Session& session;
  FourCharCode wanted;
  int step;

  std::optional<Object> operator()(const WorkbookObject& book) const {
    if (wanted != codes::workbook) return std::nullopt;
    auto name = nameAt(session.spreadsheet.workbooks(), book.name, step);
    if (!name) return std::nullopt;
    return WorkbookObject{std::move(*name)};
  }

  std::optional<Object> operator()(const SheetObject& object) const {
    if (wanted != codes::worksheet && wanted != codes::sheet) return std::nullopt;
    auto name = nameAt(session.spreadsheet.worksheets(object.sheet.book), object.sheet.sheet, step);
    if (!name) return std::nullopt;
    return SheetObject{{object.sheet.book, std::move(*name)}};
  }

  std::optional<Object> operator()(const WindowObject& window) const {
    const int index = window.index + step;
    if (wanted != codes::window || index < 1 || index > std::ssize(session.spreadsheet.workbooks()))
      return std::nullopt;
    return WindowObject{index};
  }

  // The next row or column as a whole of its kind; the next cell is the one to the right.
  std::optional<Object> operator()(const RangeObject& object) const {
    Area area = object.range.areas.front();
    if (wanted == codes::row) {
      area.firstRow = area.lastRow = (step > 0 ? area.lastRow : area.firstRow) + step;
    } else if (wanted == codes::column || wanted == codes::cell || wanted == codes::range) {
      if (wanted != codes::column) area.lastRow = area.firstRow;
      area.firstColumn = area.lastColumn = (step > 0 ? area.lastColumn : area.firstColumn) + step;
    } else {
      return std::nullopt;
    }
    if (area.firstRow < 1 || area.lastRow > maxRow || area.firstColumn < 1 ||
        area.lastColumn > maxColumn)
      return std::nullopt;
    return RangeObject{{object.range.sheet, {area}}};
  }

  std::optional<Object> operator()(const ConditionObject& object) const {
    if (wanted != codes::formatCondition) return std::nullopt;
    const auto all = session.spreadsheet.formatConditions(object.range);
    const int index = object.index + step;
    if (index < 1 || index > std::ssize(all)) return std::nullopt;
    return ConditionObject{object.range, index, all[static_cast<std::size_t>(index - 1)]};
  }

  template <typename T>
  std::optional<Object> operator()(const T&) const {
    return std::nullopt;
  }
};

}  // namespace

std::optional<Object> neighbour(Session& session, const Object& object, FourCharCode elementClass,
                                int step) {
  return std::visit(Neighbour{session, elementClass, step}, object);
}

}  // namespace quorin::host

// MarkText: how a mark writes what it is into the name of its shape, by which alone it is found
// again, also in a workbook that was saved with it and opened anew: files of Excel's formats keep
// a shape's name, however long, and lose its description. Pure functions for any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/Spreadsheet.h"

namespace quorin::host::calc {

// The formula of every mark: always true, and free of names that a language could change.
inline constexpr std::string_view markFormula = "=\"QXZ\"=\"QXZ\"";

// What was asked to be marked. It stays as it was while the mark follows the user's edits, for by
// this place the mark is asked for again.
struct AskedPlace {
  SheetRef sheet;
  std::vector<Area> areas;
  bool operator==(const AskedPlace&) const = default;
};

// A format condition of our own, as it is drawn over the cells.
struct Mark {
  std::string formula;        // with its "="
  std::optional<Color> fill;  // none yet: nothing is drawn
  std::vector<Area> areas;    // where it is now
  std::optional<AskedPlace> asked = std::nullopt;
  std::string owner = {};  // whose it is; empty when nobody knows
  bool operator==(const Mark&) const = default;
};

// A mark and its number, which is different for each mark of a sheet.
struct NumberedMark {
  int number = 1;
  Mark mark;
  bool operator==(const NumberedMark&) const = default;
};

// "Quorin mark 7", the mark's id on its sheet.
std::string markId(int number);
std::optional<int> parseMarkId(std::string_view id);

// "Quorin mark 7: fill=255,0,255 cells=$B$2,$C$3:$D$9 asked=$B$1 sheet=Data book=Plan%20A.xlsx
// owner=71-9034-1 formula==1=1", in one line; "fill=none" for none, and without what is not known
// of what was asked and of its owner. What was not written so is nothing.
std::string markName(const NumberedMark& mark);
std::optional<NumberedMark> parseMarkName(std::string_view name);

// What each mark draws, where the first in the list lies on top: its cells without those that a
// mark before it draws, so that no cell is coloured twice. The areas of one mark do not overlap,
// and those that make up a rectangle are joined.
std::vector<std::vector<Area>> drawnAreas(const std::vector<Mark>& marks);

}  // namespace quorin::host::calc

// Addresses in Excel's A1 notation: text to areas and back. Pure functions for any thread; text
// that is no address gives nothing. Sheet prefixes are host/SheetPrefix.h.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/Spreadsheet.h"

namespace quorin::host {

inline constexpr int maxRow = 1048576;
inline constexpr int maxColumn = 16384;

// One end of an address. A row or column of 0 is one that the text leaves out, as in "B:D".
struct A1Corner {
  int row = 0, column = 0;
  bool rowAbsolute = false, columnAbsolute = false;
};

// "A1", "$B$7", "C", "12": any case, within the limits of a sheet.
std::optional<A1Corner> parseA1Corner(std::string_view text);

// "A1", "$A$1:$B$4", "5:9", "B:D", corners in any order. A lone column or row is no area ("B").
std::optional<Area> parseA1Area(std::string_view text);

// One or more areas parted by commas, blanks around them allowed: "C5:D9,G9:H16".
std::optional<std::vector<Area>> parseA1(std::string_view text);

std::string columnLetters(int column);  // 1 is "A", 16384 "XFD"

enum class Anchor { absolute, relative };

// How `get address` writes an address. Relative R1C1 parts count from `origin`.
struct AddressStyle {
  Anchor rows = Anchor::absolute;
  Anchor columns = Anchor::absolute;
  ReferenceStyle notation = ReferenceStyle::a1;
  Area origin = {};
};

// "$A$1", "$A$1:$B$4", "$5:$9", "$B:$D", areas joined with commas. A whole sheet is "$1:$1048576".
std::string addressText(const std::vector<Area>& areas, const AddressStyle& style = {});

int rowCount(const Area& area);
int columnCount(const Area& area);
// The numbers of an area's rows, or of its columns.
int& firstOn(Area& area, Axis axis);
int& lastOn(Area& area, Axis axis);
int firstOn(const Area& area, Axis axis);
int lastOn(const Area& area, Axis axis);
int countOn(const Area& area, Axis axis);
// The rows or columns that the area touches, in their whole length.
Area wholeRows(Area area, Axis axis);
long long cellCount(const std::vector<Area>& areas);  // overlapping cells count each time
std::optional<Area> intersection(const Area& a, const Area& b);
bool touch(const std::vector<Area>& a, const std::vector<Area>& b);  // have a cell in common
// What is left of `areas` when the cells of `hole` are taken out.
std::vector<Area> without(const std::vector<Area>& areas, const Area& hole);

}  // namespace quorin::host

#include <gtest/gtest.h>

#include "host/Address.h"
#include "host/calc/AreaGrid.h"

namespace quorin::host::calc {
namespace {

std::string piecesIn(const char* address) {
  return addressText(piecesOf(parseA1(address).value().front()));
}

TEST(AreaGrid, CutsAnAreaIntoPiecesThatAreReadOneAfterTheOther) {
  EXPECT_EQ(piecesIn("B2"), "$B$2");
  EXPECT_EQ(piecesIn("A1:B1000"), "$A$1:$B$1000");
  EXPECT_EQ(piecesIn("C3:C4502"), "$C$3:$C$2002,$C$2003:$C$4002,$C$4003:$C$4502");
  EXPECT_EQ(piecesIn("A1:ALL3"), "$A$1:$ALL$2,$A$3:$ALL$3");
  EXPECT_EQ(piecesIn("A7:DAA8"),  // 2,731 columns
            "$A$7:$BXX$7,$BXY$7:$DAA$7,$A$8:$BXX$8,$BXY$8:$DAA$8");
}

TEST(AreaGrid, PutsPiecesIntoTheirPlaces) {
  const Area whole{3, 2, 4, 4};
  Grid<int> grid{2, 3, {0, 0, 0, 0, 0, 0}};
  place(Grid<int>{1, 2, {1, 2}}, {4, 3, 4, 4}, grid, whole);
  place(Grid<int>{2, 1, {3, 4}}, {3, 2, 4, 2}, grid, whole);
  EXPECT_EQ(grid.cells, (std::vector<int>{3, 0, 0, 4, 1, 2}));
}

TEST(AreaGrid, HasRoomForSoMuchText) {
  const Grid<CellValue> mebibyte{1, 2, {CellValue(std::string(1'000'000, 'x')), CellValue(5.0)}};
  TextRoom room;
  for (int i = 0; i < 32; ++i) room.take(mebibyte);
  try {
    room.take(1);
    FAIL() << "no end of it";
  } catch (const SpreadsheetError& failure) {
    EXPECT_EQ(failure.number(), -50);
  }
}

}  // namespace
}  // namespace quorin::host::calc

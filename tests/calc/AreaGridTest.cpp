#include <gtest/gtest.h>

#include "host/Address.h"
#include "host/calc/cells/AreaGrid.h"

namespace quorin::host::calc {
namespace {

std::string piecesIn(const char* address) {
  return addressText(piecesOf(parseA1(address).value().front()));
}

TEST(AreaGrid, CutsAnAreaIntoPiecesThatAreReadOneAfterTheOther) {
  EXPECT_EQ(piecesIn("B2"), "$B$2");
  EXPECT_EQ(piecesIn("A1:B1000"), "$A$1:$B$1000");
  EXPECT_EQ(piecesIn("C3:C4502"), "$C$3:$C$2502,$C$2503:$C$4502");
  EXPECT_EQ(piecesIn("A1:ALL3"), "$A$1:$ALL$2,$A$3:$ALL$3");
  EXPECT_EQ(piecesIn("A7:DAA8"),  // 2,731 columns
            "$A$7:$CRD$7,$CRE$7:$DAA$7,$A$8:$CRD$8,$CRE$8:$DAA$8");
}

// The pieces in which an area is read whose cells hold so many bytes of text each.
std::string readIn(const char* address, std::size_t bytes, PieceSizes sizes = {}) {
  std::vector<Area> pieces;
  inPieces(parseA1(address).value().front(), CallLimits(), sizes, [&](const Area& piece) {
    pieces.push_back(piece);
    return bytes * static_cast<std::size_t>(cellCount({piece}));
  });
  return addressText(pieces);
}

TEST(AreaGrid, ReadsFewCellsAtOnceWhereTheyHoldLongTexts) {
  EXPECT_EQ(readIn("B2", 0), "$B$2");
  EXPECT_EQ(readIn("A1:A5000", 1000), "$A$1:$A$200,$A$201:$A$2700,$A$2701:$A$5000");
  EXPECT_EQ(readIn("A1:A5000", 1000, {200, 5000}), "$A$1:$A$200,$A$201:$A$5000");
  EXPECT_EQ(readIn("A1:A5000", 1000, {5000, 5000}), "$A$1:$A$5000");
  EXPECT_EQ(readIn("A1:A2900", 1001, {2500, 2500}), "$A$1:$A$2500,$A$2501:$A$2700,$A$2701:$A$2900");
  EXPECT_EQ(readIn("A1:B250", 1001, {200, 5000}), "$A$1:$B$100,$A$101:$B$200,$A$201:$B$250");
  EXPECT_EQ(readIn("A1:B250", 1001), "$A$1:$B$100,$A$101:$B$200,$A$201:$B$250");
  EXPECT_EQ(readIn("A1:IJM1", 0), "$A$1:$GR$1,$GS$1:$CYV$1,$CYW$1:$GQZ$1,$GRA$1:$IJM$1");
  EXPECT_EQ(readIn("A1:KN2", 0), "$A$1:$GR$1,$GS$1:$KN$1,$A$2:$KN$2");  // 300 columns
}

TEST(AreaGrid, PutsPiecesIntoTheirPlaces) {
  const Area whole{3, 2, 4, 4};
  Grid<int> grid{2, 3, {0, 0, 0, 0, 0, 0}};
  place(Grid<int>{1, 2, {1, 2}}, {4, 3, 4, 4}, grid, whole);
  place(Grid<int>{2, 1, {3, 4}}, {3, 2, 4, 2}, grid, whole);
  EXPECT_EQ(grid.cells, (std::vector<int>{3, 0, 0, 4, 1, 2}));
}

TEST(AreaGrid, GivesPartsOfWhatWasRead) {
  const Grid<int> whole{2, 3, {1, 2, 3, 4, 5, 6}};
  const Area area{3, 2, 4, 4};
  EXPECT_EQ(partOf(whole, area, {3, 3, 4, 4}), (Grid<int>{2, 2, {2, 3, 5, 6}}));
  EXPECT_EQ(partOf(whole, area, area), whole);
}

TEST(AreaGrid, HasRoomForSoMuchText) {
  const Grid<CellValue> mebibyte{1, 2, {CellValue(std::string(1'000'000, 'x')), CellValue(5.0)}};
  TextRoom room;
  for (int i = 0; i < 12; ++i) room.take(mebibyte);
  try {
    room.take(1);
    FAIL() << "no end of it";
  } catch (const SpreadsheetError& failure) {
    EXPECT_EQ(failure.number(), -50);
  }
}

}  // namespace
}  // namespace quorin::host::calc

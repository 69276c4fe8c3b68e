#include <gtest/gtest.h>

#include "host/Address.h"
#include "host/calc/marks/MarkText.h"

namespace quorin::host::calc {
namespace {

Mark markOf(const char* cells, std::optional<Color> fill = Color{255, 0, 128}) {
  return {"=\"QXZ\"=\"QXZ\"", fill, parseA1(cells).value()};
}

Mark moved() {
  Mark mark = markOf("B4");
  mark.asked = AskedPlace{{"50% of it.xlsx", "Q 1 book=x%20"}, parseA1("B2").value()};
  return mark;
}

TEST(MarkText, WritesWhatWasAskedFor) {
  EXPECT_EQ(markName({7, moved()}),
            "Quorin mark 7: fill=255,0,128 cells=$B$4 asked=$B$2 sheet=Q%201%20book=x%2520 "
            "book=50%25%20of%20it.xlsx formula==\"QXZ\"=\"QXZ\"");
}

TEST(MarkText, WritesItsOwner) {
  Mark mark = moved();
  mark.owner = "71-9034-1";
  EXPECT_EQ(markName({7, mark}),
            "Quorin mark 7: fill=255,0,128 cells=$B$4 asked=$B$2 sheet=Q%201%20book=x%2520 "
            "book=50%25%20of%20it.xlsx owner=71-9034-1 formula==\"QXZ\"=\"QXZ\"");
  EXPECT_EQ(parseMarkName(markName({7, mark})), (NumberedMark{7, mark}));
  mark.asked.reset();
  EXPECT_EQ(parseMarkName(markName({7, mark})), (NumberedMark{7, mark}));
}

TEST(MarkText, WritesItsIdFillCellsAndFormula) {
  EXPECT_EQ(markId(12), "Quorin mark 12");
  EXPECT_EQ(markName({7, markOf("B2,C3:D9")}),
            "Quorin mark 7: fill=255,0,128 cells=$B$2,$C$3:$D$9 formula==\"QXZ\"=\"QXZ\"");
  EXPECT_EQ(markName({1, markOf("B:B", std::nullopt)}),
            "Quorin mark 1: fill=none cells=$B:$B formula==\"QXZ\"=\"QXZ\"");
}

TEST(MarkText, ReadsWhatItWrote) {
  for (const NumberedMark& mark :
       {NumberedMark{1, markOf("A1")}, NumberedMark{7, markOf("B2,C3:D9,4:5,$XFD$1048576")},
        NumberedMark{2147483647, markOf("A1:XFD1048576", std::nullopt)},
        NumberedMark{3, {"=A1=\"a: b cells=C1\"", Color{0, 0, 0}, {{1, 1, 1, 1}, {1, 1, 2, 2}}}},
        NumberedMark{4, {"", Color{1, 2, 3}, {{5, 6, 5, 6}}}}, NumberedMark{5, moved()}})
    EXPECT_EQ(parseMarkName(markName(mark)), mark) << markName(mark);
  EXPECT_EQ(parseMarkId(markId(31)), 31);
}

TEST(MarkText, TakesNothingElseForAMark) {
  for (const char* name : {"",
                           "Rectangle 1",
                           "Quorin mark 1",
                           "Quorin mark 1: ",
                           "Quorin mark 1: fill=none",
                           "Quorin mark 1: fill=none cells=A1",
                           "Quorin mark 1: fill=none cells=A1 ",
                           "Quorin mark 1: fill=none cells= formula==1",
                           "Quorin mark 1: fill=none cells=A0 formula==1",
                           "Quorin mark 1: fill=none cells=Price formula==1",
                           "Quorin mark 1: fill= cells=A1 formula==1",
                           "Quorin mark 1: fill=1,2 cells=A1 formula==1",
                           "Quorin mark 1: fill=1,2,256 cells=A1 formula==1",
                           "Quorin mark 1: fill=1,2,3,4 cells=A1 formula==1",
                           "Quorin mark 1: fill=1,2,-3 cells=A1 formula==1",
                           "Quorin mark 1: fill=1,,3 cells=A1 formula==1",
                           "Quorin mark 1: cells=A1 fill=none formula==1",
                           "Quorin mark 1: fill=none cells=A1 asked=A1 formula==1",
                           "Quorin mark 1: fill=none cells=A1 asked=A1 sheet=S formula==1",
                           "Quorin mark 1: fill=none cells=A1 asked=x sheet=S book=B formula==1",
                           "Quorin mark 0: fill=none cells=A1 formula==1",
                           "Quorin mark -1: fill=none cells=A1 formula==1",
                           "Quorin mark 01: fill=none cells=A1 formula==1",
                           "Quorin mark x: fill=none cells=A1 formula==1",
                           "Quorin mark 99999999999: fill=none cells=A1 formula==1",
                           "quorin mark 1: fill=none cells=A1 formula==1",
                           " Quorin mark 1: fill=none cells=A1 formula==1"})
    EXPECT_EQ(parseMarkName(name), std::nullopt) << name;
  for (const char* id : {"", "Quorin mark ", "Quorin mark 0", "Quorin mark 1 ", "Rule 1", "1"})
    EXPECT_EQ(parseMarkId(id), std::nullopt) << id;
}

std::vector<std::string> drawn(const std::vector<Mark>& marks) {
  std::vector<std::string> texts;
  for (const auto& areas : drawnAreas(marks)) {
    AddressStyle plain;
    plain.rows = plain.columns = Anchor::relative;
    texts.push_back(areas.empty() ? "" : addressText(areas, plain));
  }
  return texts;
}

using Texts = std::vector<std::string>;

TEST(MarkText, DrawsEachCellOnce) {
  EXPECT_EQ(drawn({}), Texts{});
  EXPECT_EQ(drawn({markOf("B2"), markOf("B2")}), (Texts{"B2", ""}));
  EXPECT_EQ(drawn({markOf("B2:C3"), markOf("C3:D4")}), (Texts{"B2:C3", "C4:D4,D3"}));
  EXPECT_EQ(drawn({markOf("B2,B2:B3,B3")}), Texts{"B2:B3"});
  EXPECT_EQ(drawn({markOf("A1"), markOf("B1"), markOf("A1:C1")}), (Texts{"A1", "B1", "C1"}));
}

TEST(MarkText, DrawsNothingWithoutAFillAndHidesNothingBehindIt) {
  EXPECT_EQ(drawn({markOf("B2", std::nullopt), markOf("B2:B3")}), (Texts{"", "B2:B3"}));
}

TEST(MarkText, JoinsCellsThatMakeUpARectangle) {
  EXPECT_EQ(drawn({markOf("B2,C2,B3,C3")}), Texts{"B2:C3"});
  EXPECT_EQ(drawn({markOf("A1,C1,B2")}), (Texts{"A1,B2,C1"}));
  EXPECT_EQ(drawn({markOf("A1:XFD1048576,B2")}), Texts{"1:1048576"});
}

}  // namespace
}  // namespace quorin::host::calc

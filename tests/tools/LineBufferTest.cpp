#include <gmock/gmock.h>
#include <vector>

#include "tools/quorinctl/LineBuffer.h"

namespace quorin::ctl {
namespace {

using Line = LineBuffer::Line;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<Line> take(LineBuffer& buffer) {
  std::vector<Line> lines;
  while (auto line = buffer.next()) lines.push_back(*line);
  return lines;
}

TEST(LineBuffer, CutsAtLineFeeds) {
  LineBuffer buffer(100);
  buffer.append("one\ntwo\r\n\nthr");
  EXPECT_THAT(take(buffer), ElementsAre(Line{"one"}, Line{"two"}, Line{""}));
  buffer.append("ee\n");
  EXPECT_THAT(take(buffer), ElementsAre(Line{"three"}));
}

TEST(LineBuffer, TakesWhatIsLeftAtTheEndForALine) {
  LineBuffer buffer(100);
  buffer.append("one\nlast");
  EXPECT_THAT(take(buffer), ElementsAre(Line{"one"}));
  buffer.end();
  EXPECT_THAT(take(buffer), ElementsAre(Line{"last"}));
  EXPECT_THAT(take(buffer), IsEmpty());
}

TEST(LineBuffer, HasNoLineAfterALastLineFeed) {
  LineBuffer buffer(100);
  buffer.append("one\n");
  buffer.end();
  EXPECT_THAT(take(buffer), ElementsAre(Line{"one"}));
}

TEST(LineBuffer, TellsOnceThatALineIsTooLongAndGoesOn) {
  LineBuffer buffer(5);
  buffer.append("12345\n123456\nok\n");
  EXPECT_THAT(take(buffer), ElementsAre(Line{"12345"}, Line{"", true}, Line{"ok"}));
  buffer.append("123");
  EXPECT_THAT(take(buffer), IsEmpty());
  buffer.append("4567");
  EXPECT_THAT(take(buffer), ElementsAre(Line{"", true}));
  buffer.append("89");
  EXPECT_THAT(take(buffer), IsEmpty());
  buffer.append("0\nok\n");
  EXPECT_THAT(take(buffer), ElementsAre(Line{"ok"}));
}

TEST(LineBuffer, GivesALineUpWithItsFirstByteTooMany) {
  LineBuffer buffer(5);
  buffer.append("12345");
  EXPECT_THAT(take(buffer), IsEmpty());
  buffer.append("6");
  EXPECT_THAT(take(buffer), ElementsAre(Line{"", true}));
}

TEST(LineBuffer, EndsInsideALineThatIsTooLong) {
  LineBuffer buffer(5);
  buffer.append("1234567");
  EXPECT_THAT(take(buffer), ElementsAre(Line{"", true}));
  buffer.append("89");
  buffer.end();
  EXPECT_THAT(take(buffer), IsEmpty());
}

}  // namespace
}  // namespace quorin::ctl

#include <gtest/gtest.h>

#include "kit/reviews/ReviewStore.h"
#include "tests/fakes/FaultyFileSystem.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/LogLines.h"
#include "tests/fakes/TemporaryFolder.h"

namespace quorin {
namespace {

namespace fs = std::filesystem;
using Object = JSONValue::Object;

class ReviewStoreTest : public testing::Test {
 protected:
  TemporaryFolder folder;
  fakes::LogLines log;
  const fs::path file = folder / "Quorin/reviews.json";
  const ReviewStore store{file, FileSystem::real(), &log.log()};
  const JSONValue one = Object{{"said", JSONValue::Array{"fine"}}};
  const std::string oneText = R"([{"book":"A.xlsx","review":{"said":["fine"]}}])";

  static JSONValue ofSize(std::size_t size) { return Object{{"x", std::string(size, 'x')}}; }
  void put(const std::string& text) {
    fs::create_directories(file.parent_path());
    writeFile(file, text);
  }
};

TEST_F(ReviewStoreTest, HasNothingWithoutAFile) {
  EXPECT_EQ(store.load({"A.xlsx"}), JSONValue(nullptr));
  EXPECT_EQ(log.lines(), std::vector<std::string>());
}

TEST_F(ReviewStoreTest, KeepsTheReviewOfEachWorkbook) {
  store.save({"A.xlsx"}, one);
  EXPECT_EQ(readFile(file), oneText);
  store.save({"B.xlsx"}, Object{});
  EXPECT_EQ(store.load({"A.xlsx"}), one);
  EXPECT_EQ(store.load({"B.xlsx"}), JSONValue(Object{}));
  EXPECT_EQ(store.load({"a.xlsx"}), JSONValue(nullptr));
}

// Marks of which the first are those of `one`, the others of `other`.
std::string marks(char one, int ofOne, char other, int ofOther = 0) {
  std::string text;
  for (int i = 0; i < ofOne + ofOther; ++i) text += std::string(4, i < ofOne ? one : other);
  return text;
}

TEST_F(ReviewStoreTest, TellsWorkbooksOfOneNameApartByWhereTheyLie) {
  store.save({"A.xlsx", "here", marks('a', 16, ' ')}, one);
  store.save({"A.xlsx", "there", marks('b', 16, ' ')}, Object{});
  EXPECT_EQ(store.load({"A.xlsx", "here", marks('c', 16, ' ')}), one) << "by its place alone";
  EXPECT_EQ(store.load({"A.xlsx", "there", marks('b', 16, ' ')}), JSONValue(Object{}));
  EXPECT_EQ(store.load({"A.xlsx", "elsewhere", marks('c', 16, ' ')}), JSONValue(nullptr));
  store.save({"A.xlsx", "here", marks('a', 16, ' ')}, nullptr);
  EXPECT_EQ(readFile(file), R"([{"book":"A.xlsx","marks":")" + marks('b', 16, ' ') +
                                R"(","path":"there","review":{}}])");
}

TEST_F(ReviewStoreTest, TellsWorkbooksOfOneNameApartByWhatTheyConsistOf) {
  store.save({"A.xlsx", "", marks('a', 16, ' ')}, one);
  store.save({"A.xlsx", "", marks('b', 16, ' ')}, Object{});
  EXPECT_EQ(store.load({"A.xlsx", "", marks('a', 9, 'b', 7)}), one);
  EXPECT_EQ(store.load({"A.xlsx", "", marks('a', 7, 'b', 9)}), JSONValue(Object{}));
  // What is the same workbook as far as can be told has one review.
  store.save({"A.xlsx", "", marks('a', 9, 'c', 7)}, Object{{"now", 1}});
  EXPECT_EQ(store.load({"A.xlsx", "", marks('a', 16, ' ')}), JSONValue(Object{{"now", 1}}));
  EXPECT_EQ(store.load({"A.xlsx", "", marks('b', 16, ' ')}), JSONValue(Object{}));
}

TEST_F(ReviewStoreTest, LetsARenamedOrCopiedWorkbookInherit) {
  store.save({"A.xlsx", "here", marks('a', 16, ' ')}, one);
  const ReviewedBook copy{"B.xlsx", "there", marks('a', 8, 'c', 8)};
  EXPECT_EQ(store.load(copy), one) << "half is alike";
  EXPECT_EQ(store.load({"B.xlsx", "there", marks('a', 7, 'c', 9)}), JSONValue(nullptr));
  EXPECT_EQ(store.load({"B.xlsx", "there", marks('a', 16, ' ', 1)}), JSONValue(nullptr))
      << "marks of another making";
  store.save(copy, Object{});
  EXPECT_EQ(store.load(copy), JSONValue(Object{}));
  EXPECT_EQ(store.load({"A.xlsx", "here", marks('a', 16, ' ')}), one) << "the other keeps its own";
}

TEST_F(ReviewStoreTest, LetsInheritFromTheOneThatIsMostAlike) {
  const auto alike = [](int marksOfA) { return marks('a', marksOfA, 'c', 16 - marksOfA); };
  store.save({"Best.xlsx", "1", alike(14)}, one);
  store.save({"Less.xlsx", "2", alike(12)}, Object{{"less", 1}});
  EXPECT_EQ(store.load({"New.xlsx", "3", alike(16)}), one);
  store.save({"New.xlsx", "4", alike(14)}, Object{{"name", 1}});
  store.save({"Last.xlsx", "5", alike(14)}, Object{{"last", 1}});
  EXPECT_EQ(store.load({"New.xlsx", "3", alike(16)}), JSONValue(Object{{"name", 1}}));
  EXPECT_EQ(store.load({"Other.xlsx", "3", alike(16)}), JSONValue(Object{{"last", 1}}));
}

TEST_F(ReviewStoreTest, InheritsNothingFromAWorkbookWithHardlyAnythingInIt) {
  const std::string few = marks('a', 3, '.', 13);
  store.save({"A.xlsx", "here", few}, one);
  EXPECT_EQ(store.load({"B.xlsx", "there", few}), JSONValue(nullptr));
  EXPECT_EQ(store.load({"A.xlsx", "", few}), one) << "nothing speaks against it";
  EXPECT_EQ(store.load({"A.xlsx", "there", few}), one) << "nor against a file that was moved";
  EXPECT_EQ(store.load({"B.xlsx", "there", marks('.', 16, '.')}), JSONValue(nullptr));
  const std::string enough = marks('a', 4, '.', 12);
  store.save({"C.xlsx", "here too", enough}, Object{});
  EXPECT_EQ(store.load({"B.xlsx", "there", enough}), JSONValue(Object{}))
      << "what neither has is not counted";
}

TEST_F(ReviewStoreTest, TakesWhatWasKeptByTheNameAlone) {
  put(oneText);
  const ReviewedBook book{"A.xlsx", "here", marks('a', 16, ' ')};
  EXPECT_EQ(store.load(book), one);
  EXPECT_EQ(store.load({"B.xlsx", "here", marks('a', 16, ' ')}), JSONValue(nullptr));
  store.save(book, Object{});
  EXPECT_EQ(store.load({"A.xlsx"}), JSONValue(Object{}));
  EXPECT_EQ(store.load({"A.xlsx", "there", marks('b', 16, ' ')}), JSONValue(nullptr))
      << "the record of before has gone";
}

TEST_F(ReviewStoreTest, IsReadByItsOwnerAlone) {
  store.save({"A.xlsx"}, one);
  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0600));
}

TEST_F(ReviewStoreTest, GoesWithItsLastReview) {
  store.save({"A.xlsx"}, one);
  store.save({"B.xlsx"}, nullptr);
  EXPECT_EQ(readFile(file), oneText);
  store.save({"A.xlsx"}, nullptr);
  EXPECT_FALSE(fs::exists(file));
}

TEST_F(ReviewStoreTest, LetsTheWorkbooksGoThatWereSavedLongestAgo) {
  store.save({"A.xlsx"}, ofSize(2'000'000));
  store.save({"B.xlsx"}, ofSize(2'000'000));
  store.save({"A.xlsx"}, ofSize(2'000'001));  // B.xlsx is the oldest now
  store.save({"C.xlsx"}, ofSize(2'000'000));
  EXPECT_LE(fs::file_size(file), ReviewStore::largestFile);
  EXPECT_EQ(store.load({"A.xlsx"}), ofSize(2'000'001));
  EXPECT_EQ(store.load({"B.xlsx"}), JSONValue(nullptr));
  EXPECT_EQ(store.load({"C.xlsx"}), ofSize(2'000'000));
}

TEST_F(ReviewStoreTest, FillsTheFileToTheLastByte) {
  const std::size_t frame = std::string(R"([{"book":"A","review":{"x":""}}])").size();
  store.save({"A"}, ofSize(ReviewStore::largestFile - frame));
  EXPECT_EQ(fs::file_size(file), ReviewStore::largestFile);
  EXPECT_THROW(store.save({"A"}, ofSize(ReviewStore::largestFile - frame + 1)), RecordError);
  EXPECT_EQ(fs::file_size(file), ReviewStore::largestFile);
}

TEST_F(ReviewStoreTest, LeavesAMalformedFileAlone) {
  for (const char* const text :
       {"{}", "[1]", "[{}]", R"([{"book":"A"}])", R"([{"book":1,"review":{}}])",
        R"([{"book":"A","path":1,"review":{}}])", R"([{"book":"A","marks":1,"review":{}}])", "[",
        ""}) {
    put(text);
    EXPECT_THROW(store.load({"A"}), RecordError) << text;
    EXPECT_THROW(store.save({"A"}, one), RecordError) << text;
    EXPECT_THROW(store.save({"A"}, nullptr), RecordError) << text;
    EXPECT_EQ(readFile(file), text);
  }
  EXPECT_EQ(log.lines().front(), "ERROR reviews.json malformed: the top level is not an array");
}

TEST_F(ReviewStoreTest, RefusesTextThatIsNotUTF8) {
  store.save({"A.xlsx"}, one);
  EXPECT_THROW(store.save({"B.xlsx"}, Object{{"x", "\xff"}}), RecordError);
  EXPECT_EQ(readFile(file), oneText);
}

TEST_F(ReviewStoreTest, ThrowsWhateverStepFailsAndKeepsTheFile) {
  put(oneText);
  FaultyFileSystem counted;
  ReviewStore(file, counted, &log.log()).save({"A.xlsx"}, one);
  const std::size_t steps = counted.steps().size();
  ASSERT_GT(steps, 5U);
  for (std::size_t step = 0; step + 1 < steps; ++step) {
    FaultyFileSystem faulty;
    faulty.failAt(step, EIO);
    EXPECT_THROW(ReviewStore(file, faulty, &log.log()).save({"B.xlsx"}, one), FileError) << step;
    EXPECT_EQ(readFile(file), oneText) << step;
    EXPECT_EQ(filesIn(file.parent_path()), std::vector<std::string>{"reviews.json"}) << step;
  }
}

TEST_F(ReviewStoreTest, HasTheOldOrTheNewReviewWhereverTheProcessDies) {
  put(oneText);
  FaultyFileSystem counted;
  ReviewStore(file, counted, &log.log()).save({"A.xlsx"}, one);
  for (std::size_t step = 0; step < counted.steps().size(); ++step) {
    put(oneText);
    EXPECT_TRUE(killedDuring([&] {
      FaultyFileSystem deadly;
      deadly.killAt(step);
      ReviewStore(file, deadly, &log.log()).save({"A.xlsx"}, Object{});
    }));
    const JSONValue left = store.load({"A.xlsx"});
    EXPECT_TRUE(left == one || left == JSONValue(Object{})) << step;
  }
}

TEST_F(ReviewStoreTest, FollowsALink) {
  fs::create_directories(file.parent_path());
  fs::create_symlink(folder / "elsewhere.json", file);
  store.save({"A.xlsx"}, one);
  EXPECT_TRUE(fs::is_symlink(file));
  EXPECT_EQ(readFile(folder / "elsewhere.json"), oneText);
  EXPECT_EQ(store.load({"A.xlsx"}), one);
}

TEST_F(ReviewStoreTest, SaysWhyNothingCanBeKept) {
  fs::create_directories(file);
  EXPECT_THROW(store.load({"A.xlsx"}), FileError);
  EXPECT_THROW(store.save({"A.xlsx"}, one), FileError);
  fs::remove(file);
  put(oneText);
  fs::permissions(folder.path(), fs::perms(0777));
  fs::permissions(file.parent_path(), fs::perms(0555));
  fs::permissions(file, fs::perms(0644));
  {
    const OrdinaryUser user;
    EXPECT_THROW(store.save({"B.xlsx"}, one), FileError);
  }
  fs::permissions(file.parent_path(), fs::perms(0755));
  EXPECT_EQ(readFile(file), oneText);
}

}  // namespace
}  // namespace quorin

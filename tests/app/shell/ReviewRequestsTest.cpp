#include "tests/app/shell/ShellFixture.h"

namespace quorin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Object = JSONValue::Object;
using Array = JSONValue::Array;

class ReviewRequestsTest : public ShellFixture {
 protected:
  ReviewRequestsTest() : panel(makePanel()) {
    platform.webView().finishLoading();
    takeJournal();
  }

  std::vector<std::string> scriptsAtOnce(const char* verb, Array args) {
    platform.webView().post(Object{{"id", 1}, {"verb", verb}, {"args", std::move(args)}});
    return platform.webView().takeScripts();
  }
  std::vector<std::string> scripts(const char* verb, Array args) {
    EXPECT_THAT(scriptsAtOnce(verb, std::move(args)), IsEmpty());
    settle();
    return platform.webView().takeScripts();
  }
  static std::string replied(const std::string& payload) {
    return R"(window.__qxResolve(1, {"ok":true,"payload":)" + payload + "})";
  }
  static std::string refused(const std::string& text) {
    return R"(window.__qxResolve(1, {"ok":false,"payload":")" + text + "\"})";
  }
  std::vector<std::string> saveReport(const std::optional<std::filesystem::path>& file) {
    EXPECT_THAT(scriptsAtOnce("saveReport", {"report.html", "<p>"}), IsEmpty());
    platform.saveDialog()->choose(file);
    settle();
    return platform.webView().takeScripts();
  }

  // Of bridge and dialog alone.
  std::vector<std::string> asked() {
    Journal asked = takeJournal();
    std::erase_if(asked, [](const std::string& line) { return line.starts_with("evaluate "); });
    return asked;
  }

  static JSONValue book(const char* name) {
    return Object{{"book", name}, {"marks", "aaaa"}, {"path", "p"}};
  }

  const std::filesystem::path reviews = folder / "reviews.json";
  std::unique_ptr<Panel> panel;
};

TEST_F(ReviewRequestsTest, SavesAReviewAndGivesItBack) {
  EXPECT_THAT(scripts("loadReview", {book("A.xlsx")}), ElementsAre(replied("null")));
  EXPECT_THAT(scripts("saveReview", {book("A.xlsx"), Object{{"a", 1}}}),
              ElementsAre(replied("null")));
  EXPECT_EQ(readFile(reviews), R"([{"book":"A.xlsx","marks":"aaaa","path":"p","review":{"a":1}}])");
  EXPECT_THAT(scripts("loadReview", {book("A.xlsx")}), ElementsAre(replied(R"({"a":1})")));
  EXPECT_THAT(scripts("saveReview", {book("A.xlsx"), nullptr}), ElementsAre(replied("null")));
  EXPECT_FALSE(std::filesystem::exists(reviews));
  EXPECT_THAT(asked(), IsEmpty()) << "nothing of it is the bridge's";
}

TEST_F(ReviewRequestsTest, RefusesOtherArguments) {
  const std::pair<const char*, Array> cases[] = {
      {"loadReview", {}},
      {"loadReview", {"A"}},
      {"loadReview", {book("")}},
      {"loadReview", {book("A"), book("B")}},
      {"loadReview", {Object{{"book", "A"}, {"marks", ""}}}},
      {"loadReview", {Object{{"book", "A"}, {"marks", ""}, {"path", 1}}}},
      {"loadReview", {Object{{"book", "A"}, {"marks", nullptr}, {"path", ""}}}},
      {"loadReview", {Object{{"book", "A"}, {"marks", ""}, {"path", ""}, {"x", ""}}}},
      {"loadReview", {Object{{"book", "A"}, {"marks", std::string(1001, 'a')}, {"path", ""}}}},
      {"loadReview", {Object{{"book", "A"}, {"marks", ""}, {"path", std::string(21, 'a')}}}},
      {"saveReview", {}},
      {"saveReview", {book("A")}},
      {"saveReview", {book(""), Object{}}},
      {"saveReview", {nullptr, Object{}}},
      {"saveReview", {book("A"), Array{}}},
      {"saveReview", {book("A"), "text"}},
      {"saveReview", {book("A"), Object{}, true}},
      {"saveReport", {"a.html"}},
      {"saveReport", {"", "text"}},
      {"saveReport", {"a.html", Object{}}},
      {"saveReport", {"../a.html", "text"}},
      {"saveReport", {".a", "text"}},
      {"saveReport", {"a\nb", "text"}},
      {"saveReport", {std::string(201, 'a'), "text"}},
      {"saveReport", {"a.html", "text", "more"}},
  };
  for (const auto& [verb, args] : cases) {
    EXPECT_THAT(scriptsAtOnce(verb, args), ElementsAre(refused("bad args")))
        << verb << " " << args.size();
  }
  settle();
  EXPECT_FALSE(std::filesystem::exists(reviews));
  EXPECT_THAT(asked(), IsEmpty());
}

TEST_F(ReviewRequestsTest, SaysWhatIsWrongWithTheFile) {
  writeFile(reviews, "{");
  EXPECT_THAT(
      scripts("loadReview", {book("A")}),
      ElementsAre(refused("could not read the review: reviews.json is malformed; left untouched")));
  EXPECT_THAT(
      scripts("saveReview", {book("A"), Object{}}),
      ElementsAre(refused("could not save the review: reviews.json is malformed; left untouched")));
  EXPECT_EQ(readFile(reviews), "{");
  std::filesystem::remove(reviews);
  std::filesystem::create_directory(reviews);
  EXPECT_THAT(scripts("saveReview", {book("A"), Object{}}),
              ElementsAre(HasSubstr("could not save the review: ")));
  EXPECT_THAT(logged().back(), HasSubstr("ERROR could not save the review: cannot read /"));
}

TEST_F(ReviewRequestsTest, SavesAReportWhereTheUserSays) {
  EXPECT_THAT(saveReport(folder / "mine.html"), ElementsAre(replied(R"("mine.html")")));
  EXPECT_EQ(readFile(folder / "mine.html"), "<p>");
  EXPECT_THAT(asked(), ElementsAre("askWhere report.html"));
  EXPECT_THAT(saveReport(std::nullopt), ElementsAre(replied("null")));
}

TEST_F(ReviewRequestsTest, SaysWhyAReportIsNotSaved) {
  EXPECT_THAT(saveReport(folder / "none" / "mine.html"),
              ElementsAre(refused("could not save the report: No such file or directory")));
}

TEST_F(ReviewRequestsTest, AsksForOneReportAtATime) {
  EXPECT_THAT(scriptsAtOnce("saveReport", {"a.csv", "a"}), IsEmpty());
  EXPECT_THAT(scriptsAtOnce("saveReport", {"b.csv", "b"}),
              ElementsAre(refused("could not save the report: another one is being saved")));
  platform.saveDialog()->choose(std::nullopt);
  platform.webView().takeScripts();
  EXPECT_THAT(saveReport(std::nullopt), ElementsAre(replied("null")));
}

TEST_F(ReviewRequestsTest, SavesForAPanelThatGoes) {
  EXPECT_THAT(scriptsAtOnce("saveReview", {book("A"), Object{}}), IsEmpty());
  panel.reset();
  settle();
  EXPECT_TRUE(std::filesystem::exists(reviews));
}

TEST_F(ReviewRequestsTest, HasOnlyTheExactNames) {
  scriptsAtOnce("LoadReview", {"A"});
  scriptsAtOnce("loadreview", {"A"});
  settle();
  EXPECT_EQ(asked().size(), 2U);
}

}  // namespace
}  // namespace quorin

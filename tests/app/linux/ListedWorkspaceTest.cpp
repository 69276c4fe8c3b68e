#include <gmock/gmock.h>

#include "app/linux/ListedWorkspace.h"
#include "tests/app/linux/EventLoop.h"

namespace quorin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FakeWindowList : public WindowList {
 public:
  std::vector<ListedWindow> windows() const override { return now; }
  void activate(std::uint32_t id) override { activated.push_back(id); }
  void setOnChanged(std::function<void()> handler) override { changed_ = std::move(handler); }

  void become(std::vector<ListedWindow> windows) {
    now = std::move(windows);
    if (changed_) changed_();
  }

  std::vector<ListedWindow> now;
  std::vector<std::uint32_t> activated;

 private:
  std::function<void()> changed_;
};

class ListedWorkspaceTest : public testing::Test {
 protected:
  ListedWorkspaceTest() {
    workspace.observeActivation(
        [this](const RunningApplication& application) { told.push_back(application.identifier); });
  }

  std::string front() const {
    const auto application = workspace.frontmostApplication();
    return application ? application->identifier : "none";
  }

  FakeWindowList list;
  bool weHaveTheKeyboard = false;
  ListedWorkspace workspace{list, "quorin", [this] { return weHaveTheKeyboard; }};
  std::vector<std::string> told;
};

constexpr const char* excel = "com.microsoft.Excel";
constexpr const char* calcTitle = "Model.xlsx \xe2\x80\x94 LibreOffice Calc";

TEST_F(ListedWorkspaceTest, TellsOfEachApplicationThatComesForwardOnce) {
  list.become({{1, "libreoffice-calc", calcTitle, 0, true}, {2, "foot", "", 0, false}});
  list.become({{1, "libreoffice-calc", "Other.xlsx", 0, true}, {2, "foot", "", 0, false}});
  list.become({{1, "libreoffice-calc", calcTitle, 0, false}, {2, "foot", "", 0, true}});
  EXPECT_THAT(told, ElementsAre(excel, "foot"));
  EXPECT_EQ(front(), "foot");
}

TEST_F(ListedWorkspaceTest, TellsAHandlerThatReplacesItself) {
  workspace.observeActivation([this, kept = std::string(excel)](const RunningApplication& one) {
    workspace.observeActivation([](const RunningApplication&) {});
    told.push_back(kept + " " + one.identifier);
  });
  list.become({{1, "foot", "", 0, true}});
  EXPECT_THAT(told, ElementsAre("com.microsoft.Excel foot"));
}

TEST_F(ListedWorkspaceTest, KnowsCalcsWindowByItsTitleWhereTheCompositorKeepsItsFirstName) {
  list.become({{1, "libreoffice-startcenter", "LibreOffice", 0, true}});
  EXPECT_EQ(front(), "libreoffice-startcenter");
  list.become({{1, "libreoffice-startcenter", calcTitle, 0, true}});
  EXPECT_EQ(front(), excel);
  EXPECT_THAT(told, ElementsAre("libreoffice-startcenter", excel));
  list.become({{1, "libreoffice-writer", "About LibreOffice Calc", 0, true}});
  EXPECT_EQ(front(), "libreoffice-writer");
}

TEST_F(ListedWorkspaceTest, TakesADialogForTheApplicationOfItsOwner) {
  list.become({{1, "libreoffice-calc", calcTitle, 0, true}});
  list.become({{1, "libreoffice-calc", calcTitle, 0, false}, {2, "soffice", "Sort", 1, true}});
  EXPECT_EQ(front(), excel);
  list.become({{1, "libreoffice-calc", calcTitle, 0, false}, {3, "foot", "", 2, true}});
  EXPECT_EQ(front(), "foot") << "its owner is not there";
}

TEST_F(ListedWorkspaceTest, WaitsUntilAnOfficesWindowSaysWhoseItIs) {
  list.become({{1, "foot", "", 0, true}});
  list.become({{1, "foot", "", 0, false}, {2, "soffice", "", 0, true}});
  EXPECT_EQ(front(), "foot");
  list.become({{1, "foot", "", 0, false}, {2, "libreoffice-calc", calcTitle, 0, true}});
  EXPECT_THAT(told, ElementsAre("foot", excel));
}

TEST_F(ListedWorkspaceTest, LeavesCalcInFrontWhileAWindowOfOursHasTheKeyboard) {
  list.become({{1, "libreoffice-calc", calcTitle, 0, true}});
  list.become({{1, "libreoffice-calc", calcTitle, 0, false}, {2, "quorin", "Quorin", 0, true}});
  EXPECT_EQ(front(), excel);
  weHaveTheKeyboard = true;  // with a window that is not listed
  list.become({{1, "libreoffice-calc", calcTitle, 0, false}});
  const gint64 end = g_get_monotonic_time() + 300'000;  // longer than the keyboard takes
  runUntil([&] { return g_get_monotonic_time() > end; });
  EXPECT_EQ(front(), excel);
  weHaveTheKeyboard = false;
  list.become({{1, "libreoffice-calc", calcTitle, 0, false}});
  EXPECT_TRUE(runUntil([&] { return front() == "none"; }));
  EXPECT_THAT(told, ElementsAre(excel));
}

TEST_F(ListedWorkspaceTest, BringsTheWindowForwardThatWasThereLast) {
  list.become(
      {{1, "libreoffice-calc", calcTitle, 0, true}, {2, "libreoffice-calc", "B", 0, false}});
  list.become(
      {{1, "libreoffice-calc", calcTitle, 0, false}, {2, "libreoffice-calc", "B", 0, true}});
  list.become(
      {{1, "libreoffice-calc", calcTitle, 0, true}, {2, "libreoffice-calc", "B", 0, false}});
  list.become({{1, "libreoffice-calc", calcTitle, 0, false},
               {2, "libreoffice-calc", "B", 0, false},
               {3, "foot", "", 0, true}});
  const auto calc = workspace.runningApplications(excel);
  ASSERT_EQ(calc.size(), 1U);
  workspace.activate(calc.front());
  EXPECT_THAT(list.activated, ElementsAre(1U));
  workspace.reactivate();
  EXPECT_THAT(list.activated, ElementsAre(1U, 3U));
  list.become({});
  workspace.activate(calc.front());
  workspace.reactivate();
  EXPECT_THAT(list.activated, ElementsAre(1U, 3U));
  EXPECT_THAT(workspace.runningApplications(excel), IsEmpty());
}

}  // namespace
}  // namespace quorin

// quorinctl as its users run it: the program, a real Calc, real workbooks.
#include <algorithm>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <string_view>

#include "host/calc/uno/OfficeFiles.h"
#include "kit/support/FolderLock.h"
#include "kit/value/JSONText.h"
#include "kit/value/Marshal.h"
#include "tests/fakes/StoppedProcess.h"
#include "tests/fakes/TemporaryFolder.h"
#include "tests/tools/Quorinctl.h"
#include "tests/tools/ToolProcess.h"

namespace quorin {

namespace {

using std::filesystem::path;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using Object = JSONValue::Object;

const path workbooks = QUORIN_WORKBOOKS;

TEST_F(Quorinctl, AnswersInOrderAndEndsWithTheInput) {
  const auto tool = start({"--workbook", workbook()});
  tool->write(request(1, "probe") + request(2, "readCell") + request(3, "evaluate", "[\"1/0\"]") +
              request(4, "evaluate", "[\"B2*2\"]") + request(5, "readRangeX"));
  const JSONValue probe = reply(*tool);
  EXPECT_EQ(member(probe, "id"), JSONValue(1));
  EXPECT_EQ(member(probe, "ok"), JSONValue(true));
  EXPECT_EQ(member(member(probe, "payload"), "state"), JSONValue("ok"));
  EXPECT_EQ(reply(*tool), JSONValue(Object{{"id", 2},
                                           {"ok", true},
                                           {"payload", Object{{"book", "Small.csv"},
                                                              {"sheet", "Small"},
                                                              {"addr", "A1"},
                                                              {"row", 1},
                                                              {"col", 1},
                                                              {"formula", ""},
                                                              {"formulaLocal", ""},
                                                              {"value", "a"},
                                                              {"selection", "$A$1"},
                                                              {"region", "$A$1:$B$3"}}}}));
  EXPECT_EQ(
      reply(*tool),
      JSONValue(Object{
          {"id", 3},
          {"ok", true},
          {"payload", Object{{"ok", false}, {"kind", "excelError"}, {"message", "#DIV/0!"}}}}));
  EXPECT_EQ(
      reply(*tool),
      JSONValue(Object{{"id", 4}, {"ok", true}, {"payload", Object{{"ok", true}, {"value", 4}}}}));
  EXPECT_EQ(reply(*tool),
            JSONValue(Object{{"id", 5},
                             {"ok", false},
                             {"payload", Object{{"kind", "transport"},
                                                {"message", "unknown verb readRangeX"}}}}));
  const std::string office = officeName();
  tool->closeInput();
  EXPECT_EQ(tool->wait(), 0);
  EXPECT_EQ(tool->readLine(), std::nullopt);
  EXPECT_EQ(tool->errors(), "");
  expectNothingLeft(office);
}

TEST_F(Quorinctl, HasNoWorkbookWithoutOne) {
  const auto tool = start({});
  EXPECT_EQ(member(ask(*tool, 1, "probe"), "payload"), JSONValue(Object{{"state", "noWorkbook"}}));
  tool->closeInput();
  EXPECT_EQ(tool->wait(), 0);
  expectNothingLeft();
}

TEST_F(Quorinctl, MovesTheSelection) {
  const auto tool = start({"--workbook", workbook(), "--timing"});
  const JSONValue selected = ask(*tool, 1, "select", "[[\"A2\",\"B3\"]]");
  EXPECT_EQ(member(selected, "payload"), JSONValue(Object{{"areas", 2}}));
  ASSERT_TRUE(member(selected, "ms").number());
  EXPECT_GT(*member(selected, "ms").number(), 0);
  EXPECT_EQ(member(ask(*tool, 2, "activate", "[\"Small!B2\"]"), "payload"), JSONValue(true));
  EXPECT_EQ(member(ask(*tool, 3, "pollCell"), "payload"),
            JSONValue(Object{{"book", "Small.csv"}, {"sheet", "Small"}, {"addr", "$B$2"}}));
  EXPECT_EQ(member(ask(*tool, 4, "dependents", "[\"A1\"]"), "payload"), JSONValue(""));
  tool->closeInput();
  EXPECT_EQ(tool->wait(), 0);
}

TEST_F(Quorinctl, AnswersMalformedLinesAndReadsOn) {
  const auto tool = start({"--workbook", workbook()});
  tool->write("nonsense\n\n[]\n{\"id\":9}\n" + request(1, "pollCell"));
  for (int i = 0; i < 2; ++i) {
    const JSONValue refused = reply(*tool);
    EXPECT_EQ(member(refused, "id"), JSONValue(nullptr));
    EXPECT_EQ(member(refused, "ok"), JSONValue(false));
    ASSERT_TRUE(member(member(refused, "payload"), "message").string());
    EXPECT_THAT(*member(member(refused, "payload"), "message").string(),
                testing::StartsWith("malformed request: "));
  }
  EXPECT_EQ(member(member(reply(*tool), "payload"), "message"), JSONValue("missing verb"));
  EXPECT_EQ(member(reply(*tool), "ok"), JSONValue(true));
  tool->closeInput();
  EXPECT_EQ(tool->wait(), 0);
}

TEST_F(Quorinctl, RefusesBadCallsWithOneLineAndStatusTwo) {
  std::ofstream(folder_ / "broken.xlsx") << "no workbook at all";
  const std::vector<std::vector<std::string>> calls = {
      {"--nonsense"},
      {"--workbook"},
      {"--workbook", folder_ / "missing.xlsx"},
      {"--workbook", folder_ / "tmp"},
      {"--workbook", folder_ / "broken.xlsx"},
      {"--workbook", "a", "--attach"},
      {"lint", folder_ / "missing.applescript"},
  };
  for (const auto& arguments : calls) {
    const auto tool = start(arguments);
    tool->closeInput();
    EXPECT_EQ(tool->wait(), 2) << testing::PrintToString(arguments);
    EXPECT_EQ(tool->readLine(), std::nullopt) << testing::PrintToString(arguments);
    const std::string errors = tool->errors();
    EXPECT_THAT(errors, testing::StartsWith("quorinctl: "));
    EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 1) << errors;
    expectNothingLeft();
  }
}

TEST_F(Quorinctl, TidiesUpWhenASignalEndsIt) {
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    const auto tool = start({"--workbook", workbook()});
    ask(*tool, 1, "pollCell");
    const std::string office = officeName();
    tool->signal(number);
    EXPECT_EQ(tool->wait(), 128 + number);
    expectNothingLeft(office);
  }
}

TEST_F(Quorinctl, TidiesUpWhenASignalEndsItBeforeTheOfficeAnswers) {
  const auto tool = start({"--workbook", workbook()});
  tool->write(request(1, "pollCell"));
  tool->signal(SIGTERM);
  EXPECT_EQ(tool->wait(), 128 + SIGTERM);
  expectNothingLeft();
}

TEST_F(Quorinctl, LeavesNothingEvenWhenItIsKilled) {
  const auto tool = start({"--workbook", workbook()});
  ask(*tool, 1, "pollCell");
  const std::string office = officeName();
  std::vector<pid_t> processes = processesWith((folder_ / "tmp").string());
  EXPECT_THAT(processes, Not(IsEmpty()));
  tool->signal(SIGKILL);
  EXPECT_EQ(tool->wait(), 128 + SIGKILL);
  EXPECT_TRUE(waitUntilEnded(processes));
  expectNothingLeft(office);
}

TEST_F(Quorinctl, KeepsItsFilesWhereItIsToldTo) {
  const auto tool = start({"--workbook", workbook(), "--data", folder_ / "kept"});
  ask(*tool, 1, "nonsense");
  const auto second = start({"--data", folder_ / "kept"});
  EXPECT_EQ(second->wait(), 2);
  EXPECT_THAT(second->errors(), HasSubstr("is in use by another Quorin"));
  tool->closeInput();
  EXPECT_EQ(tool->wait(), 0);
  std::ifstream log(folder_ / "kept/Logs/Quorin/quorin.log");
  std::string line;
  std::getline(log, line);
  EXPECT_THAT(line, testing::EndsWith("ERROR nonsense: unknown verb"));
  expectNothingLeft();
}

// Each workbook of the collection, where that is at hand.
class EveryWorkbook : public Quorinctl, public testing::WithParamInterface<std::string> {};

TEST_F(Quorinctl, DoesNotAttachWhileQuorinHoldsItsFolder) {
  const auto held = FolderLock::acquire(folder_ / "data/Quorin");
  ASSERT_TRUE(held);
  const auto tool = start({"--attach"});
  EXPECT_EQ(tool->wait(), 2);
  EXPECT_EQ(tool->readLine(), std::nullopt);
  EXPECT_EQ(tool->errors(),
            "quorinctl: " + (folder_ / "data/Quorin").string() + " is in use by another Quorin\n");
  EXPECT_THAT(namesIn(folder_ / "data"), ElementsAre("Quorin", "Quorin/lock"));
  EXPECT_THAT(namesIn(folder_ / "state"), IsEmpty());
}

TEST_F(Quorinctl, TellsThatTheOfficeDied) {
  const auto tool = start({"--workbook", workbook()});
  ask(*tool, 1, "pollCell");
  ASSERT_EQ(kill(office(), SIGKILL), 0);
  const JSONValue answer = ask(*tool, 2, "readCell");
  EXPECT_EQ(member(answer, "ok"), JSONValue(false));
  EXPECT_EQ(member(member(answer, "payload"), "kind"), JSONValue("transport"));
  tool->closeInput();
  EXPECT_EQ(tool->wait(), 0);
  expectNothingLeft();
}

TEST_F(Quorinctl, AnswersInTimeWhileTheOfficeIsStopped) {
  const auto tool = start({"--workbook", workbook()});
  ask(*tool, 1, "pollCell");
  ASSERT_TRUE(stopProcess(office()));
  const auto asked = std::chrono::steady_clock::now();
  const JSONValue late = ask(*tool, 2, "pollCell");
  const std::chrono::duration<double> took = std::chrono::steady_clock::now() - asked;
  EXPECT_EQ(member(member(late, "payload"), "kind"), JSONValue("timeout"));
  EXPECT_EQ(member(member(late, "payload"), "message"),
            JSONValue("Excel did not respond within 3s"));
  EXPECT_LT(took.count(), 3.5);
  const JSONValue busy = ask(*tool, 3, "pollCell");
  EXPECT_EQ(member(member(busy, "payload"), "message"),
            JSONValue("Excel is still busy with the previous call after 3s"));
  ASSERT_EQ(kill(office(), SIGCONT), 0);
  EXPECT_EQ(member(ask(*tool, 4, "pollCell"), "ok"), JSONValue(true));
  tool->closeInput();
  EXPECT_EQ(tool->wait(), 0);
  expectNothingLeft();
}

bool isLate(const JSONValue& payload) {
  const JSONValue* const kind = payload.member("kind");
  const JSONValue* const message = payload.member("message");
  return kind && message && message->string() &&
         (*kind == JSONValue("timeout") || message->string()->ends_with("AppleEvent timed out."));
}

std::vector<std::string> collection() {
  std::vector<std::string> names;
  if (!std::filesystem::is_directory(workbooks)) return names;
  for (const auto& entry : std::filesystem::directory_iterator(workbooks))
    if (entry.path().extension() == ".xlsx" || entry.path().extension() == ".xlsm")
      names.push_back(entry.path().filename());
  std::sort(names.begin(), names.end());
  return names;
}

TEST(EveryWorkbookCollection, IsAtHand) {
  if (!std::filesystem::is_directory(workbooks))
    GTEST_SKIP() << "there are no workbooks at " << workbooks;
  EXPECT_EQ(collection().size(), 14u);
}

TEST_P(EveryWorkbook, AnswersTheFirstQuestions) {
  const path file = workbooks / GetParam();
  const std::vector<std::string> before = namesIn(workbooks);
  const auto tool = start({"--workbook", file});
  EXPECT_EQ(member(member(ask(*tool, 1, "probe"), "payload"), "state"), JSONValue("ok"));

  const JSONValue cell = ask(*tool, 2, "readCell");
  EXPECT_EQ(member(cell, "ok"), JSONValue(true));
  const JSONValue& payload = member(cell, "payload");
  EXPECT_EQ(member(payload, "book"), JSONValue(GetParam()));
  ASSERT_TRUE(member(payload, "addr").string());
  EXPECT_THAT(*member(payload, "addr").string(), testing::MatchesRegex("[A-Z]+[0-9]+"));
  EXPECT_TRUE(member(payload, "formula").string());
  EXPECT_TRUE(payload.member("value"));

  // A big workbook's first evaluation may outlast the time that the verb or its handler has, as the
  // page would see it too; a later question finds it done.
  JSONValue evaluated = ask(*tool, 3, "evaluate", "[\"1/0\"]");
  for (int id = 4; id < 15 && isLate(member(evaluated, "payload")); ++id)
    evaluated = ask(*tool, id, "evaluate", "[\"1/0\"]");
  EXPECT_EQ(member(evaluated, "payload"),
            JSONValue(Object{{"ok", false}, {"kind", "excelError"}, {"message", "#DIV/0!"}}));

  const std::string office = officeName();
  tool->closeInput();
  EXPECT_EQ(tool->wait(), 0);
  EXPECT_EQ(tool->errors(), "");
  expectNothingLeft(office);
  EXPECT_EQ(namesIn(workbooks), before) << "nothing may appear beside the workbook";
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(EveryWorkbook);
INSTANTIATE_TEST_SUITE_P(Workbooks, EveryWorkbook, testing::ValuesIn(collection()),
                         [](const auto& instance) {
                           std::string name = instance.param;
                           std::replace_if(
                               name.begin(), name.end(),
                               [](unsigned char c) { return !std::isalnum(c); }, '_');
                           return name;
                         });

}  // namespace
}  // namespace quorin

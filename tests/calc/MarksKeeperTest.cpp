// What becomes of the marks in the user's workbook while the user works on and whatever happens to
// us: they are in no file, follow the edits, and go with us.
#include <algorithm>
#include <array>
#include <filesystem>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <signal.h>

#include "host/calc/marks/MarksKeeper.h"
#include "host/calc/office/PrivateOffice.h"
#include "tests/calc/ChildProgram.h"
#include "tests/calc/SheetHands.h"
#include "tests/calc/UserHands.h"
#include "tests/calc/XlsxFile.h"
#include "tests/fakes/Eventually.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/StoppedProcess.h"
#include "tests/fakes/TemporaryFolder.h"
#include "tests/xlsx/ZipArchive.h"

namespace quorin::host::calc {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Marks = std::vector<std::string>;

// One whose parent has not asked for its end yet counts too.
bool isGone(pid_t process) {
  const std::string status = readFile("/proc/" + std::to_string(process) + "/stat");
  const std::size_t name = status.rfind(") ");  // the name before it may hold anything
  return name == std::string::npos || status[name + 2] == 'Z';
}

// 0 when there is none.
pid_t onlyChildOf(pid_t process) {
  const std::string number = std::to_string(process);
  return std::atoi(readFile("/proc/" + number + "/task/" + number + "/children").c_str());
}

class Marked : public testing::Test {
 protected:
  static void SetUpTestSuite() { office = std::make_unique<PrivateOffice>(); }
  static void TearDownTestSuite() { office.reset(); }

  Marked() : name("Book" + std::to_string(++books) + ".xlsx"), user(office->open()) {
    auto book = fakes::knownWorkbook();
    book.name = name;
    book.sheets[1].name = "Other";  // without the blank that separates words in requests
    book.names.clear();
    fakes::writeXlsx(book, folder / name);
    user.open((folder / name).string());
    sheets.emplace(office->open(), name);
    // There is something to undo and to redo, and nothing to save.
    user.enter(name, "Data", "H1", "first");
    user.enter(name, "Data", "H2", "second");
    user.undo(name);
    sheets->setModified(false);
    client.emplace(std::vector<std::string>{QUORIN_MARKING_CLIENT, office->open().pipe,
                                            std::to_string(office->open().process), name});
    EXPECT_EQ(client->readLine(), "ready");
  }

  ~Marked() override {
    client->kill();
    EXPECT_TRUE(keeperEnds());  // before it takes away what the next test marks
  }

  pid_t mark(const std::string& sheet, const std::string& cells) {
    const std::string answer = client->ask(sheet + " " + cells);
    const pid_t process = std::atoi(answer.c_str());
    EXPECT_GT(process, 0) << answer;
    if (process > 0) keeper = process;
    return process;
  }
  testing::AssertionResult comesTo(const Marks& expected) {
    if (eventually([&] { return sheets->marks() == expected; })) return testing::AssertionSuccess();
    return testing::AssertionFailure() << testing::PrintToString(sheets->marks());
  }
  bool keeperEnds() const {
    return keeper == 0 || eventually([&] { return isGone(keeper); });
  }

  static inline std::unique_ptr<PrivateOffice> office;
  static inline int books = 0;
  const std::string name;
  TemporaryFolder folder;
  UserHands user;
  std::optional<SheetHands> sheets;
  std::optional<ChildProgram> client;
  pid_t keeper = 0;
};

const Marks marked{"Data!$B$2,$C$5:$D$6"};
constexpr std::array suffixes{".xlsx", ".xls", ".ods", ".fods", ".pdf"};

// The parts of a file without what tells the time of saving.
std::map<std::string, std::string> partsOf(const std::filesystem::path& file) {
  std::map<std::string, std::string> parts;
  const std::string suffix = file.extension();
  if (suffix == ".xlsx" || suffix == ".ods") {
    const xlsx::ZipArchive archive(file);
    for (const std::string& part : archive.names()) parts[part] = archive.file(part).value();
    for (const char* times : {"docProps/core.xml", "meta.xml"}) {
      if (parts.contains(times)) parts[times].clear();
    }
    return parts;
  }
  std::string whole = readFile(file);
  if (suffix == ".fods") {
    whole = std::regex_replace(whole, std::regex("<office:meta>[^]*?</office:meta>"), "");
  } else if (suffix == ".pdf") {
    whole = std::regex_replace(whole, std::regex("/CreationDate\\(.*?\\)"), "");
    whole = std::regex_replace(whole, std::regex("/(ID|DocChecksum)[^]*?>>"), "");
  } else {
    // In properties of this type, 64, eight bytes are a time.
    const std::string type("@\0\0\0", 4);
    for (std::size_t at = whole.find(type); at != std::string::npos;
         at = whole.find(type, at + 4)) {
      if (at + 12 <= whole.size()) whole.replace(at + 4, 8, 8, '\0');
    }
  }
  parts["whole"] = whole;
  return parts;
}

std::string around(const std::string& text, std::ptrdiff_t at) {
  constexpr std::ptrdiff_t before = 80;
  return text.substr(static_cast<std::size_t>(std::max(at - before, std::ptrdiff_t{0})),
                     2 * before);
}

void expectSameParts(const std::filesystem::path& one, const std::filesystem::path& other) {
  const auto first = partsOf(one), second = partsOf(other);
  for (const auto& [part, text] : first) {
    ASSERT_TRUE(second.contains(part)) << part;
    const std::string& its = second.at(part);
    const auto [here, there] = std::mismatch(text.begin(), text.end(), its.begin(), its.end());
    EXPECT_TRUE(here == text.end() && there == its.end())
        << other << ": " << part << ": " << around(text, here - text.begin()) << "\ninstead of\n"
        << around(its, there - its.begin());
  }
  EXPECT_EQ(first.size(), second.size());
}

TEST_F(Marked, ShowTheWorkbookAsItWas) {
  const std::string before = user.stateOf(name);
  mark("Data", "B2,C5:D6");
  EXPECT_EQ(sheets->marks(), marked);
  EXPECT_EQ(user.stateOf(name), before);
}

TEST_F(Marked, AreInNoFileOfAnyFormat) {
  // The first of each kind changes something about the next.
  for (const char* copy : {"first", "unmarked"}) {
    for (const char* suffix : suffixes) ASSERT_TRUE(sheets->saveCopy(folder / copy += suffix));
  }
  mark("Data", "B2,C5:D6");
  const std::string before = user.stateOf(name);
  for (const char* suffix : suffixes) {
    ASSERT_TRUE(sheets->saveCopy(folder / "marked" += suffix));
    EXPECT_EQ(sheets->marks(), marked) << suffix;
    EXPECT_EQ(user.stateOf(name), before) << suffix;
    expectSameParts(folder / "unmarked" += suffix, folder / "marked" += suffix);
  }
}

TEST_F(Marked, AreBackAfterSaving) {
  ASSERT_TRUE(sheets->saveAs(folder / "Unmarked.xlsx"));
  sheets->enter("Data", "A1", "Item");
  ASSERT_TRUE(sheets->save());
  mark("Data", "B2,C5:D6");
  ASSERT_TRUE(sheets->saveAs(folder / "Marked.xlsx"));
  EXPECT_FALSE(sheets->isModified());
  EXPECT_EQ(sheets->marks(), marked);
  sheets->enter("Data", "A1", "Item");
  EXPECT_TRUE(sheets->isModified());
  ASSERT_TRUE(sheets->save());
  EXPECT_FALSE(sheets->isModified());
  EXPECT_EQ(sheets->marks(), marked);
  expectSameParts(folder / "Unmarked.xlsx", folder / "Marked.xlsx");
}

TEST_F(Marked, AreInNoRecoveryFile) {
  sheets->enter("Data", "A1", "Item");
  ASSERT_TRUE(sheets->saveForRecovery(folder / "first.xlsx"));
  sheets->enter("Data", "A1", "Item");
  ASSERT_TRUE(sheets->saveForRecovery(folder / "unmarked.xlsx"));
  mark("Data", "B2,C5:D6");
  sheets->enter("Data", "A1", "Item");
  ASSERT_TRUE(sheets->saveForRecovery(folder / "marked.xlsx"));
  EXPECT_EQ(sheets->marks(), marked);
  expectSameParts(folder / "unmarked.xlsx", folder / "marked.xlsx");
}

TEST_F(Marked, AreBackAfterASaveThatFailed) {
  mark("Data", "B2,C5:D6");
  writeFile(folder / "file", "where a folder would be needed");
  const std::filesystem::path nowhere = folder / "file" / "Book.ods";
  const std::string before = user.stateOf(name);
  EXPECT_FALSE(sheets->saveCopy(nowhere));
  EXPECT_EQ(sheets->marks(), marked);
  EXPECT_EQ(user.stateOf(name), before);
  EXPECT_FALSE(sheets->saveAs(nowhere));  // the office itself takes it for a change
  EXPECT_EQ(sheets->marks(), marked);
  sheets->setModified(false);
  EXPECT_EQ(user.stateOf(name), before);
}

TEST_F(Marked, FollowRowsAndColumns) {
  mark("Data", "B2,C5:D6");
  sheets->insertRows("Data", 3, 2);
  EXPECT_TRUE(comesTo({"Data!$B$2,$C$7:$D$8"}));
  sheets->insertColumns("Data", 2, 1);
  EXPECT_TRUE(comesTo({"Data!$C$2,$D$7:$E$8"}));
  sheets->deleteRows("Data", 7, 1);
  EXPECT_TRUE(comesTo({"Data!$C$2,$D$7:$E$7"}));
  sheets->deleteColumns("Data", 1, 1);
  EXPECT_TRUE(comesTo({"Data!$B$2,$C$7:$D$7"}));
  sheets->deleteRows("Data", 2, 1);
  EXPECT_TRUE(comesTo({"Data!$C$6:$D$6"}));
  sheets->undo();
  EXPECT_TRUE(comesTo({"Data!$B$2,$C$7:$D$7"}));
  sheets->redo();
  EXPECT_TRUE(comesTo({"Data!$C$6:$D$6"}));
  sheets->deleteRows("Data", 6, 1);
  EXPECT_TRUE(comesTo({}));
}

TEST_F(Marked, StayOverTheirCells) {
  mark("Data", "B2,C5:D6");
  sheets->setRowHeight("Data", 1, 2000);
  EXPECT_TRUE(comesTo(marked));
  sheets->setColumnWidth("Data", 3, 5000);
  EXPECT_TRUE(comesTo(marked));
  sheets->showRow("Data", 5, false);
  EXPECT_TRUE(comesTo(marked));
  sheets->showRow("Data", 2, false);
  EXPECT_TRUE(comesTo(marked));
  sheets->showRow("Data", 6, false);  // nothing of it is left to be seen
  EXPECT_TRUE(comesTo(marked));
  sheets->showRow("Data", 6, true);
  EXPECT_TRUE(comesTo(marked));
  sheets->showColumn("Data", 1, false);
  EXPECT_TRUE(comesTo(marked));
}

TEST_F(Marked, FollowCellsThatAreMoved) {
  mark("Data", "B2,C5:D6");
  sheets->moveCells("Data", "B2", "F9");
  EXPECT_TRUE(comesTo({"Data!$F$9,$C$5:$D$6"}));
}

TEST_F(Marked, FollowTheirSheet) {
  mark("Data", "B2,C5:D6");
  mark("Other", "A1");
  sheets->renameSheet("Data", "Renamed");
  sheets->moveSheet("Renamed", 3);
  sheets->insertRows("Renamed", 1, 1);
  EXPECT_TRUE(comesTo({"Other!$A$1", "Renamed!$B$3,$C$6:$D$7"}));
  sheets->deleteSheet("Renamed");
  sheets->insertRows("Other", 1, 1);
  EXPECT_TRUE(comesTo({"Other!$A$2"}));
  sheets->undo();
  sheets->undo();  // brings back marks that nobody knows of any more
  EXPECT_TRUE(comesTo({"Other!$A$1"}));
}

TEST_F(Marked, AreNotOnTheCopyOfASheet) {
  mark("Data", "B2,C5:D6");
  sheets->copySheet("Data", "Copy");
  EXPECT_TRUE(comesTo(marked));
  sheets->insertRows("Data", 1, 1);
  EXPECT_TRUE(comesTo({"Data!$B$3,$C$6:$D$7"}));
}

TEST_F(Marked, AreNotOnTheCopyOfASheetInAnyOtherWorkbook) {
  const auto open = [&](const std::string& other) {
    fakes::writeXlsx({.name = other, .sheets = {{"Only", {}}}}, folder / other);
    user.open((folder / other).string());
  };
  const auto copyTo = [&](const std::string& other) {
    user.copySheetTo(name, "Data", other);
    EXPECT_TRUE(eventually([&] { return user.shapes(other, "Data").empty(); })) << other;
    EXPECT_EQ(sheets->marks(), marked);
    user.close(other);
  };
  open("Before.xlsx");
  mark("Data", "B2,C5:D6");
  open("After.xlsx");
  copyTo("Before.xlsx");
  copyTo("After.xlsx");
  copyTo(user.openBlank());
}

TEST_F(Marked, AreAllKnownInAWorkbookWithChanges) {
  sheets->enter("Data", "H9", "changed");
  mark("Data", "B2,C5:D6");
  sheets->enter("Data", "H9", "again");
  mark("Data", "A7");
  sheets->insertRows("Data", 1, 1);
  EXPECT_TRUE(comesTo({"Data!$B$3,$C$6:$D$7", "Data!$A$8"}));
}

TEST_F(Marked, FollowWithoutATrace) {
  mark("Data", "B2,C5:D6");
  sheets->insertRows("Data", 3, 1);
  ASSERT_TRUE(comesTo({"Data!$B$2,$C$6:$D$7"}));
  sheets->undo();
  ASSERT_TRUE(comesTo(marked));
  sheets->setModified(false);
  const std::string before = user.stateOf(name);
  mark("Data", "A7");
  EXPECT_EQ(user.stateOf(name), before);
  sheets->insertRows("Data", 3, 1);
  ASSERT_TRUE(comesTo({"Data!$B$2,$C$6:$D$7", "Data!$A$8"}));
  EXPECT_TRUE(sheets->isModified());
  sheets->undo();
  EXPECT_TRUE(comesTo({"Data!$B$2,$C$5:$D$6", "Data!$A$7"}));
}

// What the user does must neither wait nor get marks into a file.
void workAndSave(SheetHands& sheets, const std::filesystem::path& file) {
  auto work = std::async(std::launch::async, [&] {
    for (int row = 20; row < 30; ++row) sheets.enter("Data", "A" + std::to_string(row), "=1+1");
    sheets.insertRows("Data", 3, 1);
    return sheets.saveCopy(file);
  });
  ASSERT_EQ(work.wait_for(60s), std::future_status::ready);
  EXPECT_TRUE(work.get());
  const auto parts = partsOf(file);
  EXPECT_TRUE(std::none_of(parts.begin(), parts.end(), [](const auto& part) {
    return part.second.find("Quorin") != std::string::npos || part.first.find("drawing") == 3;
  }));
}

TEST_F(Marked, HoldUpNobodyWhileTheirOwnerIsStopped) {
  mark("Data", "B2,C5:D6");
  ASSERT_TRUE(stopProcess(client->process()));
  workAndSave(*sheets, folder / "Copy.xlsx");
  EXPECT_TRUE(comesTo({"Data!$B$2,$C$6:$D$7"}));
  ::kill(client->process(), SIGCONT);
  mark("Data", "A8");
  EXPECT_EQ(sheets->marks(), (Marks{"Data!$B$2,$C$6:$D$7", "Data!$A$8"}));
}

TEST_F(Marked, GoWithAnOwnerThatIsKilled) {
  mark("Data", "B2,C5:D6");
  const std::string before = user.stateOf(name);
  client->kill();
  EXPECT_TRUE(comesTo({}));
  EXPECT_TRUE(keeperEnds());
  EXPECT_EQ(user.stateOf(name), before);
  workAndSave(*sheets, folder / "Copy.xlsx");
  EXPECT_TRUE(sheets->isModified());
  sheets->undo();
  EXPECT_TRUE(sheets->marks().empty());
}

TEST_F(Marked, GoWhenTheirOwnerEnds) {
  mark("Data", "B2,C5:D6");
  EXPECT_EQ(client->finish(), 0);
  EXPECT_TRUE(sheets->marks().empty());
  EXPECT_TRUE(keeperEnds());
}

// A program that asks the office that another works in.
TEST_F(Marked, AreTheirOwnersAloneWhereThereAreTwo) {
  const pid_t first = mark("Data", "B2,C5:D6");
  ChildProgram other(
      {QUORIN_MARKING_CLIENT, office->open().pipe, std::to_string(office->open().process), name});
  EXPECT_EQ(other.readLine(), "ready");
  EXPECT_NE(std::atoi(other.ask("Other A1").c_str()), first);
  const Marks both{"Data!$B$2,$C$5:$D$6", "Other!$A$1"};
  sheets->insertRows("Data", 1, 1);
  sheets->insertRows("Other", 1, 1);
  EXPECT_TRUE(comesTo({"Data!$B$3,$C$6:$D$7", "Other!$A$2"}));
  sheets->undo();
  sheets->undo();
  EXPECT_TRUE(comesTo(both));
  workAndSave(*sheets, folder / "Copy.xlsx");
  EXPECT_TRUE(comesTo({"Data!$B$2,$C$6:$D$7", "Other!$A$1"}));
  EXPECT_EQ(other.finish(), 0);
  EXPECT_EQ(sheets->marks(), (Marks{"Data!$B$2,$C$6:$D$7"}));
}

TEST_F(Marked, OutliveTheirKeeper) {
  const pid_t first = mark("Data", "B2,C5:D6");
  ::kill(first, SIGKILL);
  ASSERT_TRUE(eventually([&] { return isGone(first); }));
  const pid_t second = mark("Data", "A7");
  EXPECT_NE(first, second);
  sheets->insertRows("Data", 1, 1);
  EXPECT_TRUE(comesTo({"Data!$B$3,$C$6:$D$7", "Data!$A$8"}));
  workAndSave(*sheets, folder / "Copy.xlsx");
}

// The office waits for the keeper's answer before it saves.
TEST_F(Marked, HoldUpNobodyWhileTheirKeeperIsStopped) {
  const pid_t first = mark("Data", "B2,C5:D6");
  const pid_t worker = onlyChildOf(first);
  ASSERT_GT(worker, 0);
  const std::filesystem::path copy = folder / "Copy.xlsx";
  ::kill(worker, SIGSTOP);
  auto work = std::async(std::launch::async, [&] { return sheets->saveCopy(copy); });
  const bool isDone = work.wait_for(20s) == std::future_status::ready;
  ::kill(worker, SIGKILL);
  EXPECT_TRUE(isDone);
  work.wait();
  EXPECT_TRUE(eventually([&] { return isGone(first); }));
  EXPECT_NE(mark("Data", "A8"), first);
  EXPECT_TRUE(comesTo({"Data!$B$2,$C$5:$D$6", "Data!$A$8"}));
}

// The office would wait for ever for one that nobody ends.
TEST_F(Marked, LeaveNoWorkerBehindWithoutItsGuard) {
  const pid_t guard = mark("Data", "B2");
  const pid_t worker = onlyChildOf(guard);
  ASSERT_GT(worker, 0);
  ::kill(guard, SIGKILL);
  EXPECT_TRUE(eventually([&] { return isGone(worker); }));
}

TEST_F(Marked, LeaveNoKeeperBehindWhenTheOfficeGoes) {
  PrivateOffice other;
  const OfficeAddress address = other.open();
  UserHands hands(address);
  hands.open((folder / name).string());
  ChildProgram owner({QUORIN_MARKING_CLIENT, address.pipe, std::to_string(address.process), name});
  EXPECT_EQ(owner.readLine(), "ready");
  keeper = std::atoi(owner.ask("Data B2").c_str());
  ASSERT_GT(keeper, 0);
  ::kill(address.process, SIGKILL);
  EXPECT_TRUE(eventually([&] { return isGone(keeper); }));
}

}  // namespace
}  // namespace quorin::host::calc

// `quorinctl audit` as its users run it: the program, a real Calc, workbooks with a known mistake.
#include <chrono>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <sstream>
#include <stdexcept>
#include <string>
#include <zip.h>

#include "kit/value/JSONText.h"
#include "tests/calc/XlsxFile.h"
#include "tests/fakes/Files.h"
#include "tests/fakes/WorkbookDescription.h"
#include "tests/tools/Quorinctl.h"

namespace quorin {
namespace {

using host::CellValue;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class QuorinctlAudit : public Quorinctl {
 protected:
  // Ten rows that add what stands to the left, but for row 7, which subtracts.
  path oddWorkbook(const std::string& name) const {
    fakes::SheetDescription sheet{"Data", {}};
    for (int row = 1; row <= 10; ++row) {
      const std::string number = std::to_string(row);
      const double left = row * 3, right = row * row;
      sheet.cells.push_back({"A" + number, CellValue(left)});
      sheet.cells.push_back({"B" + number, CellValue(right)});
      const bool isOdd = row == 7;
      sheet.cells.push_back({"C" + number, CellValue(isOdd ? left - right : left + right),
                             "=A" + number + (isOdd ? "-B" : "+B") + number});
    }
    return written(name, std::move(sheet));
  }
  path written(const std::string& name, fakes::SheetDescription sheet) const {
    const path file = folder_ / name;
    std::filesystem::create_directories(file.parent_path());
    fakes::writeXlsx({.name = name, .sheets = {std::move(sheet)}}, file);
    return file;
  }

  struct Run {
    int status = -1;
    std::string output;
    std::string errors;
  };
  Run run(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "audit");
    const auto tool = start(arguments);
    Run result;
    while (const auto line = tool->readLine()) result.output += *line + "\n";
    result.status = tool->wait();
    result.errors = tool->errors();
    expectNothingLeft();
    return result;
  }
  static JSONValue parsed(const std::string& text) {
    const ParsedJSON json = parseJSON(text);
    EXPECT_TRUE(json) << text;
    return json.value.value_or(nullptr);
  }
  static std::vector<std::string> linesOf(const std::string& text) {
    std::istringstream stream(text);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) lines.push_back(line);
    return lines;
  }
  // Of a list of lines.
  JSONValue reportOn(const std::string& name, const std::string& list) const {
    for (const std::string& line : linesOf(list)) {
      JSONValue report = parsed(line);
      if (member(report, "file") == JSONValue((folder_ / name).string())) return report;
    }
    ADD_FAILURE() << name << " is not in\n" << list;
    return nullptr;
  }
  // The offices that there are, once there are so many. std::runtime_error when they do not come.
  std::vector<pid_t> officesOnce(std::size_t count) const {
    const auto end = std::chrono::steady_clock::now() + std::chrono::minutes(1);
    while (std::chrono::steady_clock::now() < end) {
      std::vector<pid_t> offices;
      for (const pid_t process : processesWith((folder_ / "tmp").string()))
        if (programOf(process) == "soffice.bin") offices.push_back(process);
      if (offices.size() >= count) return offices;
      ::usleep(10'000);
    }
    throw std::runtime_error("too few offices were started");
  }
  std::vector<pid_t> workers() const {
    std::vector<pid_t> ours;
    const std::vector<pid_t> of = processesWith(folder_.path().string());
    for (const pid_t process : processesWith("audit-workbook"))
      if (std::find(of.begin(), of.end(), process) != of.end()) ours.push_back(process);
    return ours;
  }
  static JSONValue firstFinding(const JSONValue& report) {
    const auto* const findings = member(report, "findings").array();
    if (findings && !findings->empty()) return findings->front();
    ADD_FAILURE() << "no finding: " << Marshal::encode(report);
    return nullptr;
  }
};

TEST_F(QuorinctlAudit, NamesTheCellThatBreaksThePattern) {
  const Run told = run({oddWorkbook("Odd.xlsx"), "--format", "json"});
  EXPECT_EQ(told.status, 0) << told.errors;
  const JSONValue report = parsed(told.output);
  EXPECT_EQ(member(member(report, "summary"), "formulas"), JSONValue(10));
  EXPECT_EQ(member(member(report, "summary"), "distinctFormulas"), JSONValue(2));
  const auto* const sheets = member(member(report, "inventory"), "sheets").array();
  ASSERT_TRUE(sheets && sheets->size() == 1);
  EXPECT_EQ(member(sheets->front(), "area"), JSONValue("A1:C10"));
  const JSONValue first = firstFinding(report);
  EXPECT_EQ(member(first, "rank"), JSONValue(1));
  EXPECT_EQ(member(first, "sheet"), JSONValue("Data"));
  EXPECT_EQ(member(first, "cells"), JSONValue(JSONValue::Array{"C7"}));
  EXPECT_EQ(member(first, "expected"), JSONValue("=A7+B7"));
  ASSERT_TRUE(member(first, "message").string());
  EXPECT_THAT(*member(first, "message").string(), HasSubstr("C7"));
}

TEST_F(QuorinctlAudit, FailsOnWhatItIsToldToFailOn) {
  const std::string odd = oddWorkbook("Odd.xlsx");
  EXPECT_EQ(run({odd, "--fail-on", "style"}).status, 1);
  fakes::SheetDescription even{"Data", {}};
  for (const char* address : {"A1", "A2", "A3"}) even.cells.push_back({address, CellValue(1.0)});
  EXPECT_EQ(run({written("Even.xlsx", even), "--fail-on", "style"}).status, 0);
}

TEST_F(QuorinctlAudit, DoesNotFailOnWhatWasSaidToBeFine) {
  // As the panel keeps it of the same workbook.
  const std::string kept =
      R"([{"book":"Odd.xlsx","review":{"version":1,"snapshots":[{"sheets":[{"name":"Data",)"
      R"("height":10,"width":3,"rows":"xdPbVuAXomOhe9ZAXobhtbhtAXotnwr-OAXoqJUlW2AXozUsd-yAXopl)"
      R"(BlTQXk0mFQcwZAXoinmfdMAXollAtB9AXo","cols":"xdPmOhAAAbVue9ZAAAe9Zi-8Xzf"}],"said":[)"
      R"({"state":"STATE","note":"Row 7 is a refund.","at":"2026-11-20T10:00:00.000Z",)"
      R"("kind":"differs","areas":1,"size":1,"formula":"=A7-B7","expected":"=A7+B7",)"
      R"("print":"R6UH","cells":[["Data","C7"]]}]}]}}])";
  const std::string odd = oddWorkbook("Odd.xlsx");
  const auto with = [&](const std::string& state) {
    std::string text = kept;
    text.replace(text.find("STATE"), 5, state);
    const path file = folder_ / (state + ".json");
    writeFile(file, text);
    return run({odd, "--format", "json", "--fail-on", "style", "--review", file.string()});
  };
  // Of the two formulas that there are.
  const auto seen = [](const Run& run) {
    return member(member(parsed(run.output), "summary"), "seen");
  };
  const Run fine = with("fine");
  EXPECT_EQ(seen(fine), JSONValue(0));
  EXPECT_EQ(fine.status, 0) << fine.errors;
  const JSONValue first = firstFinding(parsed(fine.output));
  EXPECT_EQ(member(first, "state"), JSONValue("fine"));
  EXPECT_EQ(member(first, "note"), JSONValue("Row 7 is a refund."));
  const Run fault = with("fault");
  EXPECT_EQ(fault.status, 1) << fault.errors;
  EXPECT_EQ(member(firstFinding(parsed(fault.output)), "state"), JSONValue("fault"));
}

TEST_F(QuorinctlAudit, FindsTheReviewOfAWorkbookThatWasRenamed) {
  fakes::SheetDescription sheet{"Data", {}};
  for (int row = 1; row <= 5; ++row) {
    const std::string number = std::to_string(row);
    sheet.cells.push_back({"A" + number, CellValue(row * 3.0)});
    sheet.cells.push_back({"B" + number, CellValue(row * row * 3.0), "=A" + number + "*" + number});
  }
  const std::string file = written("After.xlsx", std::move(sheet));
  const auto none = [](int marks) { return std::string(static_cast<std::size_t>(4 * marks), '.'); };
  const std::string marks = none(22) + "mxnH" + none(14) + "Rmk_" + none(35) + "qmVy" + none(12) +
                            "K3AX" + none(6) + "U_W2" + none(10) + "JjKp" + none(23);
  // The second formula is the only one that was seen.
  const auto seen = [&](const std::string& kept) {
    writeFile(folder_ / "kept.json", R"([{"book":"Before.xlsx","path":"else","marks":")" + kept +
                                         R"(","review":{"version":1,"seen":"oTGVS",)"
                                         R"("snapshots":[]}}])");
    const Run told = run({file, "--format", "json", "--review", folder_ / "kept.json"});
    return member(member(parsed(told.output), "summary"), "seen");
  };
  EXPECT_EQ(seen(marks), JSONValue(1));
  EXPECT_EQ(seen(none(128)), JSONValue(0)) << "another workbook's";
}

TEST_F(QuorinctlAudit, TellsThatTheReviewCannotBeRead) {
  const std::string odd = oddWorkbook("Odd.xlsx");
  writeFile(folder_ / "broken.json", "[{}]");
  const Run broken = run({odd, "--review", folder_ / "broken.json"});
  EXPECT_EQ(broken.status, 2);
  EXPECT_THAT(broken.errors, HasSubstr("broken.json holds no reviews"));
  const Run missing = run({odd, "--review", folder_ / "none.json"});
  EXPECT_EQ(missing.status, 2);
  EXPECT_THAT(missing.errors, HasSubstr("none.json is not there"));
}

TEST_F(QuorinctlAudit, GoesOnAfterFilesThatItCannotRead) {
  std::filesystem::create_directories(folder_ / "books");
  std::ofstream(folder_ / "books" / "a.xlsx") << "no workbook at all";
  oddWorkbook("books/b.xlsx");
  std::ofstream(folder_ / "books" / "~$b.xlsx") << "the file of whoever has it open";
  const Run told = run({folder_ / "books", folder_ / "gone.xlsx", "--format", "jsonl"});
  EXPECT_EQ(told.status, 2);
  ASSERT_EQ(linesOf(told.output).size(), 3U) << told.output;
  EXPECT_TRUE(member(reportOn("books/a.xlsx", told.output), "error").string());
  EXPECT_TRUE(member(reportOn("gone.xlsx", told.output), "error").string());
  EXPECT_EQ(member(firstFinding(reportOn("books/b.xlsx", told.output)), "cells"),
            JSONValue(JSONValue::Array{"C7"}));
  EXPECT_THAT(told.errors, HasSubstr("gone.xlsx: no such workbook"));
}

// An OpenDocument file whose contents are encrypted, as far as it says.
void writeProtected(const std::filesystem::path& file) {
  const std::string of = R"(manifest:media-type="application/vnd.oasis.opendocument.spreadsheet")";
  const std::string protection =
      R"(<manifest:encryption-data manifest:checksum-type="urn:oasis:names:tc:opendocument:xmlns:)"
      R"(manifest:1.0#sha256-1k" manifest:checksum="63oX7bK7c/Z2ume48BVuBU7OL/UC17vPQUl9imhHVAM=">)"
      R"(<manifest:algorithm manifest:algorithm-name="http://www.w3.org/2001/04/xmlenc#aes256-cbc" )"
      R"(manifest:initialisation-vector="sr4qjFHWs2Uuog1DAdXKRg=="/><manifest:start-key-generation )"
      R"(manifest:start-key-generation-name="http://www.w3.org/2000/09/xmldsig#sha256" )"
      R"(manifest:key-size="32"/><manifest:key-derivation manifest:key-derivation-name="PBKDF2" )"
      R"(manifest:key-size="32" manifest:iteration-count="1000" )"
      R"(manifest:salt="zHO8eyKsh1EYIhtTPHH4Lg=="/></manifest:encryption-data>)";
  const std::vector<std::pair<std::string, std::string>> parts{
      {"mimetype", "application/vnd.oasis.opendocument.spreadsheet"},
      {"content.xml", std::string(64, 'x')},
      {"META-INF/manifest.xml",
       R"(<manifest:manifest xmlns:manifest="urn:oasis:names:tc:opendocument:xmlns:manifest:1.0" )"
       R"(manifest:version="1.3"><manifest:file-entry manifest:full-path="/" )" +
           of + R"(/><manifest:file-entry manifest:full-path="content.xml" )" +
           R"(manifest:media-type="text/xml" manifest:size="60">)" + protection +
           "</manifest:file-entry></manifest:manifest>"}};
  zip_t* const zip = zip_open(file.c_str(), ZIP_CREATE, nullptr);
  ASSERT_TRUE(zip);
  for (const auto& [name, text] : parts) {
    const zip_int64_t index =
        zip_file_add(zip, name.c_str(), zip_source_buffer(zip, text.data(), text.size(), 0), 0);
    ASSERT_GE(index, 0);
    zip_set_file_compression(zip, static_cast<zip_uint64_t>(index), ZIP_CM_STORE, 0);
  }
  ASSERT_EQ(zip_close(zip), 0);
}

TEST_F(QuorinctlAudit, TellsOfFilesThatAreProtectedOrEmpty) {
  writeProtected(folder_ / "locked.ods");
  std::ofstream(folder_ / "empty.xlsx").flush();
  const Run told = run({folder_ / "locked.ods", folder_ / "empty.xlsx"});
  EXPECT_EQ(told.status, 2);
  EXPECT_THAT(told.output, HasSubstr("locked.ods\" is protected by a password\n"));
  EXPECT_THAT(told.output, HasSubstr("empty.xlsx\" is empty\n"));
}

TEST_F(QuorinctlAudit, DrawsTheSheetsInAReportToBeLookedAt) {
  const std::string odd = oddWorkbook("Odd.xlsx");
  const Run drawn = run({odd, "--format", "html"});
  EXPECT_EQ(drawn.status, 0) << drawn.errors;
  EXPECT_THAT(drawn.output, HasSubstr("<figcaption>Sheet “Data”, A1:C10</figcaption>"));
  EXPECT_THAT(drawn.output, Not(HasSubstr("<script")));
  EXPECT_THAT(run({odd, "--format", "json"}).output, Not(HasSubstr("pictures")));
}

TEST_F(QuorinctlAudit, WritesTheListWholeOrLeavesTheFileAsItWas) {
  const std::string odd = oddWorkbook("Odd.xlsx");
  const path list = folder_ / "list.csv";
  std::ofstream(list) << "what was there";
  const Run told = run({odd, "--format", "csv", "--output", list});
  EXPECT_EQ(told.status, 0) << told.errors;
  EXPECT_EQ(told.output, "");
  EXPECT_THAT(readFile(list), StartsWith("file,rank,kind"));
  EXPECT_THAT(readFile(list), HasSubstr(",'=A7+B7,"));
  const Run barred = run({odd, "--output", folder_ / "nowhere" / "list.txt"});
  EXPECT_EQ(barred.status, 2);
  EXPECT_THAT(barred.errors, HasSubstr("list.txt cannot be written"));
}

TEST_F(QuorinctlAudit, ReadsAsManyWorkbooksAtATimeAsItIsTold) {
  const auto tool = start({"audit", oddWorkbook("1.xlsx"), oddWorkbook("2.xlsx"),
                           oddWorkbook("3.xlsx"), "--jobs", "2", "--format", "jsonl"});
  const pid_t held = officesOnce(2).front();
  ::kill(held, SIGSTOP);
  EXPECT_EQ(workers().size(), 2U);
  // One stands still, the others come by.
  std::string list;
  for (int i = 0; i < 2; ++i) list += tool->readLine().value_or("nothing came") + "\n";
  ::kill(held, SIGCONT);
  list += tool->readLine().value_or("nothing came") + "\n";
  EXPECT_EQ(tool->wait(), 0) << tool->errors();
  for (const char* name : {"1.xlsx", "2.xlsx", "3.xlsx"})
    EXPECT_EQ(member(firstFinding(reportOn(name, list)), "cells"),
              JSONValue(JSONValue::Array{"C7"}));
  expectNothingLeft();
}

TEST_F(QuorinctlAudit, TellsTheWorkbooksInTheirOrderButForLinesOfJson) {
  std::ofstream(folder_ / "b.xlsx") << "no workbook, which is told sooner";
  const Run told = run({oddWorkbook("a.xlsx"), folder_ / "b.xlsx", "--jobs", "2"});
  EXPECT_EQ(told.status, 2);
  EXPECT_LT(told.output.find("a.xlsx: "), told.output.find("b.xlsx: could not be audited"));
}

TEST_F(QuorinctlAudit, LosesOneWorkbookWithAnOfficeThatDies) {
  const auto tool = start(
      {"audit", oddWorkbook("1.xlsx"), oddWorkbook("2.xlsx"), "--jobs", "1", "--format", "jsonl"});
  ::kill(officesOnce(1).front(), SIGKILL);
  std::string list;
  while (const auto line = tool->readLine()) list += *line + "\n";
  EXPECT_EQ(tool->wait(), 2);
  EXPECT_TRUE(member(reportOn("1.xlsx", list), "error").string());
  EXPECT_EQ(member(firstFinding(reportOn("2.xlsx", list)), "cells"),
            JSONValue(JSONValue::Array{"C7"}));
  expectNothingLeft();
}

TEST_F(QuorinctlAudit, GivesUpAWorkbookWhoseOfficeHangs) {
  const auto tool = start({"audit", oddWorkbook("1.xlsx"), oddWorkbook("2.xlsx"), "--jobs", "1",
                           "--give-up", "20", "--format", "jsonl"});
  ::kill(officesOnce(1).front(), SIGSTOP);
  std::string list;
  while (const auto line = tool->readLine()) list += *line + "\n";
  EXPECT_EQ(tool->wait(), 2);
  EXPECT_EQ(member(reportOn("1.xlsx", list), "error"),
            JSONValue("given up: nothing was heard of it for 20 seconds"));
  EXPECT_EQ(member(firstFinding(reportOn("2.xlsx", list)), "cells"),
            JSONValue(JSONValue::Array{"C7"}));
  expectNothingLeft();
}

TEST_F(QuorinctlAudit, GoesOnWithTheListThatItBegan) {
  oddWorkbook("books/kept.xlsx");
  const std::string changed = oddWorkbook("books/changed.xlsx");
  std::ofstream(folder_ / "books" / "mended.xlsx") << "no workbook yet";
  const path list = folder_ / "list.jsonl";
  const std::vector<std::string> command{folder_ / "books", "--format",  "jsonl", "--output", list,
                                         "--resume",        "--fail-on", "style"};
  EXPECT_EQ(run(command).status, 2);
  const std::string first = readFile(list);
  EXPECT_EQ(linesOf(first).size(), 3U);
  // A mark that only a report that was kept still has, and a line that was cut off.
  const auto marked = [&](const std::string& name) {
    JSONValue report = reportOn(name, first);
    (*report.object())["mark"] = "kept";
    return report;
  };
  {
    std::ofstream before(list);
    for (const char* name : {"books/kept.xlsx", "books/changed.xlsx", "books/mended.xlsx"})
      before << Marshal::encode(marked(name)) << "\n";
    before << R"({"file": ")";
  }
  std::filesystem::last_write_time(
      changed, std::filesystem::last_write_time(changed) + std::chrono::seconds(2));
  oddWorkbook("books/mended.xlsx");
  oddWorkbook("books/new.xlsx");
  const Run again = run(command);
  EXPECT_EQ(again.status, 1) << again.errors;
  EXPECT_EQ(again.output, "");
  const std::string second = readFile(list);
  EXPECT_EQ(linesOf(second).size(), 4U) << second;
  EXPECT_EQ(reportOn("books/kept.xlsx", second), marked("books/kept.xlsx"));
  for (const char* name : {"books/changed.xlsx", "books/mended.xlsx", "books/new.xlsx"}) {
    const JSONValue report = reportOn(name, second);
    EXPECT_EQ(report.member("mark"), nullptr) << name;
    EXPECT_EQ(member(firstFinding(report), "rank"), JSONValue(1)) << name;
  }

  EXPECT_EQ(run(command).status, 1);
  EXPECT_EQ(readFile(list), second);
}

TEST_F(QuorinctlAudit, EndsItsWorkersWhenItIsKilled) {
  const auto tool = start({"audit", oddWorkbook("1.xlsx"), oddWorkbook("2.xlsx"), "--jobs", "2"});
  officesOnce(2);
  EXPECT_EQ(workers().size(), 2U);
  tool->signal(SIGKILL);
  EXPECT_EQ(tool->wait(), 128 + SIGKILL);
  EXPECT_TRUE(waitUntilEnded(processesWith(folder_.path().string())));
  EXPECT_THAT(namesIn(folder_ / "tmp"), testing::IsEmpty());
}

TEST_F(QuorinctlAudit, TidiesUpWhenASignalEndsIt) {
  const auto tool = start({"audit", oddWorkbook("Odd.xlsx")});
  while (processesWith((folder_ / "tmp").string()).empty()) ::usleep(10'000);
  tool->signal(SIGTERM);
  EXPECT_EQ(tool->wait(), 128 + SIGTERM);
  expectNothingLeft();
}

}  // namespace
}  // namespace quorin

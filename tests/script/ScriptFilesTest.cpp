// Runs the scripts in tests/script/scripts: each with what it answers and, where it talks to an
// application, what was sent. A case in a file is
//
//   --- title
//   the script
//   answer: a value, as a script writes it    (replies of the application, in order)
//   fails: number message
//   nothing:                                  (a reply without a value)
//   sent: core/getd{...}                      (every event, in order)
//   => the result, as show() prints it
#include <filesystem>
#include <fstream>
#include <sstream>

#include "tests/script/EngineFixture.h"

namespace quorin::script {
namespace {

struct Case {
  std::string title;
  std::string script;
  std::vector<std::pair<std::string, std::string>> directives;
  std::string expected;
};

std::vector<Case> casesIn(const std::filesystem::path& file) {
  std::ifstream stream(file);
  std::vector<Case> cases;
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with("--- ")) {
      cases.push_back({line.substr(4), {}, {}, {}});
    } else if (cases.empty() || (line.empty() && !cases.back().expected.empty())) {
      continue;
    } else if (line.starts_with("=> ")) {
      cases.back().expected = line.substr(3);
    } else {
      bool directive = false;
      for (const char* name : {"answer", "fails", "nothing", "sent"}) {
        const std::string start = std::string(name) + ":";
        if (!line.starts_with(start)) continue;
        const std::size_t value = std::min(line.find_first_not_of(' ', start.size()), line.size());
        cases.back().directives.emplace_back(name, line.substr(value));
        directive = true;
      }
      if (!directive) cases.back().script += line + "\n";
    }
  }
  return cases;
}

class ScriptFiles : public EngineFixture, public testing::WithParamInterface<const char*> {
 protected:
  void prepare(const std::pair<std::string, std::string>& directive) {
    const auto& [name, value] = directive;
    if (name == "nothing") {
      excel.replies.push_back({});
    } else if (name == "fails") {
      const std::size_t blank = std::min(value.find(' '), value.size());
      excel.willFail(std::stoi(value), value.substr(std::min(blank + 1, value.size())));
    } else if (name == "answer") {
      RecordingApplication silent("Silent", languageTerminology());
      RecordingApplications none(silent);
      auto made = compile("return " + value, none);
      ASSERT_TRUE(std::holds_alternative<Script>(made)) << value;
      excel.willAnswer(*std::get<Script>(made).run().result);
    }
  }
};

TEST_P(ScriptFiles, GiveTheirResults) {
  const auto cases = casesIn(std::filesystem::path(QUORIN_SCRIPT_CASES) / GetParam());
  ASSERT_FALSE(cases.empty());
  for (const Case& each : cases) {
    SCOPED_TRACE(each.title);
    EXPECT_FALSE(each.expected.empty());
    excel.events.clear();
    excel.replies.clear();
    std::vector<std::string> expectedEvents;
    for (const auto& directive : each.directives) {
      prepare(directive);
      if (directive.first == "sent") expectedEvents.push_back(directive.second);
    }
    EXPECT_EQ(run(each.script), each.expected);
    std::vector<std::string> events;
    for (std::size_t i = 0; i < excel.events.size(); ++i) events.push_back(sent(i));
    EXPECT_EQ(events, expectedEvents);
  }
}

INSTANTIATE_TEST_SUITE_P(All, ScriptFiles,
                         testing::Values("values.txt", "text.txt", "lists.txt", "operators.txt",
                                         "control.txt", "handlers.txt", "errors.txt",
                                         "application.txt", "compile_errors.txt"),
                         [](const auto& information) {
                           const std::string file = information.param;
                           std::string name;
                           for (const char c : file.substr(0, file.find('.'))) {
                             if (c != '_') name += c;
                           }
                           return name;
                         });

}  // namespace
}  // namespace quorin::script

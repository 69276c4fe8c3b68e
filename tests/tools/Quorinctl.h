// Quorinctl: runs the program with a temporary folder of its own and nothing of the user's, and
// looks that it leaves nothing behind.
#pragma once

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

#include "host/calc/uno/OfficeFiles.h"
#include "kit/value/JSONText.h"
#include "kit/value/Marshal.h"
#include "tests/fakes/TemporaryFolder.h"
#include "tests/tools/ToolProcess.h"

namespace quorin {

inline void PrintTo(const JSONValue& value, std::ostream* out) {
  *out << Marshal::encode(value);
}

using std::filesystem::path;

inline std::vector<std::string> namesIn(const path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
    names.push_back(entry.path().lexically_relative(folder));
  std::sort(names.begin(), names.end());
  return names;
}

inline std::string request(int id, const std::string& verb, const std::string& args = "[]") {
  return "{\"id\":" + std::to_string(id) + ",\"verb\":\"" + verb + "\",\"args\":" + args + "}\n";
}

class Quorinctl : public testing::Test {
 protected:
  // Runs the program with its own temporary folder, a home in which there is nothing yet, and
  // nothing of the user's.
  std::unique_ptr<ToolProcess> start(const std::vector<std::string>& arguments) {
    std::vector<std::string> command{QUORINCTL};
    command.insert(command.end(), arguments.begin(), arguments.end());
    for (const char* name : {"tmp", "data", "state", "home"})
      std::filesystem::create_directories(folder_ / name);
    return std::make_unique<ToolProcess>(
        command, ToolProcess::Variables{{"TMPDIR", folder_ / "tmp"},
                                        {"HOME", folder_ / "home"},
                                        {"XDG_CACHE_HOME", ""},
                                        {"XDG_CONFIG_HOME", ""},
                                        {"XDG_RUNTIME_DIR", ""},
                                        {"XDG_DATA_HOME", folder_ / "data"},
                                        {"XDG_STATE_HOME", folder_ / "state"}});
  }

  static JSONValue reply(ToolProcess& tool) {
    const std::optional<std::string> line = tool.readLine();
    if (!line) {
      ADD_FAILURE() << "no reply came";
      return nullptr;
    }
    const ParsedJSON parsed = parseJSON(*line);
    EXPECT_TRUE(parsed) << *line;
    return parsed.value.value_or(nullptr);
  }

  static JSONValue ask(ToolProcess& tool, int id, const std::string& verb,
                       const std::string& args = "[]") {
    tool.write(request(id, verb, args));
    const JSONValue answer = reply(tool);
    const JSONValue* const answered = answer.member("id");
    EXPECT_TRUE(answered && *answered == JSONValue(id));
    return answer;
  }

  static const JSONValue& member(const JSONValue& value, std::string_view key) {
    static const JSONValue missing("(no such member)");
    const JSONValue* const found = value.member(std::string(key));
    return found ? *found : missing;
  }

  // The name of the private office's folder, while it runs.
  std::string officeName() const {
    for (const auto& entry : std::filesystem::directory_iterator(folder_ / "tmp"))
      return entry.path().filename();
    ADD_FAILURE() << "no private office";
    return {};
  }

  // The private office's process, which answers by now.
  pid_t office() const {
    for (const pid_t process : processesWith((folder_ / "tmp").string()))
      if (programOf(process) == "soffice.bin") return process;
    ADD_FAILURE() << "no private office";
    return ::getpid();
  }

  // What is in the user's home. Where the system keeps no cache of its fonts, the library that
  // draws text keeps one there for all programs, which may stay.
  std::vector<std::string> ownNamesInHome() const {
    std::vector<std::string> names = namesIn(folder_ / "home");
    const auto isOfFonts = [](const std::string& name) {
      return name == ".cache/fontconfig" || name.starts_with(".cache/fontconfig/");
    };
    if (std::erase_if(names, isOfFonts) > 0) {
      const auto isInCache = [](const std::string& name) { return name.starts_with(".cache/"); };
      if (std::none_of(names.begin(), names.end(), isInCache)) std::erase(names, ".cache");
    }
    return names;
  }

  // No process, no file, no pipe, and nothing in the user's folders.
  void expectNothingLeft(const std::string& office = {}) const {
    EXPECT_THAT(processesWith((folder_ / "tmp").string()), testing::IsEmpty());
    EXPECT_THAT(namesIn(folder_ / "tmp"), testing::IsEmpty());
    EXPECT_THAT(namesIn(folder_ / "data"), testing::IsEmpty());
    EXPECT_THAT(namesIn(folder_ / "state"), testing::IsEmpty());
    EXPECT_THAT(ownNamesInHome(), testing::IsEmpty());
    if (!office.empty()) {
      EXPECT_FALSE(std::filesystem::exists(host::calc::pipeFile(office)));
    }
  }

  path workbook(const std::string& text = "a,b\n1,2\n3,4\n") {
    const path file = folder_ / "Small.csv";
    std::ofstream(file) << text;
    return file;
  }

  TemporaryFolder folder_;
};

}  // namespace quorin

// A panel over fakes, with a log and a configuration file in a folder that is removed afterwards.
#pragma once

#include <fstream>
#include <gmock/gmock.h>
#include <sstream>
#include <stdlib.h>

#include "app/shell/Panel.h"
#include "tests/fakes/ManualQueue.h"
#include "tests/fakes/app/FakeAppPlatform.h"
#include "tests/fakes/app/FakeBridge.h"

namespace quorin {

class ShellFixture : public testing::Test {
 protected:
  ShellFixture() {
    std::string pattern = (std::filesystem::temp_directory_path() / "quorin-shell-XXXXXX").string();
    folder = mkdtemp(pattern.data());
    log = std::make_unique<DiagLog>(folder / "quorin.log", 4'000'000, 3'000'000);
  }
  ~ShellFixture() override {
    log.reset();
    std::filesystem::remove_all(folder);
  }

  std::unique_ptr<Panel> makePanel() {
    return std::make_unique<Panel>(
        Panel::Parts{platform, bridge, queue, files, *log, folder / "config.json", environment});
  }

  // The log's lines without their dates.
  std::vector<std::string> logged() {
    log->flush();
    std::ifstream in(folder / "quorin.log");
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
      lines.push_back(line.substr(line.find(' ') + 1));
    return lines;
  }

  std::string readFile(const std::filesystem::path& path) {
    std::ifstream in(path);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
  }

  void writeFile(const std::filesystem::path& path, const std::string& content) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << content;
  }

  // What bridge, files and main loop still have to do, back and forth.
  void settle() {
    while (queue.waiting() + files.waiting() + platform.mainLoop().postedCount() > 0) {
      queue.runAll();
      files.runAll();
      platform.mainLoop().runPosted();
    }
  }

  Journal takeJournal() { return std::exchange(platform.journal, {}); }

  static RunningApplication excel() { return {"com.microsoft.Excel", 4711, false}; }
  static RunningApplication editor() { return {"org.example.Editor", 815, false}; }
  static RunningApplication self() { return {"com.quorin.app", 42, true}; }

  std::filesystem::path folder;
  FakeAppPlatform platform;
  FakeBridge bridge{platform.journal};
  ManualQueue queue{"qx.bridge"};
  ManualQueue files{"qx.files"};
  std::unique_ptr<DiagLog> log;
  Environment environment;
};

}  // namespace quorin

#include "tools/quorinctl/Audit.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "kit/platform/Thread.h"
#include "kit/value/Marshal.h"
#include "tools/quorinctl/AuditFiles.h"
#include "tools/quorinctl/AuditList.h"
#include "tools/quorinctl/AuditScript.h"
#include "tools/quorinctl/AuditWorkers.h"
#include "tools/quorinctl/Place.h"
#include "tools/quorinctl/ProgressLine.h"
#include "tools/quorinctl/ReviewFile.h"
#include "tools/quorinctl/Waiter.h"

namespace quorin::ctl {

namespace {

constexpr int failing = 1;
constexpr int unable = 2;
constexpr int signalled = 128;

std::vector<std::string> argumentsOf(const AuditCommand& command) {
  std::vector<std::string> arguments{"--top", std::to_string(command.top)};
  if (command.review)
    arguments.insert(arguments.end(),
                     {"--review", std::filesystem::absolute(*command.review).string()});
  if (command.format == "html") arguments.emplace_back("--pictures");
  return arguments;
}

AuditWorkers::Options optionsOf(const AuditCommand& command) {
  const unsigned processors = std::max(1U, std::thread::hardware_concurrency());
  return {.jobs = command.jobs ? static_cast<std::size_t>(*command.jobs) : processors,
          .patience = std::chrono::seconds(command.giveUp),
          .arguments = argumentsOf(command)};
}

int audited(const AuditCommand& command, Waiter& waiter) {
  const std::vector<std::filesystem::path> files = workbooksOf(command.files);
  if (files.empty()) throw Unserved("no workbook there");
  // Each worker reads it as well; one that cannot be read is told once.
  if (command.review) reviewIn(*command.review, {});
  AuditList list(command, files);
  const std::vector<std::size_t> open = list.open();
  std::size_t done = files.size() - open.size();
  ProgressLine progress;
  const auto say = [&](std::size_t index, const std::string& text) {
    const std::string count = files.size() == 1 ? ""
                                                : std::to_string(done) + " of " +
                                                      std::to_string(files.size()) + " done  ";
    progress.tell(count + files[index].string() + "  " + text);
  };
  const auto add = [&](std::size_t index, JSONValue report) {
    ++done;
    progress.clear();
    if (const JSONValue* const error = report.member("error")) {
      std::fprintf(stderr, "quorinctl: %s: %s\n", files[index].c_str(),
                   error->string() ? error->string()->c_str() : "");
    }
    list.add(index, std::move(report));
  };
  AuditWorkers workers(waiter, optionsOf(command), {.progress = say, .done = add});
  if (!workers.run(files, open)) return signalled + waiter.signalNumber();
  progress.clear();
  list.finish();
  if (list.hasFailure()) return unable;
  return list.hasFinding() ? failing : 0;
}

}  // namespace

int audit(const AuditCommand& command) {
  std::signal(SIGPIPE, SIG_IGN);
  AuditScript::keepSmall();
  Waiter waiter;
  MainThread::record();
  try {
    return audited(command, waiter);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "quorinctl: %s\n", error.what());
    return unable;
  }
}

}  // namespace quorin::ctl

#include "tools/quorinctl/AuditList.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <string_view>
#include <unistd.h>
#include <utility>

#include "kit/support/AtomicFile.h"
#include "kit/value/JSONText.h"
#include "kit/value/Marshal.h"
#include "tools/quorinctl/AuditFiles.h"
#include "tools/quorinctl/Place.h"

namespace quorin::ctl {

namespace {

using std::filesystem::path;

constexpr const char* lines = "jsonl";

bool isAtLeast(const std::string& level, const std::string& wanted) {
  constexpr std::array<std::string_view, 3> levels{"style", "doubt", "fact"};
  return std::find(levels.begin(), levels.end(), level) >=
         std::find(levels.begin(), levels.end(), wanted);
}

bool hasFindingOf(const JSONValue& report, const std::string& wanted) {
  const JSONValue* const findings = report.member("findings");
  if (!findings || !findings->array()) return false;
  return std::any_of(findings->array()->begin(), findings->array()->end(),
                     [&](const JSONValue& finding) {
                       const JSONValue* const level = finding.member("level");
                       const JSONValue* const state = finding.member("state");
                       if (state && *state == JSONValue("fine")) return false;
                       return level && level->string() && isAtLeast(*level->string(), wanted);
                     });
}

Unserved unwritable(const path& file) {
  return Unserved(file.string() + " cannot be written");
}

// The file that a report is on, when that is now as it was then; one without stamp is no report.
std::optional<std::string> fileOf(const JSONValue& report) {
  const JSONValue* const file = report.member("file");
  if (!file || !file->string()) return std::nullopt;
  const JSONValue::Object stamp = stampOf(*file->string());
  for (const char* key : {"modified", "size"}) {
    const JSONValue* const then = report.member(key);
    const auto now = stamp.find(key);
    if (!then || now == stamp.end() || !(*then == now->second)) return std::nullopt;
  }
  return *file->string();
}

}  // namespace

AuditList::AuditList(const AuditCommand& command, std::vector<path> files)
    : command_(command), files_(std::move(files)), writer_(AuditScript::installed(), {}) {
  if (command_.resume) takeUp();
}

AuditList::~AuditList() {
  if (begun_ >= 0) ::close(begun_);
}

// Keeps the lines that still hold, and writes on behind them.
void AuditList::takeUp() {
  const path& output = *command_.output;
  std::string kept;
  std::size_t dropped = 0;
  {
    std::ifstream before(output, std::ios::binary);
    for (std::string line; std::getline(before, line);) {
      const ParsedJSON report = parseJSON(line);
      const std::optional<std::string> file = report ? fileOf(*report.value) : std::nullopt;
      const auto found = file ? std::find(files_.begin(), files_.end(), path(*file)) : files_.end();
      const bool isDouble = found != files_.end() &&
                            !known_.insert(static_cast<std::size_t>(found - files_.begin())).second;
      if (!file || isDouble) {
        ++dropped;
        continue;
      }
      if (found != files_.end()) judge(*report.value);
      kept += line + "\n";
    }
  }
  try {
    if (dropped > 0) AtomicFile::write(FileSystem::real(), std::filesystem::absolute(output), kept);
  } catch (const FileError&) {
    throw unwritable(output);
  }
  constexpr int usersAlone = 0600;
  begun_ = ::open(output.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, usersAlone);
  if (begun_ < 0) throw unwritable(output);
}

std::vector<std::size_t> AuditList::open() const {
  std::vector<std::size_t> indexes;
  for (std::size_t index = 0; index < files_.size(); ++index)
    if (!known_.contains(index)) indexes.push_back(index);
  return indexes;
}

void AuditList::judge(const JSONValue& report) {
  if (report.member("error")) hasFailure_ = true;
  if (command_.failOn && hasFindingOf(report, *command_.failOn)) hasFinding_ = true;
}

void AuditList::add(std::size_t index, JSONValue report) {
  judge(report);
  if (command_.format == lines) {
    write(writer_.written(Marshal::encode(JSONValue::Array{std::move(report)}), lines));
    return;
  }
  held_.insert_or_assign(index, std::move(report));
  if (!writer_.isLineByLine(command_.format)) return;
  for (auto next = held_.find(next_); next != held_.end(); next = held_.find(++next_)) {
    write(writer_.written(Marshal::encode(JSONValue::Array{std::move(next->second)}),
                          command_.format));
    held_.erase(next);
  }
}

void AuditList::write(const std::string& text) {
  if (begun_ >= 0) {
    for (std::size_t done = 0; done < text.size();) {
      const ssize_t count = ::write(begun_, text.data() + done, text.size() - done);
      if (count < 0 && errno == EINTR) continue;
      if (count < 0) throw unwritable(*command_.output);
      done += static_cast<std::size_t>(count);
    }
  } else if (command_.output) {
    text_ += text;
  } else if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() ||
             std::fflush(stdout) != 0) {
    throw Unserved("the list cannot be written");
  }
}

void AuditList::finish() {
  if (!writer_.isLineByLine(command_.format)) {
    JSONValue::Array reports;
    for (auto& [index, report] : held_) reports.push_back(std::move(report));
    held_.clear();
    write(writer_.written(Marshal::encode(reports), command_.format));
  }
  if (!command_.output || begun_ >= 0) return;
  try {
    AtomicFile::write(FileSystem::real(), std::filesystem::absolute(*command_.output), text_);
  } catch (const FileError&) {
    throw unwritable(*command_.output);
  }
}

}  // namespace quorin::ctl

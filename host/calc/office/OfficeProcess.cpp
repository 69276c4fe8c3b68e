#include "host/calc/office/OfficeProcess.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fstream>
#include <iterator>
#include <map>
#include <sstream>
#include <string_view>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace quorin::host::calc {
namespace {

using namespace std::string_view_literals;
constexpr std::string_view requestSocketName = "_SingleOfficeIPC_";
constexpr std::string_view installationArgument = "-env:UserInstallation=";

// Empty when the process ends meanwhile: reading fails then, also after the file was opened.
std::string contentsOf(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream contents;
  contents << stream.rdbuf();
  return stream ? contents.str() : std::string();
}

std::vector<std::string> splitAtNulls(const std::string& text) {
  std::vector<std::string> parts;
  for (std::size_t start = 0; start < text.size();) {
    const std::size_t end = std::min(text.find('\0', start), text.size());
    parts.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  return parts;
}

// The words of the process's status from its state on; empty for no process.
std::istringstream statusOf(pid_t process) {
  const std::string status = contentsOf("/proc/" + std::to_string(process) + "/stat");
  const std::size_t name = status.rfind(')');  // the name before it may hold anything
  return std::istringstream(name == std::string::npos ? "" : status.substr(name + 1));
}

bool isStopped(pid_t process) {
  std::string state;
  statusOf(process) >> state;
  return state == "T";
}

}  // namespace

std::string OfficeProcess::userInstallation() const {
  for (const std::string& argument : arguments) {
    if (argument.starts_with(installationArgument)) {
      return argument.substr(installationArgument.size());
    }
  }
  return {};
}

bool OfficeProcess::hasArgument(std::string_view name) const {
  return std::any_of(arguments.begin(), arguments.end(), [name](std::string_view argument) {
    return argument.starts_with('-') && argument.substr(argument.starts_with("--") ? 2 : 1) == name;
  });
}

std::optional<std::filesystem::path> OfficeProcess::requestSocket(
    const std::filesystem::path& proc) const {
  const std::vector<std::filesystem::path> found = sockets(requestSocketName, proc);
  if (found.empty()) return std::nullopt;
  return found.front();
}

// The sockets that a process holds are links to "socket:[INODE]"; the list of all sockets tells
// inode and path of each, as its seventh and eighth word.
std::vector<std::filesystem::path> OfficeProcess::sockets(std::string_view text,
                                                          const std::filesystem::path& proc) const {
  const std::filesystem::path own = proc / std::to_string(id);
  std::map<std::string, std::string> paths;
  std::istringstream all(contentsOf(own / "net" / "unix"));
  for (std::string line; std::getline(all, line);) {
    if (line.find(text) == std::string::npos) continue;
    std::istringstream words(line);
    std::array<std::string, 8> word;
    for (std::string& one : word) words >> one;
    paths["socket:[" + word[6] + "]"] = word[7];
  }
  std::vector<std::filesystem::path> held;
  std::error_code failure;
  for (const auto& entry : std::filesystem::directory_iterator(own / "fd", failure)) {
    const auto found = paths.find(std::filesystem::read_symlink(entry.path(), failure).string());
    if (found != paths.end()) held.emplace_back(found->second);
  }
  return held;
}

std::vector<OfficeProcess> officeProcesses(const std::filesystem::path& proc) {
  std::vector<OfficeProcess> found;
  std::error_code failure;
  for (const auto& entry : std::filesystem::directory_iterator(proc, failure)) {
    const std::string name = entry.path().filename().string();
    pid_t id = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), id);
    if (error != std::errc() || end != name.data() + name.size()) continue;
    struct stat status {};
    if (::stat(entry.path().c_str(), &status) != 0 || status.st_uid != ::getuid()) continue;
    if (contentsOf(entry.path() / "comm") != "soffice.bin\n") continue;
    OfficeProcess office{id, std::filesystem::read_symlink(entry.path() / "exe", failure),
                         splitAtNulls(contentsOf(entry.path() / "cmdline"))};
    if (office.program.empty() || office.arguments.empty()) continue;  // it is ending
    office.arguments.erase(office.arguments.begin());
    found.push_back(std::move(office));
  }
  std::sort(found.begin(), found.end(),
            [](const OfficeProcess& a, const OfficeProcess& b) { return a.id < b.id; });
  return found;
}

bool waitWhileStopped(pid_t process, std::chrono::milliseconds patience) {
  constexpr std::chrono::milliseconds pause{10};
  const auto deadline = std::chrono::steady_clock::now() + patience;
  while (isStopped(process)) {
    if (std::chrono::steady_clock::now() >= deadline) return false;
    std::this_thread::sleep_for(pause);
  }
  return true;
}

unsigned long long startOf(pid_t process) {
  constexpr int wordsBetween = 18;
  std::istringstream status = statusOf(process);
  std::string word;
  if (!(status >> word) || word == "Z" || word == "X") return 0;
  for (int i = 0; i < wordsBetween; ++i) status >> word;
  unsigned long long start = 0;
  status >> start;
  return start;
}

}  // namespace quorin::host::calc

#include "host/calc/workbook/WorkbookNames.h"

#include <algorithm>
#include <cstddef>
#include <filesystem>

#include "host/calc/uno/OfficeFiles.h"
#include "host/calc/uno/Text.h"
#include "kit/value/Unicode.h"

namespace quorin::host::calc {

using css::uno::Any;
using css::uno::UNO_QUERY;

namespace {

constexpr const char* prefix = "/quorin/name/";
constexpr std::size_t mostGone = 100;  // whose names are kept

// From the shortest on, without those with a number.
std::vector<std::string> possibleNames(const OpenWorkbook& workbook) {
  if (workbook.url.empty()) return {workbook.title};
  const std::filesystem::path path = pathOfUrl(workbook.url);
  if (path.empty()) return {workbook.url.substr(workbook.url.rfind('/') + 1), workbook.url};
  std::vector<std::string> names{path.filename().string()};
  std::filesystem::path folder = path.parent_path();
  for (; folder.has_relative_path(); folder = folder.parent_path())
    names.push_back(folder.filename().string() + "/" + names.back());
  names.push_back(path.string());
  return names;
}

std::string numbered(const std::string& name, int number) {
  return name + " (" + std::to_string(number) + ")";
}

bool isCalledSo(const OpenWorkbook& workbook, const std::vector<std::string>& possible) {
  const std::string& name = workbook.called;
  if (std::find(possible.begin(), possible.end(), name) != possible.end()) return true;
  const std::size_t number = name.rfind(" (");
  return number != std::string::npos && name.substr(0, number) == possible.back();
}

}  // namespace

std::vector<std::string> workbookNames(const std::vector<OpenWorkbook>& open) {
  std::vector<std::string> names(open.size());
  const auto isFree = [&names](const std::string& name) {
    return !name.empty() && std::none_of(names.begin(), names.end(), [&](const auto& each) {
      return caselesslyEqual(each, name);
    });
  };
  for (std::size_t i = 0; i < open.size(); ++i)
    if (isFree(open[i].called) && isCalledSo(open[i], possibleNames(open[i])))
      names[i] = open[i].called;
  for (std::size_t i = 0; i < open.size(); ++i) {
    if (!names[i].empty()) continue;
    const std::vector<std::string> possible = possibleNames(open[i]);
    const auto found = std::find_if(possible.begin(), possible.end(), isFree);
    if (found != possible.end()) {
      names[i] = *found;
      continue;
    }
    int number = 2;
    while (!isFree(numbered(possible.back(), number))) ++number;
    names[i] = numbered(possible.back(), number);
  }
  return names;
}

WorkbookNames::WorkbookNames(const css::uno::Reference<css::uno::XComponentContext>& context)
    : memory_(context, UNO_QUERY) {}

std::vector<std::string> WorkbookNames::of(std::vector<OpenWorkbook> open) {
  for (OpenWorkbook& workbook : open) {
    const auto [entry, isNew] = called_.try_emplace(workbook.uid);
    if (isNew) entry->second = remembered(workbook.uid);
    workbook.called = entry->second;
  }
  std::vector<std::string> names = workbookNames(open);
  for (std::size_t i = 0; i < open.size(); ++i)
    if (names[i] != open[i].called) remember(open[i].uid, called_[open[i].uid] = names[i]);
  if (called_.size() > open.size() + mostGone) forgetAllBut(open);
  return names;
}

// A workbook whose window is hidden counts as gone too, and has its name again when it comes back.
void WorkbookNames::forgetAllBut(const std::vector<OpenWorkbook>& open) {
  std::erase_if(called_, [&](const auto& each) {
    const bool gone = std::none_of(open.begin(), open.end(), [&](const OpenWorkbook& workbook) {
      return workbook.uid == each.first;
    });
    if (gone) remember(each.first, {});
    return gone;
  });
}

std::string WorkbookNames::remembered(const std::string& uid) const {
  const rtl::OUString key = toUno(prefix + uid);
  rtl::OUString name;
  if (memory_.is() && memory_->hasByName(key)) memory_->getByName(key) >>= name;
  return toText(name);
}

// An empty name is none.
void WorkbookNames::remember(const std::string& uid, const std::string& name) const {
  if (!memory_.is()) return;
  const rtl::OUString key = toUno(prefix + uid);
  if (memory_->hasByName(key)) memory_->removeByName(key);
  if (!name.empty()) memory_->insertByName(key, Any(toUno(name)));
}

}  // namespace quorin::host::calc

#include "app/linux/updates/FeedDate.h"

#include <exception>

#include "kit/support/AtomicFile.h"
#include "kit/support/FileSystem.h"

namespace quorin::FeedDate {

namespace {

constexpr std::chrono::hours day(24);
constexpr int mostDays = 30;
constexpr std::size_t mostBytes = 64;

std::string dayOf(ISO::Date date) {
  return ISO::string(date).substr(0, std::string_view("2026-11-15").size());
}

}  // namespace

std::optional<UpdateFailure> refused(ISO::Date date, std::optional<ISO::Date> newestSeen,
                                     ISO::Date now) {
  if (newestSeen && date < *newestSeen) {
    return UpdateFailure{UpdateFault::olderFeed,
                         "signed on " + dayOf(date) + ", the other one on " + dayOf(*newestSeen)};
  }
  // Once remembered, such a date would keep every right one out.
  if (date > now + day) return UpdateFailure{UpdateFault::futureFeed, dayOf(date)};
  return std::nullopt;
}

std::string warning(ISO::Date date, ISO::Date now) {
  if (now - date <= mostDays * day) return {};
  return "The list of versions was signed on " + dayOf(date) + ", more than " +
         std::to_string(mostDays) + " days ago. There may be versions that it does not name.";
}

std::optional<ISO::Date> load(const std::filesystem::path& file) {
  try {
    if (!FileSystem::real().status(file)) return std::nullopt;
    std::string text = FileSystem::real().read(file, 0, mostBytes);
    if (text.ends_with('\n')) text.pop_back();
    return ISO::date(text);
  } catch (const std::exception&) {
    return std::nullopt;
  }
}

void remember(const std::filesystem::path& file, ISO::Date date) {
  try {
    FileSystem::real().makeFolders(file.parent_path());
    AtomicFile::write(FileSystem::real(), file, ISO::string(date) + "\n");
  } catch (const std::exception&) {
    // The updater keeps the date in memory as well.
  }
}

}  // namespace quorin::FeedDate

// FeedDate: whether a feed is too old, and the file with the newest date that was seen. Whoever can
// answer in the server's place can give a feed that was signed in its time, and so hide what came
// after it; its date shows that. Any thread; the file's functions block.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "app/linux/updates/UpdateFailure.h"
#include "kit/support/ISO.h"

namespace quorin::FeedDate {

// Why a feed of this date is not to be used: a newer one was seen, or it is dated over a day ahead
// of this computer's clock. None when it may be used.
std::optional<UpdateFailure> refused(ISO::Date date, std::optional<ISO::Date> newestSeen,
                                     ISO::Date now);

// What the user should know of a feed that is over 30 days old; empty for a younger one.
std::string warning(ISO::Date date, ISO::Date now);

// The newest date seen; none when the file is missing, cannot be read or holds anything else.
std::optional<ISO::Date> load(const std::filesystem::path& file);

// Replaces the file, which is the user's alone, and makes its folder where that is missing. That it
// cannot be written is no error: the date is then known until this process ends.
void remember(const std::filesystem::path& file, ISO::Date date);

}  // namespace quorin::FeedDate

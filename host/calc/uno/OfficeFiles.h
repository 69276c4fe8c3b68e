// The files through which an office can be reached, and file URLs.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace quorin::host::calc {

// The socket file of the pipe that `--accept=pipe,name=NAME` opens.
std::filesystem::path pipeFile(std::string_view name);

// True if the pipe's file is there and the user's own: one of that name which belongs to someone
// else is not the office. That one is there all the same is an error, -600, which says so.
bool isOwnPipe(std::string_view name);

// A name for a pipe that nobody can foresee, and that no file has.
std::string newPipeName(std::string_view prefix);

// The name of the pipe through which a second start with the same user folder reaches the first.
std::string singleInstancePipe(std::string_view userInstallation);

// "file:///tmp/a%20b" for "/tmp/a b", and back; empty for any other kind of URL.
std::string fileUrl(const std::filesystem::path& path);
std::filesystem::path pathOfUrl(std::string_view url);

}  // namespace quorin::host::calc

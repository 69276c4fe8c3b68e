// Archiver: packs a folder for the user to send. Any thread.
#pragma once

#include <filesystem>

namespace quorin {

class Archiver {
 public:
  virtual ~Archiver() = default;

  // Writes a new zip file that holds the folder itself with all that is in it. Gives 0, or another
  // status when that failed; what was written by then may still be there.
  virtual int zip(const std::filesystem::path& folder, const std::filesystem::path& file) = 0;
};

}  // namespace quorin

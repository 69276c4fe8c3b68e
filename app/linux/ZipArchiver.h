// ZipArchiver: the archiver port over libzip. What is neither a file nor a folder is left out.
#pragma once

#include "kit/platform/Archiver.h"

namespace quorin {

class ZipArchiver : public Archiver {
 public:
  // The status is libzip's, -1 where the folder cannot be read.
  int zip(const std::filesystem::path& folder, const std::filesystem::path& file) override;
};

}  // namespace quorin

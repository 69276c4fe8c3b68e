// MacArchiver: zip files, through ditto. Any thread; waits for it to end.
#pragma once

#include "kit/platform/Archiver.h"

namespace quorin {

class MacArchiver : public Archiver {
 public:
  // Ditto's status, or -1 when it could not be started.
  int zip(const std::filesystem::path& folder, const std::filesystem::path& file) override;
};

}  // namespace quorin

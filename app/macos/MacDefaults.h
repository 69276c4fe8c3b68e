// MacDefaults: the user's defaults of this application, through NSUserDefaults. Main thread only.
#pragma once

#include "app/shell/ports/Defaults.h"

namespace quorin {

class MacDefaults : public Defaults {
 public:
  std::optional<std::string> string(const std::string& key) const override;
  void setString(const std::string& key, const std::string& value) override;
};

}  // namespace quorin

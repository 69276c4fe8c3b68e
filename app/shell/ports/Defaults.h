// Defaults: the few texts that the platform keeps for this application and user. Main thread only.
#pragma once

#include <optional>
#include <string>

namespace quorin {

class Defaults {
 public:
  virtual ~Defaults() = default;
  virtual std::optional<std::string> string(const std::string& key) const = 0;
  virtual void setString(const std::string& key, const std::string& value) = 0;
};

}  // namespace quorin

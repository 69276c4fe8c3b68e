// LoginItem: whether the application starts with the user's session. Main thread only.
#pragma once

#include <optional>
#include <string>

namespace quorin {

enum class LoginItemStatus { notRegistered, enabled, requiresApproval, notFound, unknown };

class LoginItem {
 public:
  virtual ~LoginItem() = default;

  // True if the application runs from where it was installed. Only then can it be registered.
  virtual bool isInstalled() const = 0;

  virtual LoginItemStatus status() const = 0;

  // The system's description of what went wrong; none when nothing did.
  virtual std::optional<std::string> registerItem() = 0;
  virtual std::optional<std::string> unregisterItem() = 0;
};

}  // namespace quorin

// Owner: whose a mark or a shown row or column is. One office may have several: a process that has
// died and whose keeper has not yet taken everything back beside the next one, or a program beside
// another. Each keeper takes care of its own owner's, and of what is left of those that are gone.
// Any thread.
#pragma once

#include <string>
#include <utility>

namespace quorin::host::calc {

class Owner {
 public:
  // Another one each time: a process may connect to its office again.
  static Owner ofThisProcess();
  explicit Owner(std::string text) : text_(std::move(text)) {}

  // Without a blank: the process, when it started, and which of its owners this is.
  const std::string& text() const { return text_; }

  // True if it takes care of what has this owner's text: it is its own, or an earlier one of its
  // process, or that of a process that is gone, or tells no owner.
  bool caresFor(const std::string& text) const;

 private:
  std::string text_;
};

}  // namespace quorin::host::calc

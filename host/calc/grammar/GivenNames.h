// GivenNames: what LET and LAMBDA call values, in the calls of one text that are open while it is
// read. A name counts inside its call, behind the value, and hides one of the workbook there alone.
// Pure.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/calc/grammar/ArrayWork.h"

namespace quorin::host::calc {

struct GivenName {
  std::string word;          // in capitals
  std::size_t call = 0;      // the number of its call among those that are open
  std::size_t argument = 0;  // so many of the call's arguments have ended when it counts
  std::string written = {};  // instead of the word; empty for the word as it stands
  std::string value = {};    // Excel text; empty where there is none, as for LAMBDA's
  ArrayShape shape = {};
  bool single = false;  // it is one value whatever the cells hold
  bool counts = false;
};

class GivenNames {
 public:
  void give(GivenName name) { names_.push_back(std::move(name)); }
  // The one that was given last; nothing when there is none.
  GivenName* last() { return names_.empty() ? nullptr : &names_.back(); }
  // The one that the word stands for here.
  const GivenName* find(const std::string& word) const;

  void argumentEnds(std::size_t call, std::size_t ended);
  void callEnds(std::size_t call);

  // The text, asked about by itself: with the values of the names that it uses. Nothing where one
  // of these has no value yet.
  std::optional<std::string> asked(std::string_view text) const;

 private:
  std::vector<GivenName> names_;
};

}  // namespace quorin::host::calc

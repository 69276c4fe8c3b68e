// The sheets that stand before references in Calc's stored grammar, $'My Sheet'., known again in
// the formulas that follow: most formulas of a range name the same few. Used on one thread.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorin::host::calc {

using IsSheet = std::function<bool(const std::string& name)>;

class SheetPrefixes {
 public:
  struct Sheet {
    std::string prefix;   // as it was read, with its "."
    std::string name;     // "#REF!" for one that was deleted
    std::string written;  // as Excel writes it before "!"
    std::optional<bool> exists;
  };

  explicit SheetPrefixes(IsSheet isSheet);

  // The sheet at `position`, which moves behind its "."; null where none stands. What is pointed to
  // lasts until the next but one is read.
  Sheet* read(std::string_view text, std::size_t& position);

  // True if there is such a sheet, or if that is not known.
  bool exists(Sheet& sheet) const;

 private:
  const IsSheet isSheet_;
  std::vector<Sheet> known_;
  std::size_t latest_ = 0;
};

}  // namespace quorin::host::calc

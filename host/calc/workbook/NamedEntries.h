// NamedEntries: the entries of one of a workbook's collections by their names, the defined names of
// the workbook or of a sheet, or the tables. Calc looks names up as its own formulas do, exactly or
// in another case; what that does not find and is the same name all the same, an accent written
// apart for one, is found among all of them, which are read once and only when so looked for.
// Forget it when names may have changed. Call thread.
#pragma once

#include <com/sun/star/container/XNameAccess.hpp>
#include <map>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>

namespace quorin::host::calc {

struct Workbook;

class NamedEntries {
 public:
  using Entry = css::uno::Reference<css::uno::XInterface>;

  explicit NamedEntries(css::uno::Reference<css::container::XNameAccess> entries)
      : entries_(std::move(entries)) {}

  // Null when there is no such entry.
  Entry find(const std::string& name);

 private:
  Entry among(const rtl::OUString& name) const;
  const rtl::OUString* likeNamed(const std::string& name);

  const css::uno::Reference<css::container::XNameAccess> entries_;
  // By what is left of a name without its case; of several the first. Once asked for.
  std::optional<std::unordered_map<std::string, rtl::OUString>> all_;
};

// Those of a workbook that were looked at. While they are kept, each is read once.
class KeptEntries {
 public:
  void keep(bool keep) {
    kept_.clear();
    keeping_ = keep;
  }
  NamedEntries::Entry name(const Workbook& workbook, const std::string& sheet,
                           const std::string& name);  // of the sheet's own, or the workbook's
  NamedEntries::Entry table(const Workbook& workbook, const std::string& name);

 private:
  NamedEntries::Entry find(const Workbook& workbook, const std::string& sheet, const char* property,
                           const std::string& name);

  bool keeping_ = false;
  std::map<std::pair<std::string, std::string>, NamedEntries> kept_;  // by property and sheet
};

}  // namespace quorin::host::calc

#include "host/calc/workbook/NamedEntries.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XIndexAccess.hpp>

#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"
#include "kit/value/Unicode.h"

namespace quorin::host::calc {

using css::container::XNameAccess;
using css::uno::Reference;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

namespace {

// Reading more takes longer than an answer may; then Calc's own look-up is all there is.
constexpr sal_Int32 mostRead = 100'000;

bool areTooMany(const Reference<XNameAccess>& entries) {
  const Reference<css::container::XIndexAccess> counted(entries, UNO_QUERY);
  return counted.is() && counted->getCount() > mostRead;
}

}  // namespace

NamedEntries::Entry NamedEntries::find(const std::string& name) {
  if (!entries_.is()) return nullptr;
  if (const Entry found = among(toUno(name)); found.is()) return found;
  const rtl::OUString* const like = likeNamed(name);
  return like ? among(*like) : nullptr;
}

// Somebody may take it away between the question and the answer.
NamedEntries::Entry NamedEntries::among(const rtl::OUString& name) const {
  try {
    if (entries_->hasByName(name)) return {entries_->getByName(name), UNO_QUERY};
  } catch (const css::container::NoSuchElementException&) {
  }
  return nullptr;
}

const rtl::OUString* NamedEntries::likeNamed(const std::string& name) {
  if (!all_) {
    all_.emplace();
    if (!areTooMany(entries_)) {
      for (const rtl::OUString& each : entries_->getElementNames()) {
        all_->try_emplace(withoutCase(toText(each)), each);
      }
    }
  }
  const auto found = all_->find(withoutCase(name));
  return found == all_->end() ? nullptr : &found->second;
}

NamedEntries::Entry KeptEntries::name(const Workbook& workbook, const std::string& sheet,
                                      const std::string& name) {
  return find(workbook, sheet, "NamedRanges", name);
}

NamedEntries::Entry KeptEntries::table(const Workbook& workbook, const std::string& name) {
  return find(workbook, {}, "DatabaseRanges", name);
}

NamedEntries::Entry KeptEntries::find(const Workbook& workbook, const std::string& sheet,
                                      const char* property, const std::string& name) {
  const auto known = kept_.find({property, sheet});
  if (known != kept_.end()) return known->second.find(name);
  const Reference<css::uno::XInterface> owner =
      sheet.empty() ? Reference<css::uno::XInterface>(workbook.document)
                    : Reference<css::uno::XInterface>(sheetOf(workbook, sheet));
  NamedEntries entries({Reference<css::beans::XPropertySet>(owner, UNO_QUERY_THROW)
                            ->getPropertyValue(rtl::OUString::createFromAscii(property)),
                        UNO_QUERY});
  if (!keeping_) return entries.find(name);
  return kept_.try_emplace({property, sheet}, std::move(entries)).first->second.find(name);
}

}  // namespace quorin::host::calc

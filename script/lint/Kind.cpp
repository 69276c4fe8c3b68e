#include "script/lint/Kind.h"

#include <algorithm>

#include "script/terms/Words.h"

namespace quorin::script {
namespace {

constexpr std::string_view applicationClass = "application";

bool isNumeric(Kind::Of of) {
  return of == Kind::Of::integer || of == Kind::Of::real || of == Kind::Of::number;
}

}  // namespace

Kind joined(const Kind& a, const Kind& b) {
  if (a.of == Kind::Of::missing) return b;
  if (b.of == Kind::Of::missing || a == b) return a;
  if (isNumeric(a.of) && isNumeric(b.of)) return {Kind::Of::number, {}};
  return {};
}

bool ClassModel::describes(std::string_view className) const {
  if (!terms_.parentOf(className).empty()) return true;
  return std::any_of(terms_.members().begin(), terms_.members().end(),
                     [&](const MemberTerm& each) { return lowerCase(each.owner) == className; });
}

const MemberTerm* ClassModel::member(std::string_view className, FourCharCode code,
                                     bool isElement) const {
  for (std::string_view owner = className; !owner.empty(); owner = terms_.parentOf(owner)) {
    for (const MemberTerm& each : terms_.members()) {
      if (each.isElement != isElement || lowerCase(each.owner) != owner) continue;
      if (each.code == code) return &each;
      // The same word has other codes in some classes; a script gets the first.
      const Term* term = terms_.find(each.term);
      if (!isElement && term && term->property == code) return &each;
    }
  }
  return nullptr;
}

Kind ClassModel::kindOfType(std::string_view type) const {
  const std::string lower = lowerCase(type);
  if (lower == "integer") return {Kind::Of::integer, {}};
  if (lower == "float" || lower == "real" || lower == "double") return {Kind::Of::real, {}};
  if (lower == "number") return {Kind::Of::number, {}};
  if (lower == "text") return {Kind::Of::text, {}};
  if (lower == "boolean") return {Kind::Of::boolean, {}};
  if (lower == "any" || lower.starts_with("anything")) return {Kind::Of::anything, {}};
  if (lower.starts_with("list of") || lower == "rectangle") return {Kind::Of::list, {}};
  if (lower.starts_with("enum(")) return {Kind::Of::constant, {}};
  const Term* term = terms_.find(lower);
  if (!term || !term->type || !describes(lower)) return {};
  return {Kind::Of::object, lower};
}

Kind ClassModel::objectOf(FourCharCode classCode, Kind::Of of) const {
  const auto name = terms_.className(classCode);
  if (!name) return {};
  std::string lower = lowerCase(*name);
  if (!describes(lower)) return {};
  return {of, std::move(lower)};
}

bool ClassModel::followsUser(FourCharCode property) const {
  const MemberTerm* found = member(applicationClass, property, false);
  return found && !found->writable && kindOfType(found->type).of == Kind::Of::object;
}

}  // namespace quorin::script

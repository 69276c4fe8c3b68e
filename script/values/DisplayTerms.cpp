// Codes as the terms that stand for them, and texts between quotes.
#include <array>

#include "script/terms/Application.h"
#include "script/terms/Terminology.h"
#include "script/values/Display.h"

namespace quorin::script {
namespace {

using NameOf = std::optional<std::string_view> (Terminology::*)(FourCharCode) const;

std::optional<std::string_view> nameOf(NameOf lookUp, FourCharCode code,
                                       const Application* application) {
  if (application) {
    if (const auto name = (application->terminology().*lookUp)(code)) return name;
  }
  return (languageTerminology().*lookUp)(code);
}

}  // namespace

std::string displayProperty(FourCharCode code, const Application* application) {
  if (const auto name = nameOf(&Terminology::propertyName, code, application)) {
    return std::string(*name);
  }
  if (const auto name = nameOf(&Terminology::className, code, application)) {
    return std::string(*name);
  }
  return "\xC2\xABproperty " + displayCode(code) + "\xC2\xBB";
}

std::string displayConstant(const Constant& constant) {
  if (constant.kind == Constant::Kind::type) {
    return constant.code == fourCharCode("msng") ? "missing value"
                                                 : displayClass(constant.code, constant.origin);
  }
  if (constant.kind == Constant::Kind::property) {
    return displayProperty(constant.code, constant.origin);
  }
  if (const auto name = nameOf(&Terminology::enumeratorName, constant.code, constant.origin)) {
    return std::string(*name);
  }
  return "\xC2\xAB"
         "constant ****" +
         displayCode(constant.code) + "\xC2\xBB";
}

std::string displayClass(FourCharCode code, const Application* application, bool plural) {
  if (const auto name = nameOf(&Terminology::className, code, application)) {
    if (!plural || name->ends_with('s')) return std::string(*name);
    return *name == "text" ? "text" : std::string(*name) + "s";
  }
  return "\xC2\xAB"
         "class " +
         displayCode(code) + "\xC2\xBB";
}

std::string displayCode(FourCharCode code) {
  const std::array<char, 4> bytes = {static_cast<char>(code >> 24), static_cast<char>(code >> 16),
                                     static_cast<char>(code >> 8), static_cast<char>(code)};
  bool printable = true;
  for (const char c : bytes) printable = printable && c >= 0x20 && c < 0x7F;
  if (printable) return std::string(bytes.data(), bytes.size());
  static constexpr std::string_view digits = "0123456789ABCDEF";
  std::string hex = "0x";
  for (int shift = 28; shift >= 0; shift -= 4) hex += digits[(code >> shift) & 0xF];
  return hex;
}

std::string inQuotes(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    result += c;
  }
  return result + '"';
}

}  // namespace quorin::script

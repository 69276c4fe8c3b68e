// Text between UNO's UTF-16 strings and the UTF-8 of everything else.
#pragma once

#include <rtl/string.hxx>
#include <rtl/ustring.hxx>
#include <string>
#include <string_view>

namespace quorin::host::calc {

// Into a string that may have room already. Most text is ASCII, and there is much of it.
inline void setText(std::string& text, const rtl::OUString& units) {
  text.resize(static_cast<std::size_t>(units.getLength()));
  unsigned all = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const sal_Unicode unit = units.getStr()[i];
    all |= unit;
    text[i] = static_cast<char>(unit);
  }
  if (all < 0x80) return;
  const rtl::OString bytes = rtl::OUStringToOString(units, RTL_TEXTENCODING_UTF8);
  text.assign(bytes.getStr(), static_cast<std::size_t>(bytes.getLength()));
}

inline std::string toText(const rtl::OUString& units) {
  std::string text;
  setText(text, units);
  return text;
}

inline rtl::OUString toUno(std::string_view text) {
  return {text.data(), static_cast<sal_Int32>(text.size()), RTL_TEXTENCODING_UTF8};
}

}  // namespace quorin::host::calc

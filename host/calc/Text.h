// Text between UNO's UTF-16 strings and the UTF-8 of everything else.
#pragma once

#include <algorithm>
#include <rtl/string.hxx>
#include <rtl/ustring.hxx>
#include <string>
#include <string_view>

namespace quorin::host::calc {

inline std::string toText(const rtl::OUString& text) {
  // Most text is ASCII, and there is much of it.
  const sal_Unicode* const begin = text.getStr();
  const sal_Unicode* const end = begin + text.getLength();
  if (std::none_of(begin, end, [](sal_Unicode unit) { return unit >= 0x80; })) {
    std::string ascii(static_cast<std::size_t>(end - begin), '\0');
    std::transform(begin, end, ascii.begin(),
                   [](sal_Unicode unit) { return static_cast<char>(unit); });
    return ascii;
  }
  const rtl::OString bytes = rtl::OUStringToOString(text, RTL_TEXTENCODING_UTF8);
  return {bytes.getStr(), static_cast<std::size_t>(bytes.getLength())};
}

inline rtl::OUString toUno(std::string_view text) {
  return {text.data(), static_cast<sal_Int32>(text.size()), RTL_TEXTENCODING_UTF8};
}

}  // namespace quorin::host::calc

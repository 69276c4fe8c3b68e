// The prefix that puts an address on a sheet: "Sheet1!", "'My Sheet'!", "[Book.xlsx]Sheet1!",
// "'[My Book.xlsx]It''s'!". Pure functions for any thread.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorin::host {

struct QualifiedText {
  std::optional<std::string> book, sheet;  // as spelled in the text, quotes undone
  std::string_view rest;                   // the address or name after the "!"
};

// Splits the prefix off; without one, the text is all rest. Nothing when a quote never closes or a
// part of the prefix is empty.
std::optional<QualifiedText> splitSheetPrefix(std::string_view text);

// Cuts the text before its first comma outside of quotes and brackets off its front, without blanks
// around it: an area of several, "Sales[[#All],[Net]]" whole.
std::string_view takeArea(std::string_view& text);

// The prefix as `get address ... with external` writes it, quoted where Excel needs quotes.
std::string sheetPrefix(std::string_view book, std::string_view sheet);

}  // namespace quorin::host

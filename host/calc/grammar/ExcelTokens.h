// The smallest pieces of an Excel expression but for references: words, numbers, text and arrays.
// Pure functions over text; positions are bytes and move behind what was read, or stay when nothing
// was.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace quorin::host::calc {

// "a ""quoted"" word", as it stands: Calc writes it alike.
std::optional<std::string_view> readText(std::string_view text, std::size_t& position);

// {1,"a";2,#N/A} in Calc's grammar, where ";" parts columns and "|" rows.
std::optional<std::string> readArray(std::string_view text, std::size_t& position);

// A name or a number, the sign of its exponent included; empty where neither stands.
std::string_view readWord(std::string_view text, std::size_t& position);

// "12", "1.5", ".5", "1.5E+3".
bool isNumber(std::string_view word);

}  // namespace quorin::host::calc

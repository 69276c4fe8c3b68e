// References as text, in the forms Calc and Excel share: "$A$1", "A1:B2", "A:C", "$2:$5", and the
// quoting of sheet names. Pure functions; positions are 1-based.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "host/Address.h"
#include "host/Spreadsheet.h"

namespace quorin::host::calc {

// The cell a formula stands in: relative R1C1 references count from it.
struct FormulaCell {
  int row = 1, column = 1;
};

// One end of a reference. A row or column of 0 is not there (whole columns, whole rows).
struct CellText {
  int row = 0, column = 0;
  bool absoluteRow = false, absoluteColumn = false;
  bool lost = false;  // "#REF!" stands for its row, its column or both
  bool operator==(const CellText&) const = default;
};

struct RangeText {
  CellText from;
  std::optional<CellText> to;
  bool operator==(const RangeText&) const = default;
};

// Reads one end at `position` and moves it behind; nothing, with the position unmoved, when there
// is none. A lone column or row counts as one here.
std::optional<CellText> readCell(std::string_view text, std::size_t& position);

// True for characters that may stand in an unquoted name.
inline bool isWordCharacter(char character) {
  static constexpr auto kinds = [] {
    std::array<bool, 256> are{};
    for (std::size_t c = 0; c < are.size(); ++c) {
      are[c] = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
               c == '_' || c == '.' || c == '\\' || c == '?' || c >= 0x80;
    }
    return are;
  }();
  return kinds[static_cast<unsigned char>(character)];
}

std::string write(const RangeText& range, ReferenceStyle style, FormulaCell cell);
void append(std::string& text, const RangeText& range, ReferenceStyle style, FormulaCell cell);
Area areaOf(const RangeText& range);

// A sheet's name, or "First:Last", as Excel writes it before "!": quoted where it must be.
std::string excelSheet(const std::string& name);
// As Calc writes it before ".": always quoted, which it reads equally well.
std::string calcSheet(const std::string& name);

// Reads 'quoted text' with doubled quotes at `position`, and moves it behind the closing quote.
std::optional<std::string> readQuoted(std::string_view text, std::size_t& position);

// The text in quotation marks, as it stands in a formula.
std::string inQuotes(std::string_view text);
// As short as tells it from every other.
std::string numberText(double number);
// The number that a text is, white space around it aside; nothing for any other text.
std::optional<double> numberIn(std::string_view text);

// Without the blanks around it.
std::string_view trimmed(std::string_view text);

// The error literal at `position` in its usual spelling ("#REF!"), in any case; empty for none.
std::string_view errorLiteral(std::string_view text, std::size_t position);

// Of ASCII letters alone.
constexpr char upperCase(char c) {
  return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}
std::string upperCase(std::string_view ascii);
bool equalIgnoringCase(std::string_view a, std::string_view b);

}  // namespace quorin::host::calc

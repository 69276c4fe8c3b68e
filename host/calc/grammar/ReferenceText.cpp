#include "host/calc/grammar/ReferenceText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace quorin::host::calc {
namespace {

constexpr std::string_view lostText = "#REF!";

constexpr bool isLetter(char c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}
constexpr bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

bool startsWithLost(std::string_view text, std::size_t position) {
  if (position >= text.size() || text[position] != lostText.front()) return false;
  return equalIgnoringCase(text.substr(position, lostText.size()), lostText);
}

// The column or row after an optional dollar sign; 0 and an unmoved position for none.
template <typename Accept, typename Add>
int readPart(std::string_view text, std::size_t& position, bool& absolute, std::size_t longest,
             int largest, Accept accept, Add add) {
  std::size_t at = position;
  const bool dollar = at < text.size() && text[at] == '$';
  if (dollar) ++at;
  const std::size_t start = at;
  int value = 0;
  while (at < text.size() && at - start < longest && accept(text[at]))
    value = add(value, text[at++]);
  if (at == start || value < 1 || value > largest) return 0;
  position = at;
  absolute = dollar;
  return value;
}

int readColumn(std::string_view text, std::size_t& position, bool& absolute) {
  constexpr std::size_t longest = 3;
  return readPart(text, position, absolute, longest, maxColumn, isLetter,
                  [](int value, char c) { return value * 26 + (upperCase(c) - 'A' + 1); });
}

int readRow(std::string_view text, std::size_t& position, bool& absolute) {
  constexpr std::size_t longest = 7;
  return readPart(text, position, absolute, longest, maxRow, isDigit,
                  [](int value, char c) { return value * 10 + (c - '0'); });
}

bool skipLost(std::string_view text, std::size_t& position) {
  const std::size_t at = position < text.size() && text[position] == '$' ? position + 1 : position;
  if (!startsWithLost(text, at)) return false;
  position = at + lostText.size();
  return true;
}

// Short pieces of text, put together before they are added in one go.
class Piece {
 public:
  void add(char c) { *end_++ = c; }
  void addNumber(int value) { end_ = std::to_chars(end_, text_.data() + text_.size(), value).ptr; }
  void addColumn(int column) {
    for (const char letter : columnLetters(column)) add(letter);
  }
  std::string_view text() const {
    return {text_.data(), static_cast<std::size_t>(end_ - text_.data())};
  }

 private:
  std::array<char, 64> text_;  // a reference takes 37 at most: R[-1048575]C[-16383], twice
  char* end_ = text_.data();
};

void addA1(Piece& piece, const CellText& cell) {
  if (cell.column > 0) {
    if (cell.absoluteColumn) piece.add('$');
    piece.addColumn(cell.column);
  }
  if (cell.row > 0) {
    if (cell.absoluteRow) piece.add('$');
    piece.addNumber(cell.row);
  }
}

void addRelative(Piece& piece, char axis, int value, bool absolute, int origin) {
  piece.add(axis);
  if (absolute) {
    piece.addNumber(value);
  } else if (value != origin) {
    piece.add('[');
    piece.addNumber(value - origin);
    piece.add(']');
  }
}

void addR1C1(Piece& piece, const CellText& cell, FormulaCell origin) {
  if (cell.row > 0) addRelative(piece, 'R', cell.row, cell.absoluteRow, origin.row);
  if (cell.column > 0) addRelative(piece, 'C', cell.column, cell.absoluteColumn, origin.column);
}

// Excel writes a range over all rows or all columns without them.
RangeText normalised(RangeText range) {
  if (!range.to) return range;
  if (range.from.row == 1 && range.to->row == maxRow && range.from.column > 0) {
    range.from.row = range.to->row = 0;
  } else if (range.from.column == 1 && range.to->column == maxColumn && range.from.row > 0) {
    range.from.column = range.to->column = 0;
  }
  return range;
}

bool looksLikeCell(std::string_view name) {
  std::size_t position = 0;
  const auto cell = readCell(name, position);
  if (cell && position == name.size() && !cell->lost && cell->row > 0 && cell->column > 0) {
    return true;
  }
  // R1C1 forms: R, C, R5, C3, R5C3.
  position = 0;
  for (const char axis : {'R', 'C'}) {
    if (position < name.size() && upperCase(name[position]) == axis) {
      ++position;
      while (position < name.size() && isDigit(name[position])) ++position;
    }
  }
  return position == name.size();
}

}  // namespace

std::optional<CellText> readCell(std::string_view text, std::size_t& position) {
  CellText cell;
  std::size_t at = position;
  if (skipLost(text, at)) {
    cell.lost = true;
    bool ignored = false;
    if (!skipLost(text, at)) readRow(text, at, ignored);
  } else {
    cell.column = readColumn(text, at, cell.absoluteColumn);
    if (cell.column > 0 && skipLost(text, at)) {
      cell.lost = true;
    } else {
      cell.row = readRow(text, at, cell.absoluteRow);
      if (cell.row == 0 && cell.column == 0) return std::nullopt;
    }
  }
  if (at < text.size() && (isWordCharacter(text[at]) || text[at] == '$' || text[at] == '[')) {
    return std::nullopt;
  }
  position = at;
  return cell;
}

void append(std::string& text, const RangeText& range, ReferenceStyle style, FormulaCell cell) {
  if (range.from.lost || (range.to && range.to->lost)) {
    text += lostText;
    return;
  }
  const RangeText written = normalised(range);
  Piece piece;
  const auto add = [&](const CellText& end) {
    if (style == ReferenceStyle::a1) {
      addA1(piece, end);
    } else {
      addR1C1(piece, end, cell);
    }
  };
  add(written.from);
  // "C3" says a whole column in one word, while A1 always needs both ends of it.
  const bool whole = written.from.row == 0 || written.from.column == 0;
  if (written.to && !(whole && style == ReferenceStyle::r1c1 && *written.to == written.from)) {
    piece.add(':');
    add(*written.to);
  }
  text += piece.text();
}

std::string write(const RangeText& range, ReferenceStyle style, FormulaCell cell) {
  std::string text;
  append(text, range, style, cell);
  return text;
}

Area areaOf(const RangeText& range) {
  const CellText to = range.to.value_or(range.from);
  const auto span = [](int a, int b, int last) {
    return a == 0 ? std::pair(1, last) : std::minmax({a, b});
  };
  const auto rows = span(range.from.row, to.row, maxRow);
  const auto columns = span(range.from.column, to.column, maxColumn);
  return {rows.first, columns.first, rows.second, columns.second};
}

std::string excelSheet(const std::string& name) {
  bool plain =
      !name.empty() && !isDigit(name.front()) && name.front() != '.' && name.front() != '?';
  std::size_t start = 0;
  while (plain && start <= name.size()) {  // "First:Last" is plain when both are
    const std::size_t end = std::min(name.find(':', start), name.size());
    const std::string_view part = std::string_view(name).substr(start, end - start);
    plain = !part.empty() && !isDigit(part.front()) && !looksLikeCell(part) &&
            std::all_of(part.begin(), part.end(),
                        [](char c) { return isWordCharacter(c) && c != '?' && c != '\\'; });
    start = end + 1;
  }
  if (plain) return name;
  std::string quoted = "'";
  for (const char c : name) quoted += c == '\'' ? std::string("''") : std::string(1, c);
  return quoted + "'";
}

std::string calcSheet(const std::string& name) {
  std::string quoted = "$'";
  for (const char c : name) quoted += c == '\'' ? std::string("''") : std::string(1, c);
  return quoted + "'";
}

std::optional<std::string> readQuoted(std::string_view text, std::size_t& position) {
  if (position >= text.size() || text[position] != '\'') return std::nullopt;
  std::string content;
  for (std::size_t at = position + 1; at < text.size(); ++at) {
    if (text[at] != '\'') {
      content += text[at];
    } else if (at + 1 < text.size() && text[at + 1] == '\'') {
      content += text[at++];
    } else {
      position = at + 1;
      return content;
    }
  }
  return std::nullopt;
}

std::string inQuotes(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"') result += c;
    result += c;
  }
  return result + '"';
}

std::string numberText(double number) {
  std::array<char, 32> digits{};
  std::to_chars(digits.begin(), digits.end(), number);
  return digits.data();
}

std::optional<double> numberIn(std::string_view text) {
  text = trimmed(text);
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool isAll = error == std::errc() && end == text.data() + text.size();
  if (!isAll || !std::isfinite(number)) return std::nullopt;
  return number;
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \n\r\t";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

std::string_view errorLiteral(std::string_view text, std::size_t position) {
  static constexpr std::array<std::string_view, 8> literals{
      "#NULL!", "#DIV/0!", "#VALUE!", "#REF!", "#NAME?", "#NUM!", "#N/A", "#CALC!"};
  if (position >= text.size() || text[position] != '#') return {};
  for (const std::string_view literal : literals) {
    if (equalIgnoringCase(text.substr(position, literal.size()), literal)) {
      return literal;
    }
  }
  return {};
}

std::string upperCase(std::string_view ascii) {
  std::string text(ascii);
  for (char& c : text) c = upperCase(c);
  return text;
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return upperCase(x) == upperCase(y); });
}

}  // namespace quorin::host::calc

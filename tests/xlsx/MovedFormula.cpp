// Working out what a follower of a shared formula says.
#include <cctype>

#include "tests/xlsx/StoredWorkbook.h"

namespace quorin::xlsx {
namespace {

constexpr int lastRow = 1048576;
constexpr int lastColumn = 16384;

bool isNameCharacter(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '.' || c == '\\' ||
         c == '?' || (static_cast<unsigned char>(c) & 0x80U) != 0;
}

int wrapped(int index, int by, int last) {
  return ((index - 1 + by) % last + last) % last + 1;
}

std::string lettersOf(int column) {
  std::string letters;
  for (; column > 0; column = (column - 1) / 26)
    letters.insert(letters.begin(), static_cast<char>('A' + (column - 1) % 26));
  return letters;
}

// A word of letters, digits and dollars: moved when it is a cell address, "$A1", or half of one in
// "A:C" and "3:5".
std::string movedWord(const std::string& word, bool besideColon, int rows, int columns) {
  std::size_t i = 0;
  const bool columnFixed = i < word.size() && word[i] == '$';
  if (columnFixed) ++i;
  int column = 0;
  const std::size_t letters = i;
  while (i < word.size() && std::isalpha(static_cast<unsigned char>(word[i])) != 0 &&
         i - letters < 4) {
    column = column * 26 + (std::toupper(static_cast<unsigned char>(word[i])) - 'A' + 1);
    ++i;
  }
  const bool hasColumn = i > letters;
  const bool rowFixed = hasColumn ? i < word.size() && word[i] == '$' : columnFixed;
  if (hasColumn && rowFixed) ++i;
  const std::size_t digits = i;
  long row = 0;
  while (i < word.size() && std::isdigit(static_cast<unsigned char>(word[i])) != 0 &&
         row <= lastRow)
    row = row * 10 + (word[i++] - '0');
  const bool hasRow = i > digits;
  const bool whole = hasColumn && hasRow;
  if (i != word.size() || column > lastColumn || row > lastRow || (hasRow && row == 0)) return word;
  if (!whole && !(besideColon && (hasColumn || hasRow))) return word;
  std::string moved;
  if (hasColumn) {
    moved += columnFixed ? "$" : "";
    moved += lettersOf(columnFixed ? column : wrapped(column, columns, lastColumn));
  }
  if (hasRow) {
    moved += rowFixed ? "$" : "";
    const int plain = static_cast<int>(row);
    moved += std::to_string(rowFixed ? plain : wrapped(plain, rows, lastRow));
  }
  return moved;
}

// The end of a quoted or bracketed piece that begins here.
std::size_t endOfPiece(const std::string& formula, std::size_t begin) {
  const char open = formula[begin];
  std::size_t i = begin + 1;
  if (open != '[') {
    for (; i < formula.size(); ++i) {
      if (formula[i] != open) continue;
      if (i + 1 >= formula.size() || formula[i + 1] != open) return i + 1;
      ++i;
    }
    return formula.size();
  }
  for (int depth = 1; i < formula.size() && depth > 0; ++i) {
    if (formula[i] == '\'')
      ++i;
    else if (formula[i] == '[')
      ++depth;
    else if (formula[i] == ']')
      --depth;
  }
  return i;
}

}  // namespace

std::string movedFormula(const std::string& formula, int rows, int columns) {
  std::string moved;
  std::size_t i = 0;
  while (i < formula.size()) {
    const char c = formula[i];
    if (c == '"' || c == '\'' || c == '[') {
      const std::size_t end = endOfPiece(formula, i);
      moved += formula.substr(i, end - i);
      i = end;
      continue;
    }
    if (!isNameCharacter(c) && c != '$') {
      moved += c;
      ++i;
      continue;
    }
    std::size_t end = i;
    while (end < formula.size() && (isNameCharacter(formula[end]) || formula[end] == '$')) ++end;
    const std::string word = formula.substr(i, end - i);
    const char next = end < formula.size() ? formula[end] : '\0';
    const char before = i > 0 ? formula[i - 1] : '\0';
    const bool isName = next == '(' || next == '!' || next == '[' || before == '#' || before == ']';
    moved += isName ? word : movedWord(word, next == ':' || before == ':', rows, columns);
    i = end;
  }
  return moved;
}

}  // namespace quorin::xlsx

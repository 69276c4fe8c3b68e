#include "host/calc/grammar/TableItems.h"

#include <array>

#include "host/calc/grammar/ReferenceText.h"

namespace quorin::host::calc {
namespace {

// One item or column without its brackets, in which "'" escapes the next character.
std::optional<std::string> readName(std::string_view text, std::size_t& at) {
  std::string name;
  for (; at < text.size(); ++at) {
    if (text[at] == '[') return std::nullopt;
    if (text[at] == ']') return name;
    if (text[at] == '\'' && at + 1 < text.size()) ++at;
    name += text[at];
  }
  return std::nullopt;
}

struct Item {
  std::string_view name;
  bool TableItems::*flag;
};
constexpr std::array<Item, 5> allItems{{{"#All", &TableItems::all},
                                        {"#Data", &TableItems::data},
                                        {"#Headers", &TableItems::headers},
                                        {"#Totals", &TableItems::totals},
                                        {"#This Row", &TableItems::thisRow}}};

bool addItem(TableItems& items, std::string_view name) {
  for (const Item& item : allItems) {
    if (!equalIgnoringCase(name, item.name)) continue;
    items.*item.flag = true;
    return true;
  }
  return false;
}

void skipBlanks(std::string_view text, std::size_t& at) {
  while (at < text.size() && text[at] == ' ') ++at;
}

// "[Net]" or "[#Headers]", at its opening bracket.
bool readBracketed(std::string_view text, std::size_t& at, TableItems& items, bool isLast) {
  const bool special = at + 1 < text.size() && text[at + 1] == '#';
  ++at;
  const auto name = readName(text, at);
  if (!name) return false;
  ++at;
  if (special && !isLast) return addItem(items, *name);
  if (isLast) {
    items.lastColumn = *name;
  } else {
    if (!items.firstColumn.empty()) return false;
    items.firstColumn = items.lastColumn = *name;
  }
  return !name->empty();
}

// "[#Headers],[Net]:[Tax]" up to the closing bracket of all.
bool readList(std::string_view text, std::size_t& at, TableItems& items) {
  while (true) {
    skipBlanks(text, at);
    if (at >= text.size() || text[at] != '[') return false;
    if (!readBracketed(text, at, items, false)) return false;
    skipBlanks(text, at);
    if (at + 1 < text.size() && text[at] == ':' && text[at + 1] == '[') {
      ++at;
      if (items.firstColumn.empty() || !readBracketed(text, at, items, true)) return false;
      skipBlanks(text, at);
    }
    if (at < text.size() && text[at] == ']') return true;
    if (at >= text.size() || (text[at] != ',' && text[at] != ';')) return false;
    ++at;
  }
}

void appendItem(std::string& excel, std::string_view calc, std::size_t& at) {
  for (const Item& item : allItems) {
    if (equalIgnoringCase(calc.substr(at, item.name.size()), item.name)) {
      excel += item.name;
      at += item.name.size();
      return;
    }
  }
}

}  // namespace

std::optional<TableItems> readTableItems(std::string_view text, std::size_t& position) {
  std::size_t at = position;
  if (at >= text.size() || text[at] != '[') return std::nullopt;
  ++at;
  TableItems items;
  skipBlanks(text, at);
  if (at < text.size() && text[at] == '@') {
    items.thisRow = true;
    ++at;
  }
  if (at < text.size() && text[at] == '[') {
    if (!readList(text, at, items)) return std::nullopt;
  } else {
    const bool special = at < text.size() && text[at] == '#';
    const auto name = readName(text, at);
    if (!name) return std::nullopt;
    if (special) {
      if (!addItem(items, *name)) return std::nullopt;
    } else {
      items.firstColumn = items.lastColumn = *name;
    }
  }
  if (!items.all && !items.headers && !items.totals && !items.thisRow) items.data = true;
  position = at + 1;
  return items;
}

void appendExcelTableItems(std::string& excel, std::string_view calc, std::size_t& position) {
  std::size_t& at = position;
  int depth = 0;
  do {
    const char c = calc[at];
    if (c == '\'' && at + 1 < calc.size()) {  // escapes the next character
      excel += calc.substr(at, 2);
      at += 2;
      continue;
    }
    if (c == '[') ++depth;
    if (c == ']') --depth;
    excel += c == ';' && depth == 1 ? ',' : c;
    ++at;
    if (c == '[') appendItem(excel, calc, at);
  } while (depth > 0 && at < calc.size());
}

}  // namespace quorin::host::calc

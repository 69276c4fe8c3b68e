#include "tests/xlsx/FormulaWords.h"

#include <cctype>
#include <cstdio>
#include <cstdlib>

namespace quorin::xlsx {
namespace {

bool isWord(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '.' || c == '$' ||
         c == '\\' || c == '?' || (static_cast<unsigned char>(c) & 0x80U) != 0;
}

std::string upper(std::string text) {
  for (char& c : text)
    if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
  return text;
}

std::string withoutPrefixes(std::string word) {
  for (const char* const prefix : {"_XLFN.", "_XLWS.", "_XLPM.", "_XLUDF."})
    if (word.starts_with(prefix)) word.erase(0, std::char_traits<char>::length(prefix));
  return word;
}

class Words {
 public:
  Words(std::string_view formula, const std::vector<std::string>& externals)
      : text_(formula), externals_(externals) {}

  std::vector<std::string> all() {
    while (at_ < text_.size()) step();
    return std::move(words_);
  }

 private:
  void step() {
    const char c = text_[at_];
    if (std::isspace(static_cast<unsigned char>(c)) != 0) {
      blank_ = true;
      ++at_;
    } else if (c == '"') {
      add(quoted('"'));
    } else if (c == '\'') {
      sheetName();
    } else if (c == '[') {
      bracket();
    } else if (std::isdigit(static_cast<unsigned char>(c)) != 0 ||
               (c == '.' && at_ + 1 < text_.size() &&
                std::isdigit(static_cast<unsigned char>(text_[at_ + 1])) != 0)) {
      number();
    } else if (isWord(c)) {
      word();
    } else if (c == '#') {
      error();
    } else {
      sign();
    }
  }

  void add(std::string text) {
    // Between two operands a blank is the intersection.
    const bool operand = isWord(text.front()) || text.front() == '(' || text.front() == '\'';
    if (blank_ && operand && !words_.empty() &&
        (isWord(words_.back().back()) || words_.back() == ")" || words_.back().back() == ']'))
      words_.emplace_back(" ");
    blank_ = false;
    words_.push_back(std::move(text));
  }

  std::string quoted(char quote) {
    std::string text(1, quote);
    for (++at_; at_ < text_.size(); ++at_) {
      text += text_[at_];
      if (text_[at_] != quote) continue;
      if (at_ + 1 >= text_.size() || text_[at_ + 1] != quote) break;
      text += text_[++at_];
    }
    at_ = std::min(at_ + 1, text_.size());
    return text;
  }

  // 'C:\folder\[Book.xlsx]My Sheet' without quotes and folder.
  void sheetName() {
    std::string text = quoted('\'');
    std::string plain;
    for (std::size_t i = 1; i + 1 < text.size(); ++i) {
      plain += text[i];
      if (text[i] == '\'' && text[i + 1] == '\'') ++i;
    }
    const std::size_t open = plain.rfind('[');
    if (open != std::string::npos) plain = bookPrefix(plain.substr(open));
    add(upper(plain));
  }

  // [1]Sheet or [file:///folder/Book.xlsx]Sheet with the workbook's file name alone.
  std::string bookPrefix(const std::string& text) const {
    const std::size_t close = text.find(']');
    if (close == std::string::npos) return text;
    std::string book = text.substr(1, close - 1);
    char* end = nullptr;
    const unsigned long index = std::strtoul(book.c_str(), &end, 10);
    if (!book.empty() && *end == '\0' && index >= 1 && index <= externals_.size())
      book = externals_[index - 1];
    book.erase(0, book.find_last_of("/\\") + 1);
    return "[" + book + "]" + text.substr(close + 1);
  }

  // Of a structured reference, or the workbook before a sheet.
  void bracket() {
    const std::size_t begin = at_;
    int depth = 0;
    do {
      if (text_[at_] == '\'')
        ++at_;
      else if (text_[at_] == '[')
        ++depth;
      else if (text_[at_] == ']')
        --depth;
      ++at_;
    } while (at_ < text_.size() && depth > 0);
    const std::string inside(text_.substr(begin, at_ - begin));
    const bool afterName = !words_.empty() && isWord(words_.back().back()) && !blank_;
    if (afterName) {
      add(upper(inside));
      return;
    }
    const std::size_t sheet = at_;
    while (at_ < text_.size() && isWord(text_[at_])) ++at_;
    add(upper(bookPrefix(inside + std::string(text_.substr(sheet, at_ - sheet)))));
  }

  void number() {
    const std::string rest(text_.substr(at_));
    char* end = nullptr;
    const double value = std::strtod(rest.c_str(), &end);
    const auto length = static_cast<std::size_t>(end - rest.c_str());
    // "3:5" and "1stQuarter" are words that begin with a digit.
    const char next = length < rest.size() ? rest[length] : '\0';
    if (isWord(next) || next == ':' || (!words_.empty() && words_.back() == ":")) {
      word();
      return;
    }
    char text[40];
    std::snprintf(text, sizeof text, "%.15g", value);
    add(text);
    at_ += length;
  }

  void word() {
    const std::size_t begin = at_;
    while (at_ < text_.size() && isWord(text_[at_])) ++at_;
    add(withoutPrefixes(upper(std::string(text_.substr(begin, at_ - begin)))));
  }

  void error() {
    const std::size_t begin = at_++;
    while (at_ < text_.size() && (isWord(text_[at_]) || text_[at_] == '/')) ++at_;
    if (at_ < text_.size() && (text_[at_] == '!' || text_[at_] == '?')) ++at_;
    add(upper(std::string(text_.substr(begin, at_ - begin))));
  }

  void sign() {
    std::size_t length = 1;
    for (const char* const pair : {"<>", "<=", ">="})
      if (text_.substr(at_, 2) == pair) length = 2;
    add(std::string(text_.substr(at_, length)));
    at_ += length;
  }

  std::string_view text_;
  const std::vector<std::string>& externals_;
  std::vector<std::string> words_;
  std::size_t at_ = 0;
  bool blank_ = false;
};

}  // namespace

std::vector<std::string> formulaWords(std::string_view formula,
                                      const std::vector<std::string>& externals) {
  return Words(formula, externals).all();
}

}  // namespace quorin::xlsx

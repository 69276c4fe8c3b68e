#include "tests/fakes/FormulaTokens.h"

#include <algorithm>
#include <array>
#include <cctype>

#include "host/Address.h"
#include "host/SheetPrefix.h"

namespace quorin::fakes {
namespace {

using Kind = FormulaToken::Kind;

bool isWordCharacter(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '.' || c == '$' ||
         static_cast<unsigned char>(c) >= 0x80;
}

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
    return std::toupper(static_cast<unsigned char>(x)) ==
           std::toupper(static_cast<unsigned char>(y));
  });
}

class Scanner {
 public:
  explicit Scanner(std::string_view formula) : formula_(formula) {}

  std::vector<FormulaToken> run() {
    for (; position_ < formula_.size();) {
      if (formula_[position_] == ' ') {
        ++position_;
        continue;
      }
      if (!take()) {
        add(Kind::junk, formula_.size());
        break;
      }
    }
    return std::move(tokens_);
  }

 private:
  std::string_view rest() const { return formula_.substr(position_); }

  FormulaToken& add(Kind kind, std::size_t end) {
    FormulaToken token{.kind = kind,
                       .spelling = std::string(formula_.substr(position_, end - position_)),
                       .begin = position_,
                       .end = end};
    position_ = end;
    return tokens_.emplace_back(std::move(token));
  }

  bool take() {
    const char c = formula_[position_];
    if (c == '"') return takeText();
    if (c == '#') return takeError();
    if (std::isdigit(static_cast<unsigned char>(c)) != 0 && takeNumber()) return true;
    if (c == '\'' || c == '[' || isWordCharacter(c)) return takeWord();
    return takeSign();
  }

  bool takeText() {
    std::string text;
    for (std::size_t i = position_ + 1; i < formula_.size(); ++i) {
      if (formula_[i] != '"') {
        text += formula_[i];
      } else if (i + 1 < formula_.size() && formula_[i + 1] == '"') {
        text += formula_[i++];
      } else {
        add(Kind::text, i + 1).spelling = text;
        return true;
      }
    }
    return false;
  }

  bool takeError() {
    static constexpr std::array errors = {"#NULL!", "#DIV/0!", "#VALUE!", "#REF!",
                                          "#NAME?", "#NUM!",   "#N/A"};
    for (std::string_view error : errors) {
      if (!rest().starts_with(error)) continue;
      add(Kind::error, position_ + error.size());
      return true;
    }
    return false;
  }

  bool takeNumber() {
    std::size_t end = position_;
    const auto digits = [&] {
      while (end < formula_.size() && std::isdigit(static_cast<unsigned char>(formula_[end])) != 0)
        ++end;
    };
    digits();
    if (end < formula_.size() && formula_[end] == ':') return false;  // a row, as in 5:9
    if (end < formula_.size() && formula_[end] == '.') {
      ++end;
      digits();
    }
    if (end + 1 < formula_.size() && (formula_[end] == 'E' || formula_[end] == 'e')) {
      end += formula_[end + 1] == '+' || formula_[end + 1] == '-' ? 2U : 1U;
      digits();
    }
    add(Kind::number, end);
    return true;
  }

  // A prefix ends at the first "!" that no word boundary stands before.
  std::size_t prefixLength() const {
    const std::string_view text = rest();
    if (text.front() == '\'') {
      for (std::size_t i = 1; i + 1 < text.size(); ++i) {
        if (text[i] != '\'') continue;
        if (text[i + 1] == '!') return i + 2;
        if (text[i + 1] != '\'') return 0;
        ++i;
      }
      return 0;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
      if (text[i] == '!') return i + 1;
      if (!isWordCharacter(text[i]) && text[i] != '[' && text[i] != ']') return 0;
    }
    return 0;
  }

  bool takeWord() {
    const std::size_t prefix = prefixLength();
    std::optional<host::QualifiedText> parts;
    if (prefix > 0) {
      parts = host::splitSheetPrefix(rest().substr(0, prefix));
      if (!parts) return false;
      position_ += prefix;
    }
    std::size_t end = position_;
    const auto word = [&] {
      while (end < formula_.size() && isWordCharacter(formula_[end])) ++end;
    };
    word();
    if (end == position_) return false;
    FormulaToken& token = addWord(end);
    if (parts) {
      token.book = parts->book;
      token.sheet = parts->sheet;
    }
    return true;
  }

  FormulaToken& addWord(std::size_t end) {
    if (end < formula_.size() && formula_[end] == ':') {
      std::size_t last = end + 1;
      while (last < formula_.size() && isWordCharacter(formula_[last])) ++last;
      if (const auto area = host::parseA1Area(formula_.substr(position_, last - position_)))
        return addReference(*area, last);
    }
    const std::string_view word = formula_.substr(position_, end - position_);
    if (end < formula_.size() && formula_[end] == '(') return add(Kind::function, end);
    if (equalsIgnoringCase(word, "TRUE") || equalsIgnoringCase(word, "FALSE"))
      return add(Kind::boolean, end);
    if (const auto area = host::parseA1Area(word)) return addReference(*area, end);
    return add(Kind::name, end);
  }

  FormulaToken& addReference(const host::Area& area, std::size_t end) {
    FormulaToken& token = add(Kind::reference, end);
    token.areas = {area};
    return token;
  }

  bool takeSign() {
    const std::string_view text = rest();
    if (text.starts_with("<=") || text.starts_with(">=") || text.starts_with("<>")) {
      add(Kind::sign, position_ + 2);
      return true;
    }
    if (std::string_view("+-*/^&=<>%(),;{}").find(text.front()) == std::string_view::npos)
      return false;
    add(Kind::sign, position_ + 1);
    return true;
  }

  std::string_view formula_;
  std::size_t position_ = 0;
  std::vector<FormulaToken> tokens_;
};

std::string cornerInR1C1(const host::A1Corner& corner, int row, int column) {
  const auto part = [](char letter, int index, bool absolute, int origin) -> std::string {
    if (index == 0) return {};
    std::string text(1, letter);
    if (absolute) return text + std::to_string(index);
    return index == origin ? text : text + "[" + std::to_string(index - origin) + "]";
  };
  return part('R', corner.row, corner.rowAbsolute, row) +
         part('C', corner.column, corner.columnAbsolute, column);
}

}  // namespace

std::vector<FormulaToken> formulaTokens(std::string_view formula) {
  return Scanner(formula).run();
}

std::string formulaInR1C1(const std::string& formula, int row, int column) {
  std::string text;
  std::size_t done = 0;
  for (const FormulaToken& token : formulaTokens(formula)) {
    if (token.kind != Kind::reference) continue;
    text.append(formula, done, token.begin - done);
    done = token.end;
    std::string_view address = token.spelling;
    const auto colon = address.find(':');
    std::string corners = cornerInR1C1(*host::parseA1Corner(address.substr(0, colon)), row, column);
    if (colon != std::string_view::npos) {
      const std::string last =
          cornerInR1C1(*host::parseA1Corner(address.substr(colon + 1)), row, column);
      if (last != corners) corners += ":" + last;  // a whole row is written once: "R5"
    }
    text += corners;
  }
  return text.append(formula, done);
}

}  // namespace quorin::fakes

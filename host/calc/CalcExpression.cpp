#include "host/calc/CalcExpression.h"

#include <algorithm>
#include <vector>

#include "host/calc/CellErrors.h"
#include "host/calc/ReferenceText.h"

namespace quorin::host::calc {
namespace {

struct Malformed {};

bool isBlank(char c) {
  return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}
bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// What stands before "!": [Book]First:Last, each part but First optional.
struct Prefix {
  std::string book, first, last;
};

class Writer {
 public:
  Writer(std::string_view text, const ExpressionContext& context)
      : text_(text), context_(context) {}

  std::string run() {
    while (at_ < text_.size()) step();
    if (operandExpected_ || !frames_.empty()) throw Malformed();
    return std::move(out_);
  }

 private:
  struct Frame {
    std::string function;  // empty for plain brackets
    std::size_t content;   // where the content begins in the output
  };

  void step() {
    const char c = text_[at_];
    if (isBlank(c)) {
      blanks();
    } else if (c == '"') {
      operand(false);
      copyString();
    } else if (c == '{') {
      operand(false);
      copyArray();
    } else if (const std::string_view error = errorLiteral(text_, at_); !error.empty()) {
      operand(false);
      out_ += error;
      at_ += error.size();
    } else if (c == '(') {
      operand(true);
      open("");
    } else if (c == ')') {
      close();
    } else if (c == ',' || c == ';') {
      separator(c);
    } else if (c == '\'' || c == '$' || c == '[' || isWordCharacter(c)) {
      nameOrReference();
    } else {
      sign(c);
    }
  }

  // Two operands in a row are a mistake.
  void operand(bool mayBeReference) {
    if (!operandExpected_) throw Malformed();
    operandExpected_ = false;
    reference_ = mayBeReference;
  }

  // Blanks between two references are the intersection operator.
  void blanks() {
    const std::size_t start = at_;
    while (at_ < text_.size() && isBlank(text_[at_])) ++at_;
    if (!operandExpected_ && reference_ && at_ < text_.size() &&
        (text_[at_] == '(' || text_[at_] == '\'' || text_[at_] == '$' || text_[at_] == '[' ||
         (isWordCharacter(text_[at_]) && !isDigit(text_[at_])))) {
      out_ += '!';
      operandExpected_ = true;
    } else {
      out_ += text_.substr(start, at_ - start);
    }
  }

  void copyString() {
    const std::size_t start = at_++;
    for (; at_ < text_.size(); ++at_) {
      if (text_[at_] != '"') continue;
      if (at_ + 1 < text_.size() && text_[at_ + 1] == '"') {
        ++at_;
        continue;
      }
      ++at_;
      out_ += text_.substr(start, at_ - start);
      return;
    }
    throw Malformed();
  }

  void copyArray() {
    out_ += text_[at_++];
    while (at_ < text_.size()) {
      const char c = text_[at_];
      if (c == '"') {
        copyString();
        continue;
      }
      if (c == '{' || c == '(') throw Malformed();
      out_ += c == ',' ? ';' : c == ';' ? '|' : c;
      ++at_;
      if (c == '}') return;
    }
    throw Malformed();
  }

  void open(const std::string& function) {
    out_ += text_[at_++];
    frames_.push_back({function, out_.size()});
    operandExpected_ = true;
  }

  void close() {
    if (frames_.empty()) throw Malformed();
    const Frame frame = frames_.back();
    if (operandExpected_ && frame.function.empty()) throw Malformed();
    if (frame.function == "ERROR.TYPE") {
      const std::string argument = out_.substr(frame.content);
      out_.erase(frame.content - frame.function.size() - 1);
      out_ += errorTypeCall(argument);
    } else {
      out_ += ')';
    }
    frames_.pop_back();
    ++at_;
    operandExpected_ = false;
    reference_ = true;
  }

  // Inside a function's brackets it parts arguments, elsewhere a comma unites references.
  void separator(char c) {
    if (!frames_.empty() && !frames_.back().function.empty()) {
      out_ += ';';
    } else {
      if (c == ';' || operandExpected_ || !reference_) throw Malformed();
      out_ += '~';
    }
    ++at_;
    operandExpected_ = true;
  }

  void sign(char c) {
    static constexpr std::string_view both = "<>", infix = "*/^&=:";
    ++at_;
    if (c == '%') {
      if (operandExpected_) throw Malformed();
      out_ += c;
      reference_ = false;
      return;
    }
    if (c == '@' && operandExpected_) return;  // one cell of several: what follows decides in Calc
    if (c == '+' || c == '-') {
      out_ += c;
    } else if (both.find(c) != std::string_view::npos && !operandExpected_) {
      out_ += c;
      if (at_ < text_.size() && (text_[at_] == '=' || (c == '<' && text_[at_] == '>'))) {
        out_ += text_[at_++];
      }
    } else if (infix.find(c) != std::string_view::npos && !operandExpected_) {
      out_ += c;
    } else {
      throw Malformed();
    }
    operandExpected_ = true;
  }

  // "Sheet!", "First:Last!", "[Book]Sheet!" and the same in quotes.
  std::optional<Prefix> readPrefix(std::size_t& position) const {
    std::size_t at = position;
    std::string content;
    if (auto quoted = readQuoted(text_, at)) {
      content = *quoted;
    } else {
      if (at < text_.size() && text_[at] == '[') {
        const std::size_t end = text_.find(']', at);
        if (end == std::string_view::npos) return std::nullopt;
        at = end + 1;
      }
      while (at < text_.size() && (isWordCharacter(text_[at]) || text_[at] == ':')) ++at;
      content = text_.substr(position, at - position);
    }
    if (at >= text_.size() || text_[at] != '!' || content.empty()) return std::nullopt;
    if (errorLiteral(text_, position) == "#REF!") return std::nullopt;
    position = at + 1;
    Prefix prefix;
    const std::size_t opening = content.find('['), closing = content.rfind(']');
    if (opening != std::string::npos && closing != std::string::npos && opening < closing) {
      prefix.book = content.substr(opening + 1, closing - opening - 1);
      content.erase(0, closing + 1);
    }
    const std::size_t colon = content.find(':');
    prefix.first = content.substr(0, colon);
    if (colon != std::string::npos) prefix.last = content.substr(colon + 1);
    return prefix;
  }

  std::optional<RangeText> readRange(std::size_t& position) const {
    std::size_t at = position;
    const auto from = readCell(text_, at);
    if (!from || from->lost) return std::nullopt;
    const bool whole = from->row == 0 || from->column == 0;
    RangeText range{*from, std::nullopt};
    if (at < text_.size() && text_[at] == ':') {
      std::size_t behind = at + 1;
      const auto to = readCell(text_, behind);
      const bool alike = to && !to->lost && (to->row == 0) == (from->row == 0) &&
                         (to->column == 0) == (from->column == 0) &&
                         (behind >= text_.size() || text_[behind] != '(');
      if (alike) {
        range.to = to;
        position = behind;
        return range;
      }
    }
    if (whole ||
        (at < text_.size() && (text_[at] == '(' || text_[at] == '!' || text_[at] == '#'))) {
      return std::nullopt;
    }
    position = at;
    return range;
  }

  void nameOrReference() {
    const bool sheetOnly = text_[at_] == '\'';
    std::size_t position = at_;
    const auto prefix = readPrefix(position);
    if (sheetOnly && !prefix) throw Malformed();
    if (prefix) at_ = position;
    if (prefix && errorLiteral(text_, at_) == "#REF!") {
      operand(false);
      out_ += "#REF!";
      at_ += std::string_view("#REF!").size();
    } else if (const auto range = readRange(at_)) {
      operand(true);
      writeRange(prefix, *range);
    } else {
      word(prefix);
    }
  }

  // What goes before the reference; "#REF!" stands for a workbook that is not there.
  std::string place(const Prefix& prefix) const {
    if (prefix.book.empty() || prefix.book == context_.book) return {};
    const auto url = context_.urlOf ? context_.urlOf(prefix.book) : std::nullopt;
    if (!url) return "#REF!";
    return "'" + *url + "'#";
  }

  void writeRange(const std::optional<Prefix>& prefix, const RangeText& range) {
    const auto end = [](const CellText& cell) {
      return write({cell, std::nullopt}, ReferenceStyle::a1, {});
    };
    std::string sheet, last;
    if (prefix) {
      const std::string outside = place(*prefix);
      if (outside == "#REF!") {
        out_ += outside;
        return;
      }
      sheet = outside + calcSheet(prefix->first) + ".";
      if (!prefix->last.empty()) last = calcSheet(prefix->last) + ".";
    } else if (!context_.sheet.empty()) {
      sheet = calcSheet(context_.sheet) + ".";
    }
    out_ += sheet + end(range.from);
    if (range.to || !last.empty()) out_ += ":" + last + end(range.to.value_or(range.from));
  }

  // A number, a function, a defined name or a table.
  void word(const std::optional<Prefix>& prefix) {
    const std::size_t start = at_;
    const bool number = isDigit(text_[at_]) || text_[at_] == '.';
    while (at_ < text_.size() && (isWordCharacter(text_[at_]) || (number && isExponentSign()))) {
      ++at_;
    }
    std::string word(text_.substr(start, at_ - start));
    const char next = at_ < text_.size() ? text_[at_] : '\0';
    if (next == '#' && errorLiteral(text_, at_).empty()) throw Malformed();  // a spill reference
    if (number) {
      if (prefix || !isNumber(word)) throw Malformed();
      operand(false);
      out_ += word;
    } else if (next == '(') {
      if (word.empty() || prefix) throw Malformed();
      operandOfFunction();
      word = upperCase(word);
      for (const std::string_view origin : {"_XLFN._XLWS.", "_XLFN."}) {
        if (word.starts_with(origin)) word.erase(0, origin.size());
      }
      out_ += word;
      open(word);
    } else if (next == '[') {
      if (prefix) throw Malformed();
      operand(true);
      out_ += word;
      copyTableItems();
    } else {
      if (word.empty()) throw Malformed();
      operand(true);
      if (prefix) out_ += place(*prefix) + calcSheet(prefix->first) + ".";
      const bool boolean = equalIgnoringCase(word, "TRUE") || equalIgnoringCase(word, "FALSE");
      out_ += boolean ? upperCase(word) + "()" : word;
    }
  }

  void operandOfFunction() {
    if (!operandExpected_) throw Malformed();
    reference_ = true;
  }

  bool isExponentSign() const {
    const char before = text_[at_ - 1];
    return (text_[at_] == '+' || text_[at_] == '-') && (before == 'E' || before == 'e');
  }

  static bool isNumber(const std::string& word) {
    std::size_t at = 0;
    const auto digits = [&] {
      const std::size_t start = at;
      while (at < word.size() && isDigit(word[at])) ++at;
      return at - start;
    };
    std::size_t count = digits();
    if (at < word.size() && word[at] == '.') {
      ++at;
      count += digits();
    }
    if (count == 0) return false;
    if (at < word.size() && (word[at] == 'E' || word[at] == 'e')) {
      ++at;
      if (at < word.size() && (word[at] == '+' || word[at] == '-')) ++at;
      if (digits() == 0) return false;
    }
    return at == word.size();
  }

  // Table[[#This Row],[Column]], and Excel's short form Table[@Column].
  void copyTableItems() {
    int depth = 0;
    bool shortForm = false;
    do {
      const char c = text_[at_];
      if (c == '\'' && at_ + 1 < text_.size()) {
        out_ += text_.substr(at_, 2);
        at_ += 2;
        continue;
      }
      if (c == '[') ++depth;
      if (c == ']') --depth;
      ++at_;
      if (c == '@' && depth == 1) {
        const bool bracketed = at_ < text_.size() && text_[at_] == '[';
        const bool alone = at_ < text_.size() && text_[at_] == ']';
        out_ += alone ? "[#This Row]" : bracketed ? "[#This Row];" : "[#This Row];[";
        shortForm = !alone && !bracketed;
        continue;
      }
      if (c == ']' && depth == 0 && shortForm) out_ += ']';
      out_ += c == ',' && depth == 1 ? ';' : c;
    } while (depth > 0 && at_ < text_.size());
    if (depth != 0) throw Malformed();
  }

  const std::string_view text_;
  const ExpressionContext& context_;
  std::size_t at_ = 0;
  std::string out_;
  std::vector<Frame> frames_;
  bool operandExpected_ = true;
  bool reference_ = false;  // the operand just written may be a reference
};

}  // namespace

std::optional<std::string> calcExpression(std::string_view excel,
                                          const ExpressionContext& context) {
  while (!excel.empty() && isBlank(excel.front())) excel.remove_prefix(1);
  if (excel.starts_with('=')) excel.remove_prefix(1);
  while (!excel.empty() && isBlank(excel.back())) excel.remove_suffix(1);
  try {
    return Writer(excel, context).run();
  } catch (const Malformed&) {
    return std::nullopt;
  }
}

}  // namespace quorin::host::calc

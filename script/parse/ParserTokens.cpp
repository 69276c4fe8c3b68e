// The parser's view of tokens and terms.
#include <algorithm>
#include <array>

#include "script/parse/Parser.h"
#include "script/terms/Words.h"
#include "script/values/Display.h"

namespace quorin::script {
namespace {

constexpr std::size_t longestTerm = 12;  // words

// Words that belong to sentences and never stand for a one-word term.
constexpr std::string_view keywords[] = {
    "about",   "above",       "after",    "against",     "and",      "apart",     "around",
    "as",      "aside",       "at",       "back",        "before",   "beginning", "behind",
    "below",   "beneath",     "beside",   "between",     "but",      "by",        "considering",
    "contain", "contains",    "continue", "copy",        "div",      "does",      "eighth",
    "else",    "end",         "equal",    "equals",      "error",    "every",     "exit",
    "false",   "fifth",       "first",    "for",         "fourth",   "from",      "front",
    "get",     "given",       "global",   "if",          "ignoring", "in",        "instead",
    "into",    "is",          "it",       "its",         "last",     "local",     "me",
    "middle",  "mod",         "my",       "ninth",       "not",      "of",        "on",
    "onto",    "or",          "out",      "over",        "prop",     "property",  "put",
    "ref",     "repeat",      "return",   "returning",   "script",   "second",    "set",
    "seventh", "since",       "sixth",    "some",        "tell",     "tenth",     "that",
    "the",     "then",        "third",    "through",     "thru",     "timeout",   "times",
    "to",      "transaction", "true",     "try",         "until",    "where",     "while",
    "whose",   "with",        "without",  "applescript", "isn't",    "doesn't",   "aren't"};

bool isKeyword(std::string_view word) {
  return std::find(std::begin(keywords), std::end(keywords), word) != std::end(keywords);
}

// Enough of a text to know it by, in whole characters.
std::string_view beginning(std::string_view text) {
  std::size_t length = std::min<std::size_t>(text.size(), 40);
  while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80)
    --length;
  return text.substr(0, length);
}

}  // namespace

const Token& Parser::peek(std::size_t ahead) const {
  return tokens_[std::min(at_ + ahead, tokens_.size() - 1)];
}

const Token& Parser::take() {
  const Token& token = peek();
  if (at_ + 1 < tokens_.size()) ++at_;
  return token;
}

bool Parser::atSymbol(std::string_view text, std::size_t ahead) const {
  return peek(ahead).kind == Token::Kind::symbol && peek(ahead).text == text;
}

bool Parser::atWord(std::string_view text, std::size_t ahead) const {
  return peek(ahead).kind == Token::Kind::word && peek(ahead).text == text;
}

bool Parser::atWords(std::string_view phrase, std::size_t ahead) const {
  while (!phrase.empty()) {
    const std::size_t blank = phrase.find(' ');
    if (!atWord(phrase.substr(0, blank), ahead++)) return false;
    phrase = blank == std::string_view::npos ? std::string_view() : phrase.substr(blank + 1);
  }
  return true;
}

bool Parser::takeSymbol(std::string_view text) {
  if (!atSymbol(text)) return false;
  take();
  return true;
}

bool Parser::takeWord(std::string_view text) {
  if (!atWord(text)) return false;
  take();
  return true;
}

bool Parser::takeWords(std::string_view phrase) {
  if (!atWords(phrase)) return false;
  at_ += static_cast<std::size_t>(std::count(phrase.begin(), phrase.end(), ' ')) + 1;
  return true;
}

void Parser::expectSymbol(std::string_view text) {
  if (!takeSymbol(text)) failExpected("\"" + std::string(text) + "\"");
}

void Parser::expectWord(std::string_view text) {
  if (!takeWord(text)) failExpected("\"" + std::string(text) + "\"");
}

bool Parser::atLineEnd() const {
  return peek().kind == Token::Kind::lineEnd || peek().kind == Token::Kind::end;
}

void Parser::expectLineEnd() {
  if (!atLineEnd()) {
    static constexpr std::string_view additions[] = {
        "delay", "log",   "beep",  "say",   "display", "choose", "current", "clipboard",
        "info",  "load",  "store", "round", "path",    "random", "ascii",   "system",
        "posix", "mount", "do",    "alias", "file",    "offset"};
    const Token& previous = tokens_[at_ > 0 ? at_ - 1 : 0];
    if (previous.kind == Token::Kind::word && std::find(std::begin(additions), std::end(additions),
                                                        previous.text) != std::end(additions)) {
      failUnsupported("The scripting addition's command \"" + std::string(previous.spelling) +
                      "\"");
    }
    const std::size_t back = std::size_t{0} - 1;
    if (at_ > 0 && atIdentifier(back) && peek().kind == Token::Kind::word && meaningAt().type) {
      fail(peek().position, "A class name can't go after this identifier.", misplacedNumber);
    }
    failExpected("end of line");
  }
  if (peek().kind == Token::Kind::lineEnd) take();
}

void Parser::skipLineEnds() {
  while (peek().kind == Token::Kind::lineEnd) take();
}

std::string Parser::describe(std::size_t ahead) const {
  const Token& token = peek(ahead);
  switch (token.kind) {
    case Token::Kind::lineEnd:
      return "end of line";
    case Token::Kind::end:
      return "end of script";
    case Token::Kind::integer:
    case Token::Kind::real:
    case Token::Kind::ordinal:
      return "number";
    case Token::Kind::string:
      return inQuotes(beginning(token.text));
    case Token::Kind::rawCode:
    case Token::Kind::symbol:
      return inQuotes(token.spelling);
    case Token::Kind::escaped:
      return "identifier";
    case Token::Kind::word:
      break;
  }
  if (isKeyword(token.text)) return inQuotes(token.spelling);
  const Meaning meaning = meaningAt(ahead);
  if (meaning.words == 0) return "identifier";
  if (meaning.type || meaning.plural) return "class name";
  if (meaning.command) return "command name";
  return meaning.property ? "property" : "application constant or consideration";
}

void Parser::failExpected(std::string_view what) const {
  fail(peek().position, "Expected " + std::string(what) + " but found " + describe() + ".");
}

void Parser::failUnsupported(std::string_view what) const {
  fail(peek().position, std::string(what) + " is not supported.");
}

std::vector<std::string_view> Parser::wordsAt(std::size_t ahead) const {
  std::vector<std::string_view> words;
  while (words.size() < longestTerm) {
    const Token& token = peek(ahead + words.size());
    const bool number = token.kind == Token::Kind::integer && !words.empty();
    if (token.kind != Token::Kind::word && !number) break;
    words.push_back(number ? token.spelling : std::string_view(token.text));
  }
  return words;
}

Parser::Meaning Parser::meaningAt(std::size_t ahead) const {
  const std::vector<std::string_view> words = wordsAt(ahead);
  Meaning meaning;
  if (words.empty()) return meaning;
  const Terminology::Match own = languageTerminology().match(words);
  const Terminology::Match foreign =
      terms() ? terms()->terminology().match(words) : Terminology::Match{};
  meaning.words = std::max(own.words, foreign.words);
  if (meaning.words == 0 || (meaning.words == 1 && isKeyword(words.front()))) return Meaning{};
  if (foreign.words == meaning.words) {
    const Term& term = *foreign.term;
    meaning.type = term.type;
    meaning.plural = term.plural;
    meaning.property = term.property;
    meaning.enumerator = term.enumerator;
    meaning.command = term.command;
    meaning.spelling = term.text;
    meaning.fromApplication = true;
  }
  if (own.words == meaning.words) {
    const Term& term = *own.term;
    // A class of the language stays one where the application only has a constant of that name.
    const bool constantOnly = meaning.fromApplication && meaning.enumerator && !meaning.type &&
                              !meaning.plural && !meaning.property && !meaning.command;
    if (constantOnly && term.type) {
      meaning = Meaning{meaning.words, term.type, term.plural, {}, {}, nullptr, false, term.text};
    } else if (!meaning.fromApplication) {
      meaning.type = term.type;
      meaning.plural = term.plural;
      meaning.property = term.property;
      meaning.enumerator = term.enumerator;
      meaning.command = term.command;
      meaning.spelling = term.text;
    }
  }
  return meaning;
}

const ParameterTerm* Parser::labelAt(const CommandTerm& command, std::size_t ahead) const {
  const std::vector<std::string_view> words = wordsAt(ahead);
  const ParameterTerm* longest = nullptr;
  const auto consider = [&](const CommandTerm& from) {
    for (const ParameterTerm& label : from.parameters) {
      if (label.words.size() <= words.size() &&
          std::equal(label.words.begin(), label.words.end(), words.begin()) &&
          (!longest || label.words.size() > longest->words.size())) {
        longest = &label;
      }
    }
  };
  consider(command);
  // The standard suites' own labels stay valid where a dictionary leaves them out.
  const CommandTerm* standard = languageTerminology().command(command.eventClass, command.eventID);
  if (standard && standard != &command) consider(*standard);
  return longest;
}

bool Parser::atLabel() const {
  return command_ && peek().kind == Token::Kind::word && labelAt(*command_);
}

// A word that is neither a keyword nor a term, or an escaped name.
bool Parser::atIdentifier(std::size_t ahead) const {
  const Token& token = peek(ahead);
  if (token.kind == Token::Kind::escaped) return true;
  if (token.kind != Token::Kind::word || isKeyword(token.text)) return false;
  const char first = token.text.front();
  if (first >= '0' && first <= '9') return false;
  return meaningAt(ahead).words == 0;
}

void Parser::skipArticle() {
  while (atWord("the")) {
    if (atWord("clipboard", 1))
      failUnsupported("The scripting addition's command \"the clipboard\"");
    take();
  }
}

}  // namespace quorin::script

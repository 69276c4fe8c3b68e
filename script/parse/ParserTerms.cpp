// Keywords and terms at the head of an object: elements with their keys, properties, constants.
#include <algorithm>
#include <iterator>

#include "script/parse/Parser.h"

namespace quorin::script {
namespace {

struct OrdinalWord {
  std::string_view word;
  int position;  // 0: the last, -1: the middle, -2: some, -3: every
};

constexpr OrdinalWord ordinals[] = {{"first", 1}, {"second", 2}, {"third", 3},   {"fourth", 4},
                                    {"fifth", 5}, {"sixth", 6},  {"seventh", 7}, {"eighth", 8},
                                    {"ninth", 9}, {"tenth", 10}, {"last", 0},    {"middle", -1},
                                    {"some", -2}, {"every", -3}, {"front", 1},   {"back", 0}};

}  // namespace

ExpressionPointer Parser::parseKeyword() {
  const Position start = peek().position;
  const auto simple = [&](auto data) {
    take();
    return make(std::move(data), start);
  };
  if (atWord("true")) return simple(Literal{true});
  if (atWord("false")) return simple(Literal{false});
  if (atWord("return")) return simple(Literal{"\r"});
  if (atWord("it")) return simple(It{});
  if (atWord("me")) return simple(Me{});
  if (atWord("applescript")) return simple(Language{});
  if (atWord("my") || atWord("its")) {
    const bool mine = atWord("my");
    take();
    ExpressionPointer container = mine ? make(Me{}, start) : make(It{}, start);
    return parsePossessed(std::move(container));
  }
  if (atWords("a reference to") || atWords("a ref to") || atWords("ref to") ||
      atWords("reference to") || atWords("ref of")) {
    return parseReferenceTo();
  }
  if (atWord("number") && atWord("of", 1)) {
    at_ += 1;
    return parseCommand(*languageTerminology().command(fourCharCode("core"), fourCharCode("cnte")),
                        start);
  }
  if (atWord("application") || (atWord("app") && peek(1).kind == Token::Kind::string)) {
    return parseApplication();
  }
  if (atWord("get")) {
    return parseTerm(
        Meaning{1, {}, {}, {}, {}, languageTerminology().find("get")->command, false, "get"},
        false);
  }
  if (atWord("beginning")) return parseInsertion(fourCharCode("bgng"), false);
  if (atWord("end")) return parseInsertion(fourCharCode("end "), false);
  if (atWord("before")) return parseInsertion(fourCharCode("befo"), true);
  if (atWord("after") || atWord("behind")) return parseInsertion(fourCharCode("afte"), true);
  const bool ordinal = std::any_of(std::begin(ordinals), std::end(ordinals),
                                   [&](const OrdinalWord& each) { return atWord(each.word); });
  if (ordinal) return parseOrdinal();
  if (atWord("script") || atWord("continue")) {
    failUnsupported("\"" + std::string(peek().spelling) + "\" here");
  }
  return nullptr;
}

ExpressionPointer Parser::parseOrdinal() {
  const Token& token = take();
  int position = static_cast<int>(std::min(token.number, 1e9));
  if (token.kind == Token::Kind::word) {
    for (const OrdinalWord& each : ordinals) {
      if (each.word == token.text) position = each.position;
    }
  }
  static constexpr Form forms[] = {Form::last, Form::middle, Form::any, Form::all};
  ExpressionPointer element = parseElementOf(position <= 0   ? forms[-position]
                                             : position == 1 ? Form::first
                                                             : Form::index);
  if (position > 1) {
    auto& part = std::get<Part>(element->data);
    part.key = make(Literal{position}, token.position);
  }
  element->position = since(token.position);
  return element;
}

// The class that stands after an ordinal.
ExpressionPointer Parser::parseElementOf(Form form) {
  const Position start = peek().position;
  Part part;
  part.selector.form = form;
  if (peek().kind == Token::Kind::rawCode && peek().text == "class") {
    part.selector.code = take().code;
    return make(std::move(part), start);
  }
  const Meaning meaning = meaningAt();
  const std::optional<FourCharCode> code = meaning.type ? meaning.type : meaning.plural;
  if (!code) failExpected("class name");
  part.selector.code = *code;
  part.selector.origin = meaning.fromApplication ? terms() : nullptr;
  at_ += meaning.words;
  return make(std::move(part), since(start));
}

ExpressionPointer Parser::parseTerm(const Meaning& meaning, bool asMember) {
  const Position start = peek().position;
  // A word that also names a class is a command only at the head of a statement.
  if (meaning.command && !meaning.type && !meaning.plural && !meaning.property &&
      !meaning.enumerator) {
    if (asMember) {
      failUnsupported("Sending the command \"" + std::string(meaning.spelling) +
                      "\" to a part or to the script");
    }
    at_ += meaning.words;
    return parseCommand(*meaning.command, start);
  }
  if (meaning.type || meaning.plural) return parseElement(meaning, asMember);
  at_ += meaning.words;
  if (meaning.property) {
    const bool alone = !asMember && !atWord("of") && !atWord("in") && !meaning.fromApplication;
    if (alone && *meaning.property == fourCharCode("hour")) return make(Literal{3600}, start);
    if (alone && *meaning.property == fourCharCode("min ")) return make(Literal{60}, start);
    if (*meaning.property == fourCharCode("rslt") && !asMember) return make(Result{}, since(start));
    Part part;
    part.selector.code = *meaning.property;
    part.selector.origin = meaning.fromApplication ? terms() : nullptr;
    return make(std::move(part), since(start));
  }
  return parseConstant(meaning);
}

ExpressionPointer Parser::parseConstant(const Meaning& meaning) {
  const Token& last = tokens_[at_ - 1];
  Constant constant{Constant::Kind::enumerator, meaning.enumerator.value_or(0),
                    meaning.fromApplication ? terms() : nullptr};
  if (!meaning.fromApplication) {
    switch (constant.code) {
      case fourCharCode("msng"):
        return make(Literal{Value::missing()}, last.position);
      case fourCharCode("pi  "):
        return make(Literal{3.14159265358979323846}, last.position);
      case fourCharCode("quot"):
        return make(Literal{"\""}, last.position);
      case fourCharCode("lnfd"):
        return make(Literal{"\n"}, last.position);
      case fourCharCode("tab "):
        return make(Literal{"\t"}, last.position);
      case fourCharCode("spac"):
        return make(Literal{" "}, last.position);
      case fourCharCode("days"):
        return make(Literal{86400}, last.position);
      case fourCharCode("week"):
        return make(Literal{604800}, last.position);
      default:
        break;
    }
  }
  return make(Literal{constant}, last.position);
}

ExpressionPointer Parser::parseElement(const Meaning& meaning, bool asMember) {
  const Position start = peek().position;
  at_ += meaning.words;
  const FourCharCode code = meaning.type ? *meaning.type : *meaning.plural;
  Part part;
  part.selector.code = code;
  part.selector.origin = meaning.fromApplication ? terms() : nullptr;
  if (code == fourCharCode("ldt ") && peek().kind == Token::Kind::string) {
    failUnsupported("A date written as text");
  }
  if (parseKeyForm(part)) return make(std::move(part), since(start));
  const bool contained = (atWord("of") || atWord("in")) && !atLabel();
  if (meaning.property && (contained || asMember)) {
    part.selector.code = *meaning.property;
    return make(std::move(part), since(start));
  }
  if (meaning.plural && !meaning.type) {
    part.selector.form = Form::all;
    return make(std::move(part), since(start));
  }
  if ((atWord("whose") || atWord("where")) && !atLabel()) {
    part.selector.form = Form::all;
    return make(std::move(part), since(start));
  }
  const bool property = asMember || (meaning.property && inFilter_);
  if (property) return make(std::move(part), since(start));
  return make(
      Literal{Constant{Constant::Kind::type, code, meaning.fromApplication ? terms() : nullptr}},
      since(start));
}

// What follows a class to say which element: 3, "A1", named x, id 7, 2 thru 5, after x.
bool Parser::parseKeyForm(Part& part) {
  if (atLabel()) return false;
  const auto keyed = [&](Form form, std::size_t words) {
    at_ += words;
    part.selector.form = form;
    part.key = parseKey();
  };
  if (atWord("named")) {
    keyed(Form::name, 1);
  } else if (atKey()) {
    keyed(Form::index, 0);
  } else if (atWord("index") && !atWord("of", 1)) {
    keyed(Form::index, 1);
  } else if (atWord("id") && !atWord("of", 1) && !atWord("in", 1)) {
    keyed(Form::id, 1);
  } else if (atWord("from")) {
    keyed(Form::range, 1);
    expectWord("to");
    part.upper = parseKey();
  } else if (atWord("after") || atWord("behind") || atWord("before")) {
    part.selector.form = atWord("before") ? Form::previous : Form::next;
    take();
    part.container = parseObject();
  } else {
    return false;
  }
  if (part.selector.form == Form::index && (atWord("thru") || atWord("through"))) {
    take();
    part.selector.form = Form::range;
    part.upper = parseKey();
  }
  return true;
}

bool Parser::atKey() const {
  switch (peek().kind) {
    case Token::Kind::integer:
    case Token::Kind::real:
    case Token::Kind::string:
    case Token::Kind::escaped:
      return true;
    case Token::Kind::symbol: {
      if (atSymbol("(")) return true;
      const Token::Kind next = peek(1).kind;
      // "item -1" has a key, "item - 1" is a difference.
      return atSymbol("-") && peek(1).glued && !peek().glued &&
             (next == Token::Kind::integer || next == Token::Kind::real ||
              next == Token::Kind::word);
    }
    case Token::Kind::word:
      return atIdentifier() && !atOperatorPhrase();
    default:
      return false;
  }
}

// A key takes no container: in "item i of x" the container belongs to the item.
ExpressionPointer Parser::parseKey() {
  const Nesting nesting(*this);
  const Position start = peek().position;
  if (takeSymbol("-")) {
    ExpressionPointer operand = parseKey();
    if (const auto* number = std::get_if<Literal>(&operand->data);
        number && number->value.isNumber()) {
      return make(Literal{negate(number->value)}, since(start));
    }
    return make(Negation{std::move(operand)}, since(start));
  }
  if (!atKey() && !atSymbol("{")) failExpected("expression");
  return parsePrimary();
}

}  // namespace quorin::script

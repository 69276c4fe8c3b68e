// The whole script: properties, handlers, and what stands outside of them; names and their slots.
#include <algorithm>

#include "script/parse/Parser.h"
#include "script/terms/Words.h"

namespace quorin::script {
namespace {

struct DepthOf {
  unsigned deepest = 0;
  void see(const ExpressionPointer& child) {
    if (child) deepest = std::max(deepest, child->depth);
  }
  void see(const std::vector<ExpressionPointer>& children) {
    for (const ExpressionPointer& child : children) see(child);
  }
  template <typename Key>
  void see(const std::vector<std::pair<Key, ExpressionPointer>>& children) {
    for (const auto& [key, child] : children) see(child);
  }

  void operator()(const Literal&) {}
  void operator()(const Variable&) {}
  void operator()(const ListExpression& list) { see(list.items); }
  void operator()(const RecordExpression& record) { see(record.fields); }
  void operator()(const Negation& negation) { see(negation.operand); }
  void operator()(const Not& negation) { see(negation.operand); }
  void operator()(const Logical& logical) { both(logical.left, logical.right); }
  void operator()(const Binary& binary) { both(binary.left, binary.right); }
  void operator()(const Coercion& coercion) { both(coercion.operand, coercion.type); }
  void operator()(const Part& part) {
    both(part.key, part.upper);
    both(part.filter, part.container);
  }
  void operator()(const Insertion& insertion) { see(insertion.object); }
  void operator()(const Command& command) {
    see(command.direct);
    see(command.parameters);
  }
  void operator()(const HandlerCall& call) {
    see(call.arguments);
    see(call.target);
  }
  void operator()(const It&) {}
  void operator()(const Me&) {}
  void operator()(const Language&) {}
  void operator()(const Result&) {}
  void operator()(const ApplicationByName& application) { see(application.name); }
  void operator()(const ReferenceTo& reference) { see(reference.object); }
  void operator()(const IsRunning& running) { see(running.application); }

  void both(const ExpressionPointer& first, const ExpressionPointer& second) {
    see(first);
    see(second);
  }
};

}  // namespace

unsigned depthOf(const Expression::Data& data) {
  DepthOf depth;
  std::visit(depth, data);
  return depth.deepest;
}

Parser::Parser(std::vector<Token> tokens, Applications& applications)
    : tokens_(std::move(tokens)), applications_(applications) {}

Parser::Nesting::Nesting(Parser& parser) : parser_(parser) {
  if (++parser_.nesting_ > maximumNesting) {
    --parser_.nesting_;
    fail(parser_.peek().position, "The script is nested too deeply.");
  }
}

Parser::Nesting::~Nesting() {
  --parser_.nesting_;
}

Position Parser::since(const Position& start) const {
  const Position& last = tokens_[at_ > 0 ? at_ - 1 : 0].position;
  Position span = start;
  span.length = last.offset + last.length > start.offset ? last.offset + last.length - start.offset
                                                         : start.length;
  return span;
}

Program Parser::parse() {
  Scope scope;
  scope.handler = &program_.initializer;
  scope.isTop = true;
  scope_ = &scope;
  Handler statements;
  Scope runScope;
  runScope.handler = &statements;
  runScope.isTop = true;
  statements.name = "run";
  for (skipLineEnds(); peek().kind != Token::Kind::end; skipLineEnds()) {
    if (atWord("property") || atWord("prop")) {
      scope_ = &scope;
      lineApplication_ = lineApplication();
      parseProperty();
    } else if (atHandler()) {
      parseHandler();
    } else {
      scope_ = &runScope;
      parseStatement(statements.body);
    }
  }
  for (auto& [index, handlerScope] : scopes_) bindSymbols(program_.handlers[index], handlerScope);
  bindSymbols(program_.initializer, scope);
  bindSymbols(statements, runScope);
  for (std::size_t i = 0; i < program_.handlers.size(); ++i) {
    if (lowerCase(program_.handlers[i].name) == "run") program_.run = i;
  }
  if (!statements.body.empty()) {
    if (program_.run) {
      fail(statements.body.front().position,
           "Statements can't stand outside of handlers in a script with a run handler.");
    }
    program_.run = program_.handlers.size();
    program_.handlers.push_back(std::move(statements));
  }
  return std::move(program_);
}

bool Parser::atHandler() const {
  return (atWord("on") || atWord("to")) && peek(1).kind != Token::Kind::lineEnd;
}

void Parser::parseHandler() {
  take();
  Handler handler;
  const bool run = atWord("run") && !atSymbol("(", 1);
  if (!run && !atIdentifier()) failExpected("handler name");
  const Token& name = take();
  handler.name = name.kind == Token::Kind::escaped ? name.text : std::string(name.spelling);
  if (program_.find(handler.name)) {
    fail(name.position, "The handler " + handler.name + " is defined more than once.");
  }
  Scope scope;
  scope.handler = &handler;
  scope_ = &scope;
  if (run) {
    if (!atLineEnd()) handler.parameters.push_back(parseParameter());
  } else {
    if (!atSymbol("(")) failUnsupported("A handler with labelled parameters");
    expectSymbol("(");
    if (!takeSymbol(")")) {
      do {
        handler.parameters.push_back(parseParameter());
      } while (takeSymbol(","));
      expectSymbol(")");
    }
  }
  expectLineEnd();
  handler.body = parseBlock({"handler"});
  expectWord("end");
  if (!atLineEnd()) {
    const Token& closing = take();
    if (lowerCase(closing.text) != lowerCase(name.text)) {
      fail(closing.position, "Expected \"" + handler.name + "\" but found \"" +
                                 std::string(closing.spelling) + "\".");
    }
  }
  expectLineEnd();
  program_.handlers.push_back(std::move(handler));
  scope.handler = nullptr;
  scopes_.emplace_back(program_.handlers.size() - 1, std::move(scope));
  scope_ = nullptr;
}

Pattern Parser::parseParameter() {
  const Nesting nesting(*this);
  Pattern pattern;
  if (takeSymbol("{")) {
    Pattern::Parts parts;
    std::size_t tokens = 0;
    RecordKey key;
    if (!takeSymbol("}")) {
      do {
        if (atRecordLabel(tokens, key)) {
          at_ += tokens + 1;
          parts.keys.push_back(key);
        }
        parts.items.push_back(parseParameter());
      } while (takeSymbol(","));
      expectSymbol("}");
    }
    if (!parts.keys.empty() && parts.keys.size() != parts.items.size()) failExpected("label");
    pattern.data = std::move(parts);
  } else {
    if (!atIdentifier()) failExpected("parameter name");
    const std::string key = lowerCase(peek().text);
    if (const auto known = scope_->declared.find(key); known != scope_->declared.end()) {
      fail(peek().position, "The parameter " + key + " stands there more than once.");
    }
    scope_->declared[key] = true;
    pattern.data = Pattern::Place{parseVariableName("parameter name")};
  }
  if (takeWord("as")) {
    const Meaning meaning = meaningAt();
    if (!meaning.type) failExpected("class name");
    at_ += meaning.words;
    pattern.type = meaning.type;
  }
  return pattern;
}

void Parser::parseProperty() {
  take();
  if (!atIdentifier()) failExpected("property name");
  const Token& name = take();
  const std::string key = lowerCase(name.text);
  if (declaredGlobals_.contains(key)) {
    fail(name.position,
         "The property " + std::string(name.spelling) + " is defined more than once.");
  }
  declaredGlobals_[key] = true;
  expectSymbol(":");
  const std::size_t slot =
      globalSlot(name.kind == Token::Kind::escaped ? name.text : std::string(name.spelling));
  program_.properties.push_back({slot, parseExpression()});
  expectLineEnd();
}

std::size_t Parser::globalSlot(const std::string& name) {
  const auto [entry, added] = globalSlots_.try_emplace(lowerCase(name), program_.globals.size());
  if (added) program_.globals.push_back(name);
  return entry->second;
}

std::size_t Parser::symbol(const Token& name) {
  std::vector<Symbol>& symbols = scope_->handler->symbols;
  const auto [entry, added] = scope_->symbols.try_emplace(lowerCase(name.text), symbols.size());
  if (added) {
    symbols.push_back(
        {name.kind == Token::Kind::escaped ? name.text : std::string(name.spelling), true, 0});
  }
  return entry->second;
}

// Decides, once all declarations are known, which names are local and where their values live.
void Parser::bindSymbols(Handler& handler, const Scope& scope) {
  for (const auto& [key, index] : scope.symbols) {
    Symbol& symbol = handler.symbols[index];
    const auto own = scope.declared.find(key);
    const bool global =
        own != scope.declared.end() ? !own->second : scope.isTop || declaredGlobals_.contains(key);
    symbol.isLocal = !global;
    for (const auto& [referenced, position] : scope.referenced) {
      if (referenced == index && !global) {
        fail(position, "A reference to the local variable " + symbol.name + " is not supported.");
      }
    }
    symbol.slot = global ? globalSlot(symbol.name) : handler.locals++;
  }
}

// A line that names its application at the end, as in "name of window 1 of application "X"", uses
// that application's terms from its beginning.
Application* Parser::lineApplication() const {
  if (application_) return nullptr;
  for (std::size_t i = 1; at_ + i < tokens_.size(); ++i) {
    const Token& token = peek(i);
    if (token.kind == Token::Kind::lineEnd) break;
    if (token.kind != Token::Kind::word || token.text != "application") continue;
    const bool contained = atWord("of", i - 1) || atWord("in", i - 1);
    const bool identified = atWord("id", i + 1);
    const Token& name = peek(identified ? i + 2 : i + 1);
    if (!contained || name.kind != Token::Kind::string) continue;
    return identified ? applications_.identified(name.text) : applications_.named(name.text);
  }
  return nullptr;
}

}  // namespace quorin::script

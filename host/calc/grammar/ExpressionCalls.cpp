// The calls of an expression: their arguments, what they give and what stands for them.
#include <algorithm>

#include "host/calc/grammar/BoundedCall.h"
#include "host/calc/grammar/CallWork.h"
#include "host/calc/grammar/CellErrors.h"
#include "host/calc/grammar/ExpressionWriter.h"
#include "host/calc/grammar/FoundCells.h"
#include "host/calc/grammar/FunctionCalls.h"
#include "host/calc/grammar/FunctionNames.h"
#include "host/calc/grammar/HarmlessFunctions.h"
#include "host/calc/grammar/MadeArrays.h"

namespace quorin::host::calc {

void ExpressionWriter::function(const std::string& name) {
  operand(true);
  if (!context_.asked && !isHarmless(name) && names_.reaching.empty()) names_.reaching = name;
  if (name == "INDIRECT" && indirect()) return;
  if (name == "ERROR.TYPE" && errorNumber()) return;
  addFunction(reach_, name);
  open(name);
}

// Writes the cells that INDIRECT finds, if it has one argument and these are known.
bool ExpressionWriter::indirect() {
  std::size_t behind = at_;
  const auto argument = readOnlyArgument(text_, behind);
  if (!argument || !context_.referent) return false;
  const auto asked = given_.asked(*argument);
  const auto cells = asked ? context_.referent(*asked) : std::nullopt;
  if (!cells) return false;
  at_ = behind;
  if (cells->empty()) {
    out_ += "INDIRECT(\"\")";  // not #REF!, of which some functions make another error
  } else {
    expansion(*cells);
  }
  return true;
}

// Writes what ERROR.TYPE gives, where the error of its argument is known.
bool ExpressionWriter::errorNumber() {
  std::size_t behind = at_;
  const auto argument = readOnlyArgument(text_, behind);
  if (!argument || !context_.errorOf) return false;
  const auto asked = given_.asked(*argument);
  const auto error = asked ? context_.errorOf(*asked) : std::nullopt;
  if (!error) return false;
  at_ = behind;
  out_ += error->empty() ? "#N/A" : std::to_string(errorType(*error));
  reference_ = false;
  return true;
}

void ExpressionWriter::open(const std::string& function) {
  const std::size_t begin = out_.size();
  const std::string name = calcFunctionName(function);
  const bool binds = function == "LET" && context_.knows && context_.knows(name);
  if (!binds) out_ += name;
  out_ += text_[at_++];
  frames_.push_back({function, begin, out_.size(), at_, operandAt_, reach_.cells.size(), signs_});
  frames_.back().binds = binds;
  operandExpected_ = true;
  open_ += 1 + signs_;
  signs_ = 0;
}

// Inside a function's brackets it parts arguments, elsewhere a comma unites references.
void ExpressionWriter::separator(char c) {
  if (!frames_.empty() && !frames_.back().function.empty()) {
    endArgument();
    if (frames_.back().binds) {
      bind();
    } else {
      out_ += ';';
    }
  } else {
    if (c == ';' || operandExpected_ || !reference_) throw Malformed();
    out_ += '~';
    operands().skip();
    mayBeSeveral();
  }
  ++at_;
  operandExpected_ = true;
  signs_ = 0;
}

void ExpressionWriter::close() {
  if (frames_.empty()) throw Malformed();
  endArgument();
  const Frame frame = frames_.back();
  const bool isPlain = frame.function.empty() || frame.binds;  // brackets around one operand
  if (isPlain && operandExpected_) throw Malformed();
  if (frame.binds && (frame.ends.size() < 3 || frame.ends.size() % 2 == 0)) throw Malformed();
  ArrayCall made = arrayCall(frame.function, frame.shapes);
  const std::size_t begin = frame.begin;
  const auto instead = isPlain ? std::nullopt : callInstead(frame, made);
  names_.work.crossed += made.crossed;
  if (instead) {
    out_.erase(begin);
    out_ += *instead;
  } else {
    out_ += ')';
  }
  frames_.pop_back();
  operandAt_ = frame.operand;
  operands().add(made.shape);
  given_.callEnds(frames_.size());
  open_ -= 1 + frame.signs;
  signs_ = 0;
  ++at_;
  const bool one = isPlain ? !frame.several : givesOne(frame.function, frame.several);
  if (!one) mayBeSeveral();
  const bool truth = isPlain ? frame.compares : givesTruth(frame.function);
  if (truth && isJoinedFrom(begin)) out_ = out_.substr(0, begin) + namedTruth(out_.substr(begin));
  operandExpected_ = false;
  reference_ = true;
}

// Notes what the call reaches, and gives what stands for it if it is to be written otherwise.
std::optional<std::string> ExpressionWriter::callInstead(const Frame& frame, ArrayCall& made) {
  std::vector<CallArgument> arguments = argumentsOf(frame);
  if (makesArray(frame.function) && context_.knows &&
      context_.knows(calcFunctionName(frame.function))) {
    made = madeArray(frame.function, arguments, frame.shapes, context_);
    out_.erase(frame.content);
    for (const CallArgument& one : arguments) out_ += (&one == &arguments[0] ? "" : ";") + one.calc;
  }
  leaveOut(reach_, frame.function, arguments, context_);
  const WorkingCall working{frame.function, frame.shapes, arguments, reach_.cells, context_};
  addCall(names_.work, working, made);
  if (findsCells(frame.function) && !isTakenWhole()) {
    made.shape = foundCells(names_.work, frame.function, arguments, frame.shapes, context_);
  }
  if (frame.function == "INDIRECT") keepInside(frame);
  const FunctionCall call{frame.function, out_.substr(frame.content),
                          std::span(reach_.cells).subspan(frame.reached), arguments};
  auto instead = writtenAnew(call, context_, reach_);
  if (const auto bounded = boundedCall(names_.work, working, made.shape)) {
    instead = out_.substr(frame.begin, frame.content - frame.begin) + *bounded + ")";
  }
  addBeyond(reach_, frame.function, frame.reached);
  return instead;
}

// True if the call that ends here is all of an argument of which the function around it makes one
// value, or all of the expression: no array is made of what it finds.
bool ExpressionWriter::isTakenWhole() const {
  const std::size_t next = text_.find_first_not_of(" \n\r\t", at_ + 1);
  if (next != std::string_view::npos && text_[next] != ',' && text_[next] != ')') return false;
  if (frames_.size() < 2) return depth_ == 0 && operands_.isEmpty();
  const Frame& around = frames_[frames_.size() - 2];
  return around.operands.isEmpty() && givesOne(around.function, true);
}

// Lets the text of INDIRECT name nothing outside.
void ExpressionWriter::keepInside(const Frame& frame) {
  const std::size_t end = frame.ends.front().output;
  const std::string text = out_.substr(frame.content, end - frame.content);
  const auto kept = keptInside(text);
  if (!kept) return;
  reach_.byText = true;
  out_.replace(frame.content, text.size(), *kept);
}

std::vector<CallArgument> ExpressionWriter::argumentsOf(const Frame& frame) const {
  std::vector<CallArgument> arguments;
  std::size_t text = frame.text, output = frame.content, reached = frame.reached;
  for (const ArgumentEnd& end : frame.ends) {
    const std::string_view excel = text_.substr(text, end.text - text);
    arguments.push_back({given_.asked(excel).value_or(""), out_.substr(output, end.output - output),
                         reached, end.reached, end.isCells});
    text = end.text + 1;
    output = end.output + 1;
    reached = end.reached;
  }
  return arguments;
}

void ExpressionWriter::endArgument() {
  Frame& frame = frames_.back();
  const std::size_t from = frame.ends.empty() ? frame.content : frame.ends.back().output + 1;
  frame.ends.push_back({at_, out_.size(), reach_.cells.size(), isCells(from)});
  endSpan(frame.operands.isAlone() && givesOne(frame.function, true));
  frame.operands.addTo(names_.work);
  frame.shapes.push_back(std::exchange(frame.operands, {}).shape());
  given_.argumentEnds(frames_.size() - 1, frame.ends.size());
}

// True if what was written from there on is a reference and nothing else.
bool ExpressionWriter::isCells(std::size_t from) const {
  constexpr const char* blank = " \n\r\t";
  return cells_.first == out_.find_first_not_of(blank, from) &&
         cells_.second == out_.find_last_not_of(blank) + 1;
}

// True if the word, just read, is what LET or LAMBDA calls a value to come.
bool ExpressionWriter::givesName(const std::string& word) {
  if (frames_.empty() || word.empty()) return false;
  const Frame& frame = frames_.back();
  const bool ofLet = frame.function == "LET" && frame.ends.size() % 2 == 0;
  if (!ofLet && frame.function != "LAMBDA") return false;
  const std::size_t next = text_.find_first_not_of(" \n\r\t", at_);
  if (next == std::string_view::npos || (text_[next] != ',' && text_[next] != ';')) return false;
  given_.give({upperCase(word), frames_.size() - 1, frame.ends.size() + (ofLet ? 2 : 1)});
  if (frame.binds) given_.last()->written = "_quorin" + std::to_string(++names_.bound);
  return true;
}

// Of a LET, an argument of which has ended: its name or its value.
void ExpressionWriter::bind() {
  Frame& frame = frames_.back();
  GivenName* const name = given_.last();
  const bool isName = frame.ends.size() % 2 == 1;
  if (name == nullptr || name->call != frames_.size() - 1 ||
      name->argument != frame.ends.size() + (isName ? 1 : 0) || operandExpected_) {
    throw Malformed();
  }
  if (!isName) {
    const std::size_t from = frame.ends[frame.ends.size() - 2].text + 1;
    name->value = text_.substr(from, at_ - from);
    name->shape = frame.shapes.back();
    name->single = !frame.several;
    names_.bindings += name->written + ';' + out_.substr(frame.content) + ';';
  }
  out_.erase(frame.content);
  cells_ = {};
  frame.several = frame.compares = false;
}

}  // namespace quorin::host::calc

// ExpressionWriter: walks once over an Excel expression and writes it in Calc's grammar. The names
// it meets are written as what they stand for, by writers of their own. Throws Malformed where the
// text cannot be an expression.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/calc/grammar/ArrayWork.h"
#include "host/calc/grammar/CalcExpression.h"
#include "host/calc/grammar/CallReach.h"
#include "host/calc/grammar/ExcelReference.h"
#include "host/calc/grammar/GivenNames.h"
#include "host/calc/grammar/JoinedTruth.h"

namespace quorin::host::calc {

struct Malformed {};

// What the writers of one expression share: each name is written once, and what has been written is
// remembered. The office has no LET inside of another, and takes the names of the workbook for
// those of a LET: so where it has one at all, all become a single one around the expression, with
// names that nobody else gives.
struct WrittenNames {
  struct Entry {
    bool isOpen = true;  // being written: a name that leads here again has no end
    bool isThere = false;
    std::string text;
    bool single = false;
    bool isCells = false;         // it is these cells and nothing else
    std::vector<RangeRef> cells;  // that it reaches
    ArrayShape shape;
    OfficeWork work;
  };
  std::map<std::string, Entry> entries;
  OfficeWork work;
  std::string bindings;  // of LET: names and values in turn, each with ";" behind it
  int bound = 0;         // so many names
  std::string reaching;  // a function that is not to be called, in capitals; empty for none
};

class ExpressionWriter {
 public:
  // `depth` counts what is open around it: brackets, signs and names.
  ExpressionWriter(std::string_view text, const ExpressionContext& context, Reach& reach,
                   WrittenNames& names, int depth = 0)
      : text_(text), context_(context), reach_(reach), names_(names), depth_(depth) {}

  std::string run();
  bool isOnePiece() const { return pieces_ == 1; }
  // True if it gives one value whatever the cells hold.
  bool isSingle() const { return !several_; }
  // True if it is a reference and nothing else.
  bool isCells() const { return isCells_; }
  const ArrayShape& shape() const { return operands_.shape(); }

 private:
  // Where an argument ends: in the text, in the output and among the cells that are reached.
  struct ArgumentEnd {
    std::size_t text, output, reached;
    bool isCells;
  };
  struct Frame {
    std::string function;  // Excel's name; empty for plain brackets
    std::size_t begin;     // where all of it begins in the output
    std::size_t content;   // and where its content does
    std::size_t text;      // and where that is in the text
    std::size_t operand;   // and where all of it is there
    std::size_t reached;   // so many cells were reached before it
    int signs = 0;         // stand before it
    bool compares = false;
    bool several = false;  // what stands in it may be more than one value
    bool binds = false;    // it is a LET whose values go to the bindings
    std::vector<ArgumentEnd> ends = {};
    std::vector<ArrayShape> shapes = {};   // of the arguments that have ended
    ArrayOperands operands = {};           // of the one that is open
    std::optional<std::size_t> span = {};  // where a reference with ":" begins in it
  };

  bool at(std::string_view any) const {
    return at_ < text_.size() && any.find(text_[at_]) != std::string_view::npos;
  }
  void step();
  void operand(bool mayBeReference);
  void blanks();
  bool rowsFollow() const;
  void copy(std::optional<std::string_view> constant);
  void open(const std::string& function);
  void close();
  void endArgument();
  void bind();
  std::vector<CallArgument> argumentsOf(const Frame& frame) const;
  std::optional<std::string> callInstead(const Frame& frame, ArrayCall& made);
  bool isTakenWhole() const;
  void endSpan(bool isTakenWhole);
  void separator(char c);
  void sign(char c);
  void crossing();
  void nameOrReference();
  void nameOfWorkbook();
  void reference(const std::optional<SheetSpan>& span, const RangeText& range);
  void word(const std::optional<SheetSpan>& span);
  void function(const std::string& name);
  bool indirect();
  void keepInside(const Frame& frame);
  bool givesName(const std::string& word);
  bool errorNumber();
  void table(const std::string& book, const std::string& name);
  void name(const std::optional<SheetSpan>& span, const std::string& word);
  void expansion(const std::string& excel);
  void named(const std::string& key, const std::function<std::optional<std::string>()>& meaning);
  void append(const WrittenNames::Entry& entry);
  void bound() const;
  ArrayOperands& operands() { return frames_.empty() ? operands_ : frames_.back().operands; }
  std::optional<std::size_t>& span() { return frames_.empty() ? span_ : frames_.back().span; }
  int depthInside() const { return depth_ + open_ + signs_ + 1; }
  bool isCells(std::size_t from) const;
  // True if the operand just read is joined to text; it begins there, or is yet to be written.
  bool isJoinedFrom(std::size_t begin) const {
    return isJoined(std::string_view(out_).substr(0, begin), text_.substr(at_));
  }
  void mayBeSeveral() { (frames_.empty() ? several_ : frames_.back().several) = true; }

  const std::string_view text_;
  const ExpressionContext& context_;
  Reach& reach_;
  WrittenNames& names_;
  const int depth_;
  std::size_t at_ = 0;
  std::size_t pieceAt_ = 0, operandAt_ = 0;  // where the piece begins that is read, and the operand
  std::optional<std::size_t> span_;          // outside all brackets
  int pieces_ = 0;
  std::string out_;
  std::vector<Frame> frames_;
  bool several_ = false;
  int open_ = 0;            // brackets, and the signs before them
  int signs_ = 0;           // before the operand that is read
  GivenNames given_;        // by the calls that are open
  ArrayOperands operands_;  // outside all brackets
  bool operandExpected_ = true;
  bool isCells_ = false;                       // once all is written
  bool reference_ = false;                     // the operand just written may be a reference
  std::pair<std::size_t, std::size_t> cells_;  // where the cells stand that were written last
};

}  // namespace quorin::host::calc

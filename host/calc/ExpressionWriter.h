// ExpressionWriter: walks once over an Excel expression and writes it in Calc's grammar. The names
// it meets are written as what they stand for, by writers of their own. Throws Malformed where the
// text cannot be an expression.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/calc/CalcExpression.h"
#include "host/calc/ExcelReference.h"
#include "host/calc/JoinedTruth.h"

namespace quorin::host::calc {

struct Malformed {};

class ExpressionWriter {
 public:
  ExpressionWriter(std::string_view text, const ExpressionContext& context, Reach& reach,
                   int depth = 0)
      : text_(text), context_(context), reach_(reach), depth_(depth) {}

  std::string run();
  bool isOnePiece() const { return pieces_ == 1; }
  // Whether it gives one value whatever the cells hold.
  bool isSingle() const { return !several_; }

 private:
  struct Frame {
    std::string function;  // Excel's name; empty for plain brackets
    std::size_t begin;     // where all of it begins in the output
    std::size_t content;   // and where its content does
    std::size_t reached;   // so many cells were reached before it
    bool compares = false;
    bool several = false;  // what stands in it may be more than one value
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
  void separator(char c);
  void sign(char c);
  void crossing();
  void nameOrReference();
  void nameOfWorkbook();
  void reference(const std::optional<SheetSpan>& span, const RangeText& range);
  void word(const std::optional<SheetSpan>& span);
  void function(const std::string& name);
  bool indirect();
  bool errorNumber();
  void table(const std::string& book, const std::string& name);
  void name(const std::optional<SheetSpan>& span, const std::string& word);
  void expansion(const std::string& excel);
  bool isCells(std::size_t from) const;
  // Whether the operand just read is joined to text; it begins there, or is yet to be written.
  bool isJoinedFrom(std::size_t begin) const {
    return isJoined(std::string_view(out_).substr(0, begin), text_.substr(at_));
  }
  void mayBeSeveral() { (frames_.empty() ? several_ : frames_.back().several) = true; }

  const std::string_view text_;
  const ExpressionContext& context_;
  Reach& reach_;
  const int depth_;  // of names within names
  std::size_t at_ = 0;
  int pieces_ = 0;
  std::string out_;
  std::vector<Frame> frames_;
  bool several_ = false;
  bool operandExpected_ = true;
  bool reference_ = false;                     // the operand just written may be a reference
  std::pair<std::size_t, std::size_t> cells_;  // where the cells stand that were written last
};

}  // namespace quorin::host::calc

// ArrayWork: how many values Calc has to work out where columns stand against rows, as
// ROW(1:9000)=TRANSPOSE(ROW(1:9000)) does. It does so in one go that nobody can end. Pure.
#pragma once

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "host/calc/grammar/OfficeWork.h"
#include "host/calc/grammar/ReferenceText.h"

namespace quorin::host::calc {

// At most these may a value have. They are counted in double precision: they overflow nothing.
struct ArrayShape {
  double rows = 1, columns = 1;
  double count() const { return rows * columns; }
};

ArrayShape shapeOf(const Area& area);
// Of an array constant, in either grammar: {1,2;3,4}.
ArrayShape shapeOfConstant(std::string_view text);

// What stands beside each other, joined by signs or as the arguments of a function that takes one
// value each: together they have the most rows and the most columns of them.
class ArrayOperands {
 public:
  void add(const ArrayShape& one) {
    isEmpty_ = false;
    if (std::exchange(skips_, false)) return;
    all_ = {std::max(all_.rows, one.rows), std::max(all_.columns, one.columns)};
    largest_ = std::max(largest_, one.count());
  }
  // One that works something out of one operand or two.
  void sign() {
    ++signs_;
    isEmpty_ = false;
  }
  // "&", which makes texts.
  void join() { ++joins_; }
  // What comes next makes one reference with what was added last: no values of its own.
  void skip() { skips_ = true; }
  const ArrayShape& shape() const { return all_; }
  // Nothing stands there yet, or it is only one operand.
  bool isEmpty() const { return isEmpty_; }
  bool isAlone() const { return signs_ == 0; }
  // The values that there are only because they meet; 0 where one of them has as many already.
  double crossed() const { return all_.count() > largest_ ? all_.count() : 0; }
  // What the signs among them have to do.
  void addTo(OfficeWork& work) const;

 private:
  ArrayShape all_;
  double largest_ = 1;
  int signs_ = 0, joins_ = 0;
  bool skips_ = false, isEmpty_ = true;
};

struct ArrayCall {
  ArrayShape shape;    // of what the function gives
  double crossed = 0;  // in the function itself
};

// One value where it is not known what the function makes of its arguments.
ArrayCall arrayCall(std::string_view function, const std::vector<ArrayShape>& arguments);

}  // namespace quorin::host::calc

// The binary and unary operators over values. Pure apart from `&`, which shares list items. Throws
// Failure for operands that do not fit: -1700, -2701 for a division by zero, -2702 for a result too
// large.
#pragma once

#include "script/values/TextRules.h"
#include "script/values/Value.h"

namespace quorin::script {

enum class Operator {
  add,
  subtract,
  multiply,
  divide,
  wholeDivide,
  modulo,
  power,
  concatenate,
  equal,
  notEqual,
  less,
  lessOrEqual,
  greater,
  greaterOrEqual,
  contains,
  notContains,
  beginsWith,
  endsWith,
  isIn,
  isNotIn
};

Value apply(Operator operation, const Value& left, const Value& right, const TextRules& rules);
Value negate(const Value& value);

// Without coercion: numbers of both kinds compare, values of different classes differ, lists and
// records compare deep, references and objects by their form.
bool areEqual(const Value& left, const Value& right, const TextRules& rules);

}  // namespace quorin::script

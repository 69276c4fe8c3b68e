// Runs of rows or columns in the verbs: as arguments of a handler, and whose they are. Pure, any
// thread.
#pragma once

#include <string>
#include <vector>

#include "kit/shapes/HiddenRuns.h"
#include "kit/value/JSONValue.h"
#include "kit/value/Unicode.h"

namespace quorin {

// Each run as an array of its two ends.
inline JSONValue runArgs(const std::vector<BridgeShapes::Run>& runs) {
  JSONValue::Array list;
  for (const BridgeShapes::Run& run : runs)
    list.emplace_back(JSONValue::Array{static_cast<double>(run[0]), static_cast<double>(run[1])});
  return list;
}

// The runs of both, as they are.
inline BridgeShapes::HiddenRuns joined(BridgeShapes::HiddenRuns a,
                                       const BridgeShapes::HiddenRuns& b) {
  a.rows.insert(a.rows.end(), b.rows.begin(), b.rows.end());
  a.cols.insert(a.cols.end(), b.cols.begin(), b.cols.end());
  return a;
}

// True if two names of sheets mean the same one: Excel does not look at the case of letters, so a
// request may spell it in another way than the record does.
inline bool isSheet(const std::string& book, const std::string& sheet, const std::string& otherBook,
                    const std::string& otherSheet) {
  return caselesslyEqual(book, otherBook) && caselesslyEqual(sheet, otherSheet);
}

}  // namespace quorin

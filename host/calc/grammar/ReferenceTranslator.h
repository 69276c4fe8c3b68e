// ReferenceTranslator: references in a formula, from Calc's stored grammar to Excel's. Used on one
// thread.
//
//   $'My Sheet'.A1:B2           'My Sheet'!A1:B2
//   $Sheet1.A1:$Sheet3.A1       Sheet1:Sheet3!A1
//   'file:///f/b.ods'#$Jan.A1   '/f/[b.ods]Jan'!A1
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "host/calc/grammar/PlainReference.h"
#include "host/calc/grammar/ReferenceText.h"
#include "host/calc/grammar/SheetPrefixes.h"

namespace quorin::host::calc {

// A formula on its way from one grammar to the other.
struct FormulaInPassing {
  std::string_view text;  // Calc's
  FormulaCell cell;       // where it stands
  std::size_t at = 0;     // what is read next
  std::string out;        // Excel's, of what was read

  bool isOver() const { return at >= text.size(); }
  char next() const { return text[at]; }  // where it is not over
  bool isNext(char c) const { return !isOver() && next() == c; }
};

// What it finds at the formula's position it writes, and moves behind it.
class ReferenceTranslator {
 public:
  ReferenceTranslator(ReferenceStyle style, IsSheet isSheet, FormulaInPassing& formula);

  // Cells of any sheet or none that both grammars write alike.
  bool plainReference() {
    if (style_ != ReferenceStyle::a1) return false;
    const std::size_t end = behindPlainReference(formula_.text, formula_.at);
    if (end == formula_.at) return false;
    copyUpTo(end);
    return true;
  }

  // Any other cells of this workbook. Where none stand a word is next; the sheet that a name
  // belongs to has been written then.
  bool reference();

  // The sheet of another workbook, or that workbook. Cells or a name come next.
  bool externalSheet();
  bool externalCells();

 private:
  void copyUpTo(std::size_t end) {
    formula_.out += formula_.text.substr(formula_.at, end - formula_.at);
    formula_.at = end;
  }
  template <typename Surely>
  bool plainReferenceOn(const SheetPrefixes::Sheet& sheet, std::size_t start, Surely surely);
  void write(const SheetPrefixes::Sheet* first, const SheetPrefixes::Sheet* last, RangeText range);
  void sheetOfName(const SheetPrefixes::Sheet& sheet, std::size_t position);

  const ReferenceStyle style_;
  SheetPrefixes sheets_;
  FormulaInPassing& formula_;
};

}  // namespace quorin::host::calc

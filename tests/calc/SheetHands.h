// SheetHands: what the user does to the sheets of one workbook, how they save it, and what they see
// of our marks, over a connection of its own that shares nothing with the code under test.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "host/calc/office/OfficeSource.h"

namespace quorin::host::calc {

class SheetHands {
 public:
  SheetHands(const OfficeAddress& office, const std::string& book);
  ~SheetHands();
  SheetHands(const SheetHands&) = delete;
  SheetHands& operator=(const SheetHands&) = delete;

  // Rows and columns are counted from 1.
  void insertRows(const std::string& sheet, int row, int count);
  void deleteRows(const std::string& sheet, int row, int count);
  void insertColumns(const std::string& sheet, int column, int count);
  void deleteColumns(const std::string& sheet, int column, int count);
  void showRow(const std::string& sheet, int row, bool shown);
  void showColumn(const std::string& sheet, int column, bool shown);
  void setRowHeight(const std::string& sheet, int row, int height);  // hundredths of a mm
  void setColumnWidth(const std::string& sheet, int column, int width);
  void moveCells(const std::string& sheet, const std::string& from, const std::string& to);
  void renameSheet(const std::string& sheet, const std::string& name);
  void moveSheet(const std::string& sheet, int position);  // from 0
  void copySheet(const std::string& sheet, const std::string& name);
  void deleteSheet(const std::string& sheet);
  void enter(const std::string& sheet, const std::string& cell, const std::string& formula);
  void undo();
  void redo();
  // A drawing that is tied to that cell, and how far from the top of its sheet it is, in hundredths
  // of a mm.
  void draw(const std::string& sheet, const std::string& cell);
  int topOfDrawing(const std::string& sheet);
  // A chart on the sheet of cells of another, and how many of these it takes for hidden.
  void addChart(const std::string& sheet, const std::string& otherSheet, const std::string& cells);
  int hiddenInChart(const std::string& sheet);
  double number(const std::string& sheet, const std::string& cell);
  bool isModified();
  void setModified(bool modified);

  // Saving as the user does; false when the office refused. The format follows the suffix.
  bool save();
  bool saveAs(const std::filesystem::path& file);
  bool saveCopy(const std::filesystem::path& file);  // also an export to PDF
  bool saveForRecovery(const std::filesystem::path& file);

  // Each mark as "Data!$B$2,$C$5:$D$6", sheets in their order. One that is not drawn exactly where
  // its shown cells are has " misplaced" behind it.
  std::vector<std::string> marks();

 private:
  struct Objects;
  std::unique_ptr<Objects> objects_;
};

}  // namespace quorin::host::calc

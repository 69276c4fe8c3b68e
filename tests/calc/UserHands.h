// UserHands: what the user does in an office and what they see of it, over a connection of its own
// that shares nothing with the code under test.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "host/calc/office/OfficeSource.h"

namespace quorin::host::calc {

class OfficeConnection;

class UserHands {
 public:
  explicit UserHands(const OfficeAddress& office);
  ~UserHands();
  UserHands(const UserHands&) = delete;
  UserHands& operator=(const UserHands&) = delete;

  void open(const std::string& file);
  std::string openBlank();  // gives its title
  // In the workbook whose file's path ends with `book`, from the name of a folder or of the file
  // on, or whose title without a file it is. Entered and undone like a
  // user's own change.
  void enter(const std::string& book, const std::string& sheet, const std::string& cell,
             const std::string& formula);
  void enterTogether(const std::string& book, const std::string& sheet, const std::string& cells,
                     const std::string& formula);  // in each of them, to be undone at once
  void fill(const std::string& book, const std::string& sheet, const std::string& cells,
            std::int32_t color);
  void undo(const std::string& book);
  bool canUndo(const std::string& book);
  std::vector<std::string> sheets(const std::string& book);
  void save(const std::string& book);
  void redo(const std::string& book);
  void close(const std::string& book);  // without saving
  void protect(const std::string& book, const std::string& sheet);
  void unprotect(const std::string& book, const std::string& sheet);
  // A shape of some size on the sheet, and the names of all that are there.
  void draw(const std::string& book, const std::string& sheet, const std::string& name);
  std::vector<std::string> shapes(const std::string& book, const std::string& sheet);
  int heightOfShapes(const std::string& book, const std::string& sheet);  // 1/100 mm, together
  void eraseShapes(const std::string& book, const std::string& sheet);
  void saveAs(const std::string& book, const std::string& file);  // as a workbook of Excel's
  void insertRows(const std::string& book, const std::string& sheet, int row, int count);
  void removeRows(const std::string& book, const std::string& sheet, int row, int count);
  void renameName(const std::string& book, const std::string& name, const std::string& fresh);
  void renameSheet(const std::string& book, const std::string& sheet, const std::string& name);
  void copySheet(const std::string& book, const std::string& sheet, const std::string& copy);
  void deleteSheet(const std::string& book, const std::string& sheet);
  // To the end of the other workbook's sheets, whose name for it the office chooses.
  void copySheetTo(const std::string& book, const std::string& sheet, const std::string& otherBook);
  void deleteName(const std::string& book, const std::string& name);
  void setModified(const std::string& book, bool modified);
  // Addresses as "A1:B5"; a row of them for rows, a column for columns.
  void hideRows(const std::string& book, const std::string& sheet, const std::string& rows);
  void showRows(const std::string& book, const std::string& sheet, const std::string& rows);
  void hideColumns(const std::string& book, const std::string& sheet, const std::string& columns);
  void showColumns(const std::string& book, const std::string& sheet, const std::string& columns);
  void groupRows(const std::string& book, const std::string& sheet, const std::string& rows);
  void collapseRows(const std::string& book, const std::string& sheet, const std::string& rows);
  void expandRows(const std::string& book, const std::string& sheet, const std::string& rows);
  void merge(const std::string& book, const std::string& sheet, const std::string& cells);
  // Shows the rows alone whose cell in that column, counted from 0, holds the text.
  void filter(const std::string& book, const std::string& sheet, const std::string& cells,
              int column, const std::string& text);
  void endFilter(const std::string& book, const std::string& sheet, const std::string& cells);
  bool showsSheet(const std::string& book, const std::string& sheet);
  void freeze(const std::string& book, int columns, int rows);  // on the sheet on top
  // As for an office that was started anew: nothing is remembered of rows that we have shown.
  void forgetShownRows();
  void lockUndo(const std::string& book);  // as a process that died in the middle of a change

  // Everything of the workbook that a trace could be left in: undo and redo list, modified flag,
  // sheets, names, styles, number formats.
  std::string stateOf(const std::string& book);
  // The workbook's sheets as a file keeps them, in XML: cells, rows, what is hidden, filtered and
  // grouped, and which of the first columns are hidden. Without what depends on what was looked at.
  std::string contentOf(const std::string& book);
  int documents();  // all of them that the office holds, hidden ones too
  // Every function that the office knows, as files of Excel's formats spell it.
  std::vector<std::string> functions(const std::string& book);
  bool quit();  // true when the office agreed

 private:
  struct Objects;
  std::unique_ptr<Objects> objects_;
};

}  // namespace quorin::host::calc

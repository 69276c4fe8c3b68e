#include <gtest/gtest.h>
#include <zip.h>

#include "tests/fakes/TemporaryFolder.h"
#include "tests/xlsx/StoredWorkbook.h"

namespace quorin::xlsx {
namespace {

using host::CellValue;

class StoredWorkbookTest : public testing::Test {
 protected:
  void add(const std::string& name, const std::string& text) { parts_[name] = text; }

  StoredWorkbook read() {
    const std::filesystem::path file = folder_ / "Book.xlsx";
    int error = 0;
    zip_t* const zip = zip_open(file.c_str(), ZIP_CREATE | ZIP_TRUNCATE, &error);
    for (const auto& [name, text] : parts_)
      zip_file_add(zip, name.c_str(), zip_source_buffer(zip, text.data(), text.size(), 0),
                   ZIP_FL_ENC_UTF_8);
    if (zip_close(zip) != 0) throw std::runtime_error("the zip file cannot be written");
    return readWorkbook(file);
  }

  void addBook() {
    add("xl/workbook.xml",
        "<x:workbook xmlns:x='m' xmlns:r='r'><x:sheets><x:sheet name='D&amp;A' r:id='a'/>"
        "<x:sheet name='Chart' r:id='c'/></x:sheets><x:externalReferences>"
        "<x:externalReference r:id='e'/></x:externalReferences></x:workbook>");
    add("xl/_rels/workbook.xml.rels",
        "<Relationships><Relationship Id='a' Target='worksheets/sheet1.xml'/>"
        "<Relationship Id='c' Target='/xl/chartsheets/sheet1.xml'/>"
        "<Relationship Id='e' Target='externalLinks/e1.xml'/></Relationships>");
    add("xl/chartsheets/sheet1.xml", "<chartsheet/>");
    add("xl/externalLinks/_rels/e1.xml.rels",
        "<Relationships><Relationship Id='x' Target='file:///C:\\a\\My%20Book.xlsx'/>"
        "</Relationships>");
    add("xl/sharedStrings.xml",
        "<sst><si><t> a "
        "</t></si><si><r><t>b</t></r><r><t>c</t></r><rPh><t>no</t></rPh></si></sst>");
  }

  void addSheet(const std::string& rows) {
    add("xl/worksheets/sheet1.xml",
        "<x:worksheet xmlns:x='m'><x:sheetData>" + rows + "</x:sheetData></x:worksheet>");
  }

  TemporaryFolder folder_;
  std::map<std::string, std::string> parts_;
};

TEST_F(StoredWorkbookTest, ListsWorksheetsAndOtherWorkbooks) {
  addBook();
  addSheet("");
  const StoredWorkbook book = read();
  ASSERT_EQ(book.sheets.size(), 1U);
  EXPECT_EQ(book.sheets[0].name, "D&A");
  EXPECT_EQ(book.externals, std::vector<std::string>{"My Book.xlsx"});
}

TEST_F(StoredWorkbookTest, ReadsEveryKindOfValue) {
  addBook();
  addSheet(
      "<x:row r='2'><x:c r='B2' t='s'><x:v>0</x:v></x:c><x:c t='s'><x:v>1</x:v></x:c>"
      "<x:c r='D2'><x:v>1.5</x:v></x:c><x:c r='E2' t='b'><x:v>1</x:v></x:c>"
      "<x:c r='F2' t='e'><x:v>#N/A</x:v></x:c><x:c r='G2' t='str'><x:f>\"x\"</x:f><x:v>x</x:v>"
      "</x:c><x:c r='H2' t='inlineStr'><x:is><x:t>in</x:t></x:is></x:c><x:c r='I2' "
      "s='4'/></x:row>");
  const auto cells = read().sheets[0].cells;
  EXPECT_EQ(cells.size(), 7U);
  EXPECT_EQ(cells.at({2, 2}).value, CellValue(std::string(" a ")));
  EXPECT_EQ(cells.at({2, 3}).value, CellValue(std::string("bc")));
  EXPECT_EQ(cells.at({2, 4}).value, CellValue(1.5));
  EXPECT_EQ(cells.at({2, 5}).value, CellValue(true));
  EXPECT_EQ(cells.at({2, 6}).value, CellValue(host::CellError{"#N/A"}));
  EXPECT_EQ(cells.at({2, 7}).value, CellValue(std::string("x")));
  EXPECT_EQ(cells.at({2, 7}).formula, "=\"x\"");
  EXPECT_EQ(cells.at({2, 8}).value, CellValue(std::string("in")));
}

TEST_F(StoredWorkbookTest, WorksSharedFormulasOut) {
  addBook();
  addSheet(
      "<x:row><x:c r='A1'><x:f t='shared' ref='A1:A2' "
      "si='3'>B1+$B$1</x:f><x:v>1</x:v></x:c></x:row>"
      "<x:row><x:c r='A2'><x:f t='shared' si='3'/><x:v>2</x:v></x:c></x:row>");
  const auto cells = read().sheets[0].cells;
  EXPECT_EQ(cells.at({1, 1}).formula, "=B1+$B$1");
  EXPECT_EQ(cells.at({2, 1}).formula, "=B2+$B$1");
}

TEST_F(StoredWorkbookTest, TellsArraysAndTablesApart) {
  addBook();
  addSheet(
      "<x:row><x:c r='A1'><x:f t='array' ref='A1:B1'>C1:D1</x:f><x:v>1</x:v></x:c>"
      "<x:c r='B1'><x:v>2</x:v></x:c><x:c r='C1'><x:f t='dataTable' ref='C1:C2'/><x:v>3</x:v></x:c>"
      "</x:row>");
  const auto cells = read().sheets[0].cells;
  EXPECT_EQ(cells.at({1, 1}).kind, FormulaKind::array);
  EXPECT_EQ(cells.at({1, 2}).kind, FormulaKind::none);
  EXPECT_EQ(cells.at({1, 3}).kind, FormulaKind::dataTable);
  EXPECT_EQ(cells.at({1, 3}).formula, "");
}

TEST_F(StoredWorkbookTest, RefusesWhatIsNoWorkbook) {
  EXPECT_THROW(readWorkbook(folder_ / "Nothing.xlsx"), std::runtime_error);
}

}  // namespace
}  // namespace quorin::xlsx

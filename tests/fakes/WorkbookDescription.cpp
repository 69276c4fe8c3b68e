#include "tests/fakes/WorkbookDescription.h"

namespace quorin::fakes {

WorkbookDescription knownWorkbook() {
  const host::CellError divisionByZero{"#DIV/0!"};
  WorkbookDescription book{.name = "Known.xlsx", .sheets = {}};
  book.sheets.push_back({"Data",
                         {
                             {"A1", "Item"},
                             {"B1", "Price"},
                             {"C1", "Double"},
                             {"A2", "Bolt"},
                             {"B2", 1.5},
                             {"C2", 3.0, "=B2*2"},
                             {"A3", "Nut"},
                             {"B3", 2.0},
                             {"C3", 4.0, "=B3*2"},
                             {"B4", 3.5, "=SUM(B2:B3)"},
                             {"C4", divisionByZero, "=1/0"},
                             {"E6", true},
                             {"A7", 42.0},
                             {"E8", "yes", "=IF($B$2>1,\"yes\",\"no\")"},
                             {"E10", 4.5, "=B4+1"},
                         }});
  book.sheets.push_back({"It's a test",
                         {
                             {"A1", 2.5, "=Data!B2+1"},
                             {"B2", "x"},
                         }});
  book.sheets.push_back({"Blank", {}});
  book.names = {
      {"Prices", "=Data!$B$2:$B$3"},
      {"Spot", "=Data!$A$1"},
      {"Spot", "='It''s a test'!$B$2", "It's a test"},
      {"Factor", "=0.2"},
  };
  return book;
}

WorkbookDescription ruledWorkbook() {
  SheetDescription rules{"Rules", {{"B2", 1.0}, {"B3", 2.0}, {"D2", 7.0}}};
  rules.conditions = {
      {"B2:B5", "=$B2>1"}, {"C1", "=TRUE"}, {"D2:D3", "=5", host::ConditionKind::cellValue}};
  return {.name = "Ruled.xlsx", .sheets = {std::move(rules)}};
}

}  // namespace quorin::fakes

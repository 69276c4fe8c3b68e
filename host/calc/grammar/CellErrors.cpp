#include "host/calc/grammar/CellErrors.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace quorin::host::calc {
namespace {

struct Row {
  int code;
  const char* text;
};

constexpr std::array rows{
    Row{501, "#VALUE!"},  // a character that cannot stand in a formula
    Row{502, "#NUM!"},    // an argument outside the function's range
    Row{503, "#NUM!"},    // a calculation outside the range of numbers
    Row{504, "#VALUE!"},  // an argument of the wrong kind
    Row{507, "#NAME?"},   // from here to 512: text that does not parse
    Row{508, "#NAME?"},  Row{509, "#NAME?"},  Row{510, "#NAME?"},  Row{511, "#NAME?"},
    Row{512, "#NAME?"},  Row{513, "#VALUE!"},  // a text too long
    Row{514, "#NUM!"},                         // an internal stack or matrix too large
    Row{516, "#VALUE!"}, Row{517, "#VALUE!"}, Row{518, "#NAME?"},  Row{519, "#VALUE!"},
    Row{520, "#NAME?"},  Row{521, "#NULL!"},  Row{522, "#REF!"},  // a circular reference
    Row{523, "#NUM!"},                                            // an iteration without an end
    Row{524, "#REF!"},   Row{525, "#NAME?"},  Row{526, "#VALUE!"}, Row{527, "#NUM!"},
    Row{532, "#DIV/0!"}, Row{533, "#CALC!"},  // arrays in arrays, and a filter that leaves nothing
    Row{538, "#VALUE!"}, Row{539, "#NAME?"},  Row{540, "#VALUE!"}, Row{541, "#VALUE!"},
    Row{542, "#REF!"},   Row{32767, "#N/A"},
};

}  // namespace

std::string errorText(int code) {
  const auto row = std::find_if(rows.begin(), rows.end(),
                                [code](const Row& candidate) { return candidate.code == code; });
  return row == rows.end() ? "#VALUE!" : row->text;
}

int errorType(std::string_view text) {
  constexpr std::array<std::string_view, 7> byNumber{"#NULL!", "#DIV/0!", "#VALUE!", "#REF!",
                                                     "#NAME?", "#NUM!",   "#N/A"};
  constexpr int calcError = 14;
  const auto found = std::find(byNumber.begin(), byNumber.end(), text);
  return found == byNumber.end() ? calcError : static_cast<int>(found - byNumber.begin()) + 1;
}

std::string errorTypeCall(const std::string& argument) {
  std::string codes, types;
  for (const Row& row : rows) {  // in ascending order, as LOOKUP needs them
    codes += (codes.empty() ? "" : ";") + std::to_string(row.code);
    types += (types.empty() ? "" : ";") + std::to_string(errorType(row.text));
  }
  return "LOOKUP(ERRORTYPE(" + argument + ");{" + codes + "};{" + types + "})";
}

}  // namespace quorin::host::calc

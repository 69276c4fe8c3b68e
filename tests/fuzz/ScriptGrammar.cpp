#include "tests/fuzz/ScriptGrammar.h"

#include <iterator>

namespace quorin::fuzz {
namespace {

constexpr int deepest = 7;

constexpr std::string_view variables[] = {"a9", "b9", "l9", "t9", "r9", "i9", "sum9", "|end|"};
constexpr std::string_view handlers[] = {"f", "g", "visit_all", "h9"};
constexpr std::string_view operators[] = {"+",
                                          "-",
                                          "*",
                                          "/",
                                          "div",
                                          "mod",
                                          "^",
                                          "&",
                                          "=",
                                          "≠",
                                          "<",
                                          "≤",
                                          ">=",
                                          "is",
                                          "&",
                                          "contains",
                                          "is in",
                                          "starts with",
                                          "ends with",
                                          "is not",
                                          "comes before",
                                          "and",
                                          "or",
                                          "equals",
                                          "is not contained by",
                                          "does not contain",
                                          "is less than"};
constexpr std::string_view classes[] = {"text",   "integer", "real",   "list",    "record",
                                        "number", "boolean", "string", "constant"};
constexpr std::string_view numbers[] = {"0",     "1",         "-1",         "2",
                                        "3",     "536870911", "2.5",        "1e300",
                                        "-7.25", "1.0E-300",  "2147483648", "99999999999999999999",
                                        "40",    "0.1"};
constexpr std::string_view texts[] = {"\"\"",
                                      "\"a,b;c\"",
                                      "\"A1\"",
                                      "\"12\"",
                                      "\"1,5\"",
                                      "\"é\t\\\"x\"",
                                      "\"one two-three\nfour\"",
                                      "\"missing value\"",
                                      "\"B2:C4\"",
                                      "\"Data\"",
                                      "\"Known.xlsx\"",
                                      "\"Prices\"",
                                      "\"5:5\"",
                                      "\"=B2*2\""};
constexpr std::string_view constants[] = {"true",  "false",  "missing value", "pi",
                                          "hours", "Monday", "«class X117»",  "text"};
constexpr std::string_view ordinals[] = {"first", "second", "last",  "middle",
                                         "some",  "tenth",  "every", "3rd"};
constexpr std::string_view elements[] = {"workbook",   "worksheet",    "sheet",
                                         "range",      "cell",         "row",
                                         "column",     "window",       "format condition",
                                         "named item", "chart object", "document",
                                         "shape",      "«class X117»"};
constexpr std::string_view plurals[] = {"workbooks", "worksheets",  "cells",   "rows",
                                        "columns",   "named items", "windows", "format conditions",
                                        "sheets",    "shapes"};
constexpr std::string_view properties[] = {
    "name",        "value",           "value2",     "formula",         "formula r1c1",
    "color",       "hidden",          "visible",    "first row index", "entire row",
    "used range",  "interior object", "applies to", "string value",    "scroll row",
    "has formula", "references",      "formula2",   "count large",     "current region",
    "bounds",      "class",           "properties", "«property DPVu»", "contents"};
constexpr std::string_view roots[] = {"active cell", "active sheet",  "active workbook",
                                      "selection",   "active window", "it",
                                      "window 1"};
constexpr std::string_view considerations[] = {"case",    "white space", "diacriticals",
                                               "hyphens", "punctuation", "numeric strings"};
constexpr std::string_view damage[] = {"(",   ")",    "{",  "}",    " of ", " to ",   "\n",
                                       "end", " as ", "\"", "¬\n",  "(*",   " with ", "'s ",
                                       "|",   "-",    "«",  "\xFF", "1e",   " is ",   ":"};

}  // namespace

std::string ScriptGrammar::variable() {
  return one(variables);
}

std::string ScriptGrammar::literal() {
  switch (below(8)) {
    case 0:
    case 1:
    case 2:
      return one(numbers);
    case 3:
    case 4:
    case 5:
      return one(texts);
    default:
      return one(constants);
  }
}

std::string ScriptGrammar::listOrRecord() {
  std::string text = "{";
  const bool record = once(4);
  const std::size_t size = record ? 1 + below(3) : below(4);
  static constexpr std::string_view labels[] = {"name", "x9", "value", "|y|", "index", "sum9"};
  for (std::size_t i = 0; i < size; ++i) {
    if (i > 0) text += ", ";
    if (record) text += one(labels) + ":";
    text += expression();
  }
  return text + "}";
}

std::string ScriptGrammar::textPart() {
  static constexpr std::string_view kinds[] = {"character", "word", "paragraph", "text item"};
  const std::string kind = one(kinds);
  const std::string of = " of " + operand();
  switch (below(4)) {
    case 0:
      return kind + "s " + key() + " thru " + key() + of;
    case 1:
      return kind + " " + key() + of;
    case 2:
      return "every " + kind + of;
    default:
      return "text " + key() + " thru " + key() + of;
  }
}

std::string ScriptGrammar::listPart() {
  switch (below(7)) {
    case 0:
      return "item " + key() + " of " + operand();
    case 1:
      return "items " + key() + " thru " + key() + " of " + operand();
    case 2:
      return one(ordinals) + " item of " + operand();
    case 3:
      return "rest of " + operand();
    case 4:
      return "reverse of " + operand();
    case 5:
      return "every " + one(classes) + " of " + operand();
    default:
      return "length of " + operand();
  }
}

std::string ScriptGrammar::key() {
  switch (below(4)) {
    case 0:
      return variable();
    case 1:
      return "(" + expression() + ")";
    case 2:
      return one(numbers);
    default:
      return one(texts);
  }
}

std::string ScriptGrammar::element() {
  switch (below(8)) {
    case 0:
      return one(ordinals) + " " + one(elements);
    case 1:
      return one(plurals);
    case 2:
      return one(plurals) + " " + key() + " thru " + key();
    case 3:
      return one(elements) + " named " + key();
    case 4:
      return one(plurals) + " whose " + one(properties) + " " + one(operators) + " " + operand();
    case 5:
      return one(elements) + " after " + one(elements) + " 1";
    case 6:
      return one(elements) + " id " + one(numbers);
    default:
      return one(elements) + " " + key();
  }
}

std::string ScriptGrammar::object() {
  std::string text = once(2) ? one(properties) : element();
  for (std::size_t links = below(4); links > 0; --links) {
    text += " of " + (once(3) ? one(properties) : element());
  }
  switch (below(5)) {
    case 0:
      return text + " of " + one(roots);
    case 1:
      return text + " of " + variable();
    case 2:
      return one(roots) + "'s " + one(properties);
    default:
      return text;
  }
}

std::string ScriptGrammar::command() {
  switch (below(18)) {
    case 0:
      return "get address " + object() + (once(2) ? " row absolute false" : " with external");
    case 1:
      return "union range1 " + object() + " range2 " + object();
    case 2:
      return "special cells (" + object() + ") type cell type visible";
    case 3:
      return "make new " + one(elements) + " at " + (once(2) ? "end" : object()) +
             " with properties {formula1:" + expression() + "}";
    case 4:
      return "close " + object() + " saving no";
    case 5:
      return "goto reference (" + object() + ") with scroll";
    case 6:
      return "evaluate name " + expression();
    case 7:
      return "modify applies to range (" + object() + ") range (" + object() + ")";
    case 8:
      return "count " + object() + " each " + one(elements);
    case 9:
      return "exists " + object();
    case 10:
      return "activate object " + object();
    case 11:
      return "get areas of " + variable();
    case 12:
      return "get (" + object() + ")";
    case 13:
      return "delete " + object();
    case 14:
      return "«event smXL1191» given «class XLr1»:" + operand();
    case 15:
      return "make new workbook";
    case 16:
      return "close workbook " + key() + " saving no";
    default:
      return "select " + object();
  }
}

std::string ScriptGrammar::operand() {
  if (depth_ > deepest) return one(texts);
  ++depth_;
  std::string text;
  switch (below(tells_ > 0 ? 15 : 10)) {
    case 0:
    case 1:
    case 2:
      text = variable();
      break;
    case 3:
      text = listOrRecord();
      break;
    case 4:
      text = "(" + textPart() + ")";
      break;
    case 5:
      text = "(" + listPart() + ")";
      break;
    case 6:
      text = "(" + expression() + ")";
      break;
    case 7:
      text = (once(2) ? "my " : "") + one(handlers) + "(" + expression() + ")";
      break;
    case 8:
    case 9:
      text = literal();
      if (text.starts_with('-')) text = "(" + text + ")";
      break;
    case 10:
      text = "(" + command() + ")";
      break;
    default:
      text = "(" + object() + ")";
      break;
  }
  --depth_;
  return text;
}

std::string ScriptGrammar::expression() {
  if (depth_ > deepest) return literal();
  ++depth_;
  std::string text;
  switch (below(12)) {
    case 0:
      text = "not " + operand();
      break;
    case 1:
      text = "-" + operand();
      break;
    case 2:
      text = operand() + " as " + (once(6) ? "{integer, text}" : one(classes));
      break;
    case 3:
      text = "class of " + operand() + (once(2) ? " is list" : "");
      break;
    case 4:
      text = once(3) ? "count of " + operand() : "a reference to " + listPart();
      break;
    case 5:
    case 6:
    case 7:
      text = operand() + " " + one(operators) + " " + operand();
      break;
    default:
      text = operand();
      break;
  }
  --depth_;
  return text;
}

std::string ScriptGrammar::pattern() {
  switch (below(4)) {
    case 0:
      return "{" + variable() + ", {" + variable() + ", b8}}";
    case 1:
      return "{name:" + variable() + "}";
    default:
      return variable();
  }
}

std::string ScriptGrammar::target() {
  switch (below(8)) {
    case 0:
      return "item " + key() + " of " + variable();
    case 1:
      return once(2) ? "end of " + variable() : "beginning of " + variable();
    case 2:
      return "contents of " + variable();
    case 3:
      return "AppleScript's text item delimiters";
    case 4:
      return tells_ > 0 ? one(properties) + " of " + element() : "x9 of " + variable();
    case 5:
      return pattern();
    default:
      return variable();
  }
}

std::string ScriptGrammar::block() {
  std::string text;
  for (std::size_t size = 1 + below(3); size > 0; --size) text += statement();
  return text;
}

std::string ScriptGrammar::inLoop() {
  std::string text = block();
  if (once(3)) text += "if " + expression() + " then exit repeat\n";
  return text;
}

std::string ScriptGrammar::tryBlock() {
  std::string text = "try\n" + block();
  switch (below(4)) {
    case 0:
      text += "on error number -1728\n" + block();
      break;
    case 1:
      text += "on error m9 number n9 from o9 partial result p9 to c9\n" + block() +
              "error m9 number n9 from o9 partial result p9 to c9\n";
      break;
    case 2:
      text += "on error\n" + block();
      break;
    default:
      break;
  }
  return text + "end try\n";
}

std::string ScriptGrammar::compound() {
  switch (below(10)) {
    case 0:
      return "if " + expression() + " then\n" + block() +
             (once(2) ? "else if " + expression() + "\n" + block() : "") +
             (once(2) ? "else\n" + block() : "") + "end if\n";
    case 1:
      return "repeat " + one(numbers) + " times\n" + inLoop() + "end repeat\n";
    case 2:
      return "repeat with " + variable() + " from " + operand() + " to " + operand() +
             (once(3) ? " by " + operand() : "") + "\n" + inLoop() + "end repeat\n";
    case 3:
      return "repeat with " + variable() + " in " + operand() + "\n" + inLoop() + "end repeat\n";
    case 4:
      return std::string("repeat ") + (once(2) ? "while " : "until ") + expression() + "\n" +
             inLoop() + "end repeat\n";
    case 5:
      return tryBlock();
    case 6: {
      std::string text = tells_ > 0 ? "tell " + object() + "\n"
                                    : std::string("tell application \"Microsoft Excel\"\n");
      ++tells_;
      text += block() + "end tell\n";
      --tells_;
      return text;
    }
    case 7:
      return "with timeout of " + one(numbers) + " seconds\n" + block() + "end timeout\n";
    case 8:
      return "considering " + one(considerations) + " but ignoring " + one(considerations) + "\n" +
             block() + "end considering\n";
    default: {
      ++tells_;
      std::string text = "tell application id \"com.microsoft.Excel\" to " + command() + "\n";
      --tells_;
      return text;
    }
  }
}

std::string ScriptGrammar::statement() {
  if (depth_ > deepest) return "set a9 to 1\n";
  ++depth_;
  std::string text;
  switch (below(12)) {
    case 0:
    case 1:
    case 2:
      text = "set " + target() + " to " + expression() + "\n";
      break;
    case 3:
      text = "copy " + expression() + " to " + target() + "\n";
      break;
    case 4:
      text = "return " + expression() + "\n";
      break;
    case 5:
      text = "error " + operand() + " number " + one(numbers) + "\n";
      break;
    case 6:
      text = tells_ > 0 ? command() + "\n" : expression() + "\n";
      break;
    case 7:
      text = "my " + one(handlers) + "(" + expression() + ")\n";
      break;
    default:
      text = compound();
      break;
  }
  --depth_;
  return text;
}

std::string ScriptGrammar::handler() {
  const std::string name(handlers[handlers_++ % std::size(handlers)]);
  static constexpr std::string_view parameters[] = {"(a9)", "(l9, {t9, r9})", "()",
                                                    "(i9 as integer)", "({name:b9})"};
  return (once(4) ? "to " : "on ") + name + one(parameters) + "\n" +
         (once(3) ? "global sum9\n" : "") + block() + block() + "end " + name + "\n";
}

std::string ScriptGrammar::damaged(std::string text) {
  for (std::size_t changes = 1 + below(3); changes > 0 && !text.empty(); --changes) {
    const std::size_t at = below(text.size());
    switch (below(4)) {
      case 0:
        text.erase(at, 1 + below(12));
        break;
      case 1:
        text.insert(at, one(damage));
        break;
      case 2:
        text.insert(at, text.substr(below(text.size()), below(40)));
        break;
      default: {
        // Deep nesting, or something huge.
        static constexpr std::string_view parts[] = {"(", "{", "not ", "item 1 of ", "-", "9", "x"};
        const std::string part = one(parts);
        std::string many;
        for (std::size_t i = below(3000); i > 0; --i) many += part;
        text.insert(at, many);
        break;
      }
    }
  }
  return text;
}

std::string ScriptGrammar::script() {
  std::string text;
  if (once(3)) text += "property sum9 : " + literal() + "\n";
  if (once(4)) text += "property l9 : {1, {2, \"c\"}, {x9:3}}\n";
  for (std::size_t count = below(4); count > 0; --count) text += handler();
  for (std::size_t count = 1 + below(5); count > 0; --count) text += statement();
  return once(5) ? damaged(std::move(text)) : text;
}

}  // namespace quorin::fuzz

// Every rule with something wrong that it finds, and the same done right, which it passes.
#include <gmock/gmock.h>
#include <string>
#include <vector>

#include "host/dictionary/ExcelTerminology.h"
#include "script/lint/Linter.h"
#include "tests/script/RecordingApplication.h"

namespace quorin::script {

void PrintTo(LintRule rule, std::ostream* out) {
  *out << static_cast<int>(rule);
}

void PrintTo(const LintFinding& finding, std::ostream* out) {
  *out << finding.line << ": " << finding.message;
}

namespace {

using testing::ElementsAre;
using testing::Field;
using testing::IsEmpty;

class Linter : public testing::Test {
 protected:
  std::vector<LintFinding> findings(const std::string& source) {
    return lint(source, applications_, host::excelTerminology());
  }
  // Of statements inside a handler's tell and with timeout; their lines begin at 1.
  std::vector<LintFinding> inside(const std::string& statements) {
    auto found = findings(
        "on f(p9, q9)\ntell application \"Microsoft Excel\"\nwith timeout of 3 seconds\n" +
        statements + "\nreturn 1\nend timeout\nend tell\nend f\non g(p9)\nreturn p9\nend g\n");
    for (LintFinding& each : found) each.line -= 3;
    return found;
  }
  std::vector<LintRule> rules(const std::string& statements) {
    std::vector<LintRule> result;
    for (const LintFinding& each : inside(statements)) result.push_back(each.rule);
    return result;
  }

  RecordingApplication excel_{"Microsoft Excel", host::excelTerminology()};
  RecordingApplications applications_{excel_};
};

TEST_F(Linter, FindsWhatDoesNotCompile) {
  EXPECT_THAT(findings("on f()\n  return (1\nend f\n"),
              ElementsAre(LintFinding{2, LintRule::doesNotCompile,
                                      "Expected \")\" but found end of line."}));
  // Among them, labels that a command lacks.
  EXPECT_THAT(rules("get address p9 relative true"), ElementsAre(LintRule::doesNotCompile));
  EXPECT_THAT(rules("get address p9 row absolute true"), IsEmpty());
}

TEST_F(Linter, FindsUnknownTerms) {
  EXPECT_THAT(inside("set a9 to colour of interior object of range \"A1\""),
              ElementsAre(LintFinding{1, LintRule::unknownTerm,
                                      "colour is no word of the application's dictionary"}));
  EXPECT_THAT(rules("set a9 to color of interior object of range \"A1\""), IsEmpty());
  EXPECT_THAT(inside("set a9 to 1\nset b9 to a9 + a8"),
              ElementsAre(LintFinding{2, LintRule::unknownTerm,
                                      "a8 is neither a word of the dictionary nor a variable that "
                                      "is ever set"}));
  EXPECT_THAT(rules("set {a9, {b9}} to p9\nrepeat with i9 in q9\nset c9 to {a9, b9, i9}\n"
                    "end repeat\ntry\nset d9 to c9\non error m9 number n9\nerror m9 number n9\n"
                    "end try"),
              IsEmpty());
}

TEST_F(Linter, FindsTermsOnAClassThatLacksThem) {
  EXPECT_THAT(inside("set r9 to range \"A1\" of worksheet 1 of workbook p9\n"
                     "set a9 to scroll row of r9"),
              ElementsAre(LintFinding{2, LintRule::notOfClass,
                                      "the class range has no property scroll row"}));
  EXPECT_THAT(rules("set scroll row of active window to 3"), IsEmpty());
  EXPECT_THAT(rules("set a9 to used range of workbook p9"), ElementsAre(LintRule::notOfClass));
  EXPECT_THAT(rules("set a9 to count of format conditions of worksheet 1"),
              ElementsAre(LintRule::notOfClass));
  // Some classes have the members of another.
  EXPECT_THAT(rules("set a9 to used range of worksheet 1 of workbook p9"), IsEmpty());
  EXPECT_THAT(rules("set a9 to value2 of column 1 of range \"A1:B2\""), IsEmpty());
  EXPECT_THAT(rules("set a9 to count of format conditions of used range of worksheet 1"),
              IsEmpty());
  // A variable that a property of the target takes the place of.
  EXPECT_THAT(rules("set hidden to 1"), ElementsAre(LintRule::notOfClass));
  EXPECT_THAT(rules("tell range p9\nset hidden to true\nend tell"), IsEmpty());
  EXPECT_THAT(rules("make new format condition at p9 with properties {formula1:\"=1\", caption:1}"),
              ElementsAre(LintRule::notOfClass));
  EXPECT_THAT(rules("make new format condition at p9 with properties {formula1:\"=1\"}"),
              IsEmpty());
  EXPECT_THAT(rules("set a9 to name of every worksheet whose scroll row is 1"),
              ElementsAre(LintRule::notOfClass));
  EXPECT_THAT(rules("set a9 to name of every worksheet whose visible is true"), IsEmpty());
}

TEST_F(Linter, FindsCommandsWithoutWhatTheyNeed) {
  EXPECT_THAT(
      inside("union range1 p9"),
      ElementsAre(LintFinding{1, LintRule::missingParameter, "union lacks its parameter range2"}));
  EXPECT_THAT(rules("union range1 p9 range2 q9"), IsEmpty());
  EXPECT_THAT(rules("special cells p9"), ElementsAre(LintRule::missingParameter));
  EXPECT_THAT(rules("special cells p9 type cell type visible"), IsEmpty());
}

TEST_F(Linter, FindsNamesThatAreTerms) {
  EXPECT_THAT(findings("on f(style, rng)\n  return {style, rng}\nend f\n"),
              ElementsAre(LintFinding{1, LintRule::shadowedTerm,
                                      "the name style is a word of the application's dictionary"}));
  EXPECT_THAT(findings("on f(fmt, |style|)\n  return {fmt, |style|}\nend f\n"), IsEmpty());
  EXPECT_THAT(findings("on f(a9)\nset {b9, Width} to a9\nrepeat with index from 1 to 2\n"
                       "set c9 to index\nend repeat\ntry\nset c9 to 1\non error caption number A1\n"
                       "return b9\nend try\nreturn c9\nend f\n"),
              ElementsAre(Field(&LintFinding::line, 2), Field(&LintFinding::line, 3),
                          Field(&LintFinding::line, 8)));
}

TEST_F(Linter, FindsHandlersCalledWithoutMy) {
  EXPECT_THAT(inside("set a9 to g(1)"),
              ElementsAre(LintFinding{1, LintRule::callWithoutMy,
                                      "the call of g goes to the application: write my g"}));
  EXPECT_THAT(rules("set a9 to my g(1)\nset b9 to g(2) of me\ntell me to g(3)"), IsEmpty());
  EXPECT_THAT(findings("on f()\n  return g(1)\nend f\non g(p9)\n  return p9\nend g\n"), IsEmpty());
}

TEST_F(Linter, FindsValuesWhereAReferenceIsMeant) {
  EXPECT_THAT(inside("set c9 to value2 of range \"A1\"\nset color of interior object of c9 to p9"),
              ElementsAre(LintFinding{2, LintRule::valueForReference,
                                      "interior object is asked of a value, not of an object"}));
  EXPECT_THAT(rules("set c9 to range \"A1\"\nset color of interior object of c9 to p9"), IsEmpty());
  EXPECT_THAT(inside("set a9 to get address of (string value of range \"A1\")"),
              ElementsAre(LintFinding{1, LintRule::valueForReference,
                                      "get address needs an object and is given a value"}));
  EXPECT_THAT(rules("set a9 to get address of range \"A1\""), IsEmpty());
  // What follows the user is not kept.
  EXPECT_THAT(inside("set b9 to active workbook"),
              ElementsAre(LintFinding{1, LintRule::valueForReference,
                                      "active workbook follows the user even when stored: keep its "
                                      "name or address"}));
  EXPECT_THAT(rules("return {active sheet, 1}"), ElementsAre(LintRule::valueForReference));
  EXPECT_THAT(rules("set b9 to name of active workbook"), IsEmpty());
  // Nor is a loop's item asked for anew at each mention.
  EXPECT_THAT(
      rules("repeat with w9 in worksheets of workbook p9\nset a9 to name of w9\nend repeat"),
      ElementsAre(LintRule::valueForReference));
  EXPECT_THAT(
      rules("repeat with w9 in (get worksheets of workbook p9)\nset a9 to name of w9\nend repeat"),
      IsEmpty());
}

TEST_F(Linter, FindsNumbersTurnedIntoText) {
  EXPECT_THAT(inside("set a9 to \"x\" & value2 of range \"A1\""),
              ElementsAre(LintFinding{1, LintRule::numberAsText,
                                      "a number as text follows the user's separators and "
                                      "exponents"}));
  EXPECT_THAT(rules("set a9 to (row height of range \"A1\") as text"),
              ElementsAre(LintRule::numberAsText));
  EXPECT_THAT(rules("set a9 to 7 / 2\nset b9 to a9 as text"), ElementsAre(LintRule::numberAsText));
  EXPECT_THAT(rules("set a9 to \"A\" & (count of p9)\nset b9 to {value2 of range \"A1\"} & 1\n"
                    "repeat with i9 from 1 to 3\nset a9 to a9 & i9\nend repeat\n"
                    "set b9 to ((7 / 2) as integer) as text"),
              IsEmpty());
}

TEST_F(Linter, FindsEventsOutsideOfWithTimeout) {
  const auto handler = [](const std::string& statement) {
    return "on f()\n tell application \"Microsoft Excel\"\n  " + statement +
           "\n  return 1\n end tell\nend f\n";
  };
  EXPECT_THAT(findings(handler("set a9 to name of active workbook")),
              ElementsAre(LintFinding{3, LintRule::noTimeout,
                                      "an event is sent outside of \"with timeout\""}));
  EXPECT_THAT(findings(handler("activate")), ElementsAre(Field(&LintFinding::line, 3)));
  EXPECT_THAT(findings(handler("with timeout of 2 seconds\nactivate\nend timeout")), IsEmpty());
  EXPECT_THAT(findings(handler("set a9 to count of {1, 2}")), IsEmpty());
}

TEST_F(Linter, FindsHandlersThatMayEndWithoutReturn) {
  EXPECT_THAT(
      findings("on f(p9)\n  set a9 to p9\nend f\n"),
      ElementsAre(LintFinding{2, LintRule::noReturn, "the handler f may end without \"return\""}));
  EXPECT_THAT(findings("on f(p9)\n  if p9 then\n    return 1\n  end if\nend f\n"),
              ElementsAre(Field(&LintFinding::rule, LintRule::noReturn)));
  EXPECT_THAT(findings("on f(p9)\n  try\n    return 1\n  end try\nend f\n"),
              ElementsAre(Field(&LintFinding::rule, LintRule::noReturn)));
  EXPECT_THAT(
      findings("on f(p9)\n  if p9 then\n    return 1\n  else\n    try\n      return 2\n"
               "    on error m9 number n9\n      error m9 number n9\n    end try\n  end if\n"
               "end f\n"),
      IsEmpty());
}

}  // namespace
}  // namespace quorin::script

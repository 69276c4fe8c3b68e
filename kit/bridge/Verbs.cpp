#include "kit/bridge/Verbs.h"

#include <algorithm>
#include <string>
#include <vector>

#include "kit/bridge/Arguments.h"
#include "kit/value/WholeNumber.h"

namespace quorin {

namespace {

using Args = Bridge::Args;

bool anything(const Args&) {
  return true;
}

bool startsWithText(const Args& args) {
  return isText(args, 0);
}

bool startsWithTextsNotNone(const Args& args) {
  return isTextList(args, 0) && !args[0].array()->empty();
}

bool isTextsRequest(const Args& args) {
  return startsWithTextsNotNone(args) && args[0].array()->size() <= Bridge::mostAddressesForTexts;
}

// True if the user asked for this very part: a constant word behind the other arguments.
bool wasAsked(const Args& args) {
  return isText(args, 1) && *args[1].string() == Bridge::askedWord;
}

bool startsWithTexts(const Args& args) {
  return isTextList(args, 0);
}

bool isOptionalText(const Args& args) {
  return args.empty() || args[0].isNull() || args[0].string();
}

// Address, reference style, and whether formulas alone are wanted.
bool isFormulaRequest(const Args& args) {
  if (args.size() != 2 && args.size() != 3) return false;
  if (!isText(args, 0) || !isText(args, 1)) return false;
  const std::string& style = *args[1].string();
  if (style != "a1" && style != "r1c1") return false;
  return args.size() == 2 || args[2].boolean();
}

// Addresses and a colour. What is no whole number among the colour's elements does not count.
bool isPaintRequest(const Args& args) {
  return args.size() == 2 && startsWithTextsNotNone(args) && args[1].array() &&
         wholeNumbers(*args[1].array()).size() == 3;
}

constexpr Verb table[] = {
    {.name = "probe",
     .seconds = 3,
     .answersWithoutExcel = true,
     .accepts = anything,
     .run = [](Bridge& bridge, const Args&) { return bridge.probe(); }},
    {.name = "readCell",
     .seconds = 10,
     .accepts = anything,
     .run = [](Bridge& bridge, const Args&) { return bridge.readCell(); }},
    {.name = "pollCell",
     .seconds = 3,
     .accepts = anything,
     .run = [](Bridge& bridge, const Args&) { return bridge.pollCell(); }},
    {.name = "evaluate",
     .seconds = 9,
     .accepts = startsWithText,
     .run = [](Bridge& bridge,
               const Args& args) { return bridge.evaluate(*args[0].string(), wasAsked(args)); }},
    {.name = "deepEval",
     .seconds = 65,
     .movesSelection = true,
     .accepts = startsWithTexts,
     .run = [](Bridge& bridge,
               const Args& args) { return bridge.deepEval(texts(args[0]), wasAsked(args)); }},
    {.name = "readRange",
     .seconds = 10,
     .accepts = startsWithText,
     .run = [](Bridge& bridge, const Args& args) { return bridge.readRange(*args[0].string()); }},
    {.name = "readTexts",
     .seconds = 10,
     .accepts = isTextsRequest,
     .run = [](Bridge& bridge, const Args& args) { return bridge.readTexts(texts(args[0])); }},
    {.name = "readFormulas",
     .seconds = 10,
     .accepts = isFormulaRequest,
     .run =
         [](Bridge& bridge, const Args& args) {
           const bool formulasOnly = args.size() == 3 && *args[2].boolean();
           return bridge.readFormulas(*args[0].string(), *args[1].string(), formulasOnly);
         }},
    {.name = "workbookMap",
     .seconds = 10,
     .accepts = anything,
     .run = [](Bridge& bridge, const Args&) { return bridge.workbookMap(); }},
    {.name = "dependents",
     .seconds = 10,
     .accepts = startsWithText,
     .run = [](Bridge& bridge, const Args& args) { return bridge.dependents(*args[0].string()); }},
    {.name = "select",
     .seconds = 10,
     .movesSelection = true,
     .accepts = startsWithTextsNotNone,
     .run = [](Bridge& bridge, const Args& args) { return bridge.select(texts(args[0])); }},
    {.name = "activate",
     .seconds = 10,
     .movesSelection = true,
     .accepts = isOptionalText,
     .run =
         [](Bridge& bridge, const Args& args) {
           const bool hasAddress = !args.empty() && args[0].string();
           return bridge.activate(hasAddress ? std::optional(*args[0].string()) : std::nullopt);
         }},
    {.name = "markCells",
     .seconds = 25,
     .accepts = isPaintRequest,
     .run =
         [](Bridge& bridge, const Args& args) {
           return bridge.markCells(texts(args[0]), wholeNumbers(*args[1].array()));
         }},
    {.name = "clearMarks",
     .seconds = 25,
     .accepts = anything,
     .run = [](Bridge& bridge, const Args&) { return bridge.clearMarks(); }},
    {.name = "reveal",
     .seconds = 3,
     .movesSelection = true,
     .accepts = startsWithTextsNotNone,
     .run = [](Bridge& bridge, const Args& args) { return bridge.reveal(texts(args[0])); }},

    {"log", AnsweredBy::panel},
    {"getHighlightColor", AnsweredBy::panel},
    {"setHighlightColor", AnsweredBy::panel},
    {"isWelcomed", AnsweredBy::panel},
    {"setWelcomed", AnsweredBy::panel},
    {"setPanelWidth", AnsweredBy::panel},
    {"hidePanel", AnsweredBy::panel},
    {"focusExcel", AnsweredBy::panel},
    {"setConventions", AnsweredBy::panel},

    {"getSettings", AnsweredBy::application},
    {"setSetting", AnsweredBy::application},
    {"pauseHotKeys", AnsweredBy::application},
    {"checkForUpdates", AnsweredBy::application},
    {"quittingDrawn", AnsweredBy::application},

    {"loadReview", AnsweredBy::files},
    {"saveReview", AnsweredBy::files},
    {"saveReport", AnsweredBy::files},
};

}  // namespace

std::span<const Verb> verbs() {
  return table;
}

const Verb* findVerb(std::string_view name) {
  const auto* const found = std::find_if(std::begin(table), std::end(table),
                                         [name](const Verb& verb) { return verb.name == name; });
  return found == std::end(table) ? nullptr : found;
}

}  // namespace quorin

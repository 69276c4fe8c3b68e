// What the answers of the range handlers become. Answers and replies are written as JSON text, the
// sign × as itself.
#include <gtest/gtest.h>
#include <vector>

#include "kit/shapes/RangeShapes.h"
#include "kit/value/JSONText.h"
#include "kit/value/Marshal.h"
#include "tests/kit/shapes/ShapeMessages.h"

namespace quorin::BridgeShapes {
namespace {

using Decoder = JSONValue (*)(const std::string& addr, JSONValue answer);

JSONValue parsed(const std::string& text) {
  const ParsedJSON json = parseJSON(text);
  if (!json) throw std::runtime_error(text + ": " + json.error);
  return *json.value;
}

// The reply's JSON text, slashes as they are, or the refusal.
std::string decoded(Decoder decode, const std::string& answer) {
  std::string reply;
  const std::string message =
      shapeMessageOf([&] { reply = Marshal::encode(decode("B2:C3", parsed(answer))); });
  if (reply.empty()) return message;
  for (std::size_t at = 0; (at = reply.find("\\/", at)) != std::string::npos;) reply.erase(at, 1);
  return reply;
}

struct Example {
  const char* answer;
  const char* reply;
};

void check(Decoder decode, const std::vector<Example>& examples) {
  for (const Example& example : examples)
    EXPECT_EQ(decoded(decode, example.answer), example.reply) << example.answer;
}

const char* const overflowText =
    "range dims overflow for 'B2:C3': 4611686018427387904\u00d74611686018427387904";

TEST(DecodeReadRange, RefusesWhatIsNoAnswer) {
  check(decodeReadRange,
        {
            {R"("x")", "readRange payload is not a list for 'B2:C3'"},
            {"null", "readRange payload is not a list for 'B2:C3'"},
            {R"({"a":1})", "readRange payload is not a list for 'B2:C3'"},
            {R"([[{"__unmarshalled":"obj "}],1,1,"",1])",
             "readRange payload could not be marshalled for 'B2:C3'"},
            {R"(["__TOOBIG",{"__unmarshalled":"obj "},1,1])",
             "readRange payload could not be marshalled for 'B2:C3'"},
            {"[]", "readRange payload has 0 items for 'B2:C3'"},
            {"[1,1,1]", "readRange payload has 3 items for 'B2:C3'"},
            {R"(["x",1,1,1])", "readRange payload has 4 items for 'B2:C3'"},
            {R"(["__TOOBIG",1,1,"",1,1])", "readRange payload has 6 items for 'B2:C3'"},
        });
}

TEST(DecodeReadRange, ChecksTheDimensions) {
  check(decodeReadRange,
        {
            {R"([1,"1",1,"",1])", "range dims unreadable for 'B2:C3'"},
            {R"([1,1,null,"",1])", "range dims unreadable for 'B2:C3'"},
            {R"([1,1.5,1,"",1])", "range dims unreadable for 'B2:C3'"},
            {R"([1,1,9223372036854775808,"",1])", "range dims unreadable for 'B2:C3'"},
            {R"([1,1,1,"",true])", "multi-area oracle unreadable for 'B2:C3'"},
            {R"([1,1,1,"",0.5])", "multi-area oracle unreadable for 'B2:C3'"},
            {R"([1,4611686018427387904,4611686018427387904,"",1])", overflowText},
            {R"([1,2,3,"",7])",
             "multi-area 'B2:C3': 7 cells in a 2\u00d73 frame - Excel returns only the first area"},
        });
}

TEST(DecodeReadRange, TurnsMarkersIntoRefusals) {
  check(
      decodeReadRange,
      {
          {R"(["__TOOBIG",20001,1,20001])", R"({"cols":1,"rows":20001,"tooBig":true})"},
          {R"(["__TOOBIG",1048576,16384,17179869184])",
           R"({"cols":16384,"rows":1048576,"tooBig":true})"},
          {R"(["__TOOBIG",20001,1,40002])",
           "multi-area 'B2:C3': 40002 cells in a 20001\u00d71 frame - Excel returns only the first "
           "area"},
          {R"(["__ERRCOL",2,2,4])",
           "range has an error in its first column - Excel cannot read it as a grid"},
          {R"(["__MULTI",1,2,4])",
           "multi-area 'B2:C3': 4 cells in a 1\u00d72 frame - Excel returns only the first area"},
          {R"(["__MULTI",2,2,4])",
           "multi-area 'B2:C3': handler oracle fired but dims agree (2\u00d72)"},
          {R"(["__MULTI","x",2,4])", "range dims unreadable for 'B2:C3'"},
          {R"(["__TOOBIG",2,2,null])",
           "multi-area oracle unreadable for 'B2:C3' (__TOOBIG payload)"},
          {R"(["__ERRCOL",2,2,"4"])",
           "multi-area oracle unreadable for 'B2:C3' (__ERRCOL payload)"},
          {R"(["__MULTI",2,2,0.5])", "multi-area oracle unreadable for 'B2:C3' (__MULTI payload)"},
          {R"(["__MULTI",4611686018427387904,4611686018427387904,4])", overflowText},
      });
}

TEST(DecodeReadRange, FitsTheValuesIntoAGrid) {
  check(decodeReadRange,
        {
            {R"([5,1,1,"5",1])", R"({"cols":1,"rows":1,"values":[[5]]})"},
            {R"([[5],1,1,"5",1])", R"({"cols":1,"rows":1,"values":[[5]]})"},
            {R"([[[5]],1,1,[["5"]],1])", R"({"cols":1,"rows":1,"values":[[5]]})"},
            {R"([[1,"a",true],1,3,"",3])", R"({"cols":3,"rows":1,"values":[[1,"a",true]]})"},
            {R"([[1,2,3],3,1,"",3])", R"({"cols":1,"rows":3,"values":[[1],[2],[3]]})"},
            {R"([[[1],[2]],2,1,"",2])", R"({"cols":1,"rows":2,"values":[[1],[2]]})"},
            {R"([[[1,2],[3,4]],2,2,"",4])", R"({"cols":2,"rows":2,"values":[[1,2],[3,4]]})"},
        });
}

TEST(DecodeReadRange, RefusesValuesThatDoNotFit) {
  const char* const refusal = "range values unreadable for 'B2:C3'";
  check(decodeReadRange, {
                             {R"([5,2,1,"",2])", refusal},
                             {R"([{"a":1},1,1,"",1])", refusal},
                             {R"([[[1,2]],2,2,"",4])", refusal},
                             {R"([[[1,2],[3]],2,2,"",4])", refusal},
                             {R"([[[1,2],3],2,2,"",4])", refusal},
                             {R"([[1,2],2,2,"",4])", refusal},
                             {R"([[1,2],3,1,"",3])", refusal},
                             {R"([[1,2],1,3,"",3])", refusal},
                             {R"([[],0,1,"",0])", refusal},
                             {R"([5,-1,-1,"",1])", refusal},
                             {R"([[1,2],0,0,"",0])", refusal},
                         });
}

TEST(DecodeReadRange, PutsDroppedErrorRowsBack) {
  check(decodeReadRange,
        {
            {R"([[[1],[3]],3,1,[["1"],["#DIV/0!"],["3"]],3])",
             R"({"cols":1,"rows":3,"values":[[1],["#DIV/0!"],[3]]})"},
            {R"([[1,3],3,1,["1","#N/A","3"],3])",
             R"({"cols":1,"rows":3,"values":[[1],["#N/A"],[3]]})"},
            {R"([7,3,1,[["#REF!"],["7"],["#NAME?"]],3])",
             R"({"cols":1,"rows":3,"values":[["#REF!"],[7],["#NAME?"]]})"},
            {R"([[],2,1,[["#NUM!"],["#NULL!"]],2])",
             R"({"cols":1,"rows":2,"values":[["#NUM!"],["#NULL!"]]})"},
            {R"([{},2,1,[["#NUM!"],["#NULL!"]],2])",
             R"({"cols":1,"rows":2,"values":[["#NUM!"],["#NULL!"]]})"},
            {R"([[],2,2,[["#SPILL!","#CALC!"],["#BUSY!","#PYTHON!"]],4])",
             R"({"cols":2,"rows":2,"values":[["#SPILL!","#CALC!"],["#BUSY!","#PYTHON!"]]})"},
            {R"([[],1,1,"#N/A",1])", R"({"cols":1,"rows":1,"values":[["#N/A"]]})"},
        });
}

TEST(DecodeReadRange, RefusesToGuessWhereErrorRowsWere) {
  const char* const refusal = "range values unreadable for 'B2:C3'";
  check(decodeReadRange, {
                             // Without the displayed texts.
                             {R"([[[1],[3]],3,1,"",3])", refusal},
                             {R"([[],2,1,"",2])", refusal},
                             {R"([[],1,1,"",1])", refusal},
                             // The texts show another number of errors than rows are missing.
                             {R"([[1,3],3,1,["1","2","3"],3])", refusal},
                             {R"([[1,3],3,1,["#N/A","#N/A","3"],3])", refusal},
                             {R"([[],2,1,["#N/A","2"],2])", refusal},
                             {R"([[1,2,3,4],3,1,["#N/A","2","3"],3])", refusal},
                             // A text that looks like an error among the values.
                             {R"([["#N/A",3],3,1,["#N/A","#N/A","3"],3])", refusal},
                             {R"([["#REF!","#REF!"],3,1,["#N/A","2","3"],3])", refusal},
                             // Rows with more or less than one cell.
                             {R"([[[1,2],[3]],3,1,["1","#N/A","3"],3])", refusal},
                             {R"([[[],[3]],3,1,["1","#N/A","3"],3])", refusal},
                             // Several columns.
                             {R"([[[1,2]],2,2,[["1","2"],["#N/A","4"]],4])", refusal},
                             {R"([[[1]],2,2,[["#N/A","2"],["3","4"]],4])", refusal},
                         });
}

TEST(DecodeReadRange, LaysErrorTextsOverCellsWithoutAValue) {
  check(
      decodeReadRange,
      {
          {R"([null,1,1,"#N/A",1])", R"({"cols":1,"rows":1,"values":[["#N/A"]]})"},
          {R"(["",1,1,"#BLOCKED!",1])", R"({"cols":1,"rows":1,"values":[["#BLOCKED!"]]})"},
          {R"([[[1,null],["",4]],2,2,[["#N/A","#VALUE!"],["#GETTING_DATA","#REF!"]],4])",
           R"({"cols":2,"rows":2,"values":[[1,"#VALUE!"],["#GETTING_DATA",4]]})"},
          // Other texts are none of its business, and neither are errors in other spellings.
          {R"([[[null,""]],1,2,[["x","#n/a"]],2])", R"({"cols":2,"rows":1,"values":[[null,""]]})"},
          {R"([[[null,""]],1,2,[["#N/A ","###"]],2])",
           R"({"cols":2,"rows":1,"values":[[null,""]]})"},
          // Beyond 5000 cells there are no texts.
          {R"([[[null,2]],1,2,"",2])", R"({"cols":2,"rows":1,"values":[[null,2]]})"},
          // Texts that do not fit are as good as none.
          {R"([[[null,2]],1,2,[["#N/A"]],2])", R"({"cols":2,"rows":1,"values":[[null,2]]})"},
      });
}

TEST(DecodeReadRange, KnowsEveryErrorText) {
  for (const char* const text : {"#NULL!", "#DIV/0!", "#VALUE!", "#REF!", "#NAME?", "#NUM!", "#N/A",
                                 "#GETTING_DATA", "#SPILL!", "#CALC!", "#FIELD!", "#CONNECT!",
                                 "#BLOCKED!", "#UNKNOWN!", "#EXTERNAL!", "#PYTHON!", "#BUSY!"})
    EXPECT_EQ(decodeReadRange("A1", JSONValue::Array{nullptr, 1, 1, text, 1})
                  .member("values")
                  ->array()
                  ->front()
                  .array()
                  ->front(),
              JSONValue(text));
}

TEST(DecodeReadFormulas, RefusesWhatIsNoAnswer) {
  check(decodeReadFormulas,
        {
            {"5", "readFormulas payload is not a list for 'B2:C3'"},
            {R"([{"__unmarshalled":"obj "},1,1])",
             "readFormulas payload could not be marshalled for 'B2:C3'"},
            {"[1,1]", "readFormulas payload has 2 items for 'B2:C3'"},
            {R"(["x",1,1,1])", "readFormulas payload has 4 items for 'B2:C3'"},
            {R"(["","",1,1,""])", "readFormulas payload has 5 items for 'B2:C3'"},
            {R"(["__TOOBIG",20001,1,20001])", "readFormulas over 20000 cells - chunk the read"},
            {R"(["__TOOBIG",20001,1,20002])",
             "multi-area 'B2:C3': 20002 cells in a 20001\u00d71 frame - Excel returns only the "
             "first area"},
            {R"(["__ERRCOL",2,2,4])",
             "range has an error in its first column - Excel cannot read it as a grid"},
            {R"(["__MULTI",1,2,4])",
             "multi-area 'B2:C3': 4 cells in a 1\u00d72 frame - Excel returns only the first area"},
        });
}

TEST(DecodeReadFormulas, ReadsFormulasAlone) {
  check(decodeReadFormulas,
        {
            {R"([[["=A1","10"],["","=B1&\"x\""]],2,2])",
             R"({"cols":2,"formulas":[["=A1",""],["","=B1&\"x\""]],"rows":2,"values":[]})"},
            {R"(["=A1",1,1])", R"({"cols":1,"formulas":[["=A1"]],"rows":1,"values":[]})"},
            {R"([10,1,1])", R"({"cols":1,"formulas":[[""]],"rows":1,"values":[]})"},
            {R"([["a","=1"],2,1])", R"({"cols":1,"formulas":[[""],["=1"]],"rows":2,"values":[]})"},
            {R"(["=A1","1",1])", "readFormulas dims unreadable for 'B2:C3'"},
            {R"(["=A1",1,null])", "readFormulas dims unreadable for 'B2:C3'"},
            {R"(["=A1",1,1.5])", "range dims unreadable for 'B2:C3'"},
            {R"(["=A1",4611686018427387904,4])", "multi-area oracle unreadable for 'B2:C3'"},
            {R"(["=A1",1,2])", "formula grid unreadable for 'B2:C3'"},
            {R"([[["=A1"]],2,1])", "formula grid unreadable for 'B2:C3'"},
            {R"(["=A1",0,0])", "formula grid unreadable for 'B2:C3'"},
            {R"([[],0,1])", "formula grid unreadable for 'B2:C3'"},
            {R"([[],1,0])", "formula grid unreadable for 'B2:C3'"},
        });
}

TEST(DecodeReadFormulas, ReadsFormulasAndValues) {
  check(decodeReadFormulas,
        {
            {R"([[["=A1","10"]],[[7,10]],1,2,[["7","10"]],2])",
             R"({"cols":2,"formulas":[["=A1",""]],"rows":1,"values":[[7,10]]})"},
            {R"([[["=1/0"],["=2"]],[[2]],2,1,[["#DIV/0!"],["2"]],2])",
             R"({"cols":1,"formulas":[["=1/0"],["=2"]],"rows":2,"values":[["#DIV/0!"],[2]]})"},
            {R"([[["=A1","10"]],[[7,10]],1,2,"",3])",
             "multi-area 'B2:C3': 3 cells in a 1\u00d72 frame - Excel returns only the first area"},
            {R"(["=A1",5,true,1,"",1])", "range dims unreadable for 'B2:C3'"},
            {R"(["=A1",5,1,1,"",null])", "multi-area oracle unreadable for 'B2:C3'"},
            {R"(["=A1",[[7,10]],1,2,"",2])", "formula grid unreadable for 'B2:C3'"},
            {R"([[["=A1","10"]],[[7]],1,2,"",2])", "range values unreadable for 'B2:C3'"},
        });
}

TEST(DecodeReadFormulas, TakesTheValuesFromTheFormulasWhenTheFirstColumnHasAnError) {
  check(
      decodeReadFormulas,
      {
          {R"([[["=1/0","12.5"],["TRUE","x"]],"__ERRCOL",2,2,"",4])",
           R"({"cols":2,"formulas":[["=1/0",""],["",""]],"rows":2,"values":[["",12.5],[true,"x"]]})"},
          {R"([[["FALSE","true",""]],"__ERRCOL",1,3,"",3])",
           R"({"cols":3,"formulas":[["","",""]],"rows":1,"values":[[false,"true",""]]})"},
          {R"([[["-3","1E+2",".5","5.","+2"]],"__ERRCOL",1,5,"",5])",
           R"({"cols":5,"formulas":[["","","","",""]],"rows":1,"values":[[-3,100,0.5,5,2]]})"},
          {R"([[[" 1","1 ","1,5","0x10","inf","nan","+-1","1e999","-"]],"__ERRCOL",1,9,"",9])",
           R"({"cols":9,"formulas":[["","","","","","","","",""]],"rows":1,)"
           R"("values":[[" 1","1 ","1,5","0x10","inf","nan","+-1","1e999","-"]]})"},
          {R"([[[4,true,null]],"__ERRCOL",1,3,"",3])",
           R"({"cols":3,"formulas":[["","",""]],"rows":1,"values":[[4,true,null]]})"},
          {R"([[["=1"]],"__ERRCOL",1,2,"",2])", "formula grid unreadable for 'B2:C3'"},
          {R"([[["=1","2"]],"__ERRCOL",1,2,"",4])",
           "multi-area 'B2:C3': 4 cells in a 1\u00d72 frame - Excel returns only the first area"},
      });
}

TEST(DecodeReadTexts, GivesAGridForEachAddressOrNull) {
  const auto told = [](std::size_t addresses, const char* answer) {
    std::string reply;
    const std::string message = shapeMessageOf(
        [&] { reply = Marshal::encode(decodeReadTexts(addresses, parsed(answer))); });
    return reply.empty() ? message : reply;
  };
  EXPECT_EQ(told(3, R"([["2041",1,1],"",[[["12%","£ 3"]],1,2]])"),
            R"({"texts":[[["2041"]],null,[["12%","£ 3"]]]})");
  EXPECT_EQ(told(1, R"([[["a","b"],3,1]])"), R"({"texts":[null]})");  // of another size
  EXPECT_EQ(told(1, R"([["a",0.5,1]])"), "readTexts dims unreadable");
  EXPECT_EQ(told(2, R"([["a",1,1]])"), "readTexts payload has an unexpected shape");
  EXPECT_EQ(told(1, R"("a")"), "readTexts payload has an unexpected shape");
}

TEST(NormalizeFormulaGrid, KeepsFormulasAlone) {
  EXPECT_EQ(Marshal::encode(normalizeFormulaGrid(
                parsed(R"(["=A1",[" =A1","10",5,true,null,{"a":"=A1"},["="]],""])"))),
            R"(["=A1",["","","","","","",["="]],""])");
  EXPECT_EQ(normalizeFormulaGrid("=A1"), JSONValue("=A1"));
  EXPECT_EQ(normalizeFormulaGrid(10), JSONValue(""));
}

}  // namespace
}  // namespace quorin::BridgeShapes

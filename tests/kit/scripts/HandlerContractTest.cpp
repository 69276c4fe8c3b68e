// Every handler, asked the same of an Excel that behaves and of one that has each of the quirks
// that the real one is known for.
#include <gtest/gtest.h>
#include <map>
#include <set>

#include "host/model/ExcelObjectModel.h"
#include "tests/fakes/MemorySpreadsheet.h"
#include "tests/fakes/QuirkyExcel.h"
#include "tests/kit/scripts/EngineConversation.h"

namespace quorin {
namespace {

struct Quirk {
  const char* name;
  void (*switchOn)(fakes::ExcelQuirks&);
  // What is answered otherwise than by an Excel without the quirk.
  std::map<std::string, std::string> differences = {};
};

void PrintTo(const Quirk& quirk, std::ostream* out) {
  *out << quirk.name;
}

class HandlerContract : public testing::TestWithParam<Quirk> {
 protected:
  // Each group has a spreadsheet of its own; all differences must have been met in the end.
  void converse(const std::vector<HandlerRequest>& requests) {
    auto owned = std::make_unique<fakes::MemorySpreadsheet>();
    fakes::MemorySpreadsheet& memory = *owned;
    memory.open(fakes::knownWorkbook());
    fakes::ExcelQuirks quirks;
    GetParam().switchOn(quirks);
    const auto conversation =
        engineConversation(std::make_unique<fakes::QuirkyExcel>(
                               std::make_unique<host::ExcelObjectModel>(std::move(owned)), quirks),
                           memory, "Known.xlsx");
    for (const HandlerRequest& request : requests) {
      const auto difference = GetParam().differences.find(described(request));
      const bool differs = difference != GetParam().differences.end();
      EXPECT_EQ(conversation->answer(request),
                differs ? difference->second : conversation->expected(request))
          << described(request);
      if (differs) met_.insert(described(request));
    }
    EXPECT_EQ(memory.workbooks(), std::vector<std::string>{"Known.xlsx"});
  }

  std::set<std::string> met_;
};

TEST_P(HandlerContract, HoldsForEveryHandler) {
  for (const auto& group : {cellRequests(), rangeRequests(), mapRequests(), deepRequests(),
                            markRequests(), revealRequests()})
    converse(group);
  EXPECT_EQ(met_.size(), GetParam().differences.size()) << "a difference that no request met";
}

using Q = fakes::ExcelQuirks;
using None = fakes::NothingFound;

INSTANTIATE_TEST_SUITE_P(
    Quirks, HandlerContract,
    testing::Values(
        Quirk{"none", [](Q&) {}}, Quirk{"dropsErrorRows", [](Q& q) { q.dropsErrorRows = true; }},
        Quirk{"diesOfFirstColumnErrors",
              [](Q& q) { q.dropsErrorRows = q.diesOfFirstColumnErrors = true; }},
        Quirk{"writesFormulasAsText",
              [](Q& q) { q.writesFormulasAsText = true; },
              {{R"j(qx_readformulas ["B2:C4","a1",true])j",
                R"j([[["1.5","=B2*2"],["2","=B3*2"],["=SUM(B2:B3)","=1\/0"]],3,2])j"},
               {R"j(qx_readformulas ["B2:C2","r1c1",true])j", R"j([[["1.5","=RC[-1]*2"]],1,2])j"},
               {R"j(qx_readformulas ["B3:B4","a1",false])j",
                R"j([[["2"],["=SUM(B2:B3)"]],[[2],[3.5]],2,1,[["2"],["3.5"]],2])j"}}},
        Quirk{"flattensSingleRows",
              [](Q& q) { q.flattensSingleRows = true; },
              {{R"j(qx_readrange ["A1:C1"])j",
                R"j([["Item","Price","Double"],1,3,["Item","Price","Double"],3])j"},
               {R"j(qx_readformulas ["B2:C2","r1c1",true])j", R"j([[1.5,"=RC[-1]*2"],1,2])j"}}},
        Quirk{"losesBlanks",
              [](Q& q) { q.losesBlanks = true; },
              {{R"j(Data!H20 qx_readcell [])j",
                R"j(["Known.xlsx","Data","$H$20",20,8,"","",null,"$H$20","$H$20"])j"}}},
        Quirk{"losesLongText", [](Q& q) { q.losesLongText = true; }},
        Quirk{"hidesEvaluationErrors", [](Q& q) { q.hidesEvaluationErrors = true; }},
        Quirk{"ignoresLongFormulas", [](Q& q) { q.ignoresLongFormulas = true; }},
        Quirk{"cutsLongFormulas", [](Q& q) { q.cutsLongFormulas = true; }},
        Quirk{"cutsLongAddresses", [](Q& q) { q.cutsLongAddresses = true; }},
        Quirk{"refusesLongAddresses", [](Q& q) { q.refusesLongAddresses = true; }},
        Quirk{"separatesWithSemicolons",
              [](Q& q) { q.separatesWithSemicolons = true; },
              {{R"j(qx_readrange ["A1:A2,C3:C4"])j", R"j(error -1728)j"},
               {R"j(qx_readformulas ["A1:A2,C3:C4","a1",true])j", R"j(error -1728)j"}}},
        Quirk{"baresSingles", [](Q& q) { q.baresSingles = true; }},
        Quirk{"missesUnknownElements", [](Q& q) { q.missesUnknownElements = true; }},
        Quirk{"refusesBulkReferences", [](Q& q) { q.refusesBulkReferences = true; }},
        Quirk{
            "hidesRegions",
            [](Q& q) { q.hidesRegions = true; },
            {{R"j(qx_readcell [])j",
              R"j(["Known.xlsx","Data","$B$4",4,2,"=SUM(B2:B3)","=SUM(B2:B3)",3.5,"$B$4:$C$4",""])j"},
             {R"j(Data!A7 qx_readcell [])j",
              R"j(["Known.xlsx","Data","$A$7",7,1,42,42,42,"$A$7",""])j"},
             {R"j(Data!E6 qx_readcell [])j",
              R"j(["Known.xlsx","Data","$E$6",6,5,true,true,true,"$E$6",""])j"},
             {R"j(Data!H20 qx_readcell [])j",
              R"j(["Known.xlsx","Data","$H$20",20,8,"","","","$H$20",""])j"},
             {R"j(Data!C4 qx_readcell [])j",
              R"j(["Known.xlsx","Data","$C$4",4,3,"=1\/0","=1\/0",null,"$C$4",""])j"}}},
        Quirk{"selectsAShape", [](Q& q) { q.selectsAShape = true; }},
        Quirk{"makesOnlyAtEnd", [](Q& q) { q.makesOnlyAtEnd = true; }},
        Quirk{"makesOnlyAtRange", [](Q& q) { q.makesOnlyAtRange = true; }},
        Quirk{"forgetsWhatItMade", [](Q& q) { q.forgetsWhatItMade = true; }},
        Quirk{"refusesToMoveConditions",
              [](Q& q) { q.refusesToMoveConditions = true; },
              {{R"j(qx_cf_move [["B2","B4:C5","E7"],["F1:F3"],"{book}","Blank"])j",
                R"j(error -1708)j"},
               {R"j(qx_cf_clear [["B2","B4:C5","E7"],"{book}","Blank"])j", R"j(1)j"},
               {R"j(qx_cf_clear [["F1:F3"],"{book}","Blank"])j", R"j(0)j"}}},
        Quirk{"ignoresMoves",
              [](Q& q) { q.ignoresMoves = true; },
              {{R"j(qx_cf_move [["B2","B4:C5","E7"],["F1:F3"],"{book}","Blank"])j", R"j([0,0])j"},
               {R"j(qx_cf_clear [["B2","B4:C5","E7"],"{book}","Blank"])j", R"j(1)j"},
               {R"j(qx_cf_clear [["F1:F3"],"{book}","Blank"])j", R"j(0)j"}}},
        Quirk{"listsDependents", [](Q& q) { q.listsDependents = true; }},
        Quirk{"activatesOnlyInFront",
              [](Q& q) { q.activatesOnlyInFront = true; },
              {{R"j(qx_revealscroll [40,3,"Blank","{book}",true])j", R"j(error -10000)j"}}},
        Quirk{"asksForMissingSheets", [](Q& q) { q.asksForMissingSheets = true; }},
        Quirk{"noDependentsIsParameterError", [](Q& q) { q.noDependents = None::parameterError; }},
        Quirk{"noDependentsIsNoSuchObject", [](Q& q) { q.noDependents = None::noSuchObject; }},
        Quirk{"noDependentsIsMissing", [](Q& q) { q.noDependents = None::missingValue; }},
        Quirk{"noVisibleCellsIsNotUnderstood",
              [](Q& q) { q.noVisibleCells = None::notUnderstood; }},
        Quirk{"noVisibleCellsIsNoSuchObject", [](Q& q) { q.noVisibleCells = None::noSuchObject; }},
        Quirk{"noVisibleCellsIsMissing", [](Q& q) { q.noVisibleCells = None::missingValue; }}),
    [](const testing::TestParamInfo<Quirk>& quirk) { return quirk.param.name; });

}  // namespace
}  // namespace quorin

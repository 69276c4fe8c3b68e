#include "tests/kit/scripts/HandlerRequests.h"

namespace quorin {
namespace {

using Array = JSONValue::Array;

JSONValue list(Array items) {
  return items;
}

}  // namespace

std::vector<HandlerRequest> cellRequests() {
  return {
      {"qx_probe", {}, R"j(["ok",*,*,*,*])j"},
      {"qx_pollcell", {}, R"j(["{book}","It's a test","$B$2"])j", "It's a test", "B2"},
      {"qx_pollcell", {}, R"j(["{book}","Data","$B$4"])j", "Data", "B4:C4"},
      {"qx_readcell",
       {},
       R"j(["{book}","Data","$B$4",4,2,"=SUM(B2:B3)","=SUM(B2:B3)",3.5,)j"
       R"j("$B$4:$C$4","$A$1:$C$4"])j"},
      {"qx_readcell", {}, R"j(["{book}","Data","$A$7",7,1,42,42,42,"$A$7","$A$7"])j", "Data", "A7"},
      {"qx_readcell",
       {},
       R"j(["{book}","Data","$E$6",6,5,true,true,true,"$E$6","$E$6"])j",
       "Data",
       "E6"},
      {"qx_readcell",
       {},
       R"j(["{book}","Data","$H$20",20,8,"","","","$H$20","$H$20"])j",
       "Data",
       "H20"},
      {"qx_readcell",
       {},
       R"j(["{book}","Data","$C$4",4,3,"=1\/0","=1\/0",null,"$C$4","$A$1:$C$4"])j",
       "Data",
       "C4"},
      {"qx_evaluate", {"B2*2"}, "3", "Data", "A1"},
      {"qx_evaluate", {"=B2*2"}, "3"},
      {"qx_evaluate", {"B2>1"}, "true"},
      {"qx_evaluate", {"\"a\"&\"b\""}, "\"ab\""},
      {"qx_evaluate", {"{1,2;3,4}"}, "[[1,2],[3,4]]"},
      {"qx_evaluate", {"B2:B4"}, "[[1.5],[2],[3.5]]"},
      {"qx_evaluate", {"'It''s a test'!B2"}, "\"x\""},
      {"qx_evaluate", {"1/0"}, "error -1708"},
      {"qx_evaluate", {"NoSuchName+1"}, "error -1708"},
      {"qx_evaluate", {"IFERROR(1/0,\"__ERR:\"&ERROR.TYPE(1/0))"}, "\"__ERR:2\""},
      {"qx_select", {list({"B2"})}, "\"$B$2\""},
      {"qx_select", {list({"'It''s a test'!A1", "'It''s a test'!C3:D4"})}, "\"$A$1,$C$3:$D$4\""},
      {"qx_pollcell", {}, R"j(["{book}","It's a test","$A$1"])j"},
      {"qx_select", {list({"Data!A1", "Blank!A1"})}, "error -50", "Data", "A1"},
      {"qx_select", {list({"Nowhere!A1"})}, "error -1728"},
      {"qx_activate", {"Prices"}, "true", "It's a test", "A1"},
      {"qx_pollcell", {}, R"j(["{book}","Data","$B$2"])j"},
      {"qx_activate", {""}, "true"},
      {"qx_activate", {"Nowhere!A1"}, "error -1728"},
      {"qx_pollcell", {}, R"j(["{book}","Data","$B$2"])j"},
      {"qx_dependents", {"B3"}, "\"$C$3,$B$4\""},
      {"qx_dependents", {"A7"}, "\"\""},
      {"qx_dependents", {"junk"}, "error -1728"},
  };
}

std::vector<HandlerRequest> rangeRequests() {
  return {
      {"qx_readrange",
       {"A2:B3"},
       R"j([[["Bolt",1.5],["Nut",2]],2,2,[["Bolt","1.5"],["Nut","2"]],4])j",
       "Data",
       "A1"},
      {"qx_readrange", {"$B$2"}, R"j([1.5,1,1,"1.5",1])j"},
      {"qx_readrange", {"B2:B4"}, R"j([[[1.5],[2],[3.5]],3,1,[["1.5"],["2"],["3.5"]],3])j"},
      {"qx_readrange",
       {"A1:C1"},
       R"j([[["Item","Price","Double"]],1,3,[["Item","Price","Double"]],3])j"},
      {"qx_readrange", {"B3:C4"}, R"j([[[2,4],[3.5,null]],2,2,[["2","4"],["3.5","#DIV\/0!"]],4])j"},
      {"qx_readrange", {"C3:D4"}, R"j(["__ERRCOL",2,2,4])j"},
      {"qx_readrange", {"C4:D4"}, R"j(["__ERRCOL",1,2,2])j"},
      {"qx_readrange", {"A1:A2,C3:C4"}, R"j(["__MULTI",2,1,4])j"},
      {"qx_readrange", {"A1:A20001"}, R"j(["__TOOBIG",20001,1,20001])j"},
      {"qx_readrange", {"A:B"}, R"j(["__TOOBIG",1048576,2,2097152])j"},
      {"qx_readrange", {"'It''s a test'!A1"}, R"j([2.5,1,1,"2.5",1])j"},
      {"qx_readrange", {"Prices"}, R"j([[[1.5],[2]],2,1,[["1.5"],["2"]],2])j"},
      {"qx_readrange", {"Data!B2:Data!B3"}, R"j([[[1.5],[2]],2,1,[["1.5"],["2"]],2])j"},
      {"qx_readrange", {"'It''s a test'!A1:'It''s a test'!A1"}, R"j([2.5,1,1,"2.5",1])j"},
      {"qx_readrange", {"{book}!Prices"}, R"j([[[1.5],[2]],2,1,[["1.5"],["2"]],2])j"},
      {"qx_readrange", {"Data!A1:Blank!B2"}, "error -1728"},
      {"qx_readrange", {"Nowhere!A1"}, "error -1728"},
      {"qx_readrange", {"[Other.xlsx]Data!A1"}, "error -1728"},
      {"qx_readrange", {"#REF!"}, "error -1728"},
      {"qx_readtexts", {list({"B2"})}, R"j([["1.5",1,1]])j"},
      {"qx_readtexts",
       {list({"Data!B2", "Nowhere!A1", "Prices", "A1:A2,C3:C4", "A1:A5001"})},
       R"j([["1.5",1,1],"",[[["1.5"],["2"]],2,1],"",""])j"},
      {"qx_readformulas",
       {"B2:C4", "a1", true},
       R"j([[[1.5,"=B2*2"],[2,"=B3*2"],["=SUM(B2:B3)","=1\/0"]],3,2])j"},
      {"qx_readformulas", {"B2:C2", "r1c1", true}, R"j([[[1.5,"=RC[-1]*2"]],1,2])j"},
      {"qx_readformulas",
       {"B3:B4", "a1", false},
       R"j([[[2],["=SUM(B2:B3)"]],[[2],[3.5]],2,1,[["2"],["3.5"]],2])j"},
      {"qx_readformulas",
       {"C3:D4", "a1", false},
       R"j([[["=B3*2",""],["=1\/0",""]],"__ERRCOL",2,2,"",4])j"},
      {"qx_readformulas", {"A1:A2,C3:C4", "a1", true}, R"j(["__MULTI",2,1,4])j"},
      {"qx_readformulas", {"A1:A20001", "a1", true}, R"j(["__TOOBIG",20001,1,20001])j"},
      {"qx_pollcell", {}, R"j(["{book}","Data","$A$1"])j"},
  };
}

std::vector<HandlerRequest> mapRequests() {
  return {
      {"qx_workbookmap",
       {},
       R"j(["{book}",["Data","It's a test","Blank"],["$A$1:$E$10","$A$1:$B$2","$A$1"],)j"
       R"j(["Factor","Prices","Spot","'It''s a test'!Spot"],)j"
       R"j(["=0.2","=Data!$B$2:$B$3","=Data!$A$1","='It''s a test'!$B$2"]])j",
       "Data",
       "A1"},
      {"qx_pollcell", {}, R"j(["{book}","Data","$A$1"])j"},
  };
}

std::vector<HandlerRequest> deepRequests() {
  return {
      {"qx_deepeval", {list({"1+2"})}, "3", "Data", "B4:C4"},
      {"qx_deepeval", {list({"1+2", "A1*2", "A2>5"})}, "true"},
      {"qx_deepeval", {list({"\"a\"&\"b\""})}, "\"ab\""},
      {"qx_deepeval", {list({"[{book}]Data!B2", "A1+1"})}, "2.5"},
      {"qx_deepeval", {list({"1/0"})}, "\"#DIV\\/0!\""},
      {"qx_deepeval", {list({"{1,2;3,4}"})}, "error -9005"},
      {"qx_deepeval", {list({"{1,2}", "1"})}, "error -9005"},
      {"qx_deepeval", {list({"1", "{1;2}"})}, "error -9005"},
      // The entry below keeps it from spilling.
      {"qx_deepeval", {list({"{1;2}", "1"})}, "1"},
      {"qx_deepeval", {list({})}, "error -9001"},
      {"qx_deepeval", {list({std::string(255, '1')})}, "error -9003"},
      {"qx_deepeval", {list({"1" + std::string(251, ' ') + "+1"})}, "2"},
      {"qx_deepeval", {list(Array(41, "1"))}, "error -9002"},
      {"qx_deepeval", {list(Array(40, "1"))}, "1"},
      {"qx_readcell",
       {},
       R"j(["{book}","Data","$B$4",4,2,"=SUM(B2:B3)","=SUM(B2:B3)",3.5,)j"
       R"j("$B$4:$C$4","$A$1:$C$4"])j"},
  };
}

std::vector<HandlerRequest> markRequests() {
  const JSONValue three = list({"B2", "B4:C5", "E7"});
  Array many;
  for (int row = 1; row <= 40; ++row) many.push_back("D" + std::to_string(1000 + 2 * row));
  return {
      {"qx_cf_clear", {list({"A1:Z99"}), "{book}", "Blank"}, "0", "Data", "B4:C4"},
      {"qx_cf_apply", {three, "{book}", "Blank", 255, 0, 255}, "[1,0]"},
      {"qx_cf_move", {three, list({"F1:F3"}), "{book}", "Blank"}, "[1,0]"},
      {"qx_cf_clear", {three, "{book}", "Blank"}, "0"},
      {"qx_cf_clear", {list({"F1:F3"}), "{book}", "Blank"}, "1"},
      {"qx_cf_apply", {list({"Prices", "B4"}), "{book}", "Data", 1, 2, 3}, "[1,0]"},
      // One that does not bind makes it go address by address, and each takes a part away.
      {"qx_cf_clear", {list({"Prices", "B4", "no such place"}), "{book}", "Data"}, "2"},
      {"qx_cf_apply", {list({"C3"}), "{book}", "Blank", 255, 0, 0}, "[1,0]"},
      {"qx_cf_apply", {list({"C3"}), "{book}", "Blank", 255, 0, 0}, "[1,0]"},
      {"qx_cf_clear", {list({"C3"}), "{book}", "Blank"}, "2"},
      {"qx_cf_moved", {"{book}", "Blank"}, "0"},
      {"qx_cf_apply", {list({"C3", "E5"}), "{book}", "Blank", 255, 0, 0}, "[1,0]"},
      {"qx_cf_moved", {"{book}", "Blank"}, "1"},
      {"qx_cf_moved", {"{book}", "Nowhere"}, "error -1728"},
      {"qx_cf_apply", {many, "{book}", "Blank", 0, 128, 255}, "[1,0]"},
      {"qx_cf_clear", {many, "{book}", "Blank"}, "1"},
      {"qx_cf_apply", {list({"A1"}), "{book}", "Nowhere", 1, 2, 3}, "error -1728"},
      {"qx_cf_apply", {list({"A1"}), "Other.xlsx", "Blank", 1, 2, 3}, "error -1728"},
      {"qx_cf_apply", {list({"no such place"}), "{book}", "Blank", 1, 2, 3}, "error -1728"},
      {"qx_cf_move", {list({"A1"}), list({"B1"}), "{book}", "Nowhere"}, "error -1728"},
      {"qx_cf_clear", {list({"A1"}), "Other.xlsx", "Blank"}, "error -1728"},
      {"qx_readcell",
       {},
       R"j(["{book}","Data","$B$4",4,2,"=SUM(B2:B3)","=SUM(B2:B3)",3.5,)j"
       R"j("$B$4:$C$4","$A$1:$C$4"])j"},
  };
}

std::vector<HandlerRequest> revealRequests() {
  const JSONValue none = list({});
  return {
      {"qx_revealscroll",
       {1, 1, "Data", "{book}", false},
       R"j(["{book}","Data","$A$1"])j",
       "Data",
       "A1"},
      {"qx_revealread",
       {"B4:C5", "Data", "{book}"},
       R"j([4,2,2,2,"Data",1,1,*,*,false,false,"$B$4:$C$5"])j"},
      {"qx_unhide", {"Blank", "{book}", list({list({3, 5})}), list({list({2, 2})}), true}, "4"},
      {"qx_revealread",
       {"A2:B6", "Blank", "{book}"},
       R"j([2,1,5,2,"Data",1,1,*,*,null,null,"$A$2,$A$6"])j"},
      {"qx_revealread",
       {"A3:A4", "Blank", "{book}"},
       R"j([3,1,2,1,"Data",1,1,*,*,true,false,""])j"},
      {"qx_revealread", {"B9", "Blank", "{book}"}, R"j([9,2,1,1,"Data",1,1,*,*,false,true,""])j"},
      {"qx_unhide", {"Blank", "{book}", list({list({4, 4})}), none, false}, "1"},
      {"qx_unhide", {"Blank", "{book}", list({list({3, 5})}), list({list({2, 2})}), false}, "4"},
      {"qx_unhide", {"Blank", "{book}", none, none, false}, "0"},
      {"qx_unhide", {"Nowhere", "{book}", list({list({3, 5})}), none, true}, "error -1728"},
      {"qx_revealread", {"A1", "Nowhere", "{book}"}, "error -1728"},
      {"qx_revealread", {"no such place", "Data", "{book}"}, "error -1728"},
      {"qx_revealscroll", {40, 3, "Blank", "{book}", true}, R"j(["{book}","Blank","$A$1"])j"},
      {"qx_revealscroll", {1, 1, "Nowhere", "{book}", true}, "error -1728"},
  };
}

}  // namespace quorin

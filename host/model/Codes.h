// The four-character codes of Excel's scripting dictionary that the object model answers to, each
// named after its term.
#pragma once

#include "kit/value/FourCharCode.h"

namespace quorin::host::codes {

// How object specifiers are made.
inline constexpr FourCharCode objectSpecifier = fourCharCode("obj ");
inline constexpr FourCharCode desiredClass = fourCharCode("want");
inline constexpr FourCharCode keyForm = fourCharCode("form");
inline constexpr FourCharCode keyData = fourCharCode("seld");
inline constexpr FourCharCode container = fourCharCode("from");
inline constexpr FourCharCode formIndex = fourCharCode("indx");
inline constexpr FourCharCode formName = fourCharCode("name");
inline constexpr FourCharCode formProperty = fourCharCode("prop");
inline constexpr FourCharCode formRange = fourCharCode("rang");
inline constexpr FourCharCode formID = fourCharCode("ID  ");
inline constexpr FourCharCode formRelative = fourCharCode("rele");
inline constexpr FourCharCode formTest = fourCharCode("test");
inline constexpr FourCharCode propertyType = fourCharCode("prop");
inline constexpr FourCharCode rangeDescriptor = fourCharCode("rang");
inline constexpr FourCharCode rangeStart = fourCharCode("star");
inline constexpr FourCharCode rangeStop = fourCharCode("stop");
inline constexpr FourCharCode absoluteOrdinal = fourCharCode("abso");
inline constexpr FourCharCode first = fourCharCode("firs");
inline constexpr FourCharCode middle = fourCharCode("midd");
inline constexpr FourCharCode last = fourCharCode("last");
inline constexpr FourCharCode any = fourCharCode("any ");
inline constexpr FourCharCode all = fourCharCode("all ");
inline constexpr FourCharCode next = fourCharCode("next");
inline constexpr FourCharCode previous = fourCharCode("prev");
inline constexpr FourCharCode examined = fourCharCode("exmn");  // what a test is about
inline constexpr FourCharCode comparison = fourCharCode("cmpd");
inline constexpr FourCharCode relation = fourCharCode("relo");
inline constexpr FourCharCode leftOperand = fourCharCode("obj1");
inline constexpr FourCharCode rightOperand = fourCharCode("obj2");
inline constexpr FourCharCode equal = fourCharCode("=   ");
inline constexpr FourCharCode less = fourCharCode("<   ");
inline constexpr FourCharCode lessOrEqual = fourCharCode("<=  ");
inline constexpr FourCharCode greater = fourCharCode(">   ");
inline constexpr FourCharCode greaterOrEqual = fourCharCode(">=  ");
inline constexpr FourCharCode beginsWith = fourCharCode("bgwt");
inline constexpr FourCharCode endsWith = fourCharCode("ends");
inline constexpr FourCharCode containing = fourCharCode("cont");
inline constexpr FourCharCode logical = fourCharCode("logi");
inline constexpr FourCharCode connective = fourCharCode("logc");
inline constexpr FourCharCode terms = fourCharCode("term");
inline constexpr FourCharCode logicalAnd = fourCharCode("AND ");
inline constexpr FourCharCode logicalOr = fourCharCode("OR  ");
inline constexpr FourCharCode logicalNot = fourCharCode("NOT ");
inline constexpr FourCharCode insertion = fourCharCode("insl");
inline constexpr FourCharCode insertionObject = fourCharCode("kobj");
inline constexpr FourCharCode record = fourCharCode("reco");
inline constexpr FourCharCode list = fourCharCode("list");
inline constexpr FourCharCode null = fourCharCode("null");

// Classes.
inline constexpr FourCharCode application = fourCharCode("capp");
inline constexpr FourCharCode window = fourCharCode("cwin");
inline constexpr FourCharCode workbook = fourCharCode("X141");
inline constexpr FourCharCode sheet = fourCharCode("X128");
inline constexpr FourCharCode worksheet = fourCharCode("XwSH");
inline constexpr FourCharCode range = fourCharCode("X117");
inline constexpr FourCharCode cell = fourCharCode("ccel");
inline constexpr FourCharCode row = fourCharCode("crow");
inline constexpr FourCharCode column = fourCharCode("ccol");
inline constexpr FourCharCode namedItem = fourCharCode("X220");
inline constexpr FourCharCode formatCondition = fourCharCode("X227");
inline constexpr FourCharCode interior = fourCharCode("X252");

// Properties.
inline constexpr FourCharCode classOf = fourCharCode("pcls");
inline constexpr FourCharCode name = fourCharCode("pnam");
inline constexpr FourCharCode index = fourCharCode("pidx");
inline constexpr FourCharCode id = fourCharCode("ID  ");
inline constexpr FourCharCode visible = fourCharCode("pvis");
inline constexpr FourCharCode entryIndex = fourCharCode("MSix");
inline constexpr FourCharCode bounds = fourCharCode("pbnd");
inline constexpr FourCharCode version = fourCharCode("vers");
inline constexpr FourCharCode frontmost = fourCharCode("pisf");
inline constexpr FourCharCode displayAlerts = fourCharCode("1238");
inline constexpr FourCharCode screenUpdating = fourCharCode("1303");
inline constexpr FourCharCode activeCell = fourCharCode("1104");
inline constexpr FourCharCode activeSheet = fourCharCode("1107");
inline constexpr FourCharCode activeWindow = fourCharCode("1171");
inline constexpr FourCharCode activeWorkbook = fourCharCode("1172");
inline constexpr FourCharCode selection = fourCharCode("sele");
inline constexpr FourCharCode rangeSelection = fourCharCode("1130");
inline constexpr FourCharCode visibleRange = fourCharCode("1145");
inline constexpr FourCharCode scrollRow = fourCharCode("1132");
inline constexpr FourCharCode scrollColumn = fourCharCode("1131");
inline constexpr FourCharCode usedRange = fourCharCode("1756");
inline constexpr FourCharCode worksheetObject = fourCharCode("1632");
inline constexpr FourCharCode areas = fourCharCode("1520");
inline constexpr FourCharCode countLarge = fourCharCode("XCcs");
inline constexpr FourCharCode currentRegion = fourCharCode("1542");
inline constexpr FourCharCode dependents = fourCharCode("1548");
inline constexpr FourCharCode directDependents = fourCharCode("1550");
inline constexpr FourCharCode entireColumn = fourCharCode("1553");
inline constexpr FourCharCode entireRow = fourCharCode("1554");
inline constexpr FourCharCode firstColumnIndex = fourCharCode("XfcX");
inline constexpr FourCharCode firstRowIndex = fourCharCode("XfrX");
inline constexpr FourCharCode formula = fourCharCode("1562");
inline constexpr FourCharCode formulaLocal = fourCharCode("1566");
inline constexpr FourCharCode formulaR1C1 = fourCharCode("1567");
inline constexpr FourCharCode formula2 = fourCharCode("2122");
inline constexpr FourCharCode formula2Local = fourCharCode("Fm2l");
inline constexpr FourCharCode formula2R1C1 = fourCharCode("F2rc");
inline constexpr FourCharCode hasFormula = fourCharCode("1573");
inline constexpr FourCharCode hidden = fourCharCode("1574");
inline constexpr FourCharCode stringValue = fourCharCode("XRgt");
inline constexpr FourCharCode value = fourCharCode("DPVu");
inline constexpr FourCharCode value2 = fourCharCode("DPV2");
inline constexpr FourCharCode references = fourCharCode("2098");
inline constexpr FourCharCode referenceRange = fourCharCode("2105");
inline constexpr FourCharCode conditionType = fourCharCode("2119");  // format condition type
inline constexpr FourCharCode formula1 = fourCharCode("2121");
inline constexpr FourCharCode conditionPriority = fourCharCode("2566");
inline constexpr FourCharCode stopIfTrue = fourCharCode("2567");
inline constexpr FourCharCode appliesTo = fourCharCode("2568");
inline constexpr FourCharCode interiorObject = fourCharCode("XitO");
inline constexpr FourCharCode color = fourCharCode("colr");
inline constexpr FourCharCode colorIndex = fourCharCode("1098");

// Suites, commands and their labels.
inline constexpr FourCharCode coreSuite = fourCharCode("core");
inline constexpr FourCharCode miscellaneousSuite = fourCharCode("misc");
inline constexpr FourCharCode excelSuite = fourCharCode("smXL");
inline constexpr FourCharCode tableSuite = fourCharCode("sTBL");
inline constexpr FourCharCode get = fourCharCode("getd");
inline constexpr FourCharCode set = fourCharCode("setd");
inline constexpr FourCharCode setTo = fourCharCode("data");
inline constexpr FourCharCode count = fourCharCode("cnte");
inline constexpr FourCharCode countEach = fourCharCode("kocl");
inline constexpr FourCharCode exists = fourCharCode("doex");
inline constexpr FourCharCode make = fourCharCode("crel");
inline constexpr FourCharCode makeNew = fourCharCode("kocl");
inline constexpr FourCharCode makeAt = fourCharCode("insh");
inline constexpr FourCharCode makeWithProperties = fourCharCode("prdt");
inline constexpr FourCharCode deleteObject = fourCharCode("delo");
inline constexpr FourCharCode close = fourCharCode("clos");
inline constexpr FourCharCode closeSaving = fourCharCode("savo");
inline constexpr FourCharCode modifyAppliesToRange = fourCharCode("2572");
inline constexpr FourCharCode modifyRange = fourCharCode("5387");
inline constexpr FourCharCode setFirstPriority = fourCharCode("2569");
inline constexpr FourCharCode specialCells = fourCharCode("1621");
inline constexpr FourCharCode specialCellsType = fourCharCode("5103");
inline constexpr FourCharCode select = fourCharCode("slct");
inline constexpr FourCharCode activate = fourCharCode("actv");
inline constexpr FourCharCode activateObject = fourCharCode("xACT");
inline constexpr FourCharCode evaluate = fourCharCode("2435");
inline constexpr FourCharCode goTo = fourCharCode("1261");
inline constexpr FourCharCode goToReference = fourCharCode("5097");
inline constexpr FourCharCode goToScroll = fourCharCode("5098");
inline constexpr FourCharCode unite = fourCharCode("1191");  // union
inline constexpr FourCharCode getAddress = fourCharCode("1515");
inline constexpr FourCharCode rowAbsolute = fourCharCode("5121");
inline constexpr FourCharCode columnAbsolute = fourCharCode("5122");
inline constexpr FourCharCode referenceStyle = fourCharCode("1297");
inline constexpr FourCharCode external = fourCharCode("5123");
inline constexpr FourCharCode relativeTo = fourCharCode("5087");

// Enumerators.
inline constexpr FourCharCode styleR1C1 = 0x022DEFCA;
inline constexpr FourCharCode cellTypeVisible = 0x0246000C;
inline constexpr FourCharCode colorIndexNone = 0x01F6EFD2;
inline constexpr FourCharCode cellValue = 0x02530001;  // the first format condition type
inline constexpr FourCharCode expression = 0x02530002;
inline constexpr FourCharCode no = fourCharCode("no  ");

}  // namespace quorin::host::codes

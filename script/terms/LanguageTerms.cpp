// The words that AppleScript itself understands everywhere: its classes, properties and constants,
// and the standard suites' commands. Same columns as an application's table.
#include "script/terms/Terminology.h"

namespace quorin::script {
namespace {

constexpr std::string_view table =
    "class\tboolean\tbool\nplural\tbooleans\tbool\n"
    "class\tinteger\tlong\nplural\tintegers\tlong\n"
    "class\treal\tdoub\nplural\treals\tdoub\n"
    "class\tnumber\tnmbr\nplural\tnumbers\tnmbr\n"
    "class\ttext\tctxt\nclass\tstring\tctxt\nplural\tstrings\tctxt\n"
    "class\tUnicode text\tctxt\n"
    "class\tlist\tlist\nplural\tlists\tlist\n"
    "class\trecord\treco\nplural\trecords\treco\n"
    "class\tdate\tldt \nplural\tdates\tldt \n"
    "class\tclass\tpcls\nplural\tclasses\tpcls\n"
    "class\tconstant\tenum\nplural\tconstants\tenum\n"
    "class\treference\tobj \nplural\treferences\tobj \n"
    "class\tscript\tscpt\n"
    "class\tapplication\tcapp\nplural\tapplications\tcapp\n"
    "class\titem\tcobj\nplural\titems\tcobj\n"
    "class\tcharacter\tcha \nplural\tcharacters\tcha \n"
    "class\tword\tcwor\nplural\twords\tcwor\n"
    "class\tparagraph\tcpar\nplural\tparagraphs\tcpar\n"
    "class\ttext item\tcitm\nplural\ttext items\tcitm\n"
    "class\tmonth\tmnth\nclass\tweekday\twkdy\n"
    "property\tname\tpnam\nproperty\tid\tID  \nproperty\tversion\tvers\n"
    "property\tclass\tpcls\nproperty\tproperties\tpALL\nproperty\tcontents\tpcnt\n"
    "property\tlength\tleng\nproperty\trest\trest\nproperty\treverse\trvse\n"
    "property\tresult\trslt\nproperty\ttext item delimiters\ttxdl\n"
    "property\tyear\tyear\nproperty\tmonth\tmnth\nproperty\tday\tday \n"
    "property\tweekday\twkdy\nproperty\ttime\ttime\nproperty\thours\thour\n"
    "property\tminutes\tmin \nproperty\tseconds\tscnd\n"
    "property\tdate string\tdstr\nproperty\ttime string\ttstr\n"
    "property\tfrontmost\tpisf\nproperty\trunning\tprun\n"
    "enumerator\tmissing value\tmsng\nenumerator\tnull\tnull\n"
    "enumerator\tpi\tpi  \nenumerator\tquote\tquot\nenumerator\tlinefeed\tlnfd\n"
    "enumerator\ttab\ttab \nenumerator\tspace\tspac\n"
    "enumerator\tyes\tyes \nenumerator\tno\tno  \nenumerator\task\task \n"
    "enumerator\tdays\tdays\nenumerator\tweeks\tweek\n"
    "enumerator\tJanuary\tjan \nenumerator\tFebruary\tfeb \nenumerator\tMarch\tmar \n"
    "enumerator\tApril\tapr \nenumerator\tMay\tmay \nenumerator\tJune\tjun \n"
    "enumerator\tJuly\tjul \nenumerator\tAugust\taug \nenumerator\tSeptember\tsep \n"
    "enumerator\tOctober\toct \nenumerator\tNovember\tnov \nenumerator\tDecember\tdec \n"
    "enumerator\tMonday\tmon \nenumerator\tTuesday\ttue \nenumerator\tWednesday\twed \n"
    "enumerator\tThursday\tthu \nenumerator\tFriday\tfri \nenumerator\tSaturday\tsat \n"
    "enumerator\tSunday\tsun \n"
    "command\tget\tcoregetd\ndirect\t\t----\tget\treference\treq\n"
    "command\tselect\tmiscslct\ndirect\t\t----\tselect\treference\topt\n"
    "command\tactivate\tmiscactv\ndirect\t\t----\tactivate\treference\topt\n"
    "command\trun\taevtoapp\ndirect\t\t----\trun\treference\topt\n"
    "command\treopen\taevtrapp\ndirect\t\t----\treopen\treference\topt\n"
    "command\tlaunch\tascrnoop\ndirect\t\t----\tlaunch\treference\topt\n"
    "command\tcount\tcorecnte\t\tinteger\ndirect\t\t----\tcount\treference\treq\n"
    "parameter\teach\tkocl\tcount\ttype class\topt\n"
    "command\texists\tcoredoex\t\tboolean\ndirect\t\t----\texists\tanything\treq\n"
    "command\tclose\tcoreclos\ndirect\t\t----\tclose\treference\treq\n"
    "parameter\tsaving\tsavo\tclose\tenum\topt\nparameter\tsaving in\tkfil\tclose\tfile\topt\n"
    "command\tsave\tcoresave\ndirect\t\t----\tsave\treference\treq\n"
    "parameter\tin\tkfil\tsave\tfile\topt\nparameter\tas\tfltp\tsave\tany\topt\n"
    "command\tdelete\tcoredelo\ndirect\t\t----\tdelete\treference\treq\n"
    "command\tduplicate\tcoreclon\ndirect\t\t----\tduplicate\treference\treq\n"
    "parameter\tto\tinsh\tduplicate\tlocation reference\topt\n"
    "parameter\twith properties\tprdt\tduplicate\trecord\topt\n"
    "command\tmake\tcorecrel\t\treference\n"
    "parameter\tnew\tkocl\tmake\ttype class\treq\n"
    "parameter\tat\tinsh\tmake\tlocation reference\topt\n"
    "parameter\twith data\tdata\tmake\tanything\topt\n"
    "parameter\twith properties\tprdt\tmake\trecord\topt\n"
    "command\tmove\tcoremove\ndirect\t\t----\tmove\treference\treq\n"
    "parameter\tto\tinsh\tmove\tlocation reference\treq\n"
    "command\topen\taevtodoc\ndirect\t\t----\topen\tfile\treq\n"
    "command\tprint\taevtpdoc\ndirect\t\t----\tprint\tfile\treq\n"
    "parameter\twith properties\tprdt\tprint\trecord\topt\n"
    "command\tquit\taevtquit\ndirect\t\t----\tquit\treference\topt\n"
    "parameter\tsaving\tsavo\tquit\tenum\topt\n";

}  // namespace

const Terminology& languageTerminology() {
  static const Terminology terminology(table);
  return terminology;
}

}  // namespace quorin::script

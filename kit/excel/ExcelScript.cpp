#include "kit/excel/ExcelScript.h"

#include <string_view>

#include "kit/excel/ScriptTexts.h"
#include "kit/platform/Fatal.h"
#include "kit/shapes/ErrorLiterals.h"

namespace quorin::ExcelScript {

namespace {

// The error literals as the script language writes them: "#NULL!", "#DIV/0!", ...
std::string literalList() {
  std::string list;
  for (const std::string_view literal : BridgeShapes::errorLiterals) {
    if (!list.empty()) list += ", ";
    list += '"';
    list += literal;
    list += '"';
  }
  return list;
}

// The library and the native side compare cells with the same table, so the script's copy of it is
// filled in here.
std::string assembleCore() {
  constexpr std::string_view opening = "set errs to {";
  const std::string_view text = ScriptTexts::core;
  const std::size_t at = text.find(opening);
  if (at == std::string_view::npos) fatal("The handler library has no line that sets errs");
  const std::size_t split = at + opening.size();
  std::string core(text.substr(0, split));
  core += literalList();
  core += text.substr(split);
  return core;
}

}  // namespace

const std::string& core() {
  static const std::string text = assembleCore();
  return text;
}

const std::string& m3() {
  static const std::string text(ScriptTexts::m3);
  return text;
}

const std::string& cf() {
  static const std::string text(ScriptTexts::cf);
  return text;
}

const std::string& reveal() {
  static const std::string text(ScriptTexts::reveal);
  return text;
}

const std::string& perf() {
  static const std::string text(ScriptTexts::perf);
  return text;
}

const std::string& source() {
  static const std::string text =
      core() + "\n" + m3() + "\n" + cf() + "\n" + reveal() + "\n" + perf();
  return text;
}

}  // namespace quorin::ExcelScript

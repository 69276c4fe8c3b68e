// The handler library as it was embedded by the build: one text per file of kit/scripts.
#pragma once

#include <string_view>

namespace quorin::ScriptTexts {

extern const std::string_view core;  // with the line "set errs to {}" still empty
extern const std::string_view m3;
extern const std::string_view cf;
extern const std::string_view reveal;
extern const std::string_view perf;

}  // namespace quorin::ScriptTexts

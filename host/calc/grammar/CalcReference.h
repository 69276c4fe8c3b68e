// The ends of a reference in Calc's stored grammar, $'My Sheet'.A1. Pure functions over text;
// positions move behind what was read, or stay when nothing was.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/calc/grammar/ReferenceText.h"

namespace quorin::host::calc {

// The sheet before a reference, its "." included; "#REF!" for one that was deleted.
std::optional<std::string> readCalcSheet(std::string_view text, std::size_t& position);

// A cell's end that can stand alone or, `ofRange`, where another one follows or goes before.
std::optional<CellText> readCalcEnd(std::string_view text, std::size_t& position, bool ofRange);

}  // namespace quorin::host::calc

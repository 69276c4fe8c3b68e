// Turns a script's text into tokens. A pure function; throws SyntaxError at what is no token.
#pragma once

#include <string_view>
#include <vector>

#include "script/lex/Token.h"

namespace quorin::script {

// Ends with a lineEnd and an end token. Comments and continuation marks leave nothing behind. The
// tokens' spellings point into the source.
std::vector<Token> tokenize(std::string_view source);

}  // namespace quorin::script

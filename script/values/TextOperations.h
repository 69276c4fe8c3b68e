// The elements of text: characters, words, paragraphs and text items. Pure functions over UTF-8.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kit/value/FourCharCode.h"
#include "script/values/TextRules.h"

namespace quorin::script {

struct TextSpan {
  std::size_t begin = 0, end = 0;  // bytes
};

enum class TextUnit { character, word, paragraph };

// Where the elements stand. A character is what a reader sees as one; in pure ASCII text every byte
// is one. Paragraphs end at CR, LF, CR LF, U+2028 and U+2029, so text without any is one paragraph.
std::vector<TextSpan> textElements(std::string_view text, TextUnit unit);

// The characters one after the other, until one is answered with false. For text too long to be
// taken apart all at once.
void forEachCharacter(std::string_view text, const std::function<bool(TextSpan)>& visit);

// The spans between delimiters; with no delimiter but the empty one, the characters.
std::vector<TextSpan> textItems(std::string_view text, const TextRules& rules);

// The elements of a class by its code, or none when text has no such elements.
std::optional<std::vector<TextSpan>> textElements(std::string_view text, FourCharCode type,
                                                  const TextRules& rules);

std::size_t textLength(std::string_view text);  // in characters

}  // namespace quorin::script

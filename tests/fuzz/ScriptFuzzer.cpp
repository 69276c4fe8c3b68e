// The coverage-guided fuzzer: libFuzzer changes texts and keeps those that reach new code. Part of
// its changes come from the grammar, so that it gets past the parser.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "tests/fuzz/ScriptGrammar.h"
#include "tests/fuzz/ScriptPlayer.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maximum);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  quorin::fuzz::play({reinterpret_cast<const char*>(data), size});
  return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maximum, unsigned seed) {
  if (seed % 4 != 0) return LLVMFuzzerMutate(data, size, maximum);
  std::string text(reinterpret_cast<const char*>(data), size);
  std::size_t line = text.empty() ? 0 : text.find('\n', seed / 4 % text.size());
  line = line == std::string::npos ? 0 : line + 1;
  std::string statement = quorin::fuzz::ScriptGrammar(seed).statement();
  if (seed % 3 == 0) text.erase(line, std::min(text.find('\n', line), text.size()) - line);
  text.insert(std::min(line, text.size()), statement);
  const std::size_t length = std::min(text.size(), maximum);
  std::memcpy(data, text.data(), length);
  return length;
}

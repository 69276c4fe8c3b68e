// Marshal::encode beside RapidJSON's own writer, on the same grids of 20,000 cells in one run. The
// peer writes from a tree of its own, with its defaults: it neither checks the encoding nor escapes
// slashes, and it has integers where JSONValue has doubles alone.
#include <benchmark/benchmark.h>
#include <cstdint>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <string>

#include "kit/value/Marshal.h"

namespace quorin {
namespace {

constexpr int rows = 1000;
constexpr int columns = 20;

enum class Content { numbers, integers, text, mixed };

JSONValue cell(Content content, int row, int column) {
  const int index = row * columns + column;
  switch (content) {
    case Content::numbers:
      return index / 7.0;
    case Content::integers:
      return index * 13;
    case Content::text:
      return "Revenue caf\u00E9, plan of region " + std::to_string(index);
    case Content::mixed:
      break;
  }
  switch (column % 5) {
    case 0:
      return "$" + std::to_string(column) + "$" + std::to_string(row);
    case 1:
      return index / 7.0;
    case 2:
      return index;
    case 3:
      return "=SUM(Sheet" + std::to_string(column) + "!A1:A" + std::to_string(row) + ")";
    default:
      return nullptr;
  }
}

JSONValue grid(Content content) {
  JSONValue::Array result;
  for (int row = 0; row < rows; ++row) {
    JSONValue::Array cells;
    for (int column = 0; column < columns; ++column) cells.push_back(cell(content, row, column));
    result.push_back(std::move(cells));
  }
  return JSONValue::Object{{"rows", rows}, {"cols", columns}, {"values", std::move(result)}};
}

void encodeOurs(benchmark::State& state, Content content) {
  const JSONValue value = grid(content);
  std::size_t bytes = 0;
  for (auto _ : state) {
    const std::string text = Marshal::encode(value);
    bytes += text.size();
    benchmark::DoNotOptimize(text.data());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

void encodeRapidJSON(benchmark::State& state, Content content) {
  rapidjson::Document document;
  document.Parse(Marshal::encode(grid(content)).c_str());
  std::size_t bytes = 0;
  for (auto _ : state) {
    rapidjson::StringBuffer buffer;
    rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
    document.Accept(writer);
    bytes += buffer.GetSize();
    benchmark::DoNotOptimize(buffer.GetString());
  }
  state.SetBytesProcessed(static_cast<std::int64_t>(bytes));
}

AppleEventDescriptor descriptorOf(Content content) {
  return Marshal::toDescriptor(*grid(content).member("values"));
}

void fromDescriptor(benchmark::State& state, Content content) {
  const AppleEventDescriptor descriptor = descriptorOf(content);
  for (auto _ : state) {
    const JSONValue value = Marshal::fromDescriptor(descriptor);
    benchmark::DoNotOptimize(&value);
  }
}

void descriptorToText(benchmark::State& state, Content content) {
  const AppleEventDescriptor descriptor = descriptorOf(content);
  for (auto _ : state) {
    const std::string text = Marshal::encode(Marshal::fromDescriptor(descriptor));
    benchmark::DoNotOptimize(text.data());
  }
}

BENCHMARK_CAPTURE(encodeOurs, numbers, Content::numbers);
BENCHMARK_CAPTURE(encodeRapidJSON, numbers, Content::numbers);
BENCHMARK_CAPTURE(encodeOurs, integers, Content::integers);
BENCHMARK_CAPTURE(encodeRapidJSON, integers, Content::integers);
BENCHMARK_CAPTURE(encodeOurs, text, Content::text);
BENCHMARK_CAPTURE(encodeRapidJSON, text, Content::text);
BENCHMARK_CAPTURE(encodeOurs, mixed, Content::mixed);
BENCHMARK_CAPTURE(encodeRapidJSON, mixed, Content::mixed);
BENCHMARK_CAPTURE(fromDescriptor, mixed, Content::mixed);
BENCHMARK_CAPTURE(descriptorToText, mixed, Content::mixed);

}  // namespace
}  // namespace quorin

BENCHMARK_MAIN();

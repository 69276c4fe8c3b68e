#include "host/calc/workbook/ViewData.h"

#include <charconv>

namespace quorin::host::calc {
namespace {

constexpr std::size_t none = std::string_view::npos;

// The field of that number, counted from 0.
std::optional<std::string_view> field(std::string_view text, char separator, int number) {
  for (; number > 0; --number) {
    const std::size_t end = text.find(separator);
    if (end == none) return std::nullopt;
    text.remove_prefix(end + 1);
  }
  return text.substr(0, text.find(separator));
}

std::optional<int> wholeNumber(std::optional<std::string_view> text) {
  if (!text) return std::nullopt;
  int number = 0;
  const auto [end, error] = std::from_chars(text->data(), text->data() + text->size(), number);
  if (error != std::errc() || end != text->data() + text->size() || number < 0) return std::nullopt;
  return number;
}

}  // namespace

std::optional<ViewPosition> viewPosition(std::string_view viewData) {
  const auto tab = wholeNumber(field(viewData, ';', 1));
  if (!tab) return std::nullopt;
  const auto third = field(viewData, ';', 2);
  const int firstTab = third && third->starts_with("tw:") ? 3 : 2;
  const auto sheet = field(viewData, ';', firstTab + *tab);
  if (!sheet) return std::nullopt;
  // Far down a sheet the numbers are joined by plus signs instead.
  const char separator = sheet->find('/') == none ? '+' : '/';
  const auto column = wholeNumber(field(*sheet, separator, 0));
  const auto row = wholeNumber(field(*sheet, separator, 1));
  if (!column || !row) return std::nullopt;
  return ViewPosition{*tab, *row + 1, *column + 1};
}

}  // namespace quorin::host::calc

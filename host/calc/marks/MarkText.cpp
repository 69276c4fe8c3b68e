#include "host/calc/marks/MarkText.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "host/Address.h"
#include "kit/value/WholeNumber.h"

namespace quorin::host::calc {
namespace {

constexpr std::string_view idPrefix = "Quorin mark ";
constexpr std::string_view noFill = "none";

// A number without sign or leading zero.
std::optional<int> readNumber(std::string_view text) {
  int number = 0;
  const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (failure != std::errc() || end != text.data() + text.size()) return std::nullopt;
  if (std::to_string(number) != text) return std::nullopt;
  return number;
}

// Takes "label=value " off the front of the text and gives the value.
std::optional<std::string_view> takeField(std::string_view& text, std::string_view label) {
  if (!text.starts_with(label)) return std::nullopt;
  const std::size_t end = text.find(' ');
  if (end == std::string_view::npos) return std::nullopt;
  const std::string_view value = text.substr(label.size(), end - label.size());
  text.remove_prefix(end + 1);
  return value;
}

// Without the blanks that end a field.
std::string fieldText(std::string_view text) {
  std::string field;
  for (const char c : text) {
    if (c == ' ') {
      field += "%20";
    } else if (c == '%') {
      field += "%25";
    } else {
      field += c;
    }
  }
  return field;
}

std::string plainText(std::string_view field) {
  std::string text;
  while (!field.empty()) {
    const bool blank = field.starts_with("%20"), percent = field.starts_with("%25");
    text += blank ? ' ' : field.front();
    field.remove_prefix(blank || percent ? 3 : 1);
  }
  return text;
}

// Takes what was asked off the front of the text, if it is there.
std::optional<AskedPlace> takeAsked(std::string_view& text) {
  std::string_view rest = text;
  const auto cells = takeField(rest, "asked=");
  const auto sheet = cells ? takeField(rest, "sheet=") : std::nullopt;
  const auto book = sheet ? takeField(rest, "book=") : std::nullopt;
  auto areas = book ? parseA1(*cells) : std::nullopt;
  if (!areas) return std::nullopt;
  text = rest;
  return AskedPlace{{plainText(*book), plainText(*sheet)}, std::move(*areas)};
}

std::string fillText(const std::optional<Color>& fill) {
  if (!fill) return std::string(noFill);
  return std::to_string(fill->red) + "," + std::to_string(fill->green) + "," +
         std::to_string(fill->blue);
}

std::optional<Color> parseColor(std::string_view text) {
  std::array<int, 3> parts{};
  for (std::size_t i = 0; i < parts.size(); ++i) {
    const std::size_t comma = text.find(',');
    if ((comma == std::string_view::npos) != (i == parts.size() - 1)) return std::nullopt;
    const auto part = readNumber(text.substr(0, comma));
    if (!part || !isColourPart(*part)) return std::nullopt;
    parts.at(i) = *part;
    text.remove_prefix(comma == std::string_view::npos ? text.size() : comma + 1);
  }
  return Color{parts[0], parts[1], parts[2]};
}

// Joins areas that lie side by side, then those that lie below each other.
std::vector<Area> joined(std::vector<Area> areas) {
  const auto joinRun = [&areas](auto key, int Area::*first, int Area::*last) {
    std::sort(areas.begin(), areas.end(), [&](const Area& a, const Area& b) {
      return std::pair(key(a), a.*first) < std::pair(key(b), b.*first);
    });
    std::vector<Area> result;
    for (const Area& area : areas) {
      if (!result.empty() && key(result.back()) == key(area) &&
          result.back().*last + 1 == area.*first) {
        result.back().*last = area.*last;
      } else {
        result.push_back(area);
      }
    }
    areas = std::move(result);
  };
  joinRun([](const Area& area) { return std::pair(area.firstRow, area.lastRow); },
          &Area::firstColumn, &Area::lastColumn);
  joinRun([](const Area& area) { return std::pair(area.firstColumn, area.lastColumn); },
          &Area::firstRow, &Area::lastRow);
  return areas;
}

}  // namespace

std::string markId(int number) {
  return std::string(idPrefix) + std::to_string(number);
}

std::optional<int> parseMarkId(std::string_view id) {
  if (!id.starts_with(idPrefix)) return std::nullopt;
  const auto number = readNumber(id.substr(idPrefix.size()));
  return number && *number > 0 ? number : std::nullopt;
}

std::string markName(const NumberedMark& numbered) {
  const Mark& mark = numbered.mark;
  std::string asked;
  if (mark.asked) {
    asked = " asked=" + addressText(mark.asked->areas) +
            " sheet=" + fieldText(mark.asked->sheet.sheet) +
            " book=" + fieldText(mark.asked->sheet.book);
  }
  return markId(numbered.number) + ": fill=" + fillText(mark.fill) +
         " cells=" + addressText(mark.areas) + asked +
         (mark.owner.empty() ? "" : " owner=" + mark.owner) + " formula=" + mark.formula;
}

std::optional<NumberedMark> parseMarkName(std::string_view name) {
  const std::size_t end = name.find(": ");
  if (end == std::string_view::npos) return std::nullopt;
  const auto number = parseMarkId(name.substr(0, end));
  std::string_view text = name.substr(end + 2);
  const auto fill = takeField(text, "fill=");
  if (!number || !fill) return std::nullopt;
  const auto color = *fill == noFill ? std::nullopt : parseColor(*fill);
  if (!color && *fill != noFill) return std::nullopt;
  const auto cells = takeField(text, "cells=");
  const auto areas = cells ? parseA1(*cells) : std::nullopt;
  auto asked = takeAsked(text);
  const auto owner = takeField(text, "owner=");
  constexpr std::string_view label = "formula=";
  if (!areas || !text.starts_with(label)) return std::nullopt;
  return NumberedMark{*number,
                      {std::string(text.substr(label.size())), color, *areas, std::move(asked),
                       std::string(owner.value_or(""))}};
}

std::vector<std::vector<Area>> drawnAreas(const std::vector<Mark>& marks) {
  std::vector<Area> covered;
  std::vector<std::vector<Area>> drawn;
  for (const Mark& mark : marks) {
    std::vector<Area> own;
    for (const Area& area : mark.fill ? mark.areas : std::vector<Area>()) {
      std::vector<Area> rest{area};
      for (const Area& hole : covered) rest = without(rest, hole);
      covered.insert(covered.end(), rest.begin(), rest.end());
      own.insert(own.end(), rest.begin(), rest.end());
    }
    drawn.push_back(joined(std::move(own)));
  }
  return drawn;
}

}  // namespace quorin::host::calc

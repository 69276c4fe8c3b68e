#include "kit/shapes/CellPlace.h"

namespace quorin::BridgeShapes {

std::optional<CellPlace> cellPlace(const JSONValue& payload) {
  const auto text = [&payload](const char* key) -> const std::string* {
    const JSONValue* const member = payload.member(key);
    return member ? member->string() : nullptr;
  };
  const std::string* const book = text("book");
  const std::string* const sheet = text("sheet");
  const std::string* const address = text("addr");
  if (!book || !sheet || !address) return std::nullopt;
  return CellPlace{*book, *sheet, *address};
}

JSONValue payloadOf(const CellPlace& place) {
  return JSONValue::Object{{"book", place.book}, {"sheet", place.sheet}, {"addr", place.address}};
}

}  // namespace quorin::BridgeShapes

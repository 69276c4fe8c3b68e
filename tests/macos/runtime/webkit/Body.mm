// What a page posts, as the objects that WebKit makes of it.
#include "kit/value/JSONText.h"
#import "tests/macos/runtime/foundation/Strings.h"
#import "tests/macos/runtime/webkit/Content.h"

namespace quorin {
namespace {

id objectOf(const JSONValue& value) {
  if (const std::string* text = value.string()) return made(*text);
  if (const double* number = value.number()) return [NSNumber numberWithDouble:*number];
  if (const bool* boolean = value.boolean()) return [NSNumber numberWithBool:*boolean];
  if (const JSONValue::Array* array = value.array()) {
    NSMutableArray* all = [[NSMutableArray alloc] init];
    for (const JSONValue& each : *array) [all addObject:objectOf(each)];
    return all;
  }
  if (const JSONValue::Object* object = value.object()) {
    NSMutableDictionary<NSString*, id>* all = [[NSMutableDictionary alloc] init];
    for (const auto& [key, each] : *object) all[made(key)] = objectOf(each);
    return all;
  }
  return [NSNull null];
}

}  // namespace

id bodyOfJSON(const std::string& text) {
  const ParsedJSON parsed = parseJSON(text);
  return parsed ? objectOf(*parsed.value) : [NSNull null];
}

}  // namespace quorin

#include "kit/value/AppleEvent.h"

namespace quorin {
namespace {

const AppleEventDescriptor* find(const AppleEventDescriptor::Fields& fields, FourCharCode keyword) {
  for (const auto& field : fields) {
    if (field.keyword == keyword) return &field.value;
  }
  return nullptr;
}

}  // namespace

const AppleEventDescriptor* AppleEvent::parameter(FourCharCode keyword) const {
  return find(parameters, keyword);
}

const AppleEventDescriptor* AppleEvent::attribute(FourCharCode keyword) const {
  return find(attributes, keyword);
}

}  // namespace quorin

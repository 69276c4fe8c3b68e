// AppleEvent and AppleEventReply: one message to an application and its answer, as plain values.
#pragma once

#include <optional>
#include <string>

#include "kit/value/AppleEventDescriptor.h"

namespace quorin {

inline constexpr FourCharCode keyDirectObject = fourCharCode("----");
inline constexpr FourCharCode keySubject = fourCharCode("subj");

struct AppleEvent {
  FourCharCode eventClass = 0;
  FourCharCode eventID = 0;
  AppleEventDescriptor::Fields parameters;  // "----" and labelled ones, in the order given
  AppleEventDescriptor::Fields attributes;  // "subj": the target of the tell, when there is one

  const AppleEventDescriptor* parameter(FourCharCode keyword) const;
  const AppleEventDescriptor* attribute(FourCharCode keyword) const;
};

struct AppleEventError {
  int number = 0;                                // never 0 in a reply that failed
  std::string message;                           // the application's own text, may be empty
  std::optional<AppleEventDescriptor> offender;  // the object that could not be resolved
};

struct AppleEventReply {
  std::optional<AppleEventDescriptor> result;  // none: the application answered without a value
  std::optional<AppleEventError> error;
};

}  // namespace quorin

#include "script/values/Failure.h"

#include "kit/value/EventErrors.h"
#include "script/values/Display.h"

namespace quorin::script {

void failCannotGet(const std::string& what, Value offender) {
  throw Failure{eventErrors::noSuchObject, "Can't get " + what + ".", std::move(offender)};
}

void failCannotCoerce(const Value& value, FourCharCode type) {
  throw Failure{
      eventErrors::cannotCoerce,
      "Can't make " + displayText(value) + " into type " + displayClass(type, nullptr) + ".",
      value,
      {},
      Value::type(type)};
}

void failStackOverflow() {
  throw Failure{eventErrors::stackOverflow, "Stack overflow."};
}

void failOutOfMemory() {
  throw Failure{eventErrors::outOfMemory, "Out of memory."};
}

}  // namespace quorin::script

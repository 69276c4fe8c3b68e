#include "script/run/EventSender.h"

#include "kit/value/EventErrors.h"
#include "script/values/Display.h"
#include "script/values/Failure.h"
#include "script/values/ValueDescriptors.h"

namespace quorin::script {
namespace {

std::string display(const AppleEventDescriptor& descriptor, Application& application) {
  return displayText(fromDescriptor(descriptor, &application), ApplicationName::omitted);
}

// The object that the error is about: the offender when named, else the direct parameter.
std::string objectOf(const AppleEvent& event, const AppleEventError& error,
                     Application& application) {
  const AppleEventDescriptor* object =
      error.offender ? &*error.offender : event.parameter(keyDirectObject);
  return object ? display(*object, application) : "application " + inQuotes(application.name());
}

std::string commandOf(const AppleEvent& event, Application& application) {
  const CommandTerm* command = application.terminology().command(event.eventClass, event.eventID);
  if (!command) command = languageTerminology().command(event.eventClass, event.eventID);
  if (command) return command->term;
  return "\xC2\xAB"
         "event " +
         displayCode(event.eventClass) + displayCode(event.eventID) + "\xC2\xBB";
}

bool is(const AppleEvent& event, FourCharCode eventClass, FourCharCode eventID) {
  return event.eventClass == eventClass && event.eventID == eventID;
}

std::string notHandledMessage(const AppleEvent& event, const AppleEventError& error,
                              Application& application) {
  if (is(event, fourCharCode("ascr"), fourCharCode("psbr"))) {
    const AppleEventDescriptor* name = event.parameter(fourCharCode("snam"));
    return "Can't continue " + std::string(name ? name->stringValue().value_or("") : "") + ".";
  }
  return objectOf(event, error, application) + " doesn't understand the " +
         commandOf(event, application) + " message.";
}

std::string cannotSetMessage(const AppleEvent& event, const AppleEventError& error,
                             Application& application) {
  const AppleEventDescriptor* value = event.parameter(fourCharCode("data"));
  const std::string object = objectOf(event, error, application);
  if (!value) return "Can't set " + object + ".";
  return "Can't set " + object + " to " + display(*value, application) + ".";
}

}  // namespace

std::string standardMessage(int number, const AppleEvent& event, const AppleEventError& error,
                            Application& application) {
  switch (number) {
    case eventErrors::userCancelled:
      return "User canceled.";
    case eventErrors::badParameter:
      return "Parameter error.";
    case eventErrors::outOfMemory:
      return "Out of memory.";
    case eventErrors::notRunning:
      return "Application isn't running.";
    case eventErrors::connectionLost:
      return "Connection is invalid.";
    case eventErrors::cannotCoerce:
      return "Can't make some data into the expected type.";
    case -1701:
      return "Some parameter is missing for " + commandOf(event, application) + ".";
    case -1703:
      return "Some data was the wrong type.";
    case -1704:
      return "Some parameter was invalid.";
    case -1705:
      return "Operation involving a list item failed.";
    case eventErrors::notUnderstood:
      return notHandledMessage(event, error, application);
    case eventErrors::timedOut:
      return "AppleEvent timed out.";
    case -1713:
      return "No user interaction allowed.";
    case eventErrors::missingParameter:
      return "Some parameter is missing for " + commandOf(event, application) + ".";
    case -1719:
      return "Can't get " + objectOf(event, error, application) + ". Invalid index.";
    case -1720:
      return "Invalid range.";
    case eventErrors::wrongArguments:
      return commandOf(event, application) + " doesn't match the parameters of the command.";
    case -1723:
      return "Can't get " + objectOf(event, error, application) + ". Access not allowed.";
    case -1725:
      return "The logical term is invalid.";
    case eventErrors::invalidComparison:
      return "Invalid comparison.";
    case eventErrors::noSuchObject:
      return "Can't get " + objectOf(event, error, application) + ".";
    case -1730:
      return "Container specified was an empty list.";
    case -1731:
      return "Unknown object type.";
    case eventErrors::notPermitted:
      return "Not authorized to send Apple events to " + std::string(application.name()) + ".";
    case -1753:
      return "Script error.";
    case eventErrors::handlerFailed:
      return "AppleEvent handler failed.";
    case -10001:
      return "A descriptor type mismatch occurred.";
    case -10002:
      return "Invalid key form.";
    case -10003:
      return "Can't set " + objectOf(event, error, application) + ". Access not allowed.";
    case -10004:
      return "A privilege violation occurred.";
    case -10005:
      return "The read operation wasn't allowed.";
    case eventErrors::notModifiable:
      return cannotSetMessage(event, error, application);
    case -10007:
      return "The index of the event is too large to be valid.";
    case -10008:
      return "The specified object is a property, not an element.";
    case -10011:
      return "Can't make or move that element into that container.";
    case eventErrors::badContainer:
      return "Can't make or move that element into that container.";
    case -10025:
      return "The combination of properties is invalid.";
    default:
      return "An error of type " + std::to_string(number) + " has occurred.";
  }
}

std::optional<Value> EventSender::send(Application& application, const AppleEvent& event) const {
  if (ignoresResponses) {
    application.send(event, std::chrono::milliseconds(0));
    return std::nullopt;
  }
  AppleEventReply reply = application.send(event, timeout);
  if (reply.error) {
    const AppleEventError& error = *reply.error;
    const std::string text = error.message.empty()
                                 ? standardMessage(error.number, event, error, application)
                                 : error.message;
    const AppleEventDescriptor* object =
        error.offender ? &*error.offender : event.parameter(keyDirectObject);
    throw Failure{error.number, std::string(application.name()) + " got an error: " + text,
                  object ? fromDescriptor(*object, &application) : Value()};
  }
  if (!reply.result) return std::nullopt;
  return fromDescriptor(std::move(*reply.result), &application);
}

}  // namespace quorin::script

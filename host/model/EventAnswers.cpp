#include "host/model/EventAnswers.h"

#include <array>

#include "host/model/Codes.h"
#include "host/model/Commands.h"
#include "kit/value/EventErrors.h"

namespace quorin::host {
namespace {

struct CommandEntry {
  FourCharCode suite, command;
  CommandResult (*answer)(Session&, const AppleEvent&);
};

constexpr std::array commands = {
    CommandEntry{codes::coreSuite, codes::get, getCommand},
    CommandEntry{codes::coreSuite, codes::set, setCommand},
    CommandEntry{codes::coreSuite, codes::count, countCommand},
    CommandEntry{codes::coreSuite, codes::exists, existsCommand},
    CommandEntry{codes::coreSuite, codes::make, makeCommand},
    CommandEntry{codes::coreSuite, codes::deleteObject, deleteCommand},
    CommandEntry{codes::coreSuite, codes::close, closeCommand},
    CommandEntry{codes::miscellaneousSuite, codes::select, selectCommand},
    CommandEntry{codes::miscellaneousSuite, codes::activate, activateCommand},
    CommandEntry{codes::excelSuite, codes::activateObject, activateObjectCommand},
    CommandEntry{codes::excelSuite, codes::goTo, goToCommand},
    CommandEntry{codes::excelSuite, codes::unite, unionCommand},
    CommandEntry{codes::excelSuite, codes::evaluate, evaluateCommand},
    CommandEntry{codes::excelSuite, codes::modifyAppliesToRange, modifyAppliesToRangeCommand},
    CommandEntry{codes::excelSuite, codes::setFirstPriority, setFirstPriorityCommand},
    CommandEntry{codes::tableSuite, codes::getAddress, getAddressCommand},
    CommandEntry{codes::tableSuite, codes::specialCells, specialCellsCommand},
};

AppleEventReply failure(const AppleEvent& event, int number, std::string message,
                        std::optional<AppleEventDescriptor> offender) {
  if (!offender)
    if (const AppleEventDescriptor* const direct = event.parameter(keyDirectObject))
      offender = *direct;
  return {std::nullopt, AppleEventError{number, std::move(message), std::move(offender)}};
}

}  // namespace

AppleEventReply answerEvent(Session& session, const AppleEvent& event) {
  try {
    for (const CommandEntry& entry : commands)
      if (entry.suite == event.eventClass && entry.command == event.eventID)
        return {entry.answer(session, event), std::nullopt};
    return failure(event, eventErrors::notUnderstood, {}, std::nullopt);
  } catch (const EventError& error) {
    return failure(event, error.number(), error.what(), error.offender());
  } catch (const SpreadsheetError& error) {
    return failure(event, error.number(), error.what(), std::nullopt);
  } catch (const std::exception& error) {
    return failure(event, eventErrors::handlerFailed, error.what(), std::nullopt);
  }
}

}  // namespace quorin::host

#include "host/model/ExcelObjectModel.h"

#include "host/dictionary/ExcelTerminology.h"
#include "host/model/EventAnswers.h"
#include "kit/value/EventErrors.h"

namespace quorin::host {

ExcelObjectModel::ExcelObjectModel(std::unique_ptr<Spreadsheet> spreadsheet, Clock clock)
    : owned_(std::move(spreadsheet)), clock_(std::move(clock)), session_{*owned_} {}

ExcelObjectModel::ExcelObjectModel(Spreadsheet& spreadsheet, Clock clock)
    : clock_(std::move(clock)), session_{spreadsheet} {}

ExcelObjectModel::~ExcelObjectModel() = default;

const script::Terminology& ExcelObjectModel::terminology() const {
  return excelTerminology();
}

bool ExcelObjectModel::isRunning() {
  return session_.spreadsheet.isRunning();
}

void ExcelObjectModel::handlerBegins(const CallTerms& terms) {
  session_.inHandler = true;
  session_.toldBook.clear();
  session_.spreadsheet.handlerBegins(terms);
}

std::optional<AppleEventError> ExcelObjectModel::handlerEnds() {
  session_.inHandler = false;
  session_.toldBook.clear();
  try {
    session_.spreadsheet.handlerEnds();
    return std::nullopt;
  } catch (const SpreadsheetError& error) {
    return AppleEventError{error.number(), error.what(), {}};
  }
}

AppleEventReply ExcelObjectModel::send(const AppleEvent& event, std::chrono::milliseconds timeout) {
  const auto started = clock_();
  if (timeout.count() > 0) session_.spreadsheet.eventBegins(started + timeout);
  AppleEventReply reply = answerEvent(session_, event);
  if (clock_() - started > timeout)
    return {std::nullopt, AppleEventError{eventErrors::timedOut, "AppleEvent timed out.", {}}};
  return reply;
}

}  // namespace quorin::host

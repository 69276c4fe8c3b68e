#include "tests/fakes/QuirkyExcel.h"

#include "host/model/Codes.h"
#include "tests/fakes/QuirkyAnswers.h"

namespace quorin::fakes {
namespace {

namespace codes = host::codes;
using Descriptor = AppleEventDescriptor;

const Descriptor& parameter(const AppleEvent& event, FourCharCode keyword) {
  static const Descriptor absent;
  const Descriptor* const given = event.parameter(keyword);
  return given == nullptr ? absent : *given;
}

bool isLong(const Descriptor& value, std::size_t longest) {
  const auto text = value.stringValue();
  return text && text->size() > longest;
}

}  // namespace

QuirkyExcel::QuirkyExcel(std::unique_ptr<script::Application> excel, ExcelQuirks switches)
    : quirks(switches), excel_(std::move(excel)) {}

void QuirkyExcel::failAt(int number, AppleEventError error) {
  failures_[number] = std::move(error);
}

void QuirkyExcel::loseAnswerOf(int number, AppleEventError error) {
  losses_[number] = std::move(error);
}

void QuirkyExcel::meanwhile(int number, std::function<void()> act) {
  meanwhile_[number] = std::move(act);
}

void QuirkyExcel::forget() {
  events_.clear();
  failures_.clear();
  losses_.clear();
  meanwhile_.clear();
}

AppleEventReply QuirkyExcel::died() {
  dead_ = true;
  return failed(-609, "Connection is invalid.");
}

AppleEventReply QuirkyExcel::send(const AppleEvent& event, std::chrono::milliseconds timeout) {
  events_.push_back(event);
  const int number = static_cast<int>(events_.size());
  const auto act = meanwhile_.find(number);
  if (act != meanwhile_.end()) act->second();
  const auto failure = failures_.find(number);
  if (failure != failures_.end()) return {std::nullopt, failure->second};
  AppleEventReply reply = answer(event, timeout);
  const auto loss = losses_.find(number);
  if (loss != losses_.end()) return {std::nullopt, loss->second};
  return reply;
}

AppleEventReply QuirkyExcel::answer(const AppleEvent& given, std::chrono::milliseconds timeout) {
  if (dead_) return died();
  AppleEvent event = given;
  for (AppleEventDescriptor::Field& field : event.parameters) {
    field.value = asRead(quirks, std::move(field.value));
    if (quirks.asksForMissingSheets && opensDialog(field.value, timeout)) dialog_ = true;
  }
  if (dialog_) return failed(-1712, "AppleEvent timed out.");
  if (auto refused = refusal(event)) return std::move(*refused);
  const bool setsFormula = isEvent(event, codes::coreSuite, codes::set) &&
                           mentions(parameter(event, keyDirectObject), codes::formula2) &&
                           isLong(parameter(event, codes::setTo), quirks.longestText);
  if (setsFormula && quirks.ignoresLongFormulas) return {};
  if (setsFormula && quirks.cutsLongFormulas)
    for (AppleEventDescriptor::Field& field : event.parameters)
      if (field.keyword == codes::setTo)
        field.value =
            Descriptor::text(std::string(field.value.stringValue()->substr(0, quirks.longestText)));
  AppleEventReply reply = spoiledCells(quirks, propertyRead(event), excel_->send(event, timeout));
  if (reply.error && reply.error->number == -609) return died();
  return spoiled(quirks, event, std::move(reply));
}

// What such an Excel refuses, and the questions that it leaves without an answer.
std::optional<AppleEventReply> QuirkyExcel::refusal(const AppleEvent& event) {
  const Descriptor& direct = parameter(event, keyDirectObject);
  if (isEvent(event, codes::excelSuite, codes::evaluate) && quirks.losesLongText &&
      isLong(parameter(event, codes::name), quirks.longestText))
    return AppleEventReply{Descriptor::missingValue(), std::nullopt};
  if (quirks.hidesRegions && mentions(direct, codes::currentRegion)) return failed(-50);
  if (isEvent(event, codes::excelSuite, codes::goTo) ||
      isEvent(event, codes::miscellaneousSuite, codes::select))
    quirks.selectsAShape = false;
  if (quirks.selectsAShape && mentions(direct, codes::selection)) return failed(-1728);
  if (quirks.refusesBulkReferences && propertyRead(event) == codes::references) {
    const Descriptor* const names = direct.field(codes::container);
    const Descriptor* const which = names == nullptr ? nullptr : names->field(codes::keyData);
    if (which != nullptr && which->type() == codes::absoluteOrdinal) return failed(-1700);
  }
  if (isEvent(event, codes::coreSuite, codes::make) &&
      parameter(event, codes::makeNew).codeValue() == codes::formatCondition) {
    const bool atEnd = parameter(event, codes::makeAt).type() == codes::insertion;
    if (quirks.makesOnlyAtEnd && !atEnd) return failed(-10024);
    if (quirks.makesOnlyAtRange && atEnd) return failed(-10024);
  }
  if (quirks.ignoresMoves && isEvent(event, codes::excelSuite, codes::modifyAppliesToRange))
    return AppleEventReply{};
  if (quirks.refusesToMoveConditions &&
      isEvent(event, codes::excelSuite, codes::modifyAppliesToRange))
    return failed(-1708);
  if (quirks.activatesOnlyInFront && isEvent(event, codes::excelSuite, codes::activateObject))
    return failed(-10000);
  return std::nullopt;
}

bool QuirkyExcel::opensDialog(const Descriptor& specifier, std::chrono::milliseconds timeout) {
  const Descriptor* const container = specifier.field(codes::container);
  if (container == nullptr) return false;
  if (opensDialog(*container, timeout)) return true;
  const Descriptor* const wanted = specifier.field(codes::desiredClass);
  const Descriptor* const form = specifier.field(codes::keyForm);
  if (wanted == nullptr || wanted->codeValue() != codes::worksheet || form == nullptr ||
      form->codeValue() != codes::formName)
    return false;
  const AppleEvent exists{codes::coreSuite, codes::exists, {{keyDirectObject, specifier}}, {}};
  const AppleEventReply reply = excel_->send(exists, timeout);
  return reply.result && reply.result->booleanValue() == false;
}

}  // namespace quorin::fakes

// A model over the known workbook in memory, and short ways to ask it.
#pragma once

#include <gtest/gtest.h>

#include "host/Address.h"
#include "host/model/ExcelObjectModel.h"
#include "tests/fakes/MemorySpreadsheet.h"
#include "tests/host/ExcelEvents.h"

namespace quorin::host {

class ObjectModelTest : public ::testing::Test {
 protected:
  using Descriptor = AppleEventDescriptor;

  ObjectModelTest() {
    auto owned = std::make_unique<fakes::MemorySpreadsheet>();
    memory_ = owned.get();
    memory_->script.useClock(&clock_);
    memory_->open(fakes::knownWorkbook());
    model_ = std::make_unique<ExcelObjectModel>(std::move(owned), [this] { return clock_.now(); });
  }

  fakes::MemorySpreadsheet& memory() { return *memory_; }

  AppleEventReply send(const AppleEvent& event) {
    return model_->send(event, std::chrono::seconds(10));
  }

  // What succeeds: its result, the null descriptor for none.
  Descriptor ask(const AppleEvent& event) {
    const AppleEventReply reply = send(event);
    if (reply.error)
      ADD_FAILURE() << "error " << reply.error->number << " " << reply.error->message;
    return reply.result.value_or(Descriptor::null());
  }
  Descriptor get(const Descriptor& object) { return ask(events::get(object)); }
  std::string text(const AppleEvent& event) {
    return std::string(ask(event).stringValue().value_or("(no text)"));
  }
  std::string addressOf(const Descriptor& object) { return text(events::getAddress(object)); }

  // What fails: its number, 0 for what does not.
  int errorOf(const AppleEvent& event) {
    const AppleEventReply reply = send(event);
    return reply.error ? reply.error->number : 0;
  }
  int errorOf(const Descriptor& object) { return errorOf(events::get(object)); }

  static Descriptor row(AppleEventDescriptor::Items items) {
    return Descriptor::list(std::move(items));
  }

  // A sheet and ranges of the known workbook, by name.
  static Descriptor data() { return events::worksheet("Data", events::workbook("Known.xlsx")); }
  static Descriptor odd() {
    return events::worksheet("It's a test", events::workbook("Known.xlsx"));
  }
  static Descriptor on(std::string address) { return events::range(std::move(address), data()); }

  void select(const char* sheet, const char* address) {
    memory_->goTo({{"Known.xlsx", sheet}, parse(address)});
  }
  static std::vector<Area> parse(const char* address) { return parseA1(address).value(); }

  fakes::ManualClock clock_;
  fakes::MemorySpreadsheet* memory_ = nullptr;
  std::unique_ptr<ExcelObjectModel> model_;
};

}  // namespace quorin::host

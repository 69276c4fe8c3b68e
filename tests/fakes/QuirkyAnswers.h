// How Excel for Mac spoils what it answers, for QuirkyExcel.
#pragma once

#include <string>

#include "kit/value/AppleEvent.h"
#include "tests/fakes/QuirkyExcel.h"

namespace quorin::fakes {

AppleEventReply failed(int number, std::string message = {});

bool isEvent(const AppleEvent& event, FourCharCode suite, FourCharCode command);

// The property that a `get` reads, 0 for every other event.
FourCharCode propertyRead(const AppleEvent& event);

// An answer with values of cells, spoiled; -609 stands for an Excel that died of it.
AppleEventReply spoiledCells(const ExcelQuirks& quirks, FourCharCode property,
                             AppleEventReply reply);

// Any other answer, spoiled.
AppleEventReply spoiled(const ExcelQuirks& quirks, const AppleEvent& event, AppleEventReply reply);

// The event with the texts of its ranges as such an Excel reads them; a text that it does not take
// becomes one that names no range.
AppleEventDescriptor asRead(const ExcelQuirks& quirks, AppleEventDescriptor descriptor);

// True if the specifier, or one inside it, is the property.
bool mentions(const AppleEventDescriptor& descriptor, FourCharCode property);

}  // namespace quorin::fakes

// Values as they stand in error messages: the way they would be written in a script. Pure.
#pragma once

#include <string>

#include "script/values/Value.h"

namespace quorin::script {

// {1, "a"}; range "A1" of worksheet "S", in the terms of the application that the object belongs
// to, with "of application ..." at the end only when asked for. Long values end in "...".
enum class ApplicationName { omitted, shown };
std::string displayText(const Value& value, ApplicationName name = ApplicationName::shown);

std::string displaySpecifier(const AppleEventDescriptor& descriptor,
                             const Application* application);
std::string displaySelector(const Selector& selector);
std::string displayProperty(FourCharCode code, const Application* application);
std::string displayConstant(const Constant& constant);
std::string displayClass(FourCharCode code, const Application* application, bool plural = false);
std::string displayCode(FourCharCode code);   // the four characters
std::string inQuotes(std::string_view text);  // between double quotes, escaped

}  // namespace quorin::script

// The classes and parts of the script's own values: items of lists, fields of records, elements of
// text, properties such as length. Throws Failure -1728 for what is not there.
#pragma once

#include <vector>

#include "script/values/TextRules.h"
#include "script/values/Value.h"

namespace quorin::script {

// The part of a value that is no application's object.
Value getPart(const Value& container, const Selector& selector, const TextRules& rules);

// Changes a list or record in place; everyone who shares it sees the change. Throws -10006 for what
// cannot be changed.
void setPart(const Value& container, const Selector& selector, Value value);

// What a reference means now; other values are themselves.
Value fetch(const Reference& reference);
Value dereference(const Value& value);

// Of a reference, the class of what it means.
FourCharCode classOf(const Value& value);
bool isOfClass(const Value& value, FourCharCode type);  // also number, for both kinds

std::vector<Value> toListItems(const Value& value);  // a list's items, a record's values, or one

// True if `from` holds, at any depth, the very list or record `target`.
bool reaches(const Value& from, const Value& target);

}  // namespace quorin::script

// Object specifiers as descriptors. Pure functions.
//
// An object is 'obj ' {want, form, seld, from}, in this order. Ordinals stand in seld as a
// descriptor of type 'abso' whose integer is 'firs', 'midd', 'last', 'any ' or 'all '. A range is
// 'rang' {star, stop} with objects whose from is 'ccnt'; a test is 'cmpd' {relo, obj1, obj2} or
// 'logi' {logc, term} over objects whose root is 'exmn'. The application itself is null.
#pragma once

#include "script/values/Operations.h"
#include "script/values/Value.h"

namespace quorin::script {

// The part of a container, which is an object or null. Throws Failure -2706 when containers nest
// deeper than any real document does.
AppleEventDescriptor buildSpecifier(const Selector& selector, AppleEventDescriptor container);

AppleEventDescriptor buildInsertion(FourCharCode position, AppleEventDescriptor object);

AppleEventDescriptor examinedObject();  // what a test looks at
bool isRootedInExamined(const AppleEventDescriptor& descriptor);

AppleEventDescriptor buildComparison(Operator operation, AppleEventDescriptor left,
                                     AppleEventDescriptor right);
AppleEventDescriptor buildLogical(FourCharCode connective, AppleEventDescriptor::Items terms);

}  // namespace quorin::script

// ObjectValue: one object of Foundation's object tree (a web view's message body, a property list)
// for Marshal::fromAny. Used on the thread of the tree.
#pragma once

#import <Foundation/Foundation.h>

#include "kit/value/AnyValue.h"

namespace quorin {

class ObjectValue : public AnyValue {
 public:
  explicit ObjectValue(id _Nullable object) : object_(object) {}

  Kind kind() const override;
  bool boolean() const override;
  double number() const override;
  std::string text() const override;
  void forEachItem(const ItemVisitor& visit) const override;
  void forEachMember(const MemberVisitor& visit) const override;

 private:
  id _Nullable object_;
};

}  // namespace quorin

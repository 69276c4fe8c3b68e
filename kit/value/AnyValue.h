// AnyValue: one object of a platform's own object tree (a web view's message body, a parsed
// property list), as the conversion to JSONValue needs to see it. An adapter wraps one object, maps
// one call to one call and decides nothing. Used on the thread of the tree it looks at.
#pragma once

#include <functional>
#include <string>

namespace quorin {

class AnyValue {
 public:
  enum class Kind {
    absent,   // no object at all
    null,     // the platform's null object
    boolean,  // truly a boolean, not a number that was made from one
    number,   // any other number
    text,
    list,        // of anything
    dictionary,  // with text keys alone
    other        // a date, data, a dictionary with other keys, anything else
  };
  using ItemVisitor = std::function<void(const AnyValue&)>;
  using MemberVisitor = std::function<void(std::string key, const AnyValue&)>;

  virtual ~AnyValue() = default;
  virtual Kind kind() const = 0;
  // Each is called only for its own kind.
  virtual bool boolean() const = 0;
  virtual double number() const = 0;
  virtual std::string text() const = 0;
  virtual void forEachItem(const ItemVisitor& visit) const = 0;
  virtual void forEachMember(const MemberVisitor& visit) const = 0;
};

}  // namespace quorin

// AppleEventDescriptor: one value as it travels in an Apple event, a type code and its data.
// A plain value type for any thread; an array or record owns its children. The macOS adapter maps
// it to NSAppleEventDescriptor one to one; the Linux engine and host speak it natively.
// Copying and comparing recurse once per level; destruction does not and is safe at any depth.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "kit/value/FourCharCode.h"

namespace quorin {

class AppleEventDescriptor {
 public:
  struct Field;                                     // one keyword and its value
  using Items = std::vector<AppleEventDescriptor>;  // a list's items, in order
  using Fields = std::vector<Field>;                // a record's fields, in order

  AppleEventDescriptor();  // the null descriptor
  AppleEventDescriptor(const AppleEventDescriptor&) = default;
  AppleEventDescriptor(AppleEventDescriptor&&) noexcept = default;
  AppleEventDescriptor& operator=(const AppleEventDescriptor& other);
  AppleEventDescriptor& operator=(AppleEventDescriptor&& other) noexcept;
  ~AppleEventDescriptor();

  static AppleEventDescriptor null();
  static AppleEventDescriptor boolean(bool value);            // 'true' or 'fals'
  static AppleEventDescriptor integer(std::int32_t value);    // 'long'
  static AppleEventDescriptor real(double value);             // 'doub'
  static AppleEventDescriptor text(std::string utf8);         // 'utxt', kept as UTF-8 here
  static AppleEventDescriptor typeCode(FourCharCode code);    // 'type'
  static AppleEventDescriptor enumerator(FourCharCode code);  // 'enum'
  static AppleEventDescriptor missingValue();                 // 'type' 'msng'
  static AppleEventDescriptor list(Items items = {});         // 'list'
  static AppleEventDescriptor record();                       // 'reco' without fields
  static AppleEventDescriptor record(Fields fields);          // 'reco'
  static AppleEventDescriptor specifier(Fields fields);       // 'obj '
  // Any other type: numbers of the other widths, text of the other encodings, raw data.
  static AppleEventDescriptor withInteger(FourCharCode type, std::int64_t value);
  static AppleEventDescriptor withReal(FourCharCode type, double value);
  static AppleEventDescriptor withText(FourCharCode type, std::string utf8);
  static AppleEventDescriptor withFields(FourCharCode type, Fields fields);
  static AppleEventDescriptor withData(FourCharCode type, std::string bytes);

  FourCharCode type() const { return type_; }
  bool isMissingValue() const;

  std::optional<bool> booleanValue() const;             // of 'true', 'fals' and 'bool'
  std::optional<std::int64_t> integerValue() const;     // of integers and of integral reals
  std::optional<double> doubleValue() const;            // of every number type
  std::optional<std::string_view> stringValue() const;  // valid UTF-8 of a text type, else none
  std::optional<FourCharCode> codeValue() const;        // of 'type', 'enum', 'prop' and 'keyw'

  // A list's items or a record's fields; empty for every other type, where changes to them are
  // lost. Positions are 0-based here.
  const Items& items() const;
  Items& items();
  const Fields& fields() const;
  Fields& fields();
  const AppleEventDescriptor* field(FourCharCode keyword) const;  // the first of that keyword

  bool operator==(const AppleEventDescriptor& other) const;

 private:
  using Data = std::variant<std::monostate, std::int64_t, double, std::string, Items, Fields>;
  AppleEventDescriptor(FourCharCode type, Data data);
  bool hasChildren() const;
  void takeChildren(Items& pending);  // moves the children that have children to `pending`

  FourCharCode type_;
  Data data_;
};

struct AppleEventDescriptor::Field {
  FourCharCode keyword;
  AppleEventDescriptor value;
  bool operator==(const Field& other) const = default;
};

}  // namespace quorin

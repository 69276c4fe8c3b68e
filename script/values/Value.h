// Value: one value of a running script. Small and cheap to copy: text and numbers by value; lists,
// records and references are shared, as AppleScript shares them. Used on the script's thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "kit/value/AppleEventDescriptor.h"

namespace quorin::script {

class Application;
class ListData;
class RecordData;
struct Specifier;
struct Reference;

// A class, an enumerator, a property's or a keyword's name as a value.
struct Constant {
  enum class Kind : std::uint8_t { type, enumerator, property, keyword };
  Kind kind = Kind::type;
  FourCharCode code = 0;
  // Spelled in the terms of this application; a null pointer for the language's own.
  const Application* origin = nullptr;
  bool operator==(const Constant& other) const { return kind == other.kind && code == other.code; }
};

struct Date {
  std::int64_t seconds = 0;  // since 1904-01-01 00:00, local time
  bool operator==(const Date&) const = default;
};

struct ApplicationObject {
  Application* application = nullptr;
  bool operator==(const ApplicationObject&) const = default;
};

struct ScriptSelf {  // the script, `me`
  bool operator==(const ScriptSelf&) const = default;
};

struct LanguageSelf {  // `AppleScript`, the owner of the text item delimiters
  bool operator==(const LanguageSelf&) const = default;
};

class Value {
 public:
  using List = std::shared_ptr<ListData>;
  using Record = std::shared_ptr<RecordData>;
  using SpecifierPointer = std::shared_ptr<const Specifier>;
  using ReferencePointer = std::shared_ptr<const Reference>;
  using OpaquePointer = std::shared_ptr<const AppleEventDescriptor>;  // of a type of its own
  using Data = std::variant<std::monostate, bool, std::int32_t, double, std::string, List, Record,
                            Constant, Date, SpecifierPointer, ReferencePointer, ApplicationObject,
                            ScriptSelf, LanguageSelf, OpaquePointer>;

  Value() = default;  // no value at all
  template <typename T>
  requires std::is_constructible_v<Data, T&&> &&
      (!std::is_same_v<std::remove_cvref_t<T>, Value>)&&(!std::is_pointer_v<std::decay_t<T>>)
          Value(T&& data)
      : data_(std::forward<T>(data)) {}
  Value(const char* text) : data_(std::string(text)) {}
  template <typename T>
  Value(const T*) = delete;

  static Value missing();
  static Value type(FourCharCode code) { return Constant{Constant::Kind::type, code}; }
  static Value makeList(std::vector<Value> items = {});
  // An integer when it is a whole number within the range of integers, else a real.
  static Value number(double value);

  bool isNothing() const { return std::holds_alternative<std::monostate>(data_); }
  bool isMissing() const;
  bool isNumber() const { return as<std::int32_t>() || as<double>(); }
  double number() const;  // of a number, else 0

  template <typename T>
  const T* as() const {
    return std::get_if<T>(&data_);
  }
  const std::string* text() const { return as<std::string>(); }
  const List* list() const { return as<List>(); }
  const Record* record() const { return as<Record>(); }
  const Specifier* specifier() const;
  const Reference* reference() const;
  Application* application() const;  // of an application or an object in one, else null

  const Data& data() const { return data_; }
  Data& data() { return data_; }

 private:
  Data data_;
};

// A list's items. What an application answered stays as it came until an item is asked for, so that
// a large grid can pass through a script untouched. Destruction does not recurse.
class ListData {
 public:
  ListData() = default;
  explicit ListData(std::vector<Value> items) : items_(std::move(items)) {}
  ListData(AppleEventDescriptor::Items items, Application* origin)
      : received_(std::move(items)), origin_(origin) {}
  ListData(const ListData&) = delete;
  ListData& operator=(const ListData&) = delete;
  ~ListData();

  std::size_t size() const { return received_.empty() ? items_.size() : received_.size(); }
  std::vector<Value>& items();
  Application* origin() const { return origin_; }
  // The items as received, or a null pointer once they have been looked at.
  const AppleEventDescriptor::Items* received() const {
    return received_.empty() ? nullptr : &received_;
  }
  AppleEventDescriptor::Items takeReceived() { return std::exchange(received_, {}); }

 private:
  std::vector<Value> items_;
  AppleEventDescriptor::Items received_;
  Application* origin_ = nullptr;
};

// A term's code or, with code 0, the script's own label.
struct RecordKey {
  FourCharCode code = 0;
  std::string label;  // as first spelled; compared without regard to case
  bool operator==(const RecordKey& other) const;
};

class RecordData {
 public:
  using Field = std::pair<RecordKey, Value>;

  RecordData() = default;
  explicit RecordData(std::vector<Field> fields) : fields_(std::move(fields)) {}
  RecordData(const RecordData&) = delete;
  RecordData& operator=(const RecordData&) = delete;
  ~RecordData();

  const std::vector<Field>& fields() const { return fields_; }
  std::vector<Field>& fields() { return fields_; }
  Value* find(const RecordKey& key);

 private:
  std::vector<Field> fields_;
};

// An object in an application: its descriptor, the 'obj ' record or an insertion location.
struct Specifier {
  AppleEventDescriptor descriptor;
  Application* application = nullptr;
};

enum class Form {
  property,  // `code`
  label,     // `label`, of a record or the script
  index,     // `key`
  name,      // `key`
  id,        // `key`
  first,
  middle,
  last,
  any,
  all,
  range,     // `key` to `upper`: values of the same kind
  next,      // the element after the container
  previous,  // the element before the container
  test       // those elements of which a condition is true
};

// Which part of a container is meant.
struct Selector {
  Form form = Form::property;
  FourCharCode code = 0;  // the class of an element, or the property
  std::string label;
  Value key, upper;
  AppleEventDescriptor test;
  const Application* origin = nullptr;  // in whose terms it is spelled
};

// A part of a value of the script itself, not yet fetched: `item 2 of list`.
struct Reference {
  Value container;
  Selector selector;
  std::shared_ptr<Value> variable;  // the whole of a property or global instead of a part
};

}  // namespace quorin::script

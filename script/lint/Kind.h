// What the text of a script tells of a value: a class of the language, an object of a class of the
// application, or nothing.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "script/terms/Terminology.h"

namespace quorin::script {

struct Kind {
  enum class Of {
    unknown,
    missing,
    integer,
    real,
    number,    // an integer or a real
    anything,  // what an application answers: text, a number, a date
    text,
    boolean,
    list,
    record,
    constant,
    application,
    object,     // of `className`
    collection  // several objects of `className`
  };
  Of of = Of::unknown;
  std::string className;  // lower case
  bool operator==(const Kind&) const = default;

  bool isForeign() const {
    return of == Of::application || of == Of::object || of == Of::collection;
  }
  // A value of the language that no property of an application can be asked of.
  bool isPlain() const {
    return of == Of::integer || of == Of::real || of == Of::number || of == Of::text ||
           of == Of::boolean || of == Of::anything;
  }
  // May be written with a decimal separator or an exponent.
  bool mayBeReal() const { return of == Of::real || of == Of::number || of == Of::anything; }
};

// The kind of a variable that holds values of both kinds.
Kind joined(const Kind& a, const Kind& b);

// An application's classes with their members.
class ClassModel {
 public:
  explicit ClassModel(const Terminology& terms) : terms_(terms) {}

  // True if anything is known of the class.
  bool describes(std::string_view className) const;
  // The member of that code, or spelled with a term of that code; also one of the parents'.
  const MemberTerm* member(std::string_view className, FourCharCode code, bool isElement) const;
  // What the dictionary calls a type.
  Kind kindOfType(std::string_view type) const;
  // An object of the class that a code names, or unknown.
  Kind objectOf(FourCharCode classCode, Kind::Of of) const;
  // A property of the application that gives another object when the user goes elsewhere.
  bool followsUser(FourCharCode property) const;
  const Terminology& terms() const { return terms_; }

 private:
  const Terminology& terms_;
};

}  // namespace quorin::script

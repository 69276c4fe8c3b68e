// Terminology: an application's scripting terms and their four-character codes, and the same for
// the words of the language itself. Built once from a table and immutable from then on, so any
// thread may read it. Terms are matched longest first and without regard to case.
//
// The table is text, one row a line, columns separated by tabs:
//   class       term  code  parent
//   plural      term  code  class
//   property    term  code  class    type  access
//   element     term  code  class    element class
//   enumerator  term  code
//   command     term  class and id code (8)  suite  result type
//   direct            ----  command  type  req|opt
//   parameter   term  code  command  type  req|opt
// A code is four characters or 0x and eight hexadecimal digits. Rows without a code are skipped.
// Where a term has several codes of one kind, the first listed counts.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "kit/value/FourCharCode.h"

namespace quorin::script {

struct ParameterTerm {
  std::string label;               // as the dictionary spells it
  std::vector<std::string> words;  // lower case
  FourCharCode code = 0;
  std::string type;
  bool required = false;
};

struct CommandTerm {
  std::string term;
  FourCharCode eventClass = 0;
  FourCharCode eventID = 0;
  bool takesDirect = false;
  bool directRequired = false;
  std::string directType;
  std::string resultType;
  std::vector<ParameterTerm> parameters;
};

// Everything one spelling means.
struct Term {
  std::string text;                    // as the dictionary spells it
  std::optional<FourCharCode> type;    // class
  std::optional<FourCharCode> plural;  // the class whose plural it is
  std::optional<FourCharCode> property;
  std::optional<FourCharCode> enumerator;
  const CommandTerm* command = nullptr;
};

// One property or element of one class, for checks of scripts.
struct MemberTerm {
  std::string owner;
  std::string term;
  FourCharCode code = 0;
  std::string type;
  bool isElement = false;
  bool writable = false;
};

class Terminology {
 public:
  explicit Terminology(std::string_view table);
  ~Terminology();
  Terminology(const Terminology&) = delete;
  Terminology& operator=(const Terminology&) = delete;

  struct Match {
    const Term* term = nullptr;  // a null pointer when nothing matches
    std::size_t words = 0;
  };
  // The longest term that the lower-case words begin with.
  Match match(std::span<const std::string_view> words) const;

  const Term* find(std::string_view term) const;  // the whole spelling, in any case
  bool isLabel(std::string_view term) const;      // a parameter label of some command

  // The spelling to display for a code, or none.
  std::optional<std::string_view> className(FourCharCode code) const;
  std::optional<std::string_view> propertyName(FourCharCode code) const;
  std::optional<std::string_view> enumeratorName(FourCharCode code) const;
  const CommandTerm* command(FourCharCode eventClass, FourCharCode eventID) const;

  const std::vector<MemberTerm>& members() const;
  // The class that a class, in lower case, has its other members from; empty when none.
  std::string_view parentOf(std::string_view className) const;

 private:
  struct Tables;
  std::unique_ptr<Tables> tables_;
};

// The words of AppleScript itself and of the standard suites that every application understands.
const Terminology& languageTerminology();

}  // namespace quorin::script

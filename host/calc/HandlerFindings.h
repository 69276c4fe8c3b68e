// HandlerFindings: whether a handler missed what it looked for, so that marks and shown lines may
// be left under names that are gone. A handler that asked for names and for nothing else has. So
// has one that found no mark where it looked: another sheet may have the name now. Call thread.
#pragma once

namespace quorin::host::calc {

class HandlerFindings {
  enum class Asked { nothing, names, more };
  enum class Marks { unasked, missed, metOrMade };

 public:
  void begin() {
    asked_ = Asked::nothing;
    marks_ = Marks::unasked;
  }

  void askedForMore() { asked_ = Asked::more; }

  // What is asked while one lives counts as a question for names.
  class NamesAsked {
   public:
    explicit NamesAsked(HandlerFindings& findings)
        : asked_(findings.asked_), before_(findings.asked_) {}
    ~NamesAsked() { asked_ = before_ == Asked::more ? Asked::more : Asked::names; }
    NamesAsked(const NamesAsked&) = delete;
    NamesAsked& operator=(const NamesAsked&) = delete;

   private:
    Asked& asked_;
    const Asked before_;
  };

  void lookedForMarks(bool met) {
    if (met || marks_ == Marks::unasked) marks_ = met ? Marks::metOrMade : Marks::missed;
  }
  void madeMark() { marks_ = Marks::metOrMade; }

  bool missed() const { return asked_ == Asked::names || marks_ == Marks::missed; }

 private:
  Asked asked_ = Asked::nothing;
  Marks marks_ = Marks::unasked;
};

}  // namespace quorin::host::calc

// HandlerFindings: whether a handler missed what it looked for, so that marks and shown rows may
// be left under names that are gone. A handler that asked for names and for nothing else has. So
// has one that found no mark where it looked: another sheet may have the name now. One that looks
// for marks and makes none takes them away. Call thread.
#pragma once

namespace quorin::host::calc {

class HandlerFindings {
  enum class Asked { nothing, names, more };
  enum class Marks { unasked, missed, met, made };

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
    if (marks_ == Marks::unasked) marks_ = Marks::missed;
    if (met && marks_ == Marks::missed) marks_ = Marks::met;
  }
  void madeMark() { marks_ = Marks::made; }

  bool missed() const { return asked_ == Asked::names || marks_ == Marks::missed; }
  bool tookMarks() const { return marks_ == Marks::met; }

 private:
  Asked asked_ = Asked::nothing;
  Marks marks_ = Marks::unasked;
};

}  // namespace quorin::host::calc

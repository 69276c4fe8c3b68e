#include "tests/fakes/CallScript.h"

#include "host/Spreadsheet.h"

namespace quorin::fakes {

void CallScript::atCall(int number, Fault fault) {
  const std::lock_guard lock(mutex_);
  byNumber_[number] = std::move(fault);
}

void CallScript::atEvery(const std::string& name, Fault fault) {
  const std::lock_guard lock(mutex_);
  byName_[name] = std::move(fault);
}

void CallScript::release() {
  const std::lock_guard lock(mutex_);
  released_ = true;
  changed_.notify_all();
}

void CallScript::waitUntilHung() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return hung_ > 0; });
}

void CallScript::clear() {
  const std::lock_guard lock(mutex_);
  calls_.clear();
  byNumber_.clear();
  byName_.clear();
}

void CallScript::useClock(ManualClock* clock) {
  const std::lock_guard lock(mutex_);
  clock_ = clock;
}

std::vector<std::string> CallScript::calls() const {
  const std::lock_guard lock(mutex_);
  return calls_;
}

std::size_t CallScript::count() const {
  const std::lock_guard lock(mutex_);
  return calls_.size();
}

void CallScript::enter(const std::string& name, const std::string& detail) {
  std::unique_lock lock(mutex_);
  calls_.push_back(detail.empty() ? name : name + " " + detail);
  // Copies: the test may change the plan while a call hangs.
  Fault numbered, named;
  if (const auto it = byNumber_.find(static_cast<int>(calls_.size())); it != byNumber_.end())
    numbered = it->second;
  if (const auto it = byName_.find(name); it != byName_.end()) named = it->second;
  actOut(numbered, lock);
  actOut(named, lock);
}

void CallScript::actOut(const Fault& fault, std::unique_lock<std::mutex>& lock) {
  if (fault.hangs && !released_) {
    ++hung_;
    changed_.notify_all();
    changed_.wait(lock, [this] { return released_; });
    --hung_;
  }
  if (clock_ != nullptr) clock_->advance(fault.takes);
  if (fault.number != 0) throw host::SpreadsheetError(fault.number, fault.message);
}

}  // namespace quorin::fakes

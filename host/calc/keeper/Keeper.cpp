#include "host/calc/keeper/Keeper.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <com/sun/star/frame/theGlobalEventBroadcaster.hpp>
#include <cstdint>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;
using namespace std::chrono_literals;

constexpr auto firstAnswer = 60s;
constexpr auto longestSave = 10s;      // that the owner is kept waiting for
constexpr auto pauseAfterTurn = 50ms;  // the next one may follow at once
constexpr auto leastPause = 20ms;      // between two looks, and
constexpr int pauseForEachLook = 4;    // so many times what the last one took
constexpr auto lastCallsOfTheDead = 2s;

// Every workbook that is open, also one without a window.
std::vector<Workbook> openWorkbooks(
    const Reference<css::document::XDocumentEventBroadcaster>& events) {
  std::vector<Workbook> open;
  const auto all =
      Reference<css::frame::XGlobalEventBroadcaster>(events, UNO_QUERY_THROW)->createEnumeration();
  while (all->hasMoreElements()) {
    Reference<css::uno::XInterface> document;
    all->nextElement() >>= document;
    try {
      if (auto workbook = asWorkbook(document)) open.push_back(std::move(*workbook));
    } catch (const css::uno::Exception&) {
      // It is being closed, as the hidden ones of an owner that died are.
    }
  }
  return open;
}

int millisecondsUntil(std::chrono::steady_clock::time_point when) {
  const auto left =
      std::chrono::ceil<std::chrono::milliseconds>(when - std::chrono::steady_clock::now());
  return static_cast<int>(std::max<std::int64_t>(left.count(), 0));
}

}  // namespace

Wake::Wake() : descriptor_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

Wake::~Wake() {
  ::close(descriptor_);
}

void Wake::operator()() const {
  const std::uint64_t one = 1;
  [[maybe_unused]] const auto written = ::write(descriptor_, &one, sizeof one);
}

void Wake::clear() const {
  std::uint64_t count = 0;
  [[maybe_unused]] const auto got = ::read(descriptor_, &count, sizeof count);
}

Keeper::Keeper(const OfficeAddress& office, Owner owner, int socket)
    : owner_(std::move(owner)),
      socket_(socket),
      office_(static_cast<int>(::syscall(SYS_pidfd_open, office.process, 0))),
      connection_(office, firstAnswer),
      events_(css::frame::theGlobalEventBroadcaster::get(connection_.context()), UNO_QUERY_THROW),
      changes_(connection_.context()),
      shown_(connection_.context(), owner_),
      hook_(new SaveHook(
          owner_, changes_, shown_, [this] { wake_(); },
          [this] {
            opened_ = true;
            wake_();
          })) {
  changes_.prepare();  // not in a save
  events_->addDocumentEventListener(hook_.get());
}

Keeper::~Keeper() {
  followers_.clear();
  try {
    events_->removeDocumentEventListener(hook_.get());
  } catch (const css::uno::Exception&) {
    // The office is gone.
  }
  if (office_ >= 0) ::close(office_);
}

void Keeper::run() {
  answer();
  for (;;) {
    std::array<pollfd, 3> watched{pollfd{socket_, POLLIN, 0}, pollfd{wake_.descriptor(), POLLIN, 0},
                                  pollfd{office_, POLLIN, 0}};
    if (::poll(watched.data(), watched.size(), patience()) < 0) continue;
    if (watched[2].revents != 0 || !connection_.isAlive()) return;
    if (watched[0].revents != 0 && !readOwner()) break;
    wake_.clear();
    if (!ownersTurn_) lookAround();
  }
  // In its owner's turn a call of his may be on its way: what that shows or hides is not the
  // user's.
  if (!ownersTurn_) lookAtRows();
  removeAll();
}

// In milliseconds; without end where there is nothing to do before the next news.
int Keeper::patience() const {
  const bool isNew = !turn_.empty() && (!all_ || opened_);
  const bool waiting =
      isNew || std::any_of(followers_.begin(), followers_.end(),
                           [](const MarkFollower& one) { return one.isChanged(); });
  if (!waiting || ownersTurn_ || !hook_->turn()) return -1;
  return millisecondsUntil(notBefore_);
}

void Keeper::lookAround() {
  const auto start = Clock::now();
  if (start < notBefore_ || !hook_->turn()) return;
  watchNew();
  lookAtRows();
  forEachChanged(&MarkFollower::look);
  const auto now = Clock::now();
  notBefore_ = now + std::max<Clock::duration>(pauseForEachLook * (now - start), leastPause);
}

// What fails is tried again later, unless the workbook was closed. The owner's turn is not held up
// by workbooks that it has nothing to do with.
void Keeper::forEachChanged(Work work) {
  followers_.remove_if([this, work](MarkFollower& follower) {
    try {
      const bool due = !ownersTurn_ || follower.uid() == turn_ ||
                       (follower.hasMarks() && work != &MarkFollower::tieNew);
      if (due && follower.isChanged()) (follower.*work)();
      return false;
    } catch (const css::uno::Exception&) {
      return !follower.isOpen();
    }
  });
}

// What fails, or is not what the user sees because his workbook is being saved, is done again. A
// turn waits for this in every workbook: what its owner takes back may have been copied there.
void Keeper::lookAtRows() {
  if (shown_.isEmpty()) return;
  watchNew();
  for (MarkFollower& follower : followers_) {
    try {
      follower.lookAtRows(shown_);
    } catch (const css::uno::Exception&) {
      // The next look, unless the workbook was closed.
    }
  }
}

void Keeper::answer() const {
  [[maybe_unused]] const auto sent = ::send(socket_, "+", 1, MSG_NOSIGNAL);
}

bool Keeper::readOwner() {
  std::array<char, 256> bytes{};
  const ssize_t count = ::recv(socket_, bytes.data(), bytes.size(), 0);
  if (count < 0 && errno == EINTR) return true;
  if (count <= 0) return false;
  received_.append(bytes.data(), static_cast<std::size_t>(count));
  for (std::size_t end = 0; (end = received_.find('\n')) != std::string::npos;) {
    const std::string request = received_.substr(0, end);
    received_.erase(0, end + 1);
    obey(request);
  }
  return true;
}

void Keeper::obey(const std::string& request) {
  constexpr std::string_view begin = "begin ";
  if (request.starts_with(begin)) {
    ownersTurn_ = true;
    awaitSaves();
    turn_ = request.substr(begin.size());
    lookAtRows();
    forEachChanged(&MarkFollower::followCells);
    watch(turn_);
  } else if (request == "end") {
    forEachChanged(&MarkFollower::tieNew);
    ownersTurn_ = false;
    notBefore_ = std::max(notBefore_, Clock::now() + pauseAfterTurn);
  }
  answer();
}

// A mark that is made while its workbook is being saved would get into the file.
void Keeper::awaitSaves() const {
  const auto deadline = Clock::now() + longestSave;
  while (!hook_->turn() && connection_.isAlive() && Clock::now() < deadline) {
    std::array<pollfd, 2> watched{pollfd{wake_.descriptor(), POLLIN, 0},
                                  pollfd{office_, POLLIN, 0}};
    ::poll(watched.data(), watched.size(), millisecondsUntil(deadline));
    if (watched[1].revents != 0) return;
    wake_.clear();
  }
}

MarkFollower* Keeper::followerOf(const std::string& uid) {
  const auto found = std::find_if(followers_.begin(), followers_.end(),
                                  [&](const MarkFollower& one) { return one.uid() == uid; });
  return found == followers_.end() ? nullptr : &*found;
}

// From now on, with the marks that are in the workbook: another keeper may have left them.
void Keeper::watch(const std::string& uid) {
  if (followerOf(uid) != nullptr) return;
  try {
    for (const Workbook& workbook : openWorkbooks(events_)) {
      if (workbook.uid != uid) continue;
      followers_.emplace_back(uid, owner_, workbook, changes_, *hook_, [this] { wake_(); })
          .tieNew();
    }
  } catch (const css::uno::Exception&) {
    // The owner will notice by itself that the workbook or the office is gone.
  }
}

// Sheets and cells can be copied into any workbook that the user has open, marks and all. Before
// the owner's first turn there are no marks, and nobody needs to be listened to.
void Keeper::watchNew() {
  if (turn_.empty() || (all_ && !opened_.exchange(false))) return;
  all_ = true;
  try {
    for (const Workbook& workbook : openWorkbooks(events_)) {
      if (!workbook.model->getCurrentController().is()) continue;  // a hidden one of the owner's
      if (followerOf(workbook.uid) != nullptr) continue;
      followers_.emplace_back(workbook.uid, owner_, workbook, changes_, *hook_, [this] { wake_(); })
          .tieWithNextLook();
    }
  } catch (const css::uno::Exception&) {
    opened_ = true;  // one of them is being closed: the next look
  }
}

// The owner may have died with a call on its way: what that makes is waited for. What fails while
// workbooks of the dead owner's are being closed is done again.
void Keeper::removeAll() {
  hook_->letGo();
  const auto deadline = Clock::now() + (ownersTurn_ ? lastCallsOfTheDead : 0s);
  const auto giveUp = Clock::now() + longestSave;
  for (;;) {
    wake_.clear();
    const bool failed = !removeOnce();
    if (failed && (!connection_.isAlive() || Clock::now() > giveUp)) return;
    pollfd news{wake_.descriptor(), POLLIN, 0};
    const auto until = failed ? Clock::now() + leastPause : deadline;
    if (::poll(&news, 1, millisecondsUntil(until)) == 0 && !failed) return;
  }
}

// The records that are left ask for these rows again: then there is nothing to do any more, or the
// user has shown them himself since.
void Keeper::hideRows(const Workbook& workbook) {
  const auto all = shown_.entries(workbook);
  auto entries = all, owed = shown_.owed(workbook);
  shown_.leaveToOthers(entries);
  shown_.leaveToOthers(owed);
  hideShownRows(changes_, workbook, entries, all);
  shown_.set(entries, ShownRows::State::over);
  shown_.forget(owed);
  takeNotes(changes_, workbook, shown_);
}

// False when it may be worth another try.
bool Keeper::removeOnce() {
  bool done = true;
  try {
    for (const Workbook& workbook : openWorkbooks(events_)) {
      try {
        removeMarks(owner_, changes_, workbook);
        hideRows(workbook);
      } catch (const css::uno::Exception&) {
        done = false;  // it may have been closed: then the next try does not find it
      }
    }
  } catch (const css::uno::Exception&) {
    return false;
  }
  return done;
}

}  // namespace quorin::host::calc

// Keeper: what the marks keeper does from its start to its end. Main thread.
#pragma once

#include <atomic>
#include <chrono>
#include <com/sun/star/document/XDocumentEventBroadcaster.hpp>
#include <list>
#include <optional>
#include <string>

#include "host/calc/keeper/MarkFollower.h"
#include "host/calc/keeper/SaveHook.h"
#include "host/calc/office/OfficeConnection.h"

namespace quorin::host::calc {

// A descriptor of its own that any thread makes readable.
class Wake {
 public:
  Wake();
  ~Wake();
  Wake(const Wake&) = delete;
  Wake& operator=(const Wake&) = delete;
  void operator()() const;
  void clear() const;
  int descriptor() const { return descriptor_; }

 private:
  const int descriptor_;
};

class Keeper {
 public:
  // Of that owner, with which it speaks over the socket. Throws SpreadsheetError when the office
  // cannot be reached.
  Keeper(const OfficeAddress& office, Owner owner, int socket);
  ~Keeper();
  Keeper(const Keeper&) = delete;
  Keeper& operator=(const Keeper&) = delete;

  // Returns when the owner or the office is gone, with every mark of the owner's taken back and
  // every row and column that it has shown hidden in the first case.
  void run();

 private:
  using Clock = std::chrono::steady_clock;
  void watch(const std::string& uid);
  void watchNew();
  MarkFollower* followerOf(const std::string& uid);
  void answer() const;
  bool readOwner();  // false when there is none any more
  void obey(const std::string& request);
  void awaitSaves() const;
  using Work = void (MarkFollower::*)();
  void forEachChanged(Work work);
  void lookAround();
  void lookAtRows();
  int patience() const;
  void removeAll();
  bool removeOnce();
  void hideRows(const Workbook& workbook);

  const Owner owner_;
  const int socket_, office_;
  const Wake wake_;
  OfficeConnection connection_;
  css::uno::Reference<css::document::XDocumentEventBroadcaster> events_;
  QuietChanges changes_;
  const ShownRows shown_;
  const rtl::Reference<SaveHook> hook_;
  std::list<MarkFollower> followers_;
  bool all_ = false;  // they are of every workbook that had a window when this was looked at last
  std::atomic<bool> opened_ = false;  // one has got a window since
  std::string received_;
  std::string turn_;  // the workbook that the owner's turn is in
  bool ownersTurn_ = false;
  Clock::time_point notBefore_;
};

}  // namespace quorin::host::calc

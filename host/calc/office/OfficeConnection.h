// OfficeConnection: one bridge to one office over its pipe. Made, used and destroyed on the call
// thread; interrupt() may come from any thread and makes a call in progress fail at once.
//
// A bridge that was lost stays lost: drop every reference obtained through it, then the connection,
// and make a new one. A reference kept would make a new bridge to the same office useless.
#pragma once

#include <atomic>
#include <chrono>
#include <com/sun/star/bridge/XBridge.hpp>
#include <com/sun/star/connection/XConnection.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <memory>
#include <mutex>
#include <string>

#include "host/calc/office/OfficeSource.h"
#include "host/calc/office/OfficeWatchdog.h"

namespace quorin::host::calc {

class OfficeConnection {
 public:
  // Throws SpreadsheetError: -600 when there is no such pipe or the office ends, -1712 when it does
  // not answer within `patience`.
  OfficeConnection(const OfficeAddress& office, std::chrono::milliseconds patience);
  ~OfficeConnection();
  OfficeConnection(const OfficeConnection&) = delete;
  OfficeConnection& operator=(const OfficeConnection&) = delete;

  const css::uno::Reference<css::uno::XComponentContext>& context() const { return context_; }
  bool isAlive() const { return *alive_; }
  void interrupt();

 private:
  bool tryToConnect(const std::string& pipe);
  void hangUp();
  void release();

  std::shared_ptr<std::atomic<bool>> alive_ = std::make_shared<std::atomic<bool>>(true);
  std::mutex mutex_;
  css::uno::Reference<css::connection::XConnection> connection_;
  css::uno::Reference<css::bridge::XBridge> bridge_;
  css::uno::Reference<css::uno::XComponentContext> context_;
  std::unique_ptr<OfficeWatchdog> watchdog_;
};

}  // namespace quorin::host::calc

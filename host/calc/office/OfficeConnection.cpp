#include "host/calc/office/OfficeConnection.h"

#include <com/sun/star/bridge/BridgeFactory.hpp>
#include <com/sun/star/connection/Connector.hpp>
#include <com/sun/star/connection/NoConnectException.hpp>
#include <com/sun/star/lang/DisposedException.hpp>
#include <com/sun/star/lang/XComponent.hpp>
#include <cppuhelper/implbase1.hxx>
#include <thread>

#include "host/Spreadsheet.h"
#include "host/calc/office/LocalContext.h"
#include "host/calc/office/OfficeProcess.h"
#include "host/calc/uno/OfficeFiles.h"
#include "host/calc/uno/Text.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

class BridgeEnd : public cppu::WeakImplHelper1<css::lang::XEventListener> {
 public:
  explicit BridgeEnd(std::shared_ptr<std::atomic<bool>> alive) : alive_(std::move(alive)) {}
  void SAL_CALL disposing(const css::lang::EventObject&) override { *alive_ = false; }

 private:
  const std::shared_ptr<std::atomic<bool>> alive_;
};

}  // namespace

OfficeConnection::OfficeConnection(const OfficeAddress& office,
                                   std::chrono::milliseconds patience) {
  if (!isOwnPipe(office.pipe))
    throw SpreadsheetError(eventErrors::notRunning, "LibreOffice is not listening");
  if (!waitWhileStopped(office.process, patience)) {
    throw SpreadsheetError(eventErrors::timedOut, "LibreOffice does not answer");
  }
  watchdog_ = std::make_unique<OfficeWatchdog>(office.process, [this] { hangUp(); });
  watchdog_->setDeadline(std::chrono::steady_clock::now() + patience);
  // An office that is still starting refuses at times though its pipe is there, or hangs up again.
  constexpr std::chrono::milliseconds pause{10};
  while (!tryToConnect(office.pipe)) std::this_thread::sleep_for(pause);
  watchdog_->setDeadline(std::nullopt);
}

// False when the office refused or hung up and may be asked again.
bool OfficeConnection::tryToConnect(const std::string& pipe) {
  try {
    const auto connection =
        css::connection::Connector::create(localContext())->connect("pipe,name=" + toUno(pipe));
    const auto bridge = css::bridge::BridgeFactory::create(localContext())
                            ->createBridge(rtl::OUString(), "urp", connection, nullptr);
    const auto alive = std::make_shared<std::atomic<bool>>(true);
    Reference<css::lang::XComponent>(bridge, UNO_QUERY_THROW)
        ->addEventListener(new BridgeEnd(alive));
    {
      const std::lock_guard lock(mutex_);
      connection_ = connection;
      bridge_ = bridge;
      alive_ = alive;
    }
    if (watchdog_->hasFired()) hangUp();
    context_.set(bridge->getInstance("StarOffice.ComponentContext"), UNO_QUERY_THROW);
    return true;
  } catch (const css::uno::Exception& failure) {
    const bool late = watchdog_->deadlinePassed(), over = watchdog_->hasFired();
    context_.clear();
    if (over) watchdog_.reset();
    release();
    if (late) throw SpreadsheetError(eventErrors::timedOut, "LibreOffice does not answer");
    if (over) {
      throw SpreadsheetError(eventErrors::notRunning,
                             "LibreOffice cannot be reached: " + toText(failure.Message));
    }
    return false;
  }
}

OfficeConnection::~OfficeConnection() {
  watchdog_.reset();
  context_.clear();
  release();
}

void OfficeConnection::interrupt() {
  if (watchdog_) watchdog_->interrupt();
}

// On the watchdog's thread, while the call thread may be in a call. The bridge's own reader then
// finds the line dead and frees that call. To dispose the bridge here would also destroy what a
// call that is just being sent is about to wait in.
void OfficeConnection::hangUp() {
  Reference<css::connection::XConnection> connection;
  {
    const std::lock_guard lock(mutex_);
    connection = connection_;
    *alive_ = false;
  }
  if (!connection.is()) return;
  try {
    connection->close();
  } catch (const css::uno::Exception&) {
    // It was closed already.
  }
}

// On the call thread, which is in no call.
void OfficeConnection::release() {
  Reference<css::lang::XComponent> bridge;
  {
    const std::lock_guard lock(mutex_);
    bridge.set(bridge_, UNO_QUERY);
    bridge_.clear();
    connection_.clear();
    *alive_ = false;
  }
  if (!bridge.is()) return;
  try {
    bridge->dispose();
  } catch (const css::uno::Exception&) {
    // It was gone already.
  }
}

}  // namespace quorin::host::calc

// OfficeCalls: work in the office, one call after the other. It connects at the first call, and
// again after the office has quit, died or been started anew. Call thread, but for quit() and
// isRunning().
//
// A call lasts as long as the office takes. What fails is a SpreadsheetError: -609 when the office
// dies under the call, -600 once quit() was called, -10000 when the office refuses.
#pragma once

#include <atomic>
#include <chrono>
#include <com/sun/star/lang/DisposedException.hpp>
#include <functional>
#include <memory>
#include <mutex>

#include "host/calc/CalcSession.h"
#include "host/calc/RequestMemory.h"
#include "host/calc/office/OfficeSource.h"
#include "host/calc/uno/Text.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {

class OfficeCalls {
 public:
  // `patience` bounds the wait for a first answer when connecting. The traces, the limits and the
  // memory, which forgets what a call that failed has made doubtful, are the owner's.
  OfficeCalls(std::shared_ptr<OfficeSource> source, std::chrono::milliseconds patience,
              RowTraces& traces, RequestMemory& memory, const CallLimits& limits);
  ~OfficeCalls();

  void onKeeperLost(std::function<void()> lost) { keeperLost_ = std::move(lost); }
  bool isRunning() { return source_->isRunning(); }

  // Makes a call in progress and all later ones fail at once. From any thread.
  void quit();

  // As CalcSession does, whichever session it will be.
  void keepReadings(bool keep);

  // The one that there is, whose office may be gone; null when there is none.
  CalcSession* session() { return session_.get(); }
  // The same, but null when the office is gone or quit() was called.
  CalcSession* livingSession();

  // Runs the work, once more when it met a document that was closed meanwhile.
  template <typename Work>
  auto run(Work work) {
    for (bool again = true;; again = false) {
      CalcSession& office = connected();
      try {
        return work(office);
      } catch (const css::lang::DisposedException&) {
        forgetRead();
        // One that is still found is not gone, whatever it says.
        if (!again)
          throw SpreadsheetError(eventErrors::handlerFailed, "The workbook is being closed");
      } catch (const css::uno::RuntimeException& failure) {
        forgetRead();
        throw SpreadsheetError(eventErrors::handlerFailed,
                               "LibreOffice refused: " + toText(failure.Message));
      } catch (const css::uno::Exception& failure) {
        throw SpreadsheetError(eventErrors::handlerFailed,
                               "LibreOffice refused: " + toText(failure.Message));
      }
    }
  }

 private:
  CalcSession& connected();
  void disconnect();
  void forgetRead();

  const std::shared_ptr<OfficeSource> source_;
  const std::chrono::milliseconds patience_;
  RowTraces& traces_;
  RequestMemory& memory_;
  const CallLimits& limits_;
  std::function<void()> keeperLost_;  // or none
  bool keeping_ = false;
  std::atomic<bool> quitting_ = false;
  std::mutex mutex_;  // guards session_'s replacement against quit()
  std::unique_ptr<CalcSession> session_;
};

}  // namespace quorin::host::calc

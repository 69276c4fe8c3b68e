// Bridge: the one entry between the page's requests and Excel. It checks a verb's arguments, calls
// the method that serves it and answers with a pair, whatever happens.
//
// One instance for the life of the application. Called on the bridge queue, one request at a time,
// never on the main thread: each handler call waits for Excel. Any thread may ask for
// lastProgrammaticNav. What it is constructed from must outlive it.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "kit/bridge/MarksTurn.h"
#include "kit/bridge/PanelBridge.h"
#include "kit/excel/ExcelThread.h"
#include "kit/marks/HighlightStore.h"
#include "kit/marks/UnhideStore.h"
#include "kit/platform/TargetApplication.h"
#include "kit/shapes/RevealShapes.h"
#include "kit/support/DiagLog.h"
#include "kit/value/EventErrors.h"
#include "kit/value/JSONValue.h"

namespace quorin {

class Bridge : public PanelBridge {
 public:
  using Args = JSONValue::Array;
  using Date = std::chrono::system_clock::time_point;
  using Clock = std::function<Date()>;

  // Long before any navigation, and near enough that a difference to now can be computed.
  static const Date distantPast;

  Bridge(ExcelThread& thread, DiagLog& log, HighlightStore& store, UnhideStore& unhide,
         TargetApplication& target, Clock clock = std::chrono::system_clock::now);

  // Serves one request. Never throws.
  Reply dispatch(const std::string& verb, const Args& args) override;

  // True if Excel is among the running applications. Answers at once.
  bool excelRunning() const;

  // When the bridge itself last moved Excel's selection.
  Date lastProgrammaticNav() const override;

  // The separator in formulas that the bridge writes. Bridge queue.
  void setArgSeparator(const std::string& separator) override { argSeparator_ = separator; }
  const std::string& argSeparator() const { return argSeparator_; }

  // Hears of the cells that the bridge has moved to. Set before the first request; called on the
  // bridge queue.
  void setOnActivatedCell(ActivatedCell callback) override {
    onActivatedCell_ = std::move(callback);
  }

  // The verbs. Unless it says otherwise each throws ExcelError or BridgeShapes::ShapeError.
  JSONValue probe() override;     // never throws; {"state", "excelWindow"?}
  JSONValue readCell();           // the active cell, see readCellObject
  JSONValue pollCell() override;  // {"book", "sheet", "addr"}
  // Never throws; okValue or fail. `asked`: the user asked for this very part, so that it may reach
  // out of the workbook; else such an expression is a failure with the code onlyWhenAsked.
  JSONValue evaluate(const std::string& expr, bool asked = false);
  JSONValue select(const std::vector<std::string>& addrs);     // {"areas"}
  JSONValue activate(const std::optional<std::string>& addr);  // true
  JSONValue dependents(const std::string& addr);  // address text, "" when there are none
  JSONValue readRange(const std::string& addr);   // see decodeReadRange
  // What the cells of each address show on their sheet; see decodeReadTexts.
  static constexpr std::size_t mostAddressesForTexts = 40;
  JSONValue readTexts(const std::vector<std::string>& addrs);
  // `style` is "a1" or "r1c1"; see decodeReadFormulas.
  JSONValue readFormulas(const std::string& addr, const std::string& style, bool formulasOnly);
  JSONValue workbookMap();  // see workbookMapObject
  // Never throws; see DeepEvalShapes. `asked` as for evaluate().
  JSONValue deepEval(const std::vector<std::string>& plan, bool asked = false);
  // {"applied", "shadowed", "moved"?}. A colour that has not three parts is magenta.
  JSONValue markCells(const std::vector<std::string>& addrs, const std::vector<std::int64_t>& rgb);
  JSONValue clearMarks();  // {"removed"}: the number of addresses
  // {"revealed", "activated"?, "unhid"?, "reason"?}.
  JSONValue reveal(const std::vector<std::string>& addrs);

  // Takes back, from the records alone, what an earlier run or a stuck request left behind.
  // Never throws.
  void restoreStranded() override;

  // For the main thread, while the application terminates. Never throws.
  Recorded leftToTakeBack() const override;

  // Takes every mark back within two seconds. From then on nothing is marked any more. For the main
  // thread, while the application terminates. Never throws.
  void clearMarksForTerminate() override;

  // The word that a request to evaluate carries behind its other arguments when the user asked for
  // this very part.
  static constexpr const char* askedWord = "asked";

  // The most addresses of one handler call that paints, moves or clears.
  static constexpr std::size_t MOVE_MAX_ADDRS = 40;

  // -1728: the workbook or the sheet is not there any more.
  static bool isStaleBookError(int code) { return code == eventErrors::noSuchObject; }

  // {"ok": false, "kind", "message"}: a failure told inside an ok reply.
  static JSONValue fail(const std::string& kind, const std::string& message);

  // {"ok": true, "value"}, or a failure when the value holds what could not be marshalled.
  static JSONValue okValue(const JSONValue& value);

  // IFERROR(expr,"__ERR:"&ERROR.TYPE(expr)): makes an error result come back as text. None when
  // that is longer than the 255 characters that Excel's evaluate takes.
  static std::optional<std::string> wrapForErrorType(const std::string& expr,
                                                     const std::string& separator);

  // The ERROR.TYPE number of such a text; none for any other value.
  static std::optional<long long> parseErrTag(const JSONValue& value);

  // Hands the cell {"book", "sheet", "addr"} that a verb has moved to on; other values are ignored.
  void publishLanded(const JSONValue& value) const;

 private:
  // One handler call for a verb, within the seconds that the table of verbs gives it.
  JSONValue call(std::string_view verb, const std::string& handler, const Args& args,
                 bool asked = false);
  void touchProgrammaticNav();
  JSONValue evaluateWrapped(const std::string& expr, const std::string& firstMessage, bool asked);
  JSONValue deepEvalInExcel(const std::vector<std::string>& plan, bool asked);

  // Painting.
  std::optional<JSONValue> moveMarks(const HighlightStore::Record& wanted);
  bool clearBeforePainting(const HighlightStore::Records& wanted);
  JSONValue applyMarks(const HighlightStore::Records& groups, bool mayBeSingle);
  void recordBeforePainting(const HighlightStore::Records& records);

  // Clearing. The active cell, where it is known.
  struct Position {
    std::string book, sheet;
    std::int64_t row = 0, col = 0;
  };
  // What a reveal is about to show.
  struct Kept {
    std::string book, sheet;
    BridgeShapes::HiddenRuns runs;
  };
  JSONValue clearRecorded();
  JSONValue clearChunk(const HighlightStore::Record& record, const std::vector<std::string>& addrs);
  void clearMoved(const HighlightStore::Record& record);
  void logMoved(const HighlightStore::Record& record, const JSONValue& answer);
  void restoreUnhiddenOnClear();
  UnhideStore::Records restoreUnhidden(const std::optional<Position>& active,
                                       const std::optional<Kept>& keep);
  bool hideAgain(const UnhideStore::Record& record, const BridgeShapes::HiddenRuns& runs);
  void setHidden(const BridgeShapes::HiddenRuns& runs, const std::string& book,
                 const std::string& sheet, bool hide);
  static std::optional<Position> positionOf(const JSONValue& polled);
  void clearAllForTerminate(ExcelThread::Deadline deadline);
  bool clearForTerminate(HighlightStore::Record& record, ExcelThread::Deadline deadline);
  bool hideForTerminate(UnhideStore::Record& record, ExcelThread::Deadline deadline);

  // Revealing.
  std::optional<std::string> unhideTarget(const BridgeShapes::RevealRead& read,
                                          const std::string& book,
                                          const std::optional<Position>& active);
  void scrollTo(const BridgeShapes::RevealScroll& where, const std::string& book,
                const std::string& sheet, const std::string& addr);

  ExcelThread& thread_;
  DiagLog& log_;
  HighlightStore& store_;
  UnhideStore& unhide_;
  TargetApplication& target_;
  const Clock clock_;
  mutable std::mutex lock_;  // guards the next field
  Date lastProgrammaticNav_ = distantPast;
  std::string argSeparator_ = ",";
  ActivatedCell onActivatedCell_;
  MarksTurn marksTurn_;
};

}  // namespace quorin

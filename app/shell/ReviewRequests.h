// ReviewRequests: what the page keeps of the user's review, and the reports that the user saves.
// Files are read and written on a queue of their own, so that neither a slow disk holds up the
// window nor a busy spreadsheet the saving.
//
// Main thread; owned by the panel. What is under way when it goes is finished, and answered to
// nobody.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "app/shell/ports/MainLoop.h"
#include "app/shell/ports/SaveDialog.h"
#include "kit/bridge/PanelBridge.h"
#include "kit/reviews/ReviewStore.h"
#include "kit/support/Queue.h"

namespace quorin {

class ReviewRequests {
 public:
  using Reply = std::function<void(const PanelBridge::Reply& reply)>;

  // Everything here must outlive what is posted to the queue.
  struct Parts {
    ReviewStore store;
    Queue& queue;  // "qx.files"
    MainLoop& loop;
    SaveDialog* dialog;  // none: no report is saved
    DiagLog& log;
  };

  explicit ReviewRequests(Parts parts) : parts_(std::move(parts)) {}

  // False for a verb of others. The reply comes on the main thread, inside this call where the
  // arguments are refused; a failure's payload is a sentence.
  //   "loadReview"  [book]          the review that was saved last, or null
  //   "saveReview"  [book, review]  null; the review is an object, or null for none
  // where book is {"book": its name, "path", "marks"} (ReviewedBook), and
  //   "saveReport"  [name, text]    the name of the file that the user chose, or null
  bool answer(const std::string& verb, const JSONValue::Array& args, Reply reply);

 private:
  using Work = std::function<JSONValue()>;

  void load(const JSONValue::Array& args, Reply reply);
  void save(const JSONValue::Array& args, Reply reply);
  void saveReport(const JSONValue::Array& args, Reply reply);
  // `failing` begins the sentence and the log line when the work throws.
  void doAndReply(const std::string& failing, Work work, Reply reply);

  Parts parts_;
  bool asksWhere_ = false;
  std::shared_ptr<const bool> alive_ = std::make_shared<const bool>(true);
};

}  // namespace quorin

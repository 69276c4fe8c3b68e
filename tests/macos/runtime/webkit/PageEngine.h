// PageEngine: a page for one fake WKWebView, WebKitGTK in a process of its own
// (tests/macos/page_engine). What it tells comes on the main thread's loop, in its common modes and
// in order. Main thread only.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <sys/types.h>
#include <thread>

namespace quorin {

class PageEngine {
 public:
  using Receiver = std::function<void(const std::string& word, std::string text)>;
  using Value = std::function<void(bool ok, const std::string& text)>;

  // The engines that views have from now on; empty: none, as without this.
  static void use(const std::string& program);
  static const std::string& used();

  PageEngine(const std::string& program, Receiver receiver);
  ~PageEngine();  // the receiver is not called any more
  PageEngine(const PageEngine&) = delete;
  PageEngine& operator=(const PageEngine&) = delete;

  void send(const std::string& word, const std::string& text = {});
  // The script's value as JSON text, or its error.
  void ask(const std::string& script, Value value);

  pid_t process() const { return process_; }

 private:
  void told(const std::string& word, std::string text);

  const Receiver receiver_;
  int socket_ = -1;
  pid_t process_ = -1;
  int asked_ = 0;
  std::map<std::string, Value> values_;
  std::shared_ptr<PageEngine*> self_ = std::make_shared<PageEngine*>(this);
  std::thread reader_;
};

}  // namespace quorin

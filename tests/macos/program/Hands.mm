// The user's hands and eyes beside the program, and the world that it starts in: Excel, a page
// engine, the bundle. They come with the program as soon as the environment names a socket in
// QX_HANDS. Each line there is a word and a JSON value, and is answered with "ok JSON" or "error
// TEXT" from the main thread; mac_desk.py says what the words do. Those in the JSON list
// QX_HANDS_FIRST are carried out before the program begins. What is left at the end of the process
// is written into the file QX_HANDS_END.
#include "tests/macos/runtime/appkit/Hands.h"

#include <cstdlib>
#include <exception>
#include <fstream>
#include <malloc.h>
#include <map>
#include <unistd.h>

#include "kit/value/JSONText.h"
#include "kit/value/Marshal.h"
#include "tests/macos/program/ExcelOfTheRun.h"
#include "tests/macos/program/LineSocket.h"
#include "tests/macos/runtime/carbon/HotKeys.h"
#include "tests/macos/runtime/foundation/Bundle.h"
#include "tests/macos/runtime/foundation/Excel.h"
#include "tests/macos/runtime/foundation/Loop.h"
#include "tests/macos/runtime/foundation/Raise.h"
#import "tests/macos/runtime/foundation/Strings.h"
#include "tests/macos/runtime/objc/Census.h"
#include "tests/macos/runtime/webkit/Page.h"

namespace quorin {
namespace {

using Array = JSONValue::Array;
using Object = JSONValue::Object;

constexpr const char* excelIdentifier = "com.microsoft.Excel";
std::atomic<int> excelProcess{0};

ExcelOfTheRun& excel() {
  static auto& one = *new ExcelOfTheRun([] { return frontProcess() == excelProcess; });
  return one;
}

const std::string& text(const JSONValue& value) {
  if (!value.string()) throw std::invalid_argument("a text is wanted");
  return *value.string();
}

double number(const JSONValue& value) {
  if (!value.number()) throw std::invalid_argument("a number is wanted");
  return *value.number();
}

bool truth(const JSONValue& value) {
  if (!value.boolean()) throw std::invalid_argument("true or false is wanted");
  return *value.boolean();
}

const JSONValue& part(const JSONValue& value, std::size_t index) {
  if (!value.array() || value.array()->size() <= index)
    throw std::invalid_argument("a longer list is wanted");
  return (*value.array())[index];
}

JSONValue list(const std::vector<std::string>& texts) {
  return Array(texts.begin(), texts.end());
}

// The program's own, which is no alert.
NSWindow* panel() {
  for (NSWindow* each in NSApplication.sharedApplication.windows) {
    if ([each isKindOfClass:NSClassFromString(@"QXPanel")]) return each;
  }
  return nil;
}

JSONValue describedPanel() {
  NSWindow* window = panel();
  if (!window) return nullptr;
  const NSRect frame = window.frame;
  return Object{{"visible", window.visible == YES},
                {"key", window.keyWindow == YES},
                {"x", frame.origin.x},
                {"y", frame.origin.y},
                {"width", frame.size.width},
                {"height", frame.size.height}};
}

JSONValue describedAlert() {
  NSAlert* alert = shownAlert();
  if (!alert) return nullptr;
  Array buttons;
  for (NSView* each in alert.window.contentView.subviews)
    buttons.push_back(read(static_cast<NSButton*>(each).title));
  return Object{{"message", read(alert.messageText)},
                {"informativeText", read(alert.informativeText)},
                {"buttons", std::move(buttons)}};
}

bool pressInAlert(const std::string& title) {
  for (NSView* each in shownAlert().window.contentView.subviews) {
    NSButton* button = static_cast<NSButton*>(each);
    if (read(button.title) != title) continue;
    [button performClick:nil];
    return true;
  }
  return false;
}

NSMenu* menu() {
  const auto menus = menusInTheBar();
  return menus.empty() ? nil : menus.back();
}

JSONValue describedMenu() {
  Array items;
  for (NSInteger i = 0; i < menu().numberOfItems; ++i) {
    NSMenuItem* item = [menu() itemAtIndex:i];
    items.push_back(
        Array{read(item.title), item.enabled == YES, item.state == NSControlStateValueOn});
  }
  return items;
}

bool choose(const std::string& title) {
  for (NSInteger i = 0; i < menu().numberOfItems; ++i) {
    if (read([menu() itemAtIndex:i].title) == title) return userChooses(menu(), i);
  }
  return false;
}

// Whoever comes to the front takes the keyboard.
void bringToFront(int process) {
  [panel() resignKeyWindow];
  bringForward(process);
}

int other() {
  static const int one = startApplication("com.example.other");
  return one;
}

// Objects of the program and blocks, the memory that it has and the part that is in use, in bytes.
JSONValue counted() {
  Object alive;
  double all = 0;
  for (const auto& [kind, count] : objc::census()) {
    if (count > 0) alive[kind] = static_cast<double>(count);
    all += static_cast<double>(count);
  }
  const struct mallinfo2 heap = ::mallinfo2();
  long pages = 0, resident = 0;
  std::ifstream("/proc/self/statm") >> pages >> resident;
  return Object{{"all", all},
                {"alive", std::move(alive)},
                {"memory", static_cast<double>(resident * ::sysconf(_SC_PAGESIZE))},
                {"used", static_cast<double>(heap.uordblks + heap.hblkhd)}};
}

using Act = std::function<JSONValue(const JSONValue&)>;

const std::map<std::string, Act>& acts() {
  static const auto& all = *new std::map<std::string, Act>{
      {"window", [](const JSONValue&) { return describedPanel(); }},
      {"alert", [](const JSONValue&) { return describedAlert(); }},
      {"press", [](const JSONValue& title) { return pressInAlert(text(title)); }},
      {"menu", [](const JSONValue&) { return describedMenu(); }},
      {"choose", [](const JSONValue& title) { return choose(text(title)); }},
      {"hotkey",
       [](const JSONValue& key) {
         return userPresses(static_cast<std::uint32_t>(number(part(key, 0))),
                            static_cast<std::uint32_t>(number(part(key, 1))));
       }},
      {"reopen",
       [](const JSONValue&) {
         userReopensApplication();
         return nullptr;
       }},
      {"logout",
       [](const JSONValue&) {
         [NSApplication.sharedApplication performSelector:@selector(terminate:)
                                               withObject:nil
                                               afterDelay:0
                                                  inModes:@[ NSRunLoopCommonModes ]];
         return nullptr;
       }},
      {"close",
       [](const JSONValue&) {
         [[panel() standardWindowButton:NSWindowCloseButton] performClick:nil];
         return nullptr;
       }},
      {"opened", [](const JSONValue&) { return list(openedURLs()); }},
      {"engine",
       [](const JSONValue&) { return static_cast<double>(engineProcess(lastWebView())); }},
      {"counted", [](const JSONValue&) { return counted(); }},
      {"click",
       [](const JSONValue& at) {
         [panel() makeKeyAndOrderFront:nil];
         userActsInPage(
             lastWebView(), "click",
             std::to_string(number(part(at, 0))) + " " + std::to_string(number(part(at, 1))));
         return nullptr;
       }},
      {"key",
       [](const JSONValue& name) {
         if (!panel().keyWindow) throw std::logic_error("the panel has no keyboard");
         userActsInPage(lastWebView(), "key", text(name));
         return nullptr;
       }},
      {"installExcel",
       [](const JSONValue& installed) {
         installExcel(truth(installed));
         return nullptr;
       }},
      {"lackTerm",
       [](const JSONValue& term) {
         excel().lackTerm(text(term));
         return nullptr;
       }},
      {"startExcel",
       [](const JSONValue&) {
         excel().setRunning(true);
         excelProcess = startApplication(excelIdentifier);
         return nullptr;
       }},
      {"endExcel",
       [](const JSONValue&) {
         excel().setRunning(false);
         endApplication(excelProcess.exchange(0));
         bringToFront(other());
         return nullptr;
       }},
      {"front",
       [](const JSONValue& who) {
         if (text(who) != "Excel") {
           bringToFront(other());
         } else if (excelProcess == 0) {
           throw std::logic_error("Excel does not run");
         } else {
           bringToFront(excelProcess);
         }
         return nullptr;
       }},
      {"permit",
       [](const JSONValue& permitted) {
         excel().setPermitted(truth(permitted));
         return nullptr;
       }},
      {"busy",
       [](const JSONValue& busy) {
         excel().setBusy(truth(busy));
         return nullptr;
       }},
      {"goTo",
       [](const JSONValue& cells) {
         excel().goTo(text(cells));
         return nullptr;
       }},
      {"hideRows",
       [](const JSONValue& cells) {
         excel().hide(text(cells), true, true);
         return nullptr;
       }},
      {"rowsHidden", [](const JSONValue& cells) { return excel().isHidden(text(cells), true); }},
      {"mark",
       [](const JSONValue& what) {
         excel().mark(text(part(what, 0)), text(part(what, 1)));
         return nullptr;
       }},
      {"conditions", [](const JSONValue&) { return excel().conditions(); }},
      {"active", [](const JSONValue&) { return excel().active(); }},
  };
  return all;
}

JSONValue act(const std::string& word, const JSONValue& given) {
  const auto found = acts().find(word);
  if (found == acts().end()) throw std::invalid_argument("no such word");
  return found->second(given);
}

void answer(const std::string& line, const LineSocket::Answer& to) {
  const std::size_t blank = line.find(' ');
  const std::string word = line.substr(0, blank);
  const ParsedJSON given =
      parseJSON(blank == std::string::npos ? "null" : std::string_view(line).substr(blank + 1));
  try {
    if (!given) throw std::invalid_argument("not JSON");
    if (word == "eval") {
      askPage(lastWebView(), text(*given.value),
              [to](bool ok, const std::string& told) { to((ok ? "ok " : "error ") + told); });
      return;
    }
    to("ok " + Marshal::encode(act(word, *given.value)));
  } catch (const std::exception& error) {
    to(std::string("error ") + error.what());
  } catch (...) {
    to("error one of Apple's classes has raised");
  }
}

// What a test asks of a program that has ended.
void writeEnd() {
  const char* file = std::getenv("QX_HANDS_END");
  if (!file) return;
  std::ofstream(file) << Marshal::encode(Object{{"conditions", excel().conditions()},
                                                {"opened", list(openedURLs())},
                                                {"raised", raisedSoFar()},
                                                {"logged", list(loggedSoFar())},
                                                {"strayEvents", excel().strayEvents()}});
}

// The real bundle's, as far as it has texts.
void readInformation() {
  std::ifstream file(QUORIN_INFO_PLIST);
  std::string line, key;
  const auto inside = [](const std::string& given, const char* before) {
    const std::size_t from = given.find(before);
    const std::size_t end = given.rfind("</");
    if (from == std::string::npos || end == std::string::npos) return std::optional<std::string>();
    const std::size_t begin = from + std::string(before).size();
    return std::optional(given.substr(begin, end - begin));
  };
  mainBundle().info.clear();
  while (std::getline(file, line)) {
    if (const auto name = inside(line, "<key>")) key = *name;
    if (const auto value = inside(line, "<string>")) mainBundle().info[key] = *value;
  }
}

[[maybe_unused]] const bool ready = [] {
  const char* socket = std::getenv("QX_HANDS");
  if (!socket) return false;
  readInformation();
  useExcel([] { return excel().connection(); });
  PageEngine::use(QUORIN_PAGE_ENGINE);
  std::atexit(writeEnd);
  if (const char* first = std::getenv("QX_HANDS_FIRST")) {
    const ParsedJSON acts = parseJSON(first);
    for (const JSONValue& each : *acts.value->array()) act(text(part(each, 0)), part(each, 1));
  }
  const auto loop = Loop::main();
  LineSocket::listen(socket, [loop](const std::string& line, const LineSocket::Answer& to) {
    loop->perform({Loop::commonModes}, [line, to] { answer(line, to); });
  });
  return true;
}();

}  // namespace
}  // namespace quorin

// CalcWorkbooks: the user's open workbooks and their windows, as seen through one connection.
// Frames that show nothing are not the user's and are left out. Call thread.
//
// What was read is kept for a moment: a window that is new is noticed at once, everything else on
// the next full reading. Answers are values: a later reading never takes them away. A document that
// was closed meanwhile answers DisposedException; then forget() and ask again.
#pragma once

#include <chrono>
#include <com/sun/star/awt/XWindow2.hpp>
#include <com/sun/star/chart2/data/XDataProvider.hpp>
#include <com/sun/star/container/XIndexAccess.hpp>
#include <com/sun/star/container/XNameAccess.hpp>
#include <com/sun/star/frame/XController.hpp>
#include <com/sun/star/frame/XDesktop2.hpp>
#include <com/sun/star/frame/XFrame.hpp>
#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/sheet/XSpreadsheetDocument.hpp>
#include <com/sun/star/sheet/XSpreadsheetView.hpp>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/Spreadsheet.h"
#include "host/calc/workbook/NamedEntries.h"
#include "host/calc/workbook/WorkbookNames.h"

namespace quorin::host::calc {

class ShownTexts;

struct Workbook {
  std::string name;
  std::string uid;  // its "RuntimeUID"
  std::string url;  // empty before it is saved
  css::uno::Reference<css::frame::XModel> model;
  css::uno::Reference<css::sheet::XSpreadsheetDocument> document;
  css::uno::Reference<css::container::XNameAccess> sheets;
  std::map<sal_Int32, bool> booleanFormats;  // number format key: is it a format of booleans?
  std::shared_ptr<ShownTexts> texts;         // none for a workbook of ours
  // Tells displayed texts; made when they are first asked for.
  mutable css::uno::Reference<css::chart2::data::XDataProvider> shownTexts;
  mutable KeptEntries entries;  // names and tables
  // The sheet whose cells were read last, where their texts are short; a guess for the next ones.
  mutable std::string shortTextsOn;
};

// What a document is known by as long as it is open, whatever it is called.
std::string uidOf(const css::uno::Reference<css::frame::XModel>& document);
std::string uidOf(const Workbook& workbook);

struct Window {
  std::shared_ptr<Workbook> workbook;
  css::uno::Reference<css::frame::XFrame> frame;
  css::uno::Reference<css::frame::XController> controller;
  css::uno::Reference<css::sheet::XSpreadsheetView> view;  // none in a print preview
  css::uno::Reference<css::awt::XWindow2> shown;
};

class CalcWorkbooks {
 public:
  CalcWorkbooks(css::uno::Reference<css::frame::XDesktop2> desktop,
                const css::uno::Reference<css::uno::XComponentContext>& context);

  void forget();
  // While it is kept, one reading serves names(), named(), sheets() and active(), but for what
  // forget() takes away.
  void keepReading(bool keep);
  void forgetActive();               // another window may have come to the front
  std::vector<std::string> names();  // in the order of opening
  std::shared_ptr<Workbook> named(const std::string& name);       // SpreadsheetError -1728
  std::vector<std::string> sheets(const Workbook& workbook);      // those of one with a name
  std::vector<std::string> readSheets(const Workbook& workbook);  // all, as they are at this moment
  std::optional<Window> active();                                 // none when no workbook is open
  Window windowOf(const std::string& name);  // the active one where it has several
  std::vector<Window> windows();

 private:
  bool isStale() const;
  void read();
  std::optional<Window> findActive();
  void addWindow(const css::uno::Reference<css::frame::XFrame>& frame,
                 const std::vector<Window>& known);
  std::shared_ptr<Workbook> workbookOf(const css::uno::Reference<css::frame::XModel>& model,
                                       const std::vector<Window>& known);
  void nameWorkbooks();

  const css::uno::Reference<css::frame::XDesktop2> desktop_;
  const std::shared_ptr<ShownTexts> texts_;
  css::uno::Reference<css::container::XIndexAccess> frames_;  // the desktop's, once asked for
  WorkbookNames names_;
  std::vector<std::shared_ptr<Workbook>> workbooks_;
  std::vector<Window> windows_;
  std::weak_ptr<Workbook> lastActive_;
  std::optional<std::chrono::steady_clock::time_point> readAt_;
  bool keeping_ = false, kept_ = false;                     // kept: read since it is to be kept
  std::optional<std::optional<Window>> active_;             // while kept
  std::map<std::string, std::vector<std::string>> sheets_;  // by workbook, while kept
};

}  // namespace quorin::host::calc

#include "host/calc/workbook/CalcWorkbooks.h"

#include <algorithm>
#include <com/sun/star/awt/XWindow2.hpp>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/frame/XFrames.hpp>
#include <com/sun/star/frame/XTitle.hpp>

#include "host/calc/uno/Text.h"
#include "host/calc/workbook/CalcRanges.h"
#include "host/calc/workbook/QuietChanges.h"
#include "host/calc/workbook/ShownTexts.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {

using css::uno::Reference;
using css::uno::UNO_QUERY;
using css::uno::UNO_QUERY_THROW;

namespace {
constexpr std::chrono::seconds trustedFor{2};
}

std::string uidOf(const Reference<css::frame::XModel>& document) {
  rtl::OUString uid;
  Reference<css::beans::XPropertySet>(document, UNO_QUERY_THROW)->getPropertyValue("RuntimeUID") >>=
      uid;
  return toText(uid);
}

std::string uidOf(const Workbook& workbook) {
  return workbook.uid.empty() ? uidOf(workbook.model) : workbook.uid;
}

CalcWorkbooks::CalcWorkbooks(Reference<css::frame::XDesktop2> desktop,
                             const Reference<css::uno::XComponentContext>& context)
    : desktop_(std::move(desktop)),
      texts_(std::make_shared<ShownTexts>(context)),
      names_(context) {}

void CalcWorkbooks::forget() {
  windows_.clear();
  workbooks_.clear();
  readAt_.reset();
  kept_ = false;
  active_.reset();
  sheets_.clear();
}

void CalcWorkbooks::keepReading(bool keep) {
  keeping_ = keep;
  kept_ = false;
  active_.reset();
  sheets_.clear();
  for (const auto& workbook : workbooks_) workbook->entries.keep(keep);
}

void CalcWorkbooks::forgetActive() {
  active_.reset();
}

void CalcWorkbooks::read() {
  const std::vector<Window> known = std::move(windows_);  // also keeps their proxies alive
  workbooks_.clear();
  windows_.clear();
  if (!frames_.is()) frames_.set(desktop_->getFrames(), UNO_QUERY_THROW);
  const sal_Int32 count = frames_->getCount();
  for (sal_Int32 i = 0; i < count; ++i) {
    const Reference<css::frame::XFrame> frame(frames_->getByIndex(i), UNO_QUERY);
    if (frame.is()) addWindow(frame, known);
  }
  nameWorkbooks();
  if (active_ && *active_) {
    const auto same = [&](const Window& window) { return window.frame == (*active_)->frame; };
    if (std::none_of(windows_.begin(), windows_.end(), same)) active_.reset();
  }
  readAt_ = std::chrono::steady_clock::now();
  kept_ = keeping_;
}

void CalcWorkbooks::addWindow(const Reference<css::frame::XFrame>& frame,
                              const std::vector<Window>& known) {
  const auto before = std::find_if(known.begin(), known.end(),
                                   [&](const Window& window) { return window.frame == frame; });
  const Reference<css::awt::XWindow2> shown =
      before != known.end() ? before->shown
                            : Reference<css::awt::XWindow2>(frame->getContainerWindow(), UNO_QUERY);
  if (!shown.is() || !shown->isVisible()) return;
  const Reference<css::frame::XController> controller = frame->getController();
  if (before != known.end() && before->controller == controller) {
    windows_.push_back(*before);
    windows_.back().workbook = workbookOf(before->workbook->model, known);
    return;
  }
  const Reference<css::frame::XModel> model = controller.is() ? controller->getModel() : nullptr;
  if (!Reference<css::sheet::XSpreadsheetDocument>(model, UNO_QUERY).is()) return;
  windows_.push_back({workbookOf(model, known), frame, controller,
                      Reference<css::sheet::XSpreadsheetView>(controller, UNO_QUERY), shown});
}

std::shared_ptr<Workbook> CalcWorkbooks::workbookOf(const Reference<css::frame::XModel>& model,
                                                    const std::vector<Window>& known) {
  for (const auto& workbook : workbooks_) {
    if (workbook->model == model) return workbook;
  }
  std::shared_ptr<Workbook> workbook;
  for (const Window& window : known) {
    if (window.workbook->model == model) workbook = window.workbook;
  }
  if (!workbook) {
    workbook = std::make_shared<Workbook>();
    workbook->model = model;
    workbook->document.set(model, UNO_QUERY_THROW);
    workbook->sheets.set(workbook->document->getSheets(), UNO_QUERY_THROW);
    workbook->uid = uidOf(model);
    workbook->texts = texts_;
    workbook->entries.keep(keeping_);
    QuietChanges::heal(*workbook);
  }
  workbook->url = toText(model->getURL());
  workbooks_.push_back(workbook);
  return workbook;
}

void CalcWorkbooks::nameWorkbooks() {
  std::vector<OpenWorkbook> open;
  for (const auto& workbook : workbooks_) {
    const Reference<css::frame::XTitle> unsaved(workbook->url.empty() ? workbook->model : nullptr,
                                                UNO_QUERY);
    open.push_back({.uid = workbook->uid,
                    .url = workbook->url,
                    .title = unsaved.is() ? toText(unsaved->getTitle()) : std::string()});
  }
  const std::vector<std::string> names = names_.of(std::move(open));
  for (std::size_t i = 0; i < names.size(); ++i) workbooks_[i]->name = names[i];
}

std::vector<std::string> CalcWorkbooks::names() {
  if (!kept_) read();
  std::vector<std::string> names;
  for (const auto& workbook : workbooks_) names.push_back(workbook->name);
  return names;
}

bool CalcWorkbooks::isStale() const {
  return !readAt_ || std::chrono::steady_clock::now() - *readAt_ > trustedFor;
}

std::shared_ptr<Workbook> CalcWorkbooks::named(const std::string& name) {
  if (kept_) {
    const auto found = std::find_if(workbooks_.begin(), workbooks_.end(),
                                    [&](const auto& workbook) { return workbook->name == name; });
    if (found != workbooks_.end()) return *found;
  }
  return windowOf(name).workbook;
}

std::vector<std::string> CalcWorkbooks::sheets(const Workbook& workbook) {
  const auto known = sheets_.find(workbook.name);
  return withoutNameless(known != sheets_.end() ? known->second : readSheets(workbook));
}

std::vector<std::string> CalcWorkbooks::readSheets(const Workbook& workbook) {
  std::vector<std::string> names = sheetNames(workbook);
  if (keeping_) sheets_[workbook.name] = names;
  return names;
}

std::optional<Window> CalcWorkbooks::active() {
  if (active_) return *active_;
  std::optional<Window> window = findActive();
  if (keeping_) active_ = window;
  return window;
}

std::optional<Window> CalcWorkbooks::findActive() {
  const Reference<css::frame::XFrame> current = desktop_->getCurrentFrame();
  const auto showing = [&] {
    return std::find_if(windows_.begin(), windows_.end(),
                        [&](const Window& window) { return window.frame == current; });
  };
  auto window = showing();
  if (isStale() || window == windows_.end()) {
    read();
    window = showing();
  }
  if (window == windows_.end()) {  // something else is in front: the workbook that was last
    const auto last = lastActive_.lock();
    window = std::find_if(windows_.begin(), windows_.end(), [&](const Window& candidate) {
      return last && candidate.workbook->model == last->model;
    });
    if (window == windows_.end()) window = windows_.begin();
  }
  if (window == windows_.end()) return std::nullopt;
  lastActive_ = window->workbook;
  return *window;
}

Window CalcWorkbooks::windowOf(const std::string& name) {
  const std::optional<Window> front = active();
  const auto called = [&](const Window& window) { return window.workbook->name == name; };
  auto found = std::find_if(windows_.begin(), windows_.end(), called);
  if (found == windows_.end()) {
    read();
    found = std::find_if(windows_.begin(), windows_.end(), called);
  }
  if (found == windows_.end())
    throw SpreadsheetError(eventErrors::noSuchObject,
                           "There is no workbook named \"" + name + "\"");
  return front && called(*front) ? *front : *found;
}

std::vector<Window> CalcWorkbooks::windows() {
  active();
  return windows_;
}

}  // namespace quorin::host::calc

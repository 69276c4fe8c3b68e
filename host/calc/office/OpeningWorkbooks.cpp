#include "host/calc/office/OpeningWorkbooks.h"

#include <chrono>
#include <com/sun/star/awt/XWindow.hpp>
#include <com/sun/star/container/XNameAccess.hpp>
#include <com/sun/star/document/MacroExecMode.hpp>
#include <com/sun/star/document/UpdateDocMode.hpp>
#include <com/sun/star/document/XTypeDetection.hpp>
#include <com/sun/star/frame/DispatchHelper.hpp>
#include <com/sun/star/frame/XDispatchProvider.hpp>
#include <com/sun/star/frame/XLoadable.hpp>
#include <com/sun/star/frame/XModel.hpp>
#include <com/sun/star/sheet/XCalculatable.hpp>
#include <com/sun/star/sheet/XSpreadsheetDocument.hpp>
#include <com/sun/star/task/ErrorCodeIOException.hpp>
#include <com/sun/star/util/XModifiable.hpp>
#include <utility>
#include <vector>

#include "host/Spreadsheet.h"
#include "host/calc/office/MainThread.h"
#include "host/calc/uno/Arguments.h"
#include "host/calc/uno/OfficeFiles.h"
#include "host/calc/uno/Text.h"
#include "kit/value/EventErrors.h"

namespace quorin::host::calc {
namespace {

using css::container::XNameAccess;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;
using css::uno::UNO_SET_THROW;
using css::uno::XComponentContext;
using css::uno::XInterface;

constexpr const char* documentService = "com.sun.star.sheet.SpreadsheetDocument";

Reference<XInterface> made(const Reference<XComponentContext>& context, const char* service) {
  return {context->getServiceManager()->createInstanceWithContext(
              rtl::OUString::createFromAscii(service), context),
          UNO_SET_THROW};
}

// A text among the properties that a list has for a name; empty for none.
rtl::OUString told(const Reference<XInterface>& list, const rtl::OUString& name,
                   const char* property) {
  const Reference<XNameAccess> entries(list, UNO_QUERY_THROW);
  rtl::OUString text;
  css::uno::Sequence<css::beans::PropertyValue> properties;
  if (entries->hasByName(name)) entries->getByName(name) >>= properties;
  for (const css::beans::PropertyValue& one : properties) {
    if (one.Name.equalsAscii(property)) one.Value >>= text;
  }
  return text;
}

// The filter by which the office reads the file; empty for what is no workbook by its type.
rtl::OUString filterFor(const Reference<XComponentContext>& context, const rtl::OUString& url) {
  const auto detection = made(context, "com.sun.star.document.TypeDetection");
  auto descriptor = sequenceOf({argument("URL", url)});
  const rtl::OUString type = Reference<css::document::XTypeDetection>(detection, UNO_QUERY_THROW)
                                 ->queryTypeByDescriptor(descriptor, true);
  const rtl::OUString filter = told(detection, type, "PreferredFilter");
  const auto filters = made(context, "com.sun.star.document.FilterFactory");
  const bool isOurs = told(filters, filter, "DocumentService").equalsAscii(documentService);
  return isOurs ? filter : rtl::OUString();
}

// How a workbook is loaded, besides by this.
css::uno::Sequence<css::beans::PropertyValue> loading(
    std::vector<css::beans::PropertyValue> arguments) {
  arguments.push_back(argument("PickListEntry", false));
  arguments.push_back(argument("MacroExecutionMode", css::document::MacroExecMode::NEVER_EXECUTE));
  arguments.push_back(argument("UpdateDocMode", css::document::UpdateDocMode::NO_UPDATE));
  return sequenceOf(arguments);
}

// A window that a thread of the bridge shows can hang for ever with its menu, which then asks for
// the clipboard while the main thread does as well.
void show(const Reference<XComponentContext>& context, const Reference<css::frame::XFrame>& frame) {
  constexpr std::chrono::seconds patience{30};
  const bool shown = onMainThread(context, patience, [frame] {
    frame->getContainerWindow()->setVisible(true);
    frame->activate();
  });
  if (!shown)
    throw SpreadsheetError(eventErrors::timedOut, "LibreOffice does not show the workbook");
}

// Calc works formulas such as INDIRECT out when a workbook gets its first window, and opens files
// that their texts name, until it has been told to update links or not. So it calculates nothing
// before it has been told not to.
void openWithoutLinks(const Reference<XComponentContext>& context,
                      const Reference<css::frame::XDesktop2>& desktop, const rtl::OUString& url,
                      const rtl::OUString& filter) {
  const Reference<css::frame::XModel> model(made(context, documentService), UNO_QUERY_THROW);
  Reference<css::frame::XLoadable>(model, UNO_QUERY_THROW)
      ->load(loading({argument("URL", url), argument("FilterName", filter)}));
  const Reference<css::sheet::XCalculatable> calculation(model, UNO_QUERY_THROW);
  const bool isAutomatic = calculation->isAutomaticCalculationEnabled();
  calculation->enableAutomaticCalculation(false);
  desktop->loadComponentFromURL("private:object", "_blank", 0,
                                sequenceOf({argument("OnMainThread", true),
                                            argument("Hidden", true), argument("Model", model)}));
  const Reference<css::frame::XFrame> frame(model->getCurrentController()->getFrame(),
                                            UNO_SET_THROW);
  css::frame::DispatchHelper::create(context)->executeDispatch(
      Reference<css::frame::XDispatchProvider>(frame, UNO_QUERY_THROW), ".uno:UpdateTableLinks", {},
      0, {});
  calculation->enableAutomaticCalculation(isAutomatic);
  Reference<css::util::XModifiable>(model, UNO_QUERY_THROW)->setModified(false);
  show(context, frame);
}

// What the office tells of a file that nobody gave it the password for.
constexpr sal_Int32 wrongPassword = 0x4b0b;

void openAsItIs(const Reference<XComponentContext>& context,
                const Reference<css::frame::XDesktop2>& desktop, const std::string& path) {
  const rtl::OUString url = toUno(fileUrl(path));
  const rtl::OUString filter = filterFor(context, url);
  if (!filter.isEmpty()) {
    openWithoutLinks(context, desktop, url, filter);
    return;
  }
  // Calc takes texts for workbooks that are others' by their type.
  const Reference<css::lang::XComponent> opened =
      desktop->loadComponentFromURL(url, "_blank", 0, loading({argument("OnMainThread", true)}));
  if (!Reference<css::sheet::XSpreadsheetDocument>(opened, css::uno::UNO_QUERY).is()) {
    throw SpreadsheetError(eventErrors::noSuchObject, "\"" + path + "\" is not a workbook");
  }
}

}  // namespace

// Windows that a thread of the bridge makes can hang for ever with their menu: on the main thread.
void openWorkbookAlone(const Reference<XComponentContext>& context,
                       const Reference<css::frame::XDesktop2>& desktop, const std::string& path) {
  try {
    openAsItIs(context, desktop, path);
  } catch (const css::task::ErrorCodeIOException& failure) {
    if (failure.ErrCode != wrongPassword) throw;
    throw SpreadsheetError(eventErrors::noSuchObject,
                           "\"" + path + "\" is protected by a password");
  }
}

}  // namespace quorin::host::calc

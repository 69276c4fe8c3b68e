#include "host/calc/workbook/HiddenWorkbook.h"

#include <array>
#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/document/XActionLockable.hpp>
#include <com/sun/star/embed/EmbedStates.hpp>
#include <com/sun/star/embed/EmbeddedObjectCreator.hpp>
#include <com/sun/star/embed/StorageFactory.hpp>
#include <com/sun/star/embed/XComponentSupplier.hpp>
#include <com/sun/star/embed/XStorage.hpp>
#include <com/sun/star/frame/XStorable.hpp>
#include <com/sun/star/io/TempFile.hpp>

#include "host/calc/uno/Arguments.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

// The interface is marked as deprecated for scripts; for this factory there is no other.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
Reference<css::embed::XStorage> temporaryStorage(
    const Reference<css::uno::XComponentContext>& context) {
  return {css::embed::StorageFactory::create(context)->createInstance(), UNO_QUERY_THROW};
}
#pragma GCC diagnostic pop

}  // namespace

HiddenWorkbook::HiddenWorkbook(const Reference<css::uno::XComponentContext>& context,
                               const Workbook& original) {
  // The office's own temporary file, gone when its last reference is.
  const Reference<css::io::XTempFile> copy = css::io::TempFile::create(context);
  Reference<css::frame::XStorable>(original.model, UNO_QUERY_THROW)
      ->storeToURL("private:stream",
                   sequenceOf({argument("FilterName", rtl::OUString("calc8")),
                               argument("OutputStream", copy->getOutputStream())}));
  copy->seek(0);
  const Reference<css::embed::XStorage> storage = temporaryStorage(context);
  object_.set(
      css::embed::EmbeddedObjectCreator::create(context)->createInstanceInitFromMediaDescriptor(
          storage, "copy",
          sequenceOf({argument("URL", rtl::OUString("private:stream")),
                      argument("InputStream", copy->getInputStream()),
                      argument("FilterName", rtl::OUString("calc8"))}),
          {}),
      UNO_QUERY_THROW);
  run();
  workbook_.name = original.name;
}

HiddenWorkbook::HiddenWorkbook(const Reference<css::uno::XComponentContext>& context) {
  // The class of an embedded Calc document: 47BBB4CB-CE4C-4E80-A591-42D9AE74950F.
  static constexpr std::array<unsigned char, 16> calcClass = {0x47, 0xBB, 0xB4, 0xCB, 0xCE, 0x4C,
                                                              0x4E, 0x80, 0xA5, 0x91, 0x42, 0xD9,
                                                              0xAE, 0x74, 0x95, 0x0F};
  const css::uno::Sequence<sal_Int8> id(reinterpret_cast<const sal_Int8*>(calcClass.data()),
                                        static_cast<sal_Int32>(calcClass.size()));
  object_.set(css::embed::EmbeddedObjectCreator::create(context)->createInstanceInitNew(
                  id, {}, temporaryStorage(context), "empty", {}),
              UNO_QUERY_THROW);
  run();
}

void HiddenWorkbook::run() {
  object_->changeState(css::embed::EmbedStates::RUNNING);
  workbook_.model.set(
      Reference<css::embed::XComponentSupplier>(object_, UNO_QUERY_THROW)->getComponent(),
      UNO_QUERY_THROW);
  workbook_.document.set(workbook_.model, UNO_QUERY_THROW);
  workbook_.sheets.set(workbook_.document->getSheets(), UNO_QUERY_THROW);
  // Nothing of it is shown or taken back, so a cell need not cost more than its calculation.
  Reference<css::beans::XPropertySet>(workbook_.document, UNO_QUERY_THROW)
      ->setPropertyValue("IsUndoEnabled", css::uno::Any(false));
  workbook_.model->lockControllers();
  Reference<css::document::XActionLockable>(workbook_.document, UNO_QUERY_THROW)->addActionLock();
}

HiddenWorkbook::~HiddenWorkbook() {
  workbook_ = {};
  try {
    if (object_.is()) object_->close(true);
  } catch (const css::uno::Exception&) {
    // The office is gone, and this workbook with it.
  }
}

}  // namespace quorin::host::calc

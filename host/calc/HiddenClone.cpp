#include "host/calc/HiddenClone.h"

#include <algorithm>
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
#include <com/sun/star/util/XCloseable.hpp>
#include <com/sun/star/util/XModifyBroadcaster.hpp>
#include <cppuhelper/implbase1.hxx>

#include "host/Address.h"
#include "host/calc/Arguments.h"
#include "host/calc/CalcLookup.h"

namespace quorin::host::calc {
namespace {

using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

// The office waits for this call, so it only notes the fact.
class ChangeNote : public cppu::WeakImplHelper1<css::util::XModifyListener> {
 public:
  explicit ChangeNote(std::shared_ptr<std::atomic<bool>> changed) : changed_(std::move(changed)) {}
  void SAL_CALL modified(const css::lang::EventObject&) override { *changed_ = true; }
  void SAL_CALL disposing(const css::lang::EventObject&) override { *changed_ = true; }

 private:
  const std::shared_ptr<std::atomic<bool>> changed_;
};

// The interface is marked as deprecated for scripts; for this factory there is no other.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
Reference<css::embed::XStorage> temporaryStorage(
    const Reference<css::uno::XComponentContext>& context) {
  return {css::embed::StorageFactory::create(context)->createInstance(), UNO_QUERY_THROW};
}
#pragma GCC diagnostic pop

}  // namespace

HiddenClone::HiddenClone(const Reference<css::uno::XComponentContext>& context,
                         const Workbook& original)
    : original_(original.model), listener_(new ChangeNote(changed_)) {
  Reference<css::util::XModifyBroadcaster>(original_, UNO_QUERY_THROW)
      ->addModifyListener(listener_);
  // The office's own temporary file, gone when its last reference is.
  const Reference<css::io::XTempFile> copy = css::io::TempFile::create(context);
  Reference<css::frame::XStorable>(original_, UNO_QUERY_THROW)
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
  clone_.name = original.name;
}

HiddenClone::HiddenClone(const Reference<css::uno::XComponentContext>& context) {
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

void HiddenClone::run() {
  object_->changeState(css::embed::EmbedStates::RUNNING);
  clone_.model.set(
      Reference<css::embed::XComponentSupplier>(object_, UNO_QUERY_THROW)->getComponent(),
      UNO_QUERY_THROW);
  clone_.document.set(clone_.model, UNO_QUERY_THROW);
  clone_.sheets.set(clone_.document->getSheets(), UNO_QUERY_THROW);
  // Nothing of it is shown or taken back, so a cell need not cost more than its calculation.
  Reference<css::beans::XPropertySet>(clone_.document, UNO_QUERY_THROW)
      ->setPropertyValue("IsUndoEnabled", css::uno::Any(false));
  clone_.model->lockControllers();
  Reference<css::document::XActionLockable>(clone_.document, UNO_QUERY_THROW)->addActionLock();
}

HiddenClone::~HiddenClone() {
  clone_ = {};
  try {
    if (object_.is()) object_->close(true);
    if (!original_.is()) return;
    Reference<css::util::XModifyBroadcaster>(original_, UNO_QUERY_THROW)
        ->removeModifyListener(listener_);
  } catch (const css::uno::Exception&) {
    // The office or the workbook is gone, and the clone with it.
  }
}

HiddenClone::Place HiddenClone::freePlace(const std::string& sheet) {
  const auto known = places_.find(sheet);
  if (known != places_.end()) return known->second;
  // Not at the end of the sheet: everything would take long on all the rows and columns before it.
  constexpr int rowsBetween = 100, columnsBetween = 50;
  const auto used = findUsedRange(clone_, sheet);
  const Area area = used ? used->areas.front() : Area{};
  const Place place{std::min(area.lastRow + rowsBetween, maxRow),
                    std::min(area.lastColumn + columnsBetween, maxColumn)};
  places_.emplace(sheet, place);
  return place;
}

bool HiddenClone::isOf(const Workbook& workbook) const {
  return !*changed_ && original_ == workbook.model;
}

}  // namespace quorin::host::calc

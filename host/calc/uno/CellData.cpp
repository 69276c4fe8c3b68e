#include "host/calc/uno/CellData.h"

#include <memory>
#include <typelib/typedescription.hxx>
#include <uno/any2.h>
#include <uno/dispatcher.h>
#include <uno/mapping.hxx>

#include "host/calc/uno/Text.h"

namespace quorin::host::calc {
namespace {

using css::sheet::XCellRangeData;
using css::uno::Any;
using css::uno::Reference;
using css::uno::Sequence;
using css::uno::TypeDescription;

struct Release {
  void operator()(uno_Interface* object) const { object->release(object); }
};
using BinaryObject = std::unique_ptr<uno_Interface, Release>;

// What stands behind the C++ proxy of a remote object; nothing when it cannot be had.
BinaryObject binaryObject(const Reference<XCellRangeData>& cells) {
  // Never destroyed: a thread may still be in a call when the process ends.
  static const auto& mapping =
      *new css::uno::Mapping(toUno(CPPU_CURRENT_LANGUAGE_BINDING_NAME), toUno(UNO_LB_UNO));
  void* object = nullptr;
  if (mapping.is())
    mapping.mapInterface(&object, cells.get(), cppu::UnoType<XCellRangeData>::get());
  return BinaryObject(static_cast<uno_Interface*>(object));
}

}  // namespace

Sequence<Sequence<Any>> cellData(const Reference<XCellRangeData>& cells) {
  static const auto& method =
      *new TypeDescription(toUno("com.sun.star.sheet.XCellRangeData::getDataArray"));
  const BinaryObject object = binaryObject(cells);
  if (!object || !method.is()) return cells->getDataArray();
  uno_Sequence* data = nullptr;
  uno_Any failure;
  uno_Any* failed = &failure;
  object->pDispatcher(object.get(), method.get(), static_cast<void*>(&data), nullptr, &failed);
  if (failed != nullptr) {
    // The same call in the ordinary way tells what is wrong as an exception.
    uno_any_destruct(failed, nullptr);
    return cells->getDataArray();
  }
  // A number, a text and nothing look alike on both sides of the binding; an object would not.
  return {data, SAL_NO_ACQUIRE};
}

}  // namespace quorin::host::calc

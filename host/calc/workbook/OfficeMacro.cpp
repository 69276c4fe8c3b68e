#include "host/calc/workbook/OfficeMacro.h"

#include <com/sun/star/beans/XPropertySet.hpp>
#include <com/sun/star/container/XNameContainer.hpp>
#include <com/sun/star/script/XLibraryContainer.hpp>
#include <com/sun/star/script/provider/XScriptProviderSupplier.hpp>
#include <utility>

#include "host/calc/uno/Text.h"
#include "host/calc/workbook/HiddenWorkbook.h"

namespace quorin::host::calc {
namespace {

using css::uno::Any;
using css::uno::Reference;
using css::uno::UNO_QUERY_THROW;

Reference<css::script::provider::XScript> install(const Workbook& home, const char* text) {
  const Reference<css::script::XLibraryContainer> libraries(
      Reference<css::beans::XPropertySet>(home.model, UNO_QUERY_THROW)
          ->getPropertyValue("BasicLibraries"),
      UNO_QUERY_THROW);
  libraries->createLibrary("Quorin")->insertByName("Macro", Any(toUno(text)));
  return Reference<css::script::provider::XScriptProviderSupplier>(home.model, UNO_QUERY_THROW)
      ->getScriptProvider()
      ->getScript("vnd.sun.star.script:Quorin.Macro.perform?language=Basic&location=document");
}

}  // namespace

OfficeMacro::OfficeMacro(Reference<css::uno::XComponentContext> context, const char* text)
    : context_(std::move(context)), text_(text) {}

OfficeMacro::~OfficeMacro() = default;

void OfficeMacro::prepare() {
  std::call_once(prepared_, [this] {
    try {
      home_ = std::make_unique<HiddenWorkbook>(context_);
      script_ = install(home_->workbook(), text_);
    } catch (const css::uno::Exception&) {
      home_.reset();
    }
  });
}

std::optional<Any> OfficeMacro::run(const css::uno::Sequence<Any>& arguments) {
  prepare();
  if (!script_.is()) return std::nullopt;
  css::uno::Sequence<sal_Int16> places;
  css::uno::Sequence<Any> results;
  return script_->invoke(arguments, places, results);
}

}  // namespace quorin::host::calc

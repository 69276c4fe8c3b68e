// OfficeMacro: a Basic function of ours in a hidden workbook of ours, for what takes one step
// inside the office or too many calls from outside. It is installed when it is first needed, which
// takes about a tenth of a second. For any thread, once prepare() has returned.
#pragma once

#include <com/sun/star/script/provider/XScript.hpp>
#include <com/sun/star/uno/XComponentContext.hpp>
#include <memory>
#include <mutex>
#include <optional>

namespace quorin::host::calc {

class HiddenWorkbook;

class OfficeMacro {
 public:
  // The text is a function called "perform", and lives as long as the program.
  OfficeMacro(css::uno::Reference<css::uno::XComponentContext> context, const char* text);
  ~OfficeMacro();
  OfficeMacro(const OfficeMacro&) = delete;
  OfficeMacro& operator=(const OfficeMacro&) = delete;

  void prepare();
  // Nothing where the office runs no macros. Throws UNO's exceptions.
  std::optional<css::uno::Any> run(const css::uno::Sequence<css::uno::Any>& arguments);

 private:
  const css::uno::Reference<css::uno::XComponentContext> context_;
  const char* const text_;
  std::once_flag prepared_;
  std::unique_ptr<HiddenWorkbook> home_;
  css::uno::Reference<css::script::provider::XScript> script_;  // none: the office runs no macros
};

}  // namespace quorin::host::calc

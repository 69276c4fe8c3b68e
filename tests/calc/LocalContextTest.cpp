// What the office's libraries do the first time is done before two threads can do it at once.
#include <array>
#include <atomic>
#include <barrier>
#include <chrono>
#include <com/sun/star/uno/RuntimeException.hpp>
#include <cppuhelper/exc_hlp.hxx>
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <rtl/process.h>
#include <thread>
#include <typelib/typedescription.h>
#include <unistd.h>
#include <uno/environment.h>
#include <uno/mapping.h>

#include "host/calc/office/LocalContext.h"

namespace quorin::host::calc {
namespace {

constexpr std::chrono::milliseconds moment{50};

// Two threads hand on an exception. Both have what they map it with when one of them begins to
// describe its types, if it has to; the other goes on when that one has begun, and before it is
// done.
class TwoExceptions {
 public:
  [[noreturn]] void handOn() {
    std::thread first([&] { handOnOne(Part::first); }), second([&] { handOnOne(Part::second); });
    first.join();
    second.join();
    ::_exit(0);
  }

  void mapped() {
    constexpr int mappings = 2;  // to the libraries' own form and back
    if (part == Part::none || ++mapped_ != mappings) return;
    meeting_.arrive_and_wait();
    for (int i = 0; part == Part::second && i < 20 && !describes_; ++i)
      std::this_thread::sleep_for(moment / 10);
  }

  void describes() {
    if (part != Part::first) return;
    describes_ = true;
    std::this_thread::sleep_for(moment);
  }

 private:
  enum class Part { none, first, second };

  static void handOnOne(Part mine) {
    part = mine;
    try {
      throw css::uno::RuntimeException();
    } catch (const css::uno::RuntimeException&) {
      if (!cppu::getCaughtException().hasValue()) ::_exit(1);
    }
  }

  static thread_local Part part;
  static thread_local int mapped_;
  std::barrier<> meeting_{2};
  std::atomic<bool> describes_ = false;
};

thread_local TwoExceptions::Part TwoExceptions::part = Part::none;
thread_local int TwoExceptions::mapped_ = 0;
TwoExceptions exceptions;

// As the first object that goes through a connection does.
void nameThisProcess() {
  std::array<sal_uInt8, 16> name{};
  rtl_getGlobalProcessId(name.data());
}

TEST(LocalContext, IsReadyForTwoExceptionsAtOnce) {
  EXPECT_EXIT(
      {
        localContext();
        nameThisProcess();
        exceptions.handOn();
      },
      testing::ExitedWithCode(0), "");
}

template <typename Function>
Function behind(Function, const char* name) {
  return reinterpret_cast<Function>(::dlsym(RTLD_NEXT, name));
}

}  // namespace
}  // namespace quorin::host::calc

// These stand before the libraries' own.

extern "C" void uno_getMapping(uno_Mapping** mapping, uno_Environment* from, uno_Environment* to,
                               rtl_uString* purpose) SAL_THROW_EXTERN_C() {
  using namespace quorin::host::calc;
  static const auto real = behind(&uno_getMapping, "uno_getMapping");
  real(mapping, from, to, purpose);
  exceptions.mapped();
}

extern "C" void typelib_typedescription_newInterfaceMethod(
    typelib_InterfaceMethodTypeDescription** made, sal_Int32 position, sal_Bool oneWay,
    rtl_uString* name, typelib_TypeClass resultClass, rtl_uString* result, sal_Int32 parameterCount,
    typelib_Parameter_Init* parameters, sal_Int32 exceptionCount, rtl_uString** exceptionNames)
    SAL_THROW_EXTERN_C() {
  using namespace quorin::host::calc;
  static const auto real = behind(&typelib_typedescription_newInterfaceMethod,
                                  "typelib_typedescription_newInterfaceMethod");
  exceptions.describes();
  real(made, position, oneWay, name, resultClass, result, parameterCount, parameters,
       exceptionCount, exceptionNames);
}

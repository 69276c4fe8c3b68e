#include "host/calc/office/MainThread.h"

#include <com/sun/star/awt/AsyncCallback.hpp>
#include <cppuhelper/implbase1.hxx>
#include <exception>
#include <future>
#include <rtl/ref.hxx>
#include <utility>

namespace quorin::host::calc {
namespace {

class CallBack : public cppu::WeakImplHelper1<css::awt::XCallback> {
 public:
  explicit CallBack(std::function<void()> work) : work_(std::move(work)) {}

  void SAL_CALL notify(const css::uno::Any&) override {
    try {
      work_();
      done_.set_value();
    } catch (...) {
      done_.set_exception(std::current_exception());
    }
  }
  std::future<void> done() { return done_.get_future(); }

 private:
  const std::function<void()> work_;
  std::promise<void> done_;
};

}  // namespace

bool onMainThread(const css::uno::Reference<css::uno::XComponentContext>& context,
                  std::chrono::milliseconds patience, std::function<void()> work) {
  const rtl::Reference<CallBack> callBack(new CallBack(std::move(work)));
  std::future<void> done = callBack->done();
  css::awt::AsyncCallback::create(context)->addCallback(callBack.get(), {});
  if (done.wait_for(patience) != std::future_status::ready) return false;
  done.get();
  return true;
}

}  // namespace quorin::host::calc

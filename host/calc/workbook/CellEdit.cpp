#include "host/calc/workbook/CellEdit.h"

#include <atomic>
#include <com/sun/star/frame/XDispatchProvider.hpp>
#include <com/sun/star/frame/XStatusListener.hpp>
#include <cppuhelper/implbase1.hxx>
#include <rtl/ref.hxx>

namespace quorin::host::calc {
namespace {

using css::uno::Reference;

// Called back while the listener is being added, on a thread of the bridge or on ours.
class CommandState : public cppu::WeakImplHelper1<css::frame::XStatusListener> {
 public:
  void SAL_CALL statusChanged(const css::frame::FeatureStateEvent& event) override {
    enabled_ = event.IsEnabled;
  }
  void SAL_CALL disposing(const css::lang::EventObject&) override {}
  bool enabled() const { return enabled_; }

 private:
  std::atomic<bool> enabled_ = false;
};

}  // namespace

bool isEditing(const Reference<css::frame::XFrame>& frame) {
  css::util::URL command;
  command.Complete = command.Main = ".uno:InsertMode";
  command.Protocol = ".uno:";
  command.Path = "InsertMode";
  const Reference<css::frame::XDispatchProvider> provider(frame, css::uno::UNO_QUERY_THROW);
  const Reference<css::frame::XDispatch> dispatch =
      provider->queryDispatch(command, rtl::OUString(), 0);
  if (!dispatch.is()) return false;
  const rtl::Reference<CommandState> state(new CommandState);
  dispatch->addStatusListener(state.get(), command);
  dispatch->removeStatusListener(state.get(), command);
  return state->enabled();
}

}  // namespace quorin::host::calc

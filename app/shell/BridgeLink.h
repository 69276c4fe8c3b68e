// BridgeLink: the panel's view of the real bridge.
#pragma once

#include "app/shell/PanelBridge.h"
#include "kit/bridge/Bridge.h"

namespace quorin {

class BridgeLink : public PanelBridge {
 public:
  explicit BridgeLink(Bridge& bridge) : bridge_(bridge) {}

  PanelReply dispatch(const std::string& verb, const JSONValue::Array& args) override {
    Bridge::Reply reply = bridge_.dispatch(verb, args);
    return {reply.ok, std::move(reply.payload)};
  }
  JSONValue pollCell() override { return bridge_.pollCell(); }
  JSONValue probe() override { return bridge_.probe(); }
  void setArgSeparator(const std::string& separator) override {
    bridge_.setArgSeparator(separator);
  }
  std::chrono::system_clock::time_point lastProgrammaticNav() const override {
    return bridge_.lastProgrammaticNav();
  }
  void setOnActivatedCell(ActivatedCell handler) override {
    bridge_.setOnActivatedCell(std::move(handler));
  }
  void restoreStranded() override { bridge_.restoreStranded(); }
  void clearMarksForTerminate() override { bridge_.clearMarksForTerminate(); }

 private:
  Bridge& bridge_;
};

}  // namespace quorin

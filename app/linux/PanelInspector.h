// PanelInspector: lets a test look into the running panel, where no other tool reaches. It is
// part of quorin_inspected alone, and there while the environment names its socket in
// QX_TEST_SOCKET. Each line asks one thing:
//
//   eval SCRIPT   the script's value in the page as JSON; SCRIPT is a JSON text
//   window        {"visible", "key", "x", "y", "width", "height"}
//   alert         {"message", "informativeText", "buttons"} of the alert on the screen, or null
//   calls         [[verb, seconds], ...] that requests of the page took since the last time
//   quit          ends the application
//
// and is answered with "ok JSON" or "error TEXT".
#pragma once

#include "app/linux/GtkPlatform.h"
#include "app/linux/LineServer.h"
#include "app/linux/TimedBridge.h"

namespace quorin {

class PanelInspector {
 public:
  PanelInspector(const std::filesystem::path& socket, GtkPlatform& platform, TimedBridge& calls);

 private:
  void answer(const std::string& line, const LineServer::Answer& answer);

  GtkPlatform& platform_;
  TimedBridge& calls_;
  LineServer server_;
};

}  // namespace quorin

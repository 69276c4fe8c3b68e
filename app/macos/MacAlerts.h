// MacAlerts: modal alerts, through NSAlert. Main thread only; an alert waits for its answer.
#pragma once

#include "app/shell/ports/Alerts.h"

namespace quorin {

class MacAlerts : public Alerts {
 public:
  void show(const Alert& alert, Answer answer) override;
};

}  // namespace quorin

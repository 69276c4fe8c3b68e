// MacSaveDialog: the system's save panel, through NSSavePanel. Main thread only; the panel waits
// for its answer.
#pragma once

#include "app/shell/ports/SaveDialog.h"

namespace quorin {

class MacSaveDialog : public SaveDialog {
 public:
  void ask(const std::string& name, Answer answer) override;
};

}  // namespace quorin

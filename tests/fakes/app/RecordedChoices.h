// RecordedChoices: what a status item tells of its menu.
#pragma once

#include <cstddef>
#include <functional>
#include <vector>

#include "app/shell/ports/StatusItem.h"

namespace quorin {

class RecordedChoices : public StatusItemDelegate {
 public:
  void menuWillOpen() override {
    ++opened;
    if (onOpening) onOpening();
  }
  void menuItemChosen(std::size_t index) override { chosen.push_back(index); }

  int opened = 0;
  std::function<void()> onOpening;
  std::vector<std::size_t> chosen;
};

}  // namespace quorin

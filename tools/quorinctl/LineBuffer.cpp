#include "tools/quorinctl/LineBuffer.h"

#include <utility>

namespace quorin::ctl {

void LineBuffer::append(std::string_view bytes) {
  pending_ += bytes;
}

void LineBuffer::end() {
  ended_ = true;
}

std::optional<LineBuffer::Line> LineBuffer::next() {
  for (;;) {
    std::size_t feed = pending_.find('\n', searched_);
    std::size_t after = feed + 1;
    if (feed == std::string::npos) {
      if (ended_ && !(pending_.empty() && !skipping_)) {
        feed = after = pending_.size();
      } else if (skipping_) {
        pending_.clear();
        searched_ = 0;
        return std::nullopt;
      } else if (pending_.size() > limit_) {
        pending_.clear();
        searched_ = 0;
        skipping_ = true;
        return Line{"", true};
      } else {
        searched_ = pending_.size();
        return std::nullopt;
      }
    }
    Line line{pending_.substr(0, feed), false};
    pending_.erase(0, after);
    searched_ = 0;
    if (std::exchange(skipping_, false)) continue;
    if (line.text.size() > limit_) return Line{"", true};
    if (line.text.ends_with('\r')) line.text.pop_back();
    return line;
  }
}

}  // namespace quorin::ctl

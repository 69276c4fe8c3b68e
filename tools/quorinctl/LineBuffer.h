// LineBuffer: cuts what is read into lines. A line longer than the limit is given up: it is told
// once, and reading goes on with the line after it. Not for several threads.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace quorin::ctl {

class LineBuffer {
 public:
  struct Line {
    std::string text;      // without its line end, "\n" or "\r\n"
    bool tooLong = false;  // then without text
    bool operator==(const Line&) const = default;
  };

  explicit LineBuffer(std::size_t limit) : limit_(limit) {}

  void append(std::string_view bytes);
  void end();  // nothing follows: what is left is the last line

  // The next whole line.
  std::optional<Line> next();

 private:
  const std::size_t limit_;
  std::string pending_;
  std::size_t searched_ = 0;  // up to here there is no line feed
  bool skipping_ = false;     // inside a line that was given up
  bool ended_ = false;
};

}  // namespace quorin::ctl

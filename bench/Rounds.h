// Rounds: how long steps take that are measured in turn, ours beside the same done directly.
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <map>
#include <string>
#include <vector>

class Rounds {
 public:
  template <typename Work>
  void time(const std::string& step, Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - start;
    taken_[step].push_back(taken.count());
  }

  // Prints one line: the medians of "direct STEP" and of "OURS STEP", in milliseconds, and their
  // ratio.
  void compare(const std::string& ours, const std::string& step) const {
    const double plain = median("direct " + step), time = median(ours + " " + step);
    std::printf("%-28s direct %8.1f ms   %s %8.1f ms   %.2f times\n", step.c_str(), plain,
                ours.c_str(), time, time / plain);
  }

 private:
  double median(const std::string& step) const {
    std::vector<double> times = taken_.at(step);
    std::nth_element(times.begin(), times.begin() + std::ssize(times) / 2, times.end());
    return times[times.size() / 2];
  }

  std::map<std::string, std::vector<double>> taken_;
};

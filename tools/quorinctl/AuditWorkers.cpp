#include "tools/quorinctl/AuditWorkers.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace quorin::ctl {

namespace {

constexpr auto hangingTime = std::chrono::seconds(5);
constexpr auto endingTime = std::chrono::seconds(40);  // an office has 30 to go

}  // namespace

AuditWorkers::AuditWorkers(Waiter& waiter, Options options, Client client)
    : waiter_(waiter), options_(std::move(options)), client_(std::move(client)) {}

bool AuditWorkers::run(const std::vector<std::filesystem::path>& files,
                       std::vector<std::size_t> indexes) {
  std::reverse(indexes.begin(), indexes.end());
  try {
    for (fill(files, indexes); !workers_.empty(); fill(files, indexes)) {
      if (!wait()) {
        endAll();
        return false;
      }
      hear();
      endTheSilent();
    }
  } catch (...) {
    endAll();
    throw;
  }
  return true;
}

void AuditWorkers::fill(const std::vector<std::filesystem::path>& files,
                        std::vector<std::size_t>& indexes) {
  while (!indexes.empty() && workers_.size() < options_.jobs) {
    const std::size_t index = indexes.back();
    indexes.pop_back();
    workers_.push_back(
        std::make_unique<AuditWorker>(index, files[index], options_.arguments, options_.patience));
  }
}

// False when a signal came.
bool AuditWorkers::wait() {
  std::vector<int> outputs;
  auto limit = AuditWorker::Clock::time_point::max();
  for (const auto& worker : workers_) {
    outputs.push_back(worker->output());
    limit = std::min(limit, worker->limit());
  }
  return waiter_.waitForInput(outputs, limit) != Waiter::Event::signal;
}

void AuditWorkers::hear() {
  for (std::unique_ptr<AuditWorker>& worker : workers_) {
    const std::size_t index = worker->index();
    std::optional<JSONValue> report =
        worker->hear([&](const std::string& text) { client_.progress(index, text); });
    if (!report) continue;
    worker.reset();
    client_.done(index, std::move(*report));
  }
  std::erase(workers_, nullptr);
}

void AuditWorkers::endTheSilent() {
  for (const auto& worker : workers_)
    if (worker->limit() <= AuditWorker::Clock::now()) worker->end(hangingTime);
}

// They take their offices with them, for which they get their time.
void AuditWorkers::endAll() {
  std::erase(workers_, nullptr);
  for (const auto& worker : workers_) worker->end(endingTime);
  for (const auto& worker : workers_) worker->waitForEnd();
  workers_.clear();
}

}  // namespace quorin::ctl

#include "symbols/NmQueue.h"

#include <poll.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "base/RunWatcher.h"

namespace {

/// Limit of runs that are started and not taken yet: each holds descriptors, and a process may have only 1024
/// or fewer.
constexpr std::size_t kMostRuns = 64;

/// Interval of calls of nmAwaited, and of looks for ends that no pipe shows, in milliseconds.
constexpr int kWatchInterval = 100;

}  // namespace

NmQueue::NmQueue(std::size_t processors) : _processors(std::max<std::size_t>(processors, 1)) {}

void NmQueue::expect(const std::string& path, NextFile next) {
  _jobs.push_back({path, std::move(next), nullptr, false});
  collectEnded();
  startWaiting();
}

std::unique_ptr<NmRun> NmQueue::take(const std::string& path) {
  auto job = find(path);
  if (job == _jobs.end()) job = _jobs.insert(_jobs.begin(), {path, {}, nullptr, false});
  if (job->run == nullptr) start(*job);
  // Other runs end and start while this one is awaited.
  while (!(job = find(path))->isDone) waitForAny(path);
  std::unique_ptr<NmRun> run = std::move(job->run);
  _jobs.erase(job);
  startWaiting();
  return run;
}

std::deque<NmQueue::Job>::iterator NmQueue::find(const std::string& path) {
  return std::find_if(_jobs.begin(), _jobs.end(), [&](const Job& job) { return job.path == path; });
}

void NmQueue::start(Job& job) {
  job.run = std::make_unique<NmRun>(job.path);
  job.isDone = job.run->hasEnded();
  if (!job.isDone) ++_running;
}

void NmQueue::startWaiting() {
  for (std::size_t i = 0; i < _jobs.size() && i < kMostRuns && _running < _processors; ++i)
    if (_jobs[i].run == nullptr) start(_jobs[i]);
}

void NmQueue::waitForAny(const std::string& path) {
  std::vector<pollfd> alive;
  for (const Job& job : _jobs)
    if (job.run != nullptr && !job.isDone) alive.push_back({job.run->alive(), POLLIN, 0});
  RunWatcher* const watcher = RunWatcher::_current;
  if (poll(alive.data(), alive.size(), kWatchInterval) == 0 && watcher != nullptr)
    watcher->nmAwaited(path.c_str());
  collectEnded();
  startWaiting();
}

void NmQueue::collectEnded() {
  for (std::size_t i = 0; i < _jobs.size(); ++i) {
    Job& job = _jobs[i];
    if (job.run == nullptr || job.isDone || !job.run->hasEnded()) continue;
    job.isDone = true;
    --_running;
    if (!job.run->listIsEmpty() || !job.next) continue;
    // An empty list is followed at once by a request for the next file.
    NextFile next = std::move(job.next);
    if (const std::string path = next(); !path.empty() && find(path) == _jobs.end())
      _jobs.insert(_jobs.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                   {path, std::move(next), nullptr, false});
  }
}

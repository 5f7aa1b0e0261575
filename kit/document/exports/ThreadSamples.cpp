#include "document/exports/ThreadSamples.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>

namespace zelkit {

namespace {

template <typename Values>
void reorder(Values& values, const std::vector<std::uint32_t>& order) {
  Values ordered;
  for (const std::uint32_t index : order) ordered.push_back(values[index]);
  values = std::move(ordered);
}

}  // namespace

void ThreadSamples::description(std::string_view name, std::string_view value) {
  if (name == "duration") _duration = std::strtod(std::string(value).c_str(), nullptr);
}

void ThreadSamples::sample(const SampleRow& row) {
  if (_latest == nullptr || _latest->pidKey != row.pidKey || _latest->tid != row.tid) {
    Thread*& thread = _byId[{row.pidKey, row.tid}];
    if (thread == nullptr) thread = &_threads.emplace_back(Thread{row.pidKey, row.tid, {}, {}});
    _latest = thread;
  }
  _frames.clear();
  forEachFrame(row, [&](std::uint32_t key) { _frames.push_back(key); });
  const StackTree::Node node = _tree.path(StackTree::kRoot, _frames);
  _tree.count(node);
  _latest->times.push_back(row.time);
  _latest->nodes.push_back(node);
}

void ThreadSamples::sort() {
  for (Thread& thread : _threads) {
    if (std::is_sorted(thread.times.begin(), thread.times.end())) continue;
    std::vector<std::uint32_t> order(thread.times.size());
    std::iota(order.begin(), order.end(), 0U);
    std::stable_sort(order.begin(), order.end(), [&](std::uint32_t left, std::uint32_t right) {
      return thread.times[left] < thread.times[right];
    });
    reorder(thread.times, order);
    reorder(thread.nodes, order);
  }
}

std::string ThreadSamples::threadTitle(const Thread& thread) const {
  const Process* process = findProcess(thread.pidKey);
  return (process == nullptr ? "" : process->name + " ") + std::to_string(thread.tid);
}

}  // namespace zelkit

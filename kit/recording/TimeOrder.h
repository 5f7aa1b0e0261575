#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace zelkit {

/// Puts records into the order of time. A recording holds the buffers of several CPUs one after the other;
/// perf marks the end of each round through them, and no record of a later round is older than the newest
/// one of the round before. So one round is kept back at most, 16 bytes a record. Records of one time keep
/// their order.
class TimeOrder {
 public:
  struct Entry {
    std::uint64_t time;
    const char* place;
  };

  void add(std::uint64_t time, const char* place) {
    _sorted = _sorted && time >= _last;
    _last = time;
    _newest = std::max(_newest, time);
    _entries.push_back({time, place});
  }

  /// A round ends: gives out what no later record can come before.
  template <typename Emit>
  void finishRound(Emit emit) {
    const std::uint64_t limit = _limit;
    _limit = _newest;
    emitUpTo(limit, emit);
  }

  /// The recording ends: gives out the rest.
  template <typename Emit>
  void finish(Emit emit) {
    emitUpTo(~std::uint64_t{0}, emit);
  }

  [[nodiscard]] const std::vector<Entry>& pending() const { return _entries; }

 private:
  template <typename Emit>
  void emitUpTo(std::uint64_t limit, Emit emit) {
    const auto earlier = [](const Entry& left, const Entry& right) { return left.time < right.time; };
    if (!_sorted) std::stable_sort(_entries.begin(), _entries.end(), earlier);
    const auto end = std::upper_bound(_entries.begin(), _entries.end(), Entry{limit, nullptr}, earlier);
    for (auto entry = _entries.begin(); entry != end; ++entry) emit(*entry);
    _entries.erase(_entries.begin(), end);
    _sorted = true;
    _last = _entries.empty() ? 0 : _entries.back().time;
  }

  std::vector<Entry> _entries;
  std::uint64_t _last = 0;
  std::uint64_t _newest = 0;  ///< time so far
  std::uint64_t _limit = 0;   ///< newest time of the round before
  bool _sorted = true;
};

}  // namespace zelkit

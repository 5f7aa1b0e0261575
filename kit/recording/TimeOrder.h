#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

namespace zelkit {

/// Sorts records by time. A recording contains the buffers of the CPUs in turn; perf marks the end of each
/// round through them, and no record of a round is older than the newest one two rounds before. So at most
/// two rounds are buffered, 16 bytes per record. Records of one time keep their order.
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

  /// Ends a round: emits the records that no later record can precede.
  template <typename Emit>
  void finishRound(Emit emit) {
    const std::uint64_t limit = _limit;
    _limit = _newest;
    emitUpTo(limit, emit);
  }

  /// Ends the recording: emits the rest.
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
  std::uint64_t _newest = 0;  ///< newest time so far
  std::uint64_t _limit = 0;   ///< newest time of the previous round
  bool _sorted = true;
};

}  // namespace zelkit

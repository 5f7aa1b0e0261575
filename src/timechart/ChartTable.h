#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>

/// The charts of one kind by their number, a null pointer for none. Records speak of the same few again and
/// again, so those found last are at hand.
template <typename Chart>
class ChartTable {
 public:
  Chart* find(int number) {
    Entry& latest = latestAt(number);
    if (latest.second == nullptr || latest.first != number) {
      const auto found = _charts.find(number);
      latest = {number, found != _charts.end() ? found->second : nullptr};
    }
    return latest.second;
  }

  /// Takes the place of one that is there.
  Chart* add(int number, Chart* chart) {
    latestAt(number) = {number, chart};
    return _charts[number] = chart;
  }

  using Entry = std::pair<int, Chart*>;

  /// Ascending by number.
  std::vector<Entry> inOrder() const {
    std::vector<Entry> entries(_charts.begin(), _charts.end());
    std::sort(entries.begin(), entries.end());
    return entries;
  }

 private:
  Entry& latestAt(int number) { return _latest[static_cast<unsigned int>(number) % _latest.size()]; }

  std::unordered_map<int, Chart*> _charts;
  std::array<Entry, 512> _latest{};  ///< by the low bits of the number
};

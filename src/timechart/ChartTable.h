#pragma once

#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/KeyHash.h"
/// The charts of one kind by their number.
template <typename Chart>
class ChartTable {
 public:
  /// Returns the chart of that number, or null.
  Chart* find(int number) const {
    const auto found = _charts.find(number);
    return found != _charts.end() ? found->second : nullptr;
  }

  /// Returns the chart, which replaces an existing one of that number.
  Chart* add(int number, Chart* chart) { return _charts[number] = chart; }

  using Entry = std::pair<int, Chart*>;

  /// Returns all charts, ascending by number.
  std::vector<Entry> inOrder() const {
    std::vector<Entry> entries(_charts.begin(), _charts.end());
    std::sort(entries.begin(), entries.end());
    return entries;
  }

 private:
  std::unordered_map<int, Chart*, KeyHash> _charts;
};

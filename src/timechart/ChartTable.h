#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "base/KeyTable.h"

/// The charts of one kind by their number.
template <typename Chart>
class ChartTable {
 public:
  /// Returns the chart of that number, or null.
  Chart* find(int number) const { return _charts.find(static_cast<std::uint32_t>(number)); }

  /// Adds a chart, which replaces an existing one of that number, and returns it.
  Chart* add(int number, Chart* chart) {
    _charts.set(static_cast<std::uint32_t>(number), chart);
    return chart;
  }

  using Entry = std::pair<int, Chart*>;

  /// Returns all charts, ascending by number.
  std::vector<Entry> inOrder() const {
    std::vector<Entry> entries;
    _charts.forEach(
        [&](std::uint64_t key, Chart* chart) { entries.emplace_back(static_cast<int>(key), chart); });
    std::sort(entries.begin(), entries.end());
    return entries;
  }

 private:
  KeyTable<Chart> _charts;
};

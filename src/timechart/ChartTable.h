#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "base/KeyTable.h"

/// The charts of one kind by their number. Records name the same few charts again and again, so a
/// direct-mapped cache of the charts found last precedes the table. Numbers that collide in it by design cost
/// a look into the table each, which has a seed.
template <typename Chart>
class ChartTable {
 public:
  using Entry = std::pair<int, Chart*>;

  /// Returns the chart of that number, or null.
  Chart* find(int number) const {
    Entry& recent = recentAt(number);
    if (recent.first != number) recent = {number, _charts.find(static_cast<std::uint32_t>(number))};
    return recent.second;
  }

  /// Adds a chart, which replaces an existing one of that number, and returns it.
  Chart* add(int number, Chart* chart) {
    _charts.set(static_cast<std::uint32_t>(number), chart);
    recentAt(number) = {number, chart};
    return chart;
  }

  /// Returns all charts, ascending by number.
  std::vector<Entry> inOrder() const {
    std::vector<Entry> entries;
    _charts.forEach(
        [&](std::uint64_t key, Chart* chart) { entries.emplace_back(static_cast<int>(key), chart); });
    std::sort(entries.begin(), entries.end());
    return entries;
  }

 private:
  static constexpr std::size_t kRecent = 512;

  Entry& recentAt(int number) const { return _recent[static_cast<unsigned int>(number) % kRecent]; }

  KeyTable<Chart> _charts;
  mutable std::array<Entry, kRecent> _recent{};  ///< by the low bits of the number; null for no chart
};

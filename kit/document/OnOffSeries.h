#pragma once

#include <optional>
#include <utility>

namespace zelkit {

/// The intervals of a series that is on where its values are not 0.
class OnOffSeries {
 public:
  struct Interval {
    double start = 0.0;
    double end = 0.0;
  };

  /// Takes the next point; returns the interval that ends there, if one does.
  std::optional<Interval> point(double time, double value) {
    if ((value != 0.0) == _since.has_value()) return {};
    if (value == 0.0) return Interval{*std::exchange(_since, std::nullopt), time};
    _since = time;
    return {};
  }

  /// Returns since when it is on; a series that is on at its end has no closing point.
  const std::optional<double>& since() const { return _since; }

 private:
  std::optional<double> _since;
};

}  // namespace zelkit

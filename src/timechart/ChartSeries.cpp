#include "timechart/ChartSeries.h"

#include <utility>

#include "timechart/TimeOrder.h"

ChartSamples ChartSeries::inTimeOrder() const {
  return ::inTimeOrder(_samples);
}

ChartSamples ChartSeries::changes() const {
  ChartSamples samples = inTimeOrder();
  unsigned int last = 0;
  std::erase_if(samples, [&last](const ChartEntryS& sample) {
    return std::exchange(last, sample.value) == sample.value;
  });
  return samples;
}

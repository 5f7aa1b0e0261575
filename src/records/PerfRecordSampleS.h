#pragma once

#include "records/RecordView.h"

/// A plain PERF_RECORD_SAMPLE in the record buffer. Its fields follow from what was recorded (IP,
/// TID, TIME, CPU, PERIOD, CALLCHAIN; see linux/perf_event.h); recordings with other fields are read as if
/// they had these.
class PerfRecordSampleS {
 public:
  explicit PerfRecordSampleS(const char* record) : _view(record) {}

  unsigned long long ip() const { return _view.u64(8); }
  unsigned int pid() const { return _view.u32(16); }
  unsigned int tid() const { return _view.u32(20); }
  unsigned long long time() const { return _view.u64(24); }
  /// The core in a plain sample; the low half of the event stream's id in a trace-point sample.
  unsigned int cpu() const { return _view.u32(32); }
  unsigned long long period() const { return _view.u64(40); }
  unsigned int nr() const { return _view.u32(48); }
  unsigned long long ips(unsigned int index) const { return _view.u64(56 + std::size_t{8} * index); }

  const RecordView& view() const { return _view; }

 private:
  RecordView _view;
};

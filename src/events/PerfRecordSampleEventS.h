#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "records/PerfRecordSampleS.h"
#include "records/RecordView.h"

/// The fields of a trace-point after its common header. Offsets count from the start of the payload. Valid as
/// long as the view.
class EventPayload {
 public:
  EventPayload(const RecordView& view, std::size_t start) : _view(view), _start(start) {}

  /// Return a number of the payload; 0 beyond the record buffer.
  unsigned int u32(std::size_t offset) const { return _view.u32(_start + offset); }
  int i32(std::size_t offset) const { return _view.i32(_start + offset); }

  /// Returns a text array; without a NUL it continues after the end of its field.
  std::string_view text(std::size_t offset) const { return _view.text(_start + offset); }

  /// Returns the text located by the word at the offset (__data_loc of the kernel), without its first `skip`
  /// characters. The word's low half is an offset from the start of the raw data; the length in its high half
  /// is ignored. For a position outside the record buffer the text's data() is null.
  std::string_view locatedText(std::size_t offset, std::size_t skip = 0) const;

 private:
  const RecordView& _view;  ///< a copy would wait until both of its parts are in memory
  std::size_t _start;
};

/// A PERF_RECORD_SAMPLE of a trace-point in the record buffer. Its fields follow from what was
/// recorded (IP, TID, TIME, ID, CPU, RAW; see linux/perf_event.h).
class PerfRecordSampleEventS {
 public:
  explicit PerfRecordSampleEventS(const char* record) : _sample(record) {}

  unsigned long long ip() const { return _sample.ip(); }
  unsigned int pid() const { return _sample.pid(); }
  unsigned int tid() const { return _sample.tid(); }
  unsigned long long time() const { return _sample.time(); }
  int cpu() const { return view().i32(40); }
  /// Returns the kernel's number of the event.
  std::uint16_t commonType() const { return view().u16(kRaw); }
  int commonPid() const { return view().i32(kRaw + 4); }

  /// Returns the payload. Kernels before 3.10 have one more word in the common header.
  EventPayload payload() const;
  /// Returns the payload in the layouts of 64-bit kernels, which never have that word.
  EventPayload payload64() const { return {view(), kRaw + 8}; }

  /// Returns the same record read as a plain sample.
  const PerfRecordSampleS& sample() const { return _sample; }

  static constexpr std::size_t kRaw = 52;

 private:
  const RecordView& view() const { return _sample.view(); }

  PerfRecordSampleS _sample;
};

#pragma once

#include <cstdint>

/// The types of record that the program takes something from, as linux/perf_event.h numbers them.
enum PerfRecordType : std::uint32_t {
  PERF_RECORD_MMAP = 1,
  PERF_RECORD_LOST = 2,
  PERF_RECORD_COMM = 3,
  PERF_RECORD_SAMPLE = 9,
  PERF_RECORD_LOST_SAMPLES = 13,
};

#pragma once

#include <cstdint>

/// The record types that the program uses, with their numbers in linux/perf_event.h.
enum PerfRecordType : std::uint32_t {
  PERF_RECORD_MMAP = 1,
  PERF_RECORD_LOST = 2,
  PERF_RECORD_COMM = 3,
  PERF_RECORD_SAMPLE = 9,
  PERF_RECORD_LOST_SAMPLES = 13,
};

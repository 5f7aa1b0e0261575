/// The two record layouts that the engine reads: plain samples with their processes and maps, and samples of
/// trace-points.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace zelkit {

/// Receiver of records: a file, or the engine itself.
class RecordTaker {
 public:
  virtual ~RecordTaker() = default;
  /// Returns a buffer for a record of that size, to be filled before done() is called.
  virtual char* room(std::size_t size) = 0;
  virtual void done(std::size_t size) = 0;
};

/// The fields of a sample to be written.
struct OldSample {
  std::uint64_t ip = 0;
  std::uint32_t pid = 0;
  std::uint32_t tid = 0;
  std::uint64_t time = 0;
  std::uint32_t cpu = 0;
  std::uint64_t period = 0;
};

/// Writes records, each at most 256 bytes long but for deep back-traces:
///
///     header    u32 type, u16 misc, u16 size of the whole
///     comm (3)  u32 pid, u32 tid, name with its NUL, filled up to a multiple of 8
///     mmap (1)  u32 pid, u32 tid, u64 start, u64 length, u64 0, file name like the other
///     sample (9), plain        u64 ip, u32 pid, u32 tid, u64 time, u64 cpu (16 at most), u64 period,
///                              u64 count, u64 back-trace entries
///     sample (9), trace-point  u64 ip, u32 pid, u32 tid, u64 time, u64 id (above 16), u32 cpu, u32 0,
///                              u32 size of the raw data, raw data filled up to a multiple of 8
class OldRecords {
 public:
  static constexpr std::size_t kLargest = 256;
  static constexpr std::size_t kLongestFileName = kLargest - 40 - 1;
  static constexpr std::size_t kLongestThreadName = kLargest - 16 - 1;
  static constexpr std::size_t kDeepestInFile = 25;
  static constexpr std::uint32_t kHighestCore = 16;         ///< of plain samples
  static constexpr std::uint32_t kHighestChartedCore = 15;  ///< of trace-points

  explicit OldRecords(RecordTaker& taker) : _taker(taker) {}

  /// Each writes one record.
  void comm(std::uint32_t pid, std::uint32_t tid, std::string_view name);
  void mapping(std::uint32_t pid, std::uint64_t start, std::uint64_t length, std::string_view file);
  void sample(const OldSample& sample, const std::vector<std::uint64_t>& trace);
  /// `number`: that of the event in the event table, also written as the raw data's common_type.
  void tracePoint(const OldSample& sample, std::uint16_t number, std::string_view raw);

 private:
  RecordTaker& _taker;
};

}  // namespace zelkit

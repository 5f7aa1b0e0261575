#include "layout/OldRecords.h"

#include <cstring>

#include "recording/RecordTypes.h"

namespace zelkit {

namespace {

constexpr std::size_t kAlignment = 8;

constexpr std::size_t aligned(std::size_t size) {
  return (size + kAlignment - 1) / kAlignment * kAlignment;
}

/// Writes the fields of one record.
class Writer {
 public:
  Writer(RecordTaker& taker, RecordType type, std::size_t size)
      : _taker(taker), _size(size), _to(taker.room(size)) {
    put<std::uint32_t>(type);
    put<std::uint16_t>(0);
    put(static_cast<std::uint16_t>(size));
  }
  ~Writer() { _taker.done(_size); }
  Writer(const Writer&) = delete;
  Writer& operator=(const Writer&) = delete;

  template <typename Number>
  void put(Number number) {
    std::memcpy(_to, &number, sizeof number);
    _to += sizeof number;
  }
  /// Writes bytes into a field of `width` bytes, padded with NULs.
  void put(std::string_view bytes, std::size_t width) {
    std::memcpy(_to, bytes.data(), bytes.size());
    std::memset(_to + bytes.size(), 0, width - bytes.size());
    _to += width;
  }

 private:
  RecordTaker& _taker;
  std::size_t _size;
  char* _to;
};

}  // namespace

void OldRecords::comm(std::uint32_t pid, std::uint32_t tid, std::string_view name) {
  const std::size_t width = aligned(name.size() + 1);
  Writer record(_taker, kRecordComm, 16 + width);
  record.put(pid);
  record.put(tid);
  record.put(name, width);
}

void OldRecords::mapping(std::uint32_t pid, std::uint64_t start, std::uint64_t length,
                         std::string_view file) {
  const std::size_t width = aligned(file.size() + 1);
  Writer record(_taker, kRecordMmap, 40 + width);
  // The tid: the engine sorts maps by it but searches without it, so all maps of a process have the same.
  record.put(pid);
  record.put(pid);
  record.put(start);
  record.put(length);
  record.put<std::uint64_t>(0);
  record.put(file, width);
}

void OldRecords::sample(const OldSample& sample, const std::vector<std::uint64_t>& trace) {
  Writer record(_taker, kRecordSample, 56 + trace.size() * sizeof(std::uint64_t));
  record.put(sample.ip);
  record.put(sample.pid);
  record.put(sample.tid);
  record.put(sample.time);
  record.put<std::uint64_t>(sample.cpu);
  record.put(sample.period);
  record.put<std::uint64_t>(trace.size());
  for (const std::uint64_t entry : trace) record.put(entry);
}

void OldRecords::tracePoint(const OldSample& sample, std::uint16_t number, std::string_view raw) {
  const std::size_t width = aligned(52 + raw.size()) - 52;
  Writer record(_taker, kRecordSample, 52 + width);
  record.put(sample.ip);
  record.put(sample.pid);
  record.put(sample.tid);
  record.put(sample.time);
  // A value above every core number marks a trace-point sample for the engine.
  record.put<std::uint64_t>(kHighestCore + 1 + number);
  record.put(sample.cpu);
  record.put<std::uint32_t>(0);
  record.put(static_cast<std::uint32_t>(width));
  record.put(number);
  record.put(raw.substr(sizeof number), width - sizeof number);
}

}  // namespace zelkit

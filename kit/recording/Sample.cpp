#include "recording/Sample.h"

#include <bit>

namespace zelkit {

namespace {

/// Bits of sample_type, in linux/perf_event.h PERF_SAMPLE_*.
enum SampleBit : std::uint64_t {
  kIp = 1 << 0,
  kTid = 1 << 1,
  kTime = 1 << 2,
  kAddress = 1 << 3,
  kRead = 1 << 4,
  kCallChain = 1 << 5,
  kId = 1 << 6,
  kCpu = 1 << 7,
  kPeriod = 1 << 8,
  kStreamId = 1 << 9,
  kRaw = 1 << 10,
  kBranchStack = 1 << 11,
  kUserRegisters = 1 << 12,
  kUserStack = 1 << 13,
  kIdentifier = 1 << 16,
};

/// Bits of read_format, PERF_FORMAT_*.
enum ReadBit : std::uint64_t { kTimeEnabled = 1, kTimeRunning = 2, kReadId = 4, kGroup = 8, kReadLost = 16 };

constexpr std::uint64_t kBranchHardwareIndex = 1 << 17;
constexpr std::uint64_t kBranchCounters = 1 << 19;
constexpr std::uint64_t kWord = sizeof(std::uint64_t);

/// Passes over `count` items of `size` bytes; a count too large for any record clears ok().
void skipItems(Bytes& bytes, std::uint64_t count, std::uint64_t size) {
  bytes.skip(count > bytes.left() ? ~std::uint64_t{0} : count * size);
}

void skipReadValues(Bytes& bytes, std::uint64_t format) {
  const auto times = static_cast<std::uint64_t>(std::popcount(format & (kTimeEnabled | kTimeRunning)));
  const auto extras = static_cast<std::uint64_t>(std::popcount(format & (kReadId | kReadLost)));
  const std::uint64_t count = (format & kGroup) != 0 ? bytes.u64() : 1;
  bytes.skip(times * kWord);
  skipItems(bytes, count, (1 + extras) * kWord);
}

Chain readChain(Bytes& bytes) {
  const std::uint64_t count = bytes.u64();
  return Chain(bytes.take(count > bytes.left() ? ~std::uint64_t{0} : count * kWord));
}

void skipBranches(Bytes& bytes, std::uint64_t branchSampleType) {
  const std::uint64_t count = bytes.u64();
  if ((branchSampleType & kBranchHardwareIndex) != 0) bytes.skip(kWord);
  skipItems(bytes, count, 3 * kWord);
  if ((branchSampleType & kBranchCounters) != 0) skipItems(bytes, count, kWord);
}

/// Reads the fields after the raw data, up to the copy of the user's stack.
void readUserSide(const EventDescription& event, Bytes& bytes, Sample& sample) {
  if ((event.sampleType & kBranchStack) != 0) skipBranches(bytes, event.branchSampleType);
  if ((event.sampleType & kUserRegisters) != 0 && bytes.u64() != 0)
    skipItems(bytes, static_cast<std::uint64_t>(std::popcount(event.userRegisters)), kWord);
  if ((event.sampleType & kUserStack) != 0) {
    const std::uint64_t size = bytes.u64();
    sample.hasUserStack = size != 0;
    bytes.skip(size);
  }
}

}  // namespace

bool readSample(const EventDescription& event, std::string_view body, Sample& sample) {
  const std::uint64_t type = event.sampleType;
  Bytes bytes(body);
  if ((type & kIdentifier) != 0) bytes.skip(kWord);
  if ((type & kIp) != 0) sample.ip = bytes.u64();
  if ((type & kTid) != 0) {
    sample.pid = bytes.u32();
    sample.tid = bytes.u32();
  }
  if ((type & kTime) != 0) sample.time = bytes.u64();
  if ((type & kAddress) != 0) bytes.skip(kWord);
  if ((type & kId) != 0) bytes.skip(kWord);
  if ((type & kStreamId) != 0) bytes.skip(kWord);
  if ((type & kCpu) != 0) {
    sample.cpu = bytes.u32();
    bytes.skip(sizeof(std::uint32_t));
  }
  if ((type & kPeriod) != 0) sample.period = bytes.u64();
  if ((type & kRead) != 0) skipReadValues(bytes, event.readFormat);
  if ((type & kCallChain) != 0) sample.chain = readChain(bytes);
  if ((type & kRaw) != 0) sample.raw = bytes.take(bytes.u32());
  if ((type & (kUserRegisters | kUserStack)) != 0) readUserSide(event, bytes, sample);
  return bytes.ok();
}

SampleFields::SampleFields(const EventDescription& event) {
  const std::uint64_t type = event.sampleType;
  const auto words = [&](std::uint64_t bits) { return std::popcount(type & bits); };
  constexpr int word = static_cast<int>(kWord);
  if ((type & kTime) != 0) _sampleTime = words(kIdentifier | kIp | kTid) * word;
  if ((type & kIdentifier) != 0) {
    _sampleId = 0;
  } else if ((type & kId) != 0) {
    _sampleId = words(kIp | kTid | kTime | kAddress) * word;
  }
  if (!event.sampleIdAll) return;
  _trailerSize = static_cast<std::size_t>(words(kTid | kTime | kId | kStreamId | kCpu | kIdentifier)) * kWord;
  if ((type & kTime) != 0)
    _trailerTime = static_cast<std::size_t>(1 + words(kId | kStreamId | kCpu | kIdentifier)) * kWord;
}

std::uint64_t SampleFields::sampleTime(std::string_view body) const {
  return _sampleTime < 0 ? kNoTime : numberAt<std::uint64_t>(body, static_cast<std::size_t>(_sampleTime));
}

std::uint64_t SampleFields::sampleId(std::string_view body) const {
  return numberAt<std::uint64_t>(body, static_cast<std::size_t>(_sampleId));
}

std::uint64_t SampleFields::trailerTime(std::string_view body) const {
  if (_trailerTime == 0 || body.size() < _trailerSize) return kNoTime;
  return numberAt<std::uint64_t>(body, body.size() - _trailerTime);
}

}  // namespace zelkit

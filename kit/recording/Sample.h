#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "recording/Bytes.h"
#include "recording/EventDescription.h"

namespace zelkit {

/// The entries of a back-trace in a record, innermost first, context markers included.
class Chain {
 public:
  Chain() = default;
  explicit Chain(std::string_view bytes) : _bytes(bytes) {}

  [[nodiscard]] std::size_t size() const { return _bytes.size() / sizeof(std::uint64_t); }
  std::uint64_t operator[](std::size_t index) const {
    return numberAt<std::uint64_t>(_bytes, index * sizeof(std::uint64_t));
  }

 private:
  std::string_view _bytes;
};

/// The processor mode of a sample, from the low bits of a record's misc field.
enum class Mode : std::uint8_t {
  unknown = 0,
  kernel = 1,
  user = 2,
  hypervisor = 3,
  guestKernel = 4,
  guestUser = 5
};

/// A sample. Fields that its event did not record are 0 or empty. Texts point into the record.
struct Sample {
  std::size_t event = 0;  ///< index into Recording::events()
  Mode mode = Mode::unknown;
  std::uint64_t ip = 0;
  std::uint32_t pid = 0;
  std::uint32_t tid = 0;
  std::uint64_t time = 0;  ///< nanoseconds of the recording's clock
  std::uint32_t cpu = 0;
  std::uint64_t period = 1;
  Chain chain = {};
  Chain laterChain = {};      ///< of user space, unwound after the recording; follows `chain`
  std::string_view raw = {};  ///< a trace-point's data, starting with its common header
  bool hasUserStack = false;  ///< whether the sample has a copy of the stack, so that callers need unwinding
};

/// Reads the body of a PERF_RECORD_SAMPLE by its event's sample_type (the order of fields is told in
/// linux/perf_event.h). Returns false if it is too short for its own fields.
bool readSample(const EventDescription& event, std::string_view body, Sample& sample);

/// The offsets of time and id in the records of an event.
class SampleFields {
 public:
  explicit SampleFields(const EventDescription& event);

  /// Returns the time of a sample with that body; kNoTime if it has none.
  [[nodiscard]] std::uint64_t sampleTime(std::string_view body) const;
  [[nodiscard]] bool hasSampleId() const { return _sampleId >= 0; }
  [[nodiscard]] std::uint64_t sampleId(std::string_view body) const;

  /// The same for the fields at the end of any other record.
  [[nodiscard]] std::uint64_t trailerTime(std::string_view body) const;
  /// Returns the size of these fields in bytes.
  [[nodiscard]] std::size_t trailerSize() const { return _trailerSize; }

  static constexpr std::uint64_t kNoTime = ~std::uint64_t{0};

 private:
  int _sampleTime = -1;  ///< offset in the body, -1 for none
  int _sampleId = -1;
  std::size_t _trailerTime = 0;  ///< distance from the end, 0 for none
  std::size_t _trailerSize = 0;
};

}  // namespace zelkit

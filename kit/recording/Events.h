/// The contents of a recording as events. Texts point into the recording and are valid during the call.
#pragma once

#include <cstdint>
#include <string_view>

#include "recording/Sample.h"

namespace zelkit {

/// A piece of a file, or of anonymous memory, was mapped.
struct MappingEvent {
  static constexpr std::uint32_t kKernelPid = 0xFFFFFFFF;

  std::uint32_t pid = 0;
  std::uint32_t tid = 0;
  std::uint64_t start = 0;
  std::uint64_t length = 0;
  std::uint64_t pageOffset = 0;   ///< of the piece in the file, in bytes in spite of its name
  std::string_view name = {};     ///< path of the file, or a label such as "[vdso]" or "//anon"
  std::string_view buildId = {};  ///< raw bytes; empty if the record has none
  bool executable = true;
  bool madeCode = false;  ///< JIT code marked by Android's recorder; its symbols have run-time addresses
  bool kernel = false;    ///< the kernel itself or one of its modules
};

/// A thread got a name.
struct NameEvent {
  std::uint32_t pid = 0;
  std::uint32_t tid = 0;
  std::string_view name = {};
  bool exec = false;  ///< because its process executes a new program
};

/// A thread started or ended.
struct TaskEvent {
  std::uint32_t pid = 0;
  std::uint32_t parentPid = 0;
  std::uint32_t tid = 0;
  std::uint32_t parentTid = 0;
  bool inheritsMappings = true;  ///< false if perf synthesised the record for an existing process
};

/// Receiver of events.
class EventSink {
 public:
  virtual ~EventSink() = default;
  virtual void mapping(const MappingEvent&) {}
  virtual void name(const NameEvent&) {}
  virtual void fork(const TaskEvent&) {}
  virtual void exit(const TaskEvent&) {}
  virtual void sample(const Sample&) {}
  /// The kernel reports lost records (PERF_RECORD_LOST) or samples (PERF_RECORD_LOST_SAMPLES).
  virtual void lost(std::uint64_t /*records*/, bool /*samplesOnly*/) {}
  /// A record that is too short for its own fields.
  virtual void damaged(std::uint32_t /*type*/) {}
  /// A record of another type.
  virtual void other(std::uint32_t /*type*/) {}
};

}  // namespace zelkit

/// What a recording tells, in the order of time. Texts point into the recording and last for the call.
#pragma once

#include <cstdint>
#include <string_view>

#include "recording/Sample.h"

namespace zelkit {

/// A piece of a file, or of anonymous memory, that became part of an address space.
struct MappingEvent {
  static constexpr std::uint32_t kKernelPid = 0xFFFFFFFF;

  std::uint32_t pid = 0;
  std::uint32_t tid = 0;
  std::uint64_t start = 0;
  std::uint64_t length = 0;
  std::uint64_t pageOffset = 0;   ///< of the piece in the file, in bytes
  std::string_view name = {};     ///< path of the file, or a label such as "[vdso]" or "//anon"
  std::string_view buildId = {};  ///< raw bytes; empty if the record has none
  bool executable = true;
  bool madeCode = false;  ///< of Android's recorder: code that a runtime made, its symbols where it ran
  bool kernel = false;    ///< the kernel itself or one of its modules
};

/// A thread took a name.
struct NameEvent {
  std::uint32_t pid = 0;
  std::uint32_t tid = 0;
  std::string_view name = {};
  bool exec = false;  ///< because its process runs another program from now on
};

/// A thread began or ended.
struct TaskEvent {
  std::uint32_t pid = 0;
  std::uint32_t parentPid = 0;
  std::uint32_t tid = 0;
  std::uint32_t parentTid = 0;
  bool inheritsMappings = true;  ///< false where perf made the record for a process that was there before
};

/// Takes events one after the other.
class EventSink {
 public:
  virtual ~EventSink() = default;
  virtual void mapping(const MappingEvent&) {}
  virtual void name(const NameEvent&) {}
  virtual void fork(const TaskEvent&) {}
  virtual void exit(const TaskEvent&) {}
  virtual void sample(const Sample&) {}
  /// The kernel lost records (PERF_RECORD_LOST) or samples (PERF_RECORD_LOST_SAMPLES), as many as it says.
  virtual void lost(std::uint64_t /*records*/, bool /*samplesOnly*/) {}
  /// A record that is too short for its own fields.
  virtual void damaged(std::uint32_t /*type*/) {}
  /// A record of another type.
  virtual void other(std::uint32_t /*type*/) {}
};

}  // namespace zelkit

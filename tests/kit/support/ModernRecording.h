#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "support/RecordingBuilder.h"

/// Builds a recording as perf writes it today: attributes with ids, records with sample_id_all, rounds,
/// features after the data; or the same in pipe mode.
class ModernRecording {
 public:
  /// IDENTIFIER, IP, TID, TIME, CPU and PERIOD of linux/perf_event.h, and CALLCHAIN.
  static constexpr std::uint64_t kSampleType = 0x10187;
  static constexpr std::uint64_t kCallChain = 1 << 5;
  static constexpr std::uint64_t kRaw = 1 << 10;

  struct Event {
    std::uint32_t type = 1;
    std::uint64_t config = 0;
    std::uint64_t sampleType = kSampleType | kCallChain;
    std::uint64_t id = 1;
    std::string name = "cpu-clock";
  };

  ModernRecording& event(const Event& event);
  ModernRecording& feature(unsigned int number, const std::string& bytes);
  /// A feature that holds one text.
  ModernRecording& textFeature(unsigned int number, const std::string& text);

  /// The time of the records that follow, in nanoseconds.
  ModernRecording& at(std::uint64_t time);
  ModernRecording& comm(unsigned int pid, unsigned int tid, const std::string& name, bool exec = false);
  ModernRecording& fork(unsigned int pid, unsigned int parent, unsigned int tid, unsigned int parentTid);
  ModernRecording& mmap(unsigned int pid, std::uint64_t start, std::uint64_t length, std::uint64_t offset,
                        const std::string& file, unsigned int protection = 5);

  struct Taken {
    std::uint64_t ip = 0;
    unsigned int pid = 0;
    unsigned int tid = 0;
    unsigned int cpu = 0;
    std::uint64_t id = 1;
    std::vector<std::uint64_t> chain = {};
    std::string raw = {};
    unsigned int mode = 2;  ///< 1 kernel, 2 user
  };
  ModernRecording& sample(const Taken& taken);
  ModernRecording& round() { return record(68, 0, {}); }
  ModernRecording& record(unsigned int type, unsigned int misc, const std::string& body);

  [[nodiscard]] const std::string& data() const { return _data.str(); }
  /// The file with other data, such as the same compressed.
  [[nodiscard]] std::string build(const std::string& data) const;
  [[nodiscard]] std::string build() const { return build(_data.str()); }
  [[nodiscard]] std::string buildPipe() const;

  static std::string header(unsigned int type, unsigned int misc, std::size_t bodySize);

 private:
  /// The fields that end every record but samples.
  [[nodiscard]] std::string trailer(unsigned int pid, unsigned int tid) const;
  [[nodiscard]] const Event& eventOf(std::uint64_t id) const;

  std::vector<Event> _events;
  std::map<unsigned int, std::string> _features;  ///< by number
  std::uint64_t _time = 1000;
  Bytes _data;
};

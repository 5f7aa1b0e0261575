#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Little-endian bytes, one field after the other.
class Bytes {
 public:
  Bytes& u8(unsigned int value) { return number(value, 1); }
  Bytes& u16(unsigned int value) { return number(value, 2); }
  Bytes& u32(std::uint64_t value) { return number(value, 4); }
  Bytes& u64(std::uint64_t value) { return number(value, 8); }
  /// A text in a field of that width, filled up with NULs and cut if it is longer.
  Bytes& text(const std::string& value, std::size_t width);
  /// A NUL-terminated text, filled up to a multiple of 8 as the kernel does.
  Bytes& padded(const std::string& value);
  Bytes& append(const std::string& bytes);

  const std::string& str() const { return _bytes; }

 private:
  Bytes& number(std::uint64_t value, int width);

  std::string _bytes;
};

/// The fields of a trace-point's payload. A located text is written as a location word, its bytes after all
/// fields.
class Payload {
 public:
  Payload& u32(std::uint64_t value);
  Payload& u64(std::uint64_t value);
  Payload& text(const std::string& value, std::size_t width);
  Payload& located(const std::string& value);

  /// The bytes as they are `start` bytes into the raw data.
  std::string at(std::size_t start) const;

 private:
  struct Located {
    std::size_t place;
    std::string text;
  };
  Bytes _fields;
  std::vector<Located> _located;
};

struct PlainSample {
  std::uint64_t ip = 0;
  unsigned int pid = 0;
  unsigned int tid = 0;
  std::uint64_t time = 0;  ///< nanoseconds
  unsigned int cpu = 0;
  std::vector<std::uint64_t> trace = {};
};

struct TracePoint {
  unsigned int event = 0;  ///< its number in the event table
  std::uint64_t time = 0;  ///< nanoseconds
  unsigned int cpu = 0;
  unsigned int pid = 0;  ///< of the sample and of the common header
  std::uint64_t ip = 0;
  unsigned int stream = 77;  ///< the event stream's id, which must be above every core number
};

/// Builds a recording as the perf of kernel 3.4 writes it: header, attributes, event table, data section.
class RecordingBuilder {
 public:
  RecordingBuilder& event(std::uint64_t number, const std::string& name);
  RecordingBuilder& comm(unsigned int pid, unsigned int tid, const std::string& name);
  RecordingBuilder& mmap(unsigned int pid, unsigned int tid, std::uint64_t start, std::uint64_t length,
                         const std::string& file);
  RecordingBuilder& sample(const PlainSample& sample);
  /// From here on trace-points have the common header of that kernel: 304 for 3.4, 310 for 3.10.
  RecordingBuilder& kernel(int version);
  RecordingBuilder& tracePoint(const TracePoint& point, const Payload& payload);
  /// An event of the attribute section, as perf_event_attr has it; the first one replaces the event that a
  /// recording has without: a plain one, or with an event table a trace-point, of the fields that are read.
  RecordingBuilder& attribute(unsigned int type, std::uint64_t config, std::uint64_t sampleType);
  /// A feature section by the number of its bit, in ascending order.
  RecordingBuilder& feature(unsigned int bit, const std::string& content);
  /// The same for one that holds a text.
  RecordingBuilder& textFeature(unsigned int bit, const std::string& text);
  /// The one that names the events, in the order of their attributes.
  RecordingBuilder& eventNames(const std::vector<std::string>& names);
  /// Size of the data section as the header has it, instead of the true one.
  RecordingBuilder& dataSize(std::uint64_t size);

  /// A record of any type; its body follows the header of 8 bytes.
  RecordingBuilder& record(unsigned int type, const std::string& body);
  /// Anything, verbatim.
  RecordingBuilder& bytes(const std::string& bytes);

  /// The records alone.
  const std::string& data() const { return _data.str(); }
  std::string build() const;
  void save(const std::string& path) const;

 private:
  std::size_t payloadStart() const { return _kernel < 310 ? 12 : 8; }

  struct Feature {
    unsigned int bit;
    std::string content;
  };

  int _kernel = 304;
  Bytes _events;
  Bytes _attributes;
  std::vector<Feature> _features;
  std::optional<std::uint64_t> _dataSize;
  Bytes _data;
};

#include "support/RecordingBuilder.h"

#include <fstream>

namespace {

constexpr std::size_t kFileHeaderSize = 104;
constexpr std::size_t kAttributeSize = 80;

// PERF_SAMPLE_* bits of the two layouts that are read.
constexpr std::uint64_t kPlainFields = 0x1A7;
constexpr std::uint64_t kTracePointFields = 0x4C7;

std::string attributeEntry(unsigned int type, std::uint64_t config, std::uint64_t sampleType) {
  Bytes entry;
  entry.u32(type).u32(kAttributeSize - 16).u64(config).u64(1).u64(sampleType);
  return entry.text("", kAttributeSize - entry.str().size()).str();
}

}  // namespace

Bytes& Bytes::number(std::uint64_t value, int width) {
  for (int i = 0; i < width; ++i) _bytes += static_cast<char>(value >> (8 * i) & 0xFF);
  return *this;
}

Bytes& Bytes::text(const std::string& value, std::size_t width) {
  std::string field = value;
  field.resize(width, '\0');
  return append(field);
}

Bytes& Bytes::padded(const std::string& value) {
  return text(value, value.size() / 8 * 8 + 8);
}

Bytes& Bytes::append(const std::string& bytes) {
  _bytes += bytes;
  return *this;
}

Payload& Payload::u32(std::uint64_t value) {
  _fields.u32(value);
  return *this;
}

Payload& Payload::u64(std::uint64_t value) {
  _fields.u64(value);
  return *this;
}

Payload& Payload::text(const std::string& value, std::size_t width) {
  _fields.text(value, width);
  return *this;
}

Payload& Payload::located(const std::string& value) {
  _located.push_back({_fields.str().size(), value});
  _fields.u32(0);
  return *this;
}

std::string Payload::at(std::size_t start) const {
  std::string bytes = _fields.str();
  for (const Located& located : _located) {
    const std::size_t length = located.text.size() + 1;
    bytes.replace(located.place, 4, Bytes().u32(length << 16 | (start + bytes.size())).str());
    bytes += located.text + '\0';
  }
  return bytes;
}

RecordingBuilder& RecordingBuilder::event(std::uint64_t number, const std::string& name) {
  _events.u64(number).text(name, 64);
  return *this;
}

RecordingBuilder& RecordingBuilder::comm(unsigned int pid, unsigned int tid, const std::string& name) {
  return record(3, Bytes().u32(pid).u32(tid).padded(name).str());
}

RecordingBuilder& RecordingBuilder::mmap(unsigned int pid, unsigned int tid, std::uint64_t start,
                                         std::uint64_t length, const std::string& file) {
  return record(1, Bytes().u32(pid).u32(tid).u64(start).u64(length).u64(0).padded(file).str());
}

RecordingBuilder& RecordingBuilder::sample(const PlainSample& sample) {
  Bytes body;
  body.u64(sample.ip).u32(sample.pid).u32(sample.tid).u64(sample.time).u32(sample.cpu).u32(0).u64(1);
  body.u64(sample.trace.size());
  for (const std::uint64_t address : sample.trace) body.u64(address);
  return record(9, body.str());
}

RecordingBuilder& RecordingBuilder::kernel(int version) {
  _kernel = version;
  return *this;
}

RecordingBuilder& RecordingBuilder::tracePoint(const TracePoint& point, const Payload& payload) {
  Bytes raw;
  raw.u16(point.event).u16(0).u32(point.pid);
  if (payloadStart() == 12) raw.u32(0);
  raw.append(payload.at(payloadStart()));
  while (raw.str().size() % 8 != 4) raw.u8(0);  // the raw data begins 4 bytes off the multiple of 8

  Bytes body;
  body.u64(point.ip).u32(point.pid).u32(point.pid).u64(point.time).u64(point.stream).u32(point.cpu).u32(0);
  body.u32(raw.str().size()).append(raw.str());
  return record(9, body.str());
}

RecordingBuilder& RecordingBuilder::record(unsigned int type, const std::string& body) {
  _data.u32(type).u16(0).u16(static_cast<unsigned int>(body.size() + 8)).append(body);
  return *this;
}

RecordingBuilder& RecordingBuilder::bytes(const std::string& bytes) {
  _data.append(bytes);
  return *this;
}

RecordingBuilder& RecordingBuilder::attribute(unsigned int type, std::uint64_t config,
                                              std::uint64_t sampleType) {
  _attributes.append(attributeEntry(type, config, sampleType));
  return *this;
}

RecordingBuilder& RecordingBuilder::feature(unsigned int bit, const std::string& content) {
  _features.push_back({bit, content});
  return *this;
}

RecordingBuilder& RecordingBuilder::textFeature(unsigned int bit, const std::string& text) {
  return feature(bit, Bytes().u32(64).text(text, 64).str());
}

RecordingBuilder& RecordingBuilder::eventNames(const std::vector<std::string>& names) {
  constexpr unsigned int eventDescriptions = 12;
  Bytes content;
  content.u32(names.size()).u32(8);  // attributes of 8 bytes, and one number for each event
  for (const std::string& name : names) content.u64(0).u32(1).u32(16).text(name, 16).u64(77);
  return feature(eventDescriptions, content.str());
}

RecordingBuilder& RecordingBuilder::dataSize(std::uint64_t size) {
  _dataSize = size;
  return *this;
}

std::string RecordingBuilder::build() const {
  const bool isTrace = !_events.str().empty();
  const std::string attributes =
      !_attributes.str().empty()
          ? _attributes.str()
          : attributeEntry(isTrace ? 2 : 1, 0, isTrace ? kTracePointFields : kPlainFields);
  const std::size_t dataOffset = kFileHeaderSize + attributes.size() + _events.str().size();
  std::uint64_t featureBits = 0;
  for (const Feature& feature : _features) featureBits |= std::uint64_t{1} << feature.bit;
  Bytes file;
  file.append("PERFFILE").u64(kFileHeaderSize).u64(kAttributeSize);
  file.u64(kFileHeaderSize)
      .u64(attributes.size())
      .u64(dataOffset)
      .u64(_dataSize.value_or(_data.str().size()));
  file.u64(0).u64(0).u64(featureBits).text("", kFileHeaderSize - file.str().size());
  file.append(attributes).append(_events.str()).append(_data.str());

  // The offsets of the feature sections, and then their contents.
  std::size_t place = file.str().size() + 16 * _features.size();
  for (const Feature& feature : _features) {
    file.u64(place).u64(feature.content.size());
    place += feature.content.size();
  }
  for (const Feature& feature : _features) file.append(feature.content);
  return file.str();
}

void RecordingBuilder::save(const std::string& path) const {
  std::ofstream(path, std::ios::binary) << build();
}

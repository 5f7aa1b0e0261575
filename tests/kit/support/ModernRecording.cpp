#include "kit/support/ModernRecording.h"

#include <algorithm>

namespace {

constexpr std::size_t kAttributeSize = 112;
constexpr std::uint64_t kSampleIdAll = 1 << 18;

std::string attribute(const ModernRecording::Event& event) {
  std::string bytes = Bytes()
                          .u32(event.type)
                          .u32(kAttributeSize)
                          .u64(event.config)
                          .u64(1)
                          .u64(event.sampleType)
                          .u64(0)
                          .u64(kSampleIdAll)
                          .str();
  bytes.resize(kAttributeSize);
  return bytes;
}

}  // namespace

ModernRecording& ModernRecording::event(const Event& event) {
  _events.push_back(event);
  return *this;
}

ModernRecording& ModernRecording::feature(unsigned int number, const std::string& bytes) {
  _features[number] = bytes;
  return *this;
}

ModernRecording& ModernRecording::textFeature(unsigned int number, const std::string& text) {
  return feature(number, Bytes().u32(64).text(text, 64).str());
}

ModernRecording& ModernRecording::at(std::uint64_t time) {
  _time = time;
  return *this;
}

std::string ModernRecording::header(unsigned int type, unsigned int misc, std::size_t bodySize) {
  return Bytes().u32(type).u16(misc).u16(static_cast<unsigned int>(8 + bodySize)).str();
}

ModernRecording& ModernRecording::record(unsigned int type, unsigned int misc, const std::string& body) {
  _data.append(header(type, misc, body.size())).append(body);
  return *this;
}

std::string ModernRecording::trailer(unsigned int pid, unsigned int tid) const {
  return Bytes().u32(pid).u32(tid).u64(_time).u32(0).u32(0).u64(1).str();
}

ModernRecording& ModernRecording::comm(unsigned int pid, unsigned int tid, const std::string& name,
                                       bool exec) {
  return record(3, exec ? 1 << 13 : 0,
                Bytes().u32(pid).u32(tid).padded(name).append(trailer(pid, tid)).str());
}

ModernRecording& ModernRecording::fork(unsigned int pid, unsigned int parent, unsigned int tid,
                                       unsigned int parentTid) {
  return record(7, 0,
                Bytes()
                    .u32(pid)
                    .u32(parent)
                    .u32(tid)
                    .u32(parentTid)
                    .u64(_time)
                    .append(trailer(parent, parentTid))
                    .str());
}

ModernRecording& ModernRecording::mmap(unsigned int pid, std::uint64_t start, std::uint64_t length,
                                       std::uint64_t offset, const std::string& file,
                                       unsigned int protection) {
  Bytes body;
  body.u32(pid).u32(pid).u64(start).u64(length).u64(offset);
  body.u32(8).u32(1).u64(77).u64(0).u32(protection).u32(2);
  return record(10, 2, body.padded(file).append(trailer(pid, pid)).str());
}

const ModernRecording::Event& ModernRecording::eventOf(std::uint64_t id) const {
  return *std::find_if(_events.begin(), _events.end(), [&](const Event& event) { return event.id == id; });
}

ModernRecording& ModernRecording::sample(const Taken& taken) {
  const std::uint64_t type = eventOf(taken.id).sampleType;
  Bytes body;
  body.u64(taken.id).u64(taken.ip).u32(taken.pid).u32(taken.tid).u64(_time).u32(taken.cpu).u32(0).u64(1);
  if ((type & kCallChain) != 0) {
    body.u64(taken.chain.size());
    for (const std::uint64_t entry : taken.chain) body.u64(entry);
  }
  if ((type & kRaw) != 0) body.u32(taken.raw.size()).append(taken.raw);
  return record(9, taken.mode, body.str());
}

std::string ModernRecording::build(const std::string& data) const {
  const std::uint64_t entry = kAttributeSize + 16;
  const std::uint64_t idsAt = 104 + entry * _events.size();
  const std::uint64_t dataAt = idsAt + 8 * _events.size();
  Bytes file;
  file.append("PERFILE2")
      .u64(104)
      .u64(entry)
      .u64(104)
      .u64(entry * _events.size())
      .u64(dataAt)
      .u64(data.size());
  file.u64(0).u64(0);
  std::uint64_t words[4] = {};
  for (const auto& [number, bytes] : _features) words[number / 64] |= std::uint64_t{1} << number % 64;
  for (const std::uint64_t word : words) file.u64(word);
  for (std::size_t i = 0; i < _events.size(); ++i)
    file.append(attribute(_events[i])).u64(idsAt + 8 * i).u64(8);
  for (const Event& event : _events) file.u64(event.id);
  file.append(data);
  std::uint64_t at = dataAt + data.size() + 16 * _features.size();
  for (const auto& [number, bytes] : _features) {
    file.u64(at).u64(bytes.size());
    at += bytes.size();
  }
  for (const auto& [number, bytes] : _features) file.append(bytes);
  return file.str();
}

std::string ModernRecording::buildPipe() const {
  Bytes file;
  file.append("PERFILE2").u64(16);
  for (const Event& event : _events)
    file.append(header(64, 0, kAttributeSize + 8)).append(attribute(event)).u64(event.id);
  for (const auto& [number, bytes] : _features)
    file.append(header(80, 0, 8 + bytes.size())).u64(number).append(bytes);
  return file.append(_data.str()).str();
}

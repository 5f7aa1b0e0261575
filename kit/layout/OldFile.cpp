#include "layout/OldFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>

namespace zelkit {

namespace {

/// Small enough to be in the nearest memory still when it is written.
constexpr std::size_t kBufferSize = std::size_t{1} << 17;
constexpr std::size_t kHeaderSize = 104;
constexpr std::size_t kDataSizeOffset = 48;
constexpr std::size_t kAttributeSize = 96;
constexpr std::size_t kAttributeEntry = kAttributeSize + 16;
constexpr std::size_t kEventNameSize = 64;
/// The sample_type of plain samples: IP, TID, TIME, CALLCHAIN, CPU and PERIOD of linux/perf_event.h.
constexpr std::uint64_t kPlainSampleType = 0x1A7;

template <typename Number>
void append(std::string& bytes, Number number) {
  bytes.append(reinterpret_cast<const char*>(&number), sizeof number);
}

/// Returns an attribute that describes plain samples for other readers: a software event, cpu-clock.
std::string attributeEntry() {
  std::string bytes;
  append<std::uint32_t>(bytes, 1);
  append<std::uint32_t>(bytes, kAttributeSize);
  append<std::uint64_t>(bytes, 0);
  append<std::uint64_t>(bytes, 0);
  append<std::uint64_t>(bytes, kPlainSampleType);
  bytes.resize(kAttributeEntry);
  return bytes;
}

}  // namespace

std::string OldFile::tableBytes(const EventTable& events) {
  std::string bytes;
  for (const auto& [number, name] : events) {
    append<std::uint64_t>(bytes, number);
    std::string field = name.substr(0, kEventNameSize - 1);
    field.resize(kEventNameSize);
    bytes += field;
  }
  return bytes;
}

OldFile::OldFile(const std::string& path, std::string name, const EventTable& events)
    : _name(std::move(name)),
      _fd(::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666)),
      _buffer(kBufferSize) {
  if (_fd < 0) fail();
  const std::string attributes = attributeEntry();
  const std::string table = tableBytes(events);
  _dataOffset = kHeaderSize + attributes.size() + table.size();
  std::string head = "PERFILE2";
  append<std::uint64_t>(head, kHeaderSize);
  append<std::uint64_t>(head, kAttributeEntry);
  append<std::uint64_t>(head, kHeaderSize);
  append<std::uint64_t>(head, attributes.size());
  append<std::uint64_t>(head, _dataOffset);
  append<std::uint64_t>(head, 0);
  append<std::uint64_t>(head, kHeaderSize + attributes.size());
  append<std::uint64_t>(head, table.size());
  head.resize(kHeaderSize);
  head += attributes + table;
  write(head.data(), head.size());
}

OldFile::~OldFile() {
  if (_fd >= 0) ::close(_fd);
}

char* OldFile::room(std::size_t size) {
  if (_used + size > _buffer.size()) flush();
  return _buffer.data() + _used;
}

void OldFile::flush() {
  write(_buffer.data(), _used);
  _used = 0;
}

void OldFile::write(const char* bytes, std::size_t size) {
  for (std::size_t done = 0; done < size;) {
    const ssize_t count = ::write(_fd, bytes + done, size - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) fail();
    done += static_cast<std::size_t>(count);
  }
  _written += size;
}

void OldFile::finish() {
  flush();
  const std::uint64_t dataSize = _written - _dataOffset;
  if (pwrite(_fd, &dataSize, sizeof dataSize, kDataSizeOffset) != sizeof dataSize) fail();
  const int fd = _fd;
  _fd = -1;
  if (::close(fd) != 0) fail();
}

void OldFile::fail() const {
  throw std::runtime_error(_name + ": " + std::strerror(errno));
}

}  // namespace zelkit

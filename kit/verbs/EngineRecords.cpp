#include "verbs/EngineRecords.h"

#include <algorithm>
#include <cstring>

#include "events/PerfRecordSampleEvent.h"
#include "records/PerfFactory.h"
#include "records/PerfReader.h"
#include "records/PerfRecord.h"
#include "records/PerfRecordHeader.h"

namespace zelkit {

namespace {

/// A sample with a back-trace of 255 entries has 2096 bytes; the engine may read 8 bytes more.
constexpr int kBufferSize = 4096;

/// Reads an event table from memory.
class TableReader : public PerfReader {
 public:
  explicit TableReader(const OldFile::EventTable& events) : _bytes(OldFile::tableBytes(events)) {}

  int read(char* buffer, int size) override {
    const std::size_t count = std::min(static_cast<std::size_t>(size), _bytes.size() - _place);
    std::memcpy(buffer, _bytes.data() + _place, count);
    _place += count;
    return static_cast<int>(count);
  }
  void seek(int offset) override { _place = static_cast<std::size_t>(offset); }
  [[nodiscard]] std::size_t size() const { return _bytes.size(); }

 private:
  std::string _bytes;
  std::size_t _place = 0;
};

}  // namespace

char* EngineRecords::room(std::size_t) {
  return PerfFactory::buffer(kBufferSize);
}

void EngineRecords::done(std::size_t size) {
  char* record = PerfFactory::buffer(kBufferSize);
  std::memset(record + size, 0, sizeof(std::uint64_t));
  std::uint32_t type = 0;
  std::memcpy(&type, record, sizeof type);
  PerfRecord* made = PerfFactory::create(type, static_cast<std::uint16_t>(size), record);
  if (made != nullptr && !made->isKept()) delete made;
}

void EngineRecords::walk() {
  TableReader reader(_events);
  PerfRecordHeaderS header{};
  header.dataOffset = reader.size();
  PerfRecordSampleEvent::readEvents(reader, header);
  _walk();
}

}  // namespace zelkit

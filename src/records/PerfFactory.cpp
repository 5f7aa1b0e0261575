#include "records/PerfFactory.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "records/PerfReader.h"
#include "records/PerfRecord.h"
#include "run/Settings.h"

std::array<PerfFactory::RecordFunction, 16> PerfFactory::perfRecordFunctions;
std::uint32_t PerfFactory::_lostBytes = 0;
RecordLosses PerfFactory::_losses;
char* PerfFactory::_tmp = nullptr;
int PerfFactory::_tmpLen = 0;

namespace {

constexpr int kHeaderSize = 8;
constexpr int kSmallestBuffer = 1024;

/// Type and size of a record, which may be implausible.
struct RecordHeader {
  std::uint32_t type = 0;
  std::uint16_t size = 0;

  bool plausible() const { return size <= 256 && type - 1 <= 15 && size >= 12; }
};

/// False at the end of the file.
bool readHeader(PerfReader& reader, RecordHeader& header) {
  char bytes[kHeaderSize] = {};
  if (reader.get(bytes, sizeof bytes) <= 0) return false;
  std::memcpy(&header.type, bytes, sizeof header.type);
  std::memcpy(&header.size, bytes + 6, sizeof header.size);
  return true;
}

/// Advances to the next plausible header and counts the skipped bytes. Returns false at the end of the file.
bool scan(PerfReader& reader, RecordHeader& header, std::uint32_t& lostBytes) {
  std::uint32_t scanWord = 0;
  do {
    header.type = scanWord;
    if (reader.read(reinterpret_cast<char*>(&scanWord), sizeof scanWord) <= 0) return false;
    header.size = static_cast<std::uint16_t>(scanWord >> 16);
    lostBytes += 4;
  } while (!header.plausible());
  if (verbose()) std::puts("FIXED");
  return true;
}

/// The same, and counts the losses.
bool passOverDamage(PerfReader& reader, RecordHeader& header, std::uint32_t& lostBytes,
                    RecordLosses& losses) {
  const unsigned long long start = reader.offset() - kHeaderSize;
  const bool isInData = start < losses.dataEnd;
  if (isInData) losses.countRejected(header.type, header.size);
  const bool found = scan(reader, header, lostBytes);
  const unsigned long long end = reader.offset() - (found ? kHeaderSize : 0);
  if (isInData) losses.bytes += std::min<unsigned long long>(end, losses.dataEnd) - start;
  return found;
}

void showUnused(const char* kind, const RecordHeader& header) {
  if (verbose()) std::printf("%s Type:%x len:%d(%x)\n", kind, header.type, header.size, header.size);
}

}  // namespace

int PerfFactory::addFunction(int type, const char* name, PerfRecordFunction function) {
  if (type < 0 || type > 15) return -1;
  RecordFunction& slot = perfRecordFunctions[static_cast<std::size_t>(type)];
  if (slot.function != nullptr) return -1;
  slot = {type, function, strdup(name != nullptr ? name : "notgiven")};
  return 0;
}

void PerfFactory::allocTmpBuffer(int size) {
  if (size <= _tmpLen && _tmp != nullptr) return;
  delete[] _tmp;
  _tmpLen = std::max(size, kSmallestBuffer);
  _tmp = new char[static_cast<std::size_t>(_tmpLen)]();
}

PerfRecord* PerfFactory::readNext(PerfReader& reader) {
  RecordHeader header;
  if (!readHeader(reader, header)) return nullptr;
  // Before the size is checked: a damaged one may grow the buffer, to 65543 bytes at most.
  allocTmpBuffer(header.size + kHeaderSize);
  if (!header.plausible() && !passOverDamage(reader, header, _lostBytes, _losses)) return nullptr;

  // A body truncated by the end of the file still makes a record; the rest of the buffer holds bytes of
  // earlier ones.
  reader.get(_tmp + kHeaderSize, header.size - kHeaderSize);
  PerfRecord* record = create(header.type, header.size, _tmp);
  if (record == nullptr && reader.offset() - header.size < _losses.dataEnd)
    _losses.countPassedOver(header.type, _tmp, header.size);
  return record;
}

PerfRecord* PerfFactory::create(std::uint32_t type, std::uint16_t size, char* bytes) {
  if (type >= perfRecordFunctions.size()) {
    showUnused("Overflow", {type, size});
    return nullptr;
  }
  const PerfRecordFunction function = perfRecordFunctions[type].function;
  if (function == nullptr) {
    showUnused("Unknown", {type, size});
    return nullptr;
  }
  PerfRecord* record = function(bytes);
  if (record != nullptr) record->setFraming(type, size);
  return record;
}

char* PerfFactory::buffer(int size) {
  allocTmpBuffer(size);
  return _tmp;
}

void PerfFactory::showStats() {
  std::printf("Lost Bytes: %d\n", static_cast<int>(_lostBytes));
}

void dump(const char* buffer, int size) {
  for (int i = 0; i < size; ++i) {
    std::printf("%02x ", static_cast<unsigned char>(buffer[i]));
    if (i % 16 == 15) std::printf("\n");
  }
}

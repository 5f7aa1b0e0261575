#include "recording/RecordReader.h"

#include <algorithm>
#include <stdexcept>

namespace zelkit {

bool RecordReader::next(Record& record) {
  try {
    for (;;) {
      if (_decompressor && nextDecompressed(record)) return true;
      if (!nextOuter(record)) return false;
      const bool compressed = record.type == kRecordCompressed || record.type == kRecordCompressed2;
      if (!compressed || !_decompress) return true;
      decompress(record);
    }
  } catch (const std::runtime_error& error) {
    _damage = error.what();
    return false;
  }
}

bool RecordReader::nextDecompressed(Record& record) {
  std::size_t size = 0;
  while (!Record::first(_piece, record, size)) {
    const bool impossible = _piece.size() >= Record::kHeaderSize && size < Record::kHeaderSize;
    if (impossible) throw std::runtime_error("a compressed record has an impossible size");
    if (!_decompressor->slice(_piece, _piece)) return false;
  }
  _place = _piece.data();
  _piece.remove_prefix(size);
  return true;
}

bool RecordReader::nextOuter(Record& record) {
  std::size_t size = 0;
  const std::string_view rest = _data.substr(_position);
  if (rest.empty()) return false;
  if (!Record::first(rest, record, size)) {
    _damage = "its records end at byte " + std::to_string(_position) + " of the data, " +
              std::to_string(rest.size()) + " bytes before its end";
    return false;
  }
  // The processor does not foresee the steps over whole records.
  constexpr std::size_t kAhead = 2048;
  if (rest.size() > kAhead) __builtin_prefetch(rest.data() + kAhead);
  _place = rest.data();
  _position += size;
  skipFollowing(record);
  return true;
}

/// Skips data that follows its record: a hardware trace, or in pipe mode formats of trace-points.
void RecordReader::skipFollowing(const Record& record) {
  constexpr std::uint64_t alignment = 8;
  std::uint64_t size = 0;
  if (record.type == kRecordAuxTrace) size = numberAt<std::uint64_t>(record.body, 0);
  if (record.type == kRecordTracingData) {
    const std::uint64_t told = numberAt<std::uint32_t>(record.body, 0);
    // Android's recorder puts the data into the record.
    const bool inside = record.body.size() >= sizeof(std::uint32_t) + told;
    _tracingData = inside ? record.body.substr(sizeof(std::uint32_t), told) : _data.substr(_position, told);
    if (!inside) size = (told + alignment - 1) / alignment * alignment;
  }
  _position += static_cast<std::size_t>(std::min<std::uint64_t>(size, _data.size() - _position));
}

void RecordReader::decompress(const Record& record) {
  if (!_decompressor) _decompressor = std::make_unique<Decompressor>();
  Bytes body(record.body);
  std::uint64_t size = body.left();
  if (record.type == kRecordCompressed2) size = std::min<std::uint64_t>(body.u64(), body.left());
  _decompressor->feed(body.take(size));
}

void RecordReader::keepOnly(const std::vector<const char*>& places) {
  if (!_decompressor) return;
  std::vector<const char*> all = places;
  if (!_piece.empty()) all.push_back(_piece.data());
  _decompressor->keepOnly(all);
}

}  // namespace zelkit

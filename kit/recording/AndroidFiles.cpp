#include "recording/AndroidFiles.h"

#include "recording/Bytes.h"

namespace zelkit {

namespace {

using Kind = RecordedFile::Kind;

Kind kindOf(std::uint64_t number) {
  return number > static_cast<std::uint64_t>(Kind::unknown) ? Kind::unknown : static_cast<Kind>(number);
}

/// Reads one file of the first form.
bool readFile(Bytes bytes, RecordedFile& file) {
  file.path = bytes.text();
  file.kind = kindOf(bytes.u32());
  file.lowestAddress = bytes.u64();
  for (std::uint32_t left = bytes.u32(); left > 0 && bytes.ok(); --left) {
    RecordedSymbol symbol;
    symbol.address = bytes.u64();
    symbol.size = bytes.u32();
    symbol.name = bytes.text();
    if (bytes.ok()) file.symbols.push_back(symbol);
  }
  const bool ok = bytes.ok();
  if (file.kind == Kind::elf && bytes.left() > 0) file.offsetOfLowestAddress = bytes.u64();
  return ok;
}

/// One field of a protocol-buffer message: a number, or bytes.
struct Field {
  std::uint64_t tag = 0;
  std::uint64_t number = 0;
  std::string_view bytes;
};

std::uint64_t takeVarint(Bytes& bytes) {
  std::uint64_t value = 0;
  for (unsigned int shift = 0; shift < 64; shift += 7) {
    const std::uint8_t byte = bytes.u8();
    value |= static_cast<std::uint64_t>(byte & 0x7F) << shift;
    if ((byte & 0x80) == 0) break;
  }
  return value;
}

/// Reads the next field; returns false at the end and at an invalid field.
bool nextField(Bytes& message, Field& field) {
  enum WireType : std::uint64_t { kVarint = 0, kEight = 1, kBytes = 2, kFour = 5 };
  if (message.left() == 0) return false;
  const std::uint64_t key = takeVarint(message);
  field = {key >> 3, 0, {}};
  switch (key & 7) {
    case kVarint:
      field.number = takeVarint(message);
      break;
    case kEight:
      field.number = message.u64();
      break;
    case kBytes:
      field.bytes = message.take(takeVarint(message));
      break;
    case kFour:
      field.number = message.u32();
      break;
    default:
      message.skip(~std::uint64_t{0});
  }
  return message.ok();
}

RecordedSymbol readSymbol(std::string_view message) {
  RecordedSymbol symbol;
  Bytes bytes(message);
  for (Field field; nextField(bytes, field);) {
    if (field.tag == 1) symbol.address = field.number;
    if (field.tag == 2) symbol.size = field.number;
    if (field.tag == 3) symbol.name = field.bytes;
  }
  return symbol;
}

/// Reads one file of the second form.
bool readMessage(Bytes bytes, RecordedFile& file) {
  enum Tag : std::uint64_t { kPath = 1, kKind = 2, kLowestAddress = 3, kSymbol = 4, kElfFile = 6 };
  for (Field field; nextField(bytes, field);) {
    if (field.tag == kPath) file.path = field.bytes;
    if (field.tag == kKind) file.kind = kindOf(field.number);
    if (field.tag == kLowestAddress) file.lowestAddress = field.number;
    if (field.tag == kSymbol) file.symbols.push_back(readSymbol(field.bytes));
    if (field.tag == kElfFile) {
      Bytes elf(field.bytes);
      if (Field offset; nextField(elf, offset) && offset.tag == 1) file.offsetOfLowestAddress = offset.number;
    }
  }
  return bytes.ok() && !file.path.empty();
}

/// Reads a list of entries, each preceded by its size.
template <typename ReadEntry>
std::vector<RecordedFile> readEntries(std::string_view section, std::vector<std::string>& damage,
                                      ReadEntry readEntry) {
  std::vector<RecordedFile> files;
  std::size_t bad = 0;
  for (Bytes list(section); list.left() > 0;) {
    const std::string_view entry = list.take(list.u32());
    RecordedFile file;
    if (list.ok() && readEntry(Bytes(entry), file)) {
      files.push_back(std::move(file));
    } else {
      ++bad;
    }
  }
  if (bad != 0) damage.push_back(std::to_string(bad) + " files of the recorded symbols are damaged");
  return files;
}

}  // namespace

std::vector<RecordedFile> readAndroidFiles(std::string_view section, std::vector<std::string>& damage) {
  return readEntries(section, damage, readFile);
}

std::vector<RecordedFile> readAndroidFiles2(std::string_view section, std::vector<std::string>& damage) {
  return readEntries(section, damage, readMessage);
}

}  // namespace zelkit

#include "records/RecordingFacts.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <set>

#include "records/PerfRecord.h"

namespace {

// Bits of the header that announce feature sections, as in perf's util/header.h.
constexpr unsigned int kOsRelease = 4;
constexpr unsigned int kArchitecture = 6;
constexpr unsigned int kEventDescriptions = 12;
constexpr unsigned int kCompressed = 27;
constexpr std::size_t kFeatureWords = 4;

constexpr std::uint64_t kHeaderSize = 104;
constexpr std::uint64_t kPipeHeaderSize = 16;
constexpr std::uint64_t kIdsOfAttribute = 16;
constexpr std::uint64_t kEventTableEntry = 72;

constexpr std::size_t kMostEvents = 1024;
constexpr std::size_t kLongestText = 256;
constexpr std::size_t kLongestRecord = 256;
constexpr std::uint64_t kMostScanned = std::uint64_t{64} * 1024 * 1024;

/// A regular file and its size. Other kinds of file are not opened, as that can have side effects.
class RegularFile {
 public:
  explicit RegularFile(const std::string& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) return;
    _fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (_fd < 0 || fstat(_fd, &status) != 0 || !S_ISREG(status.st_mode)) return;
    _size = static_cast<std::uint64_t>(status.st_size);
    _isGood = true;
  }
  ~RegularFile() {
    if (_fd >= 0) ::close(_fd);
  }
  RegularFile(const RegularFile&) = delete;
  RegularFile& operator=(const RegularFile&) = delete;

  bool isGood() const { return _isGood; }
  std::uint64_t size() const { return _size; }

  /// Reads `size` bytes, less than a block. Returns false unless all of them are in the file.
  bool read(std::uint64_t offset, void* target, std::size_t size) const {
    if (offset < _blockStart || offset - _blockStart > _blockSize ||
        size > _blockSize - (offset - _blockStart)) {
      const ssize_t got = pread(_fd, _block.data(), _block.size(), static_cast<off_t>(offset));
      _blockStart = offset;
      _blockSize = static_cast<std::size_t>(std::max<ssize_t>(got, 0));
      if (size > _blockSize) return false;
    }
    std::memcpy(target, _block.data() + (offset - _blockStart), size);
    return true;
  }

 private:
  int _fd = -1;
  std::uint64_t _size = 0;
  bool _isGood = false;
  mutable std::array<char, std::size_t{32} * 1024> _block;  ///< the block read last
  mutable std::uint64_t _blockStart = 0;
  mutable std::size_t _blockSize = 0;
};

/// Reads a section of the file from its start. It ends at its own end or the file's; a read beyond returns 0
/// and makes it bad.
class Section {
 public:
  Section(const RegularFile& file, std::uint64_t offset, std::uint64_t size)
      : _file(file), _offset(std::min(offset, file.size())), _left(std::min(size, file.size() - _offset)) {}

  bool isGood() const { return _isGood; }

  template <typename Number>
  Number number() {
    Number value = 0;
    take(&value, sizeof value);
    return value;
  }

  void skip(std::uint64_t size) {
    _isGood = _isGood && size <= _left;
    if (!_isGood) return;
    _offset += size;
    _left -= size;
  }

  /// Returns the text in a field of `size` bytes, up to its NUL, truncated if it is too long to show.
  std::string text(std::size_t size) {
    std::string text(std::min(size, kLongestText), '\0');
    take(text.data(), text.size());
    skip(size - text.size());
    text.resize(_isGood ? std::strlen(text.c_str()) : 0);
    return text;
  }
  /// The same for a field that its size precedes.
  std::string sizedText() { return text(number<std::uint32_t>()); }

 private:
  void take(void* target, std::size_t size) {
    _isGood = _isGood && size <= _left && _file.read(_offset, target, size);
    if (_isGood) skip(size);
  }

  const RegularFile& _file;
  std::uint64_t _offset;
  std::uint64_t _left;
  bool _isGood = true;
};

RecordingFacts::Format formatOf(const char* magic, std::uint64_t headerSize) {
  const std::string_view text(magic, 8);
  if (text == "2ELIFREP") return RecordingFacts::Format::otherByteOrder;
  if (text != "PERFILE2" && text != "PERFFILE") return RecordingFacts::Format::unknown;
  return headerSize == kPipeHeaderSize ? RecordingFacts::Format::pipe : RecordingFacts::Format::recording;
}

void readEvents(Section attributes, std::uint64_t entrySize, std::uint64_t count, RecordingFacts& facts) {
  constexpr std::uint64_t kRead = 32;
  if (entrySize < kRead + kIdsOfAttribute) return;
  for (std::uint64_t i = 0; i < std::min<std::uint64_t>(count, kMostEvents); ++i) {
    RecordedEvent event;
    event.type = attributes.number<std::uint32_t>();
    attributes.skip(4);
    event.config = attributes.number<std::uint64_t>();
    attributes.skip(8);
    event.sampleType = attributes.number<std::uint64_t>();
    attributes.skip(entrySize - kRead);
    if (!attributes.isGood()) return;
    facts.events.push_back(event);
  }
}

/// The descriptions are in the order of the attributes.
void readEventNames(Section section, RecordingFacts& facts) {
  const auto count = section.number<std::uint32_t>();
  const auto attributeSize = section.number<std::uint32_t>();
  if (count != facts.events.size()) return;
  for (RecordedEvent& event : facts.events) {
    section.skip(attributeSize);
    const auto ids = section.number<std::uint32_t>();
    event.name = section.sizedText();
    section.skip(std::uint64_t{ids} * 8);
  }
}

/// The positions of the feature sections follow the data section, in the order of their bits.
void readFeatures(const RegularFile& file, const std::array<std::uint64_t, kFeatureWords>& bits,
                  RecordingFacts& facts) {
  Section positions(file, facts.dataEnd, file.size());
  for (unsigned int feature = 0; feature < kFeatureWords * 64; ++feature) {
    if ((bits[feature / 64] >> feature % 64 & 1) == 0) continue;
    const auto offset = positions.number<std::uint64_t>();
    const auto size = positions.number<std::uint64_t>();
    if (!positions.isGood()) return;
    Section section(file, offset, size);
    if (feature == kOsRelease) facts.release = section.sizedText();
    if (feature == kArchitecture) facts.architecture = section.sizedText();
    if (feature == kEventDescriptions) readEventNames(section, facts);
    if (feature == kCompressed) facts.isCompressed = true;
  }
}

}  // namespace

std::optional<RecordingFacts> readRecordingFacts(const std::string& path) {
  const RegularFile file(path);
  if (!file.isGood()) return std::nullopt;
  RecordingFacts facts;
  facts.fileSize = file.size();
  Section header(file, 0, kHeaderSize);
  char magic[8] = {};
  const auto magicNumber = header.number<std::uint64_t>();
  std::memcpy(magic, &magicNumber, sizeof magic);
  const auto headerSize = header.number<std::uint64_t>();
  facts.format = formatOf(magic, headerSize);
  if (facts.format != RecordingFacts::Format::recording) return facts;

  const auto entrySize = header.number<std::uint64_t>();
  const auto attributesOffset = header.number<std::uint64_t>();
  const auto attributesSize = header.number<std::uint64_t>();
  facts.dataOffset = header.number<std::uint64_t>();
  const auto dataSize = header.number<std::uint64_t>();
  header.skip(16);
  std::array<std::uint64_t, kFeatureWords> features{};
  for (std::uint64_t& word : features) word = header.number<std::uint64_t>();

  const bool fits = facts.dataOffset <= file.size() && dataSize <= file.size() - facts.dataOffset;
  if (!fits) facts.missingBytes = dataSize - (file.size() - std::min(facts.dataOffset, file.size()));
  // An aborted recording has size 0 here and no features.
  facts.dataEnd = fits && dataSize > 0 ? facts.dataOffset + dataSize : file.size();
  const std::uint64_t attributesEnd = attributesOffset + attributesSize;
  facts.hasEventTable =
      facts.dataOffset >= attributesEnd && facts.dataOffset - attributesEnd >= kEventTableEntry;
  if (entrySize > 0)
    readEvents(Section(file, attributesOffset, attributesSize), entrySize, attributesSize / entrySize, facts);
  if (header.isGood()) readFeatures(file, features, facts);
  return facts;
}

std::string mappedFile(const std::string& mapName) {
  // Other names, such as "[heap]", denote memory without a file.
  if (mapName.empty() || mapName.front() != '/') return {};
  return withoutDeletedMark(std::string_view(mapName).substr(mapName.rfind('/') + 1));
}

std::size_t countMappedFiles(const std::string& path, const RecordingFacts& facts) {
  constexpr std::uint32_t kMMap = 1;
  constexpr std::size_t kRecordHeader = 8;
  constexpr std::size_t kName = 40;
  const RegularFile file(path);
  const std::uint64_t dataSize = facts.dataEnd - facts.dataOffset;
  if (!file.isGood() || dataSize > kMostScanned) return 0;
  std::set<std::string> names;
  Section records(file, facts.dataOffset, dataSize);
  while (true) {
    const auto type = records.number<std::uint32_t>();
    records.skip(2);
    const std::size_t size = std::max<std::size_t>(records.number<std::uint16_t>(), kRecordHeader);
    const bool isMap = type == kMMap && size > kName && size <= kLongestRecord;
    records.skip(isMap ? kName - kRecordHeader : size - kRecordHeader);
    const std::string name = isMap ? mappedFile(records.text(size - kName)) : std::string();
    if (!records.isGood()) return names.size();
    if (!name.empty()) names.insert(name);
  }
}

#include "recording/FileHeader.h"

#include <algorithm>
#include <stdexcept>

#include "recording/Bytes.h"

namespace zelkit {

namespace {

constexpr std::uint64_t kPipeHeaderSize = 16;
constexpr std::uint64_t kOldHeaderSize = 72;
constexpr std::uint64_t kHeaderSize = 104;
constexpr std::uint64_t kSectionSize = 16;
constexpr int kFeatureCount = 256;
/// Limits of an attribute's size: that of the first kernels with perf, and more than any kernel will use.
constexpr std::uint64_t kSmallestAttribute = 64 + kSectionSize;
constexpr std::uint64_t kLargestAttribute = 4096;

Section readSection(Bytes& bytes) {
  Section section;
  section.offset = bytes.u64();
  section.size = bytes.u64();
  return section;
}

std::uint64_t swapped(std::uint64_t value) {
  return __builtin_bswap64(value);
}

void checkMagic(std::string_view magic) {
  if (magic == "PERFILE2" || magic == "PERFFILE") return;
  if (magic == "2ELIFREP" || magic == "ELIFFREP")
    throw std::runtime_error("recorded on a machine of the other byte order, which is not supported");
  throw std::runtime_error("not a recording: it does not start with PERFILE2");
}

/// Reads the list of the features' sections, which follows the data.
void readFeatures(std::string_view file, const std::vector<Feature>& present, FileHeader& header) {
  const std::uint64_t offset = header.data.offset + header.data.size;
  Bytes list(Section{offset, present.size() * kSectionSize}.of(file));
  for (const Feature feature : present) header.features.push_back({feature, readSection(list)});
  if (!list.ok()) {
    header.features.clear();
    header.damage = "the file ends before the sections after the data";
  }
}

}  // namespace

std::string_view Section::of(std::string_view file) const {
  if (offset >= file.size()) return {};
  return file.substr(static_cast<std::size_t>(offset),
                     static_cast<std::size_t>(std::min<std::uint64_t>(size, file.size() - offset)));
}

FileHeader FileHeader::read(std::string_view file) {
  Bytes bytes(file);
  checkMagic(bytes.take(8));
  const std::uint64_t headerSize = bytes.u64();
  if (!bytes.ok()) throw std::runtime_error("it is truncated within its header");
  FileHeader header;
  if (headerSize == kPipeHeaderSize) {
    header.pipe = true;
    header.data = {kPipeHeaderSize, file.size() - kPipeHeaderSize};
    return header;
  }
  if (swapped(headerSize) == kPipeHeaderSize || swapped(headerSize) == kHeaderSize)
    throw std::runtime_error("recorded on a machine of the other byte order, which is not supported");
  if (headerSize < kOldHeaderSize || headerSize > file.size())
    throw std::runtime_error("its header is damaged (size " + std::to_string(headerSize) + ")");
  header.attributeSize = bytes.u64();
  header.attributes = readSection(bytes);
  header.data = readSection(bytes);
  header.eventTypes = readSection(bytes);
  if (!bytes.ok() || header.attributeSize < kSmallestAttribute || header.attributeSize > kLargestAttribute ||
      header.data.offset < headerSize || header.data.offset > file.size())
    throw std::runtime_error("its header is damaged");
  std::vector<Feature> present;
  if (headerSize >= kHeaderSize)
    for (int word = 0; word < kFeatureCount / 64; ++word)
      for (std::uint64_t bits = bytes.u64(), bit = 0; bit < 64; ++bit)
        if ((bits >> bit & 1) != 0)
          present.push_back(static_cast<Feature>(static_cast<std::uint64_t>(word) * 64 + bit));
  if (header.data.size == 0) {
    header.data.size = file.size() - header.data.offset;
    header.damage = "the recording was not finished: its header lacks the size of its data";
  } else if (header.data.size > file.size() - header.data.offset) {
    header.damage = "the file is truncated: it has " + std::to_string(file.size() - header.data.offset) +
                    " of " + std::to_string(header.data.size) + " bytes of data";
    header.data.size = file.size() - header.data.offset;
  } else {
    readFeatures(file, present, header);
  }
  return header;
}

}  // namespace zelkit

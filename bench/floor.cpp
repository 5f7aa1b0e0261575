// The least that a conversion can cost: floor RECORDING DOCUMENT
//
// Reads a recording of make_large into memory, walks its records once, prints the numbers that the program's
// document has of each with std::to_chars into one block, in order and without any look-up, and writes the
// block once. Keys, which take a look-up, are replaced by the thread's id.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include "LargeTrace.h"

namespace {

constexpr std::uint32_t kSample = 9;
constexpr std::uint32_t kHighestCore = 16;

class Record {
 public:
  explicit Record(const char* bytes) : _bytes(bytes) {}

  template <typename Number>
  Number at(std::size_t offset) const {
    Number value;
    std::memcpy(&value, _bytes + offset, sizeof value);
    return value;
  }

 private:
  const char* _bytes;
};

class Block {
 public:
  explicit Block(std::size_t size)
      : _bytes(std::make_unique_for_overwrite<char[]>(size)), _end(_bytes.get()), _limit(_end + size) {}

  std::size_t size() const { return static_cast<std::size_t>(_end - _bytes.get()); }
  const char* data() const { return _bytes.get(); }
  void put(std::string_view text) {
    std::memcpy(_end, text.data(), text.size());
    _end += text.size();
  }
  void number(std::uint64_t value) { _end = std::to_chars(_end, _limit, value).ptr; }
  void fixed(double value, int decimals) {
    _end = std::to_chars(_end, _limit, value, std::chars_format::fixed, decimals).ptr;
  }

 private:
  std::unique_ptr<char[]> _bytes;
  char* _end;
  char* _limit;
};

double seconds(const Record& record) {
  return static_cast<double>(record.at<std::uint64_t>(24)) / 1e9;
}

void printSample(const Record& record, std::uint64_t key, Block& block) {
  const auto tid = record.at<std::uint32_t>(20);
  const auto column = [&](std::uint64_t value) {
    block.number(value);
    block.put(",");
  };
  block.put("[");
  column(key);
  column(record.at<std::uint64_t>(8));
  column(tid);
  block.fixed(seconds(record), 9);
  block.put(",");
  for (const std::uint64_t value : {record.at<std::uint32_t>(32), tid, tid}) column(value);
  block.put("[");
  const auto depth = record.at<std::uint32_t>(48);
  for (std::uint32_t i = 0; i < (depth == 1 ? 0 : depth); ++i) {
    block.put("[");
    column(record.at<std::uint64_t>(56 + 8 * i));
    column(tid);
    block.put("],");
  }
  block.put("],],");
}

/// How many points a trace-point adds to the series of the document, as a rule.
int pointsOf(unsigned int event) {
  switch (event) {
    case kSwitch:
      return 3;
    case kGpuClock:
      return 5;
    default:
      return 1;
  }
}

void printTracePoint(const Record& record, Block& block) {
  const auto event = record.at<std::uint16_t>(52);
  for (int i = 0; i < pointsOf(event); ++i) {
    block.put("[");
    block.fixed(seconds(record), 6);
    block.put(",");
    block.number(record.at<std::uint32_t>(60));
    block.put("],");
  }
}

std::string readWhole(const char* path) {
  const int file = open(path, O_RDONLY);
  struct stat status = {};
  if (file < 0 || fstat(file, &status) != 0) return {};
  std::string bytes;
  bytes.resize(static_cast<std::size_t>(status.st_size));
  std::size_t size = 0;
  for (ssize_t got = 1; got > 0 && size < bytes.size();
       size += static_cast<std::size_t>(std::max<ssize_t>(got, 0)))
    got = read(file, bytes.data() + size, bytes.size() - size);
  close(file);
  return bytes;
}

}  // namespace

int main(int argc, char** argv) {
  const std::string bytes = argc == 3 ? readWhole(argv[1]) : std::string();
  if (bytes.size() < 56) {
    std::fprintf(stderr, "usage: floor RECORDING DOCUMENT\n");
    return 2;
  }
  const Record header(bytes.data());
  auto place = static_cast<std::size_t>(header.at<std::uint64_t>(40));
  const std::size_t end = place + static_cast<std::size_t>(header.at<std::uint64_t>(48));
  Block block(4 * bytes.size());
  std::uint64_t samples = 0;
  while (place < end) {
    const Record record(bytes.data() + place);
    if (record.at<std::uint32_t>(0) == kSample) {
      if (record.at<std::uint32_t>(32) > kHighestCore) {
        printTracePoint(record, block);
      } else {
        printSample(record, ++samples, block);
      }
    }
    place += record.at<std::uint16_t>(6);
  }
  const int file = open(argv[2], O_WRONLY | O_CREAT | O_TRUNC, 0666);
  const ssize_t written = write(file, block.data(), block.size());
  close(file);
  return written == static_cast<ssize_t>(block.size()) ? 0 : 1;
}

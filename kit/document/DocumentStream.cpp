#include "document/DocumentStream.h"

#include <array>
#include <span>

namespace zelkit {

namespace {

constexpr std::size_t kBlockSize = std::size_t{256} * 1024;
constexpr char kEnd = '\0';

constexpr bool needsEscape(char byte) {
  return static_cast<unsigned char>(byte) < 0x20 && byte != '\n' && byte != '\r' && byte != '\t';
}

/// Examines every byte without a branch, so that the compiler can use vector instructions.
bool anyNeedsEscape(std::span<const char> bytes) {
  bool found = false;
  for (const char byte : bytes) found |= needsEscape(byte);
  return found;
}

void escape(std::span<const char> bytes, std::vector<char>& escaped) {
  constexpr std::array<char, 16> kHexDigits = {'0', '1', '2', '3', '4', '5', '6', '7',
                                               '8', '9', 'a', 'b', 'c', 'd', 'e', 'f'};
  escaped.clear();
  for (const char byte : bytes) {
    if (needsEscape(byte)) {
      const auto value = static_cast<unsigned char>(byte);
      escaped.insert(escaped.end(), {'\\', 'u', '0', '0', kHexDigits[value >> 4U], kHexDigits[value & 15U]});
    } else {
      escaped.push_back(byte);
    }
  }
}

}  // namespace

DocumentStream::DocumentStream(ByteSource& source) : _source(source), _block(kBlockSize) {
  refill();
}

void DocumentStream::refill() {
  _takenBefore = Tell();
  const std::size_t count = _source.read(_block.data(), _block.size());
  const std::span<const char> bytes(_block.data(), count);
  const std::vector<char>* text = &_block;
  std::size_t size = count;
  if (anyNeedsEscape(bytes)) {
    escape(bytes, _escaped);
    text = &_escaped;
    size = _escaped.size();
  } else if (count == 0) {
    _block.front() = kEnd;
    size = 1;
  }
  _start = _next = text->data();
  _end = _start + size;
}

}  // namespace zelkit

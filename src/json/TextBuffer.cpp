#include "json/TextBuffer.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace loomstat {

namespace {

constexpr std::size_t kSmallestRoom = 1024;

}  // namespace

TextBuffer::~TextBuffer() {
  std::free(_start);
}

void TextBuffer::grow(std::size_t more) {
  const std::size_t length = size();
  const std::size_t room =
      std::max({2 * static_cast<std::size_t>(_limit - _start), length + more, kSmallestRoom});
  auto* bytes = static_cast<char*>(std::realloc(_start, room));
  if (bytes == nullptr) throw std::bad_alloc();
  _start = bytes;
  _end = bytes + length;
  _limit = bytes + room;
}

}  // namespace loomstat

/// The bytes of a document as input of the JSON parser.
#pragma once

#include <cstddef>
#include <vector>

#include "document/ByteSource.h"

namespace zelkit {

/// An input stream in the sense of RapidJSON. Names in a document may contain control bytes, which JSON
/// requires to be escaped; the stream returns them as \u00XX, so that no byte of a name is lost. At the end
/// of the input it returns NUL.
class DocumentStream {
 public:
  using Ch = char;

  explicit DocumentStream(ByteSource& source);

  Ch Peek() const { return *_next; }
  Ch Take() {
    const Ch taken = *_next++;
    if (_next == _end) refill();
    return taken;
  }
  /// Returns the number of bytes read, counted after escaping.
  std::size_t Tell() const { return _takenBefore + static_cast<std::size_t>(_next - _start); }

  /// Required by the concept for in-place parsing, which this stream does not support.
  Ch* PutBegin() { return nullptr; }
  void Put(Ch) {}
  void Flush() {}
  std::size_t PutEnd(Ch*) { return 0; }

 private:
  void refill();

  ByteSource& _source;
  std::vector<char> _block;
  std::vector<char> _escaped;
  const char* _start = nullptr;
  const char* _next = nullptr;
  const char* _end = nullptr;
  std::size_t _takenBefore = 0;
};

}  // namespace zelkit

/// The bytes of a document as the JSON parser takes them.
#pragma once

#include <cstddef>
#include <vector>

#include "document/ByteSource.h"

namespace zelkit {

/// An input stream in the sense of RapidJSON. Names in a document may hold control bytes, which JSON wants
/// escaped; the stream hands them on as \u00XX, so that no byte of a name is lost. The end of the input is a
/// NUL.
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
  /// Returns how many bytes have been taken, counted after escaping.
  std::size_t Tell() const { return _takenBefore + static_cast<std::size_t>(_next - _start); }

  /// These belong to the concept and are for parsing in place, which this stream does not offer.
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

/// Destination of bytes: a file, or a compressor or encoder in front of one.
#pragma once

#include <string_view>

namespace zelkit {

class ByteSink {
 public:
  virtual ~ByteSink() = default;

  /// Throws std::runtime_error with "NAME: reason" on failure.
  virtual void write(std::string_view bytes) = 0;
};

}  // namespace zelkit

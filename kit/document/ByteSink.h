/// Where bytes go: a file, or what compresses or encodes them on their way to one.
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

/// Sink that encodes bytes as text.
#pragma once

#include <array>
#include <cstdint>
#include <string>

#include "document/ByteSink.h"

namespace zelkit {

/// Base64, RFC 4648, on one line.
class Base64Output : public ByteSink {
 public:
  explicit Base64Output(ByteSink& output) : _output(output) {}

  void write(std::string_view bytes) override;
  /// Writes the last bytes with their padding. Nothing may be written afterwards.
  void finish();

 private:
  void encodeGroup(std::size_t used);

  ByteSink& _output;
  std::array<unsigned char, 3> _group{};
  std::size_t _filled = 0;
  std::string _text;
};

}  // namespace zelkit

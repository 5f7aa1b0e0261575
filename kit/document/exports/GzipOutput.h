/// Sink that compresses bytes.
#pragma once

#include <zlib.h>

#include <array>
#include <string_view>

#include "document/ByteSink.h"

namespace zelkit {

/// A gzip stream, RFC 1952. Throws std::runtime_error when memory or the file fails.
class GzipOutput : public ByteSink {
 public:
  explicit GzipOutput(ByteSink& output, int level = Z_DEFAULT_COMPRESSION);
  ~GzipOutput() override;
  GzipOutput(const GzipOutput&) = delete;
  GzipOutput& operator=(const GzipOutput&) = delete;

  void write(std::string_view bytes) override { compress(bytes, Z_NO_FLUSH); }
  /// Ends the stream. Nothing may be written afterwards.
  void finish() { compress({}, Z_FINISH); }

 private:
  void compress(std::string_view bytes, int flush);

  ByteSink& _output;
  z_stream _stream{};
  std::array<char, 65536> _block;
};

}  // namespace zelkit

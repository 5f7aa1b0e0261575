#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string_view>
#include <vector>

struct ZSTD_DCtx_s;

namespace zelkit {

/// Decompresses the records inside of PERF_RECORD_COMPRESSED (perf record -z): one zstd stream through all of
/// them, which may split a record. Decompressed pieces stay in memory until keepOnly.
class Decompressor {
 public:
  Decompressor();
  ~Decompressor();
  Decompressor(const Decompressor&) = delete;
  Decompressor& operator=(const Decompressor&) = delete;

  /// Sets the next compressed bytes, which must stay valid until slice() returns false.
  void feed(std::string_view compressed);

  /// Decompresses the next piece of the stream and prepends `rest`, the unused bytes of the previous piece.
  /// Returns false when the input is used up. Throws std::runtime_error for a damaged stream.
  bool slice(std::string_view rest, std::string_view& piece);

  /// Frees all pieces except the newest and those that contain one of the places.
  void keepOnly(const std::vector<const char*>& places);
  [[nodiscard]] bool empty() const { return _pieces.empty(); }

 private:
  struct Piece {
    std::unique_ptr<char[]> bytes;
    std::size_t size;
  };

  ZSTD_DCtx_s* _stream;
  std::string_view _input;
  bool _more = false;  ///< whether the last output buffer was filled, so that there may be more
  std::vector<char> _output;
  std::map<const char*, Piece> _pieces;  ///< by start
  const char* _newest = nullptr;
};

}  // namespace zelkit

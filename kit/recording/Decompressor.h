#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string_view>
#include <vector>

struct ZSTD_DCtx_s;

namespace zelkit {

/// The records inside of compressed ones (perf record -z): one zstd stream through all of them, of which a
/// record may end in the middle. What came out stays in memory until it is let go.
class Decompressor {
 public:
  Decompressor();
  ~Decompressor();
  Decompressor(const Decompressor&) = delete;
  Decompressor& operator=(const Decompressor&) = delete;

  /// Takes the next compressed bytes, which must last until slice() has returned false.
  void feed(std::string_view compressed);

  /// Makes the next piece of the stream, which begins with `rest`, the bytes of the piece before that are not
  /// used up. Returns false when the input is used up. A damaged stream throws std::runtime_error.
  bool slice(std::string_view rest, std::string_view& piece);

  /// Frees the pieces but the newest and those that hold one of the places.
  void keepOnly(const std::vector<const char*>& places);
  [[nodiscard]] bool empty() const { return _pieces.empty(); }

 private:
  struct Piece {
    std::unique_ptr<char[]> bytes;
    std::size_t size;
  };

  ZSTD_DCtx_s* _stream;
  std::string_view _input;
  bool _more = false;  ///< whether the last output filled its room, so that more may be there
  std::vector<char> _output;
  std::map<const char*, Piece> _pieces;  ///< by where they begin
  const char* _newest = nullptr;
};

}  // namespace zelkit

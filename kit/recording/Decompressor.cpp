#include "recording/Decompressor.h"

#include <zstd.h>

#include <cstring>
#include <stdexcept>
#include <string>

namespace zelkit {

namespace {

/// The largest number of new bytes in a piece, so that few compressed bytes cannot demand much memory.
constexpr std::size_t kPieceSize = std::size_t{1} << 20;

}  // namespace

Decompressor::Decompressor() : _stream(ZSTD_createDStream()), _output(kPieceSize) {
  if (_stream == nullptr) throw std::bad_alloc();
}

Decompressor::~Decompressor() {
  ZSTD_freeDStream(_stream);
}

void Decompressor::feed(std::string_view compressed) {
  _input = compressed;
}

bool Decompressor::slice(std::string_view rest, std::string_view& piece) {
  if (_input.empty() && !_more) return false;
  ZSTD_inBuffer in{_input.data(), _input.size(), 0};
  ZSTD_outBuffer out{_output.data(), _output.size(), 0};
  const std::size_t result = ZSTD_decompressStream(_stream, &out, &in);
  if (ZSTD_isError(result) != 0)
    throw std::runtime_error(std::string("compressed records are damaged: ") + ZSTD_getErrorName(result));
  const bool stuck = in.pos == 0 && out.pos == 0;
  _input.remove_prefix(in.pos);
  _more = out.pos == out.size;
  if (stuck) return false;
  Piece fresh{std::make_unique<char[]>(rest.size() + out.pos), rest.size() + out.pos};
  if (!rest.empty()) std::memcpy(fresh.bytes.get(), rest.data(), rest.size());
  std::memcpy(fresh.bytes.get() + rest.size(), _output.data(), out.pos);
  piece = {fresh.bytes.get(), fresh.size};
  _newest = fresh.bytes.get();
  _pieces.emplace(_newest, std::move(fresh));
  return true;
}

void Decompressor::keepOnly(const std::vector<const char*>& places) {
  std::map<const char*, Piece> kept;
  const auto keep = [&](const char* place) {
    auto found = _pieces.upper_bound(place);
    if (found == _pieces.begin()) return;
    --found;
    if (place < found->first + found->second.size) kept.insert(_pieces.extract(found));
  };
  if (_newest != nullptr) keep(_newest);
  for (const char* place : places) keep(place);
  _pieces = std::move(kept);
}

}  // namespace zelkit

#include "document/exports/GzipOutput.h"

#include <stdexcept>

namespace zelkit {

namespace {

constexpr int kGzipWindow = 15 + 16;  // the largest window; 16 asks zlib for a gzip header
constexpr int kMemoryLevel = 8;

}  // namespace

GzipOutput::GzipOutput(ByteSink& output, int level) : _output(output) {
  if (deflateInit2(&_stream, level, Z_DEFLATED, kGzipWindow, kMemoryLevel, Z_DEFAULT_STRATEGY) != Z_OK)
    throw std::runtime_error("zlib: out of memory");
}

GzipOutput::~GzipOutput() {
  deflateEnd(&_stream);
}

void GzipOutput::compress(std::string_view bytes, int flush) {
  _stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  _stream.avail_in = static_cast<uInt>(bytes.size());
  do {
    _stream.next_out = reinterpret_cast<Bytef*>(_block.data());
    _stream.avail_out = static_cast<uInt>(_block.size());
    deflate(&_stream, flush);
    _output.write({_block.data(), _block.size() - _stream.avail_out});
  } while (_stream.avail_out == 0);
}

}  // namespace zelkit

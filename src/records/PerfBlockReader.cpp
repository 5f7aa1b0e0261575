#include "records/PerfBlockReader.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

#include "base/RunWatcher.h"

namespace {

constexpr std::size_t kBlockSize = std::size_t{256} * 1024;

}  // namespace

int PerfBlockReader::open(const char* name) {
  _position = _end = 0;
  _block.reset();
  const int result = PerfReader::open(name);
  struct stat status = {};
  if (result == 0 && fstat(_fd, &status) == 0 && S_ISREG(status.st_mode))
    _block = std::make_unique_for_overwrite<char[]>(kBlockSize);
  return result;
}

int PerfBlockReader::read(char* buffer, int size) {
  if (!_block || size <= 0) return PerfReader::read(buffer, size);
  announceRead(size);
  auto count = static_cast<std::size_t>(size);
  if (available() < count && !fetch(count)) return _lastRead = -1;
  count = std::min(count, available());
  std::memcpy(buffer, _block.get() + _position, count);
  _position += count;
  return _lastRead = static_cast<int>(count);
}

/// Fills the block until `size` bytes are available or the file ends. Returns false on a read error with
/// nothing buffered.
bool PerfBlockReader::fetch(std::size_t size) {
  std::memmove(_block.get(), _block.get() + _position, available());
  _end = available();
  _position = 0;
  while (_end < size) {
    const ssize_t got = ::read(_fd, _block.get() + _end, kBlockSize - _end);
    if (got <= 0) return got == 0 || _end > 0;
    _end += static_cast<std::size_t>(got);
    _offset += static_cast<std::size_t>(got);
    if (RunWatcher::_current != nullptr) RunWatcher::_current->recordingRead(_offset);
  }
  return true;
}

void PerfBlockReader::seek(int offset) {
  // A negative offset fails, and the position in the block stays.
  if (_block && offset < 0) return;
  PerfReader::seek(offset);
  _position = _end = 0;
}

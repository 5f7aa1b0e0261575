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
  _block.reset();
  const int result = PerfReader::open(name);
  struct stat status = {};
  if (result == 0 && fstat(_fd, &status) == 0 && S_ISREG(status.st_mode))
    _block = std::make_unique_for_overwrite<char[]>(kBlockSize);
  holdNothing();
  return result;
}

int PerfBlockReader::read(char* buffer, int size) {
  if (!_block || size <= 0) return PerfReader::read(buffer, size);
  announceRead(size);
  auto count = static_cast<std::size_t>(size);
  if (available() < count && !fetch(count)) return _lastRead = -1;
  count = std::min(count, available());
  std::memcpy(buffer, _next, count);
  _next += count;
  return _lastRead = static_cast<int>(count);
}

/// Fills the block until `size` bytes are available or the file ends. Returns false on a read error with
/// nothing buffered.
bool PerfBlockReader::fetch(std::size_t size) {
  std::memmove(_block.get(), _next, available());
  _limit = _block.get() + available();
  _next = _block.get();
  while (available() < size) {
    const ssize_t got = ::read(_fd, _block.get() + available(), kBlockSize - available());
    if (got <= 0) return got == 0 || available() > 0;
    _limit += got;
    _offset += static_cast<std::size_t>(got);
    if (RunWatcher::_current != nullptr) RunWatcher::_current->recordingRead(_offset);
  }
  return true;
}

void PerfBlockReader::seek(int offset) {
  // A negative offset fails, and the position in the block stays.
  if (_block && offset < 0) return;
  PerfReader::seek(offset);
  holdNothing();
}

#include "records/PerfReader.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>

#include "run/Settings.h"

PerfReader::~PerfReader() {
  PerfReader::close();
  _fd = 0;
}

int PerfReader::open(const char* name) {
  if (name == nullptr) return -1;
  _offset = 0;
  _fd = ::open(name, O_RDONLY | O_CLOEXEC);
  return _fd > 0 ? 0 : -1;
}

void PerfReader::announceRead(int size) {
  if (gVerbosity > 1) std::printf("PerfReader:size:%d\n", size);
  if (size > kLargestExpectedRead || size == 0) std::printf("Large reader size:%d\n", size);
}

int PerfReader::read(char* buffer, int size) {
  announceRead(size);
  if (_fd <= 0) return -1;
  _lastRead = static_cast<int>(::read(_fd, buffer, static_cast<std::size_t>(size)));
  if (_lastRead > 0) _offset += static_cast<unsigned int>(_lastRead);
  return _lastRead;
}

void PerfReader::close() {
  if (_fd > 0) ::close(_fd);
}

bool PerfReader::status() const {
  return _lastRead != 0;
}

void PerfReader::seek(int offset) {
  if (_fd > 0 && lseek(_fd, offset, SEEK_SET) >= 0) _offset = static_cast<unsigned int>(offset);
}

#include "base/LineReader.h"

#include <cstdlib>

LineReader::LineReader(const std::string& path)
    : _file(std::fopen(path.c_str(), "r")), _good(_file != nullptr) {}

LineReader::~LineReader() {
  if (_file != nullptr) std::fclose(_file);
  std::free(_buffer);
}

bool LineReader::next(std::string& line) {
  line.clear();
  if (!_good) return false;
  const ssize_t length = getline(&_buffer, &_bufferSize, _file);
  _good = length > 0 && _buffer[length - 1] == '\n';
  if (length <= 0) return false;
  line.assign(_buffer, static_cast<std::size_t>(_good ? length - 1 : length));
  return true;
}

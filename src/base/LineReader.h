#pragma once

#include <cstdio>
#include <string>

/// Reads a text file of the machine line by line.
class LineReader {
 public:
  explicit LineReader(const std::string& path);
  ~LineReader();
  LineReader(const LineReader&) = delete;
  LineReader& operator=(const LineReader&) = delete;

  bool isOpen() const { return _file != nullptr; }
  /// Reads the next line, without its line end. The last line may lack one. Returns false, with an empty
  /// line, at the end of the file.
  bool next(std::string& line);
  /// Returns false once the end of the file was seen: after the last line, or at one without a line end.
  bool good() const { return _good; }

 private:
  std::FILE* _file;
  bool _good;
  char* _buffer = nullptr;
  std::size_t _bufferSize = 0;
};

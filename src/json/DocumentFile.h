#pragma once

#include <span>
#include <string>
#include <string_view>

/// The output file, which gets the whole document or nothing: it is left empty if writing fails or a signal
/// interrupts it.
class DocumentFile {
 public:
  DocumentFile() = default;
  ~DocumentFile();
  DocumentFile(const DocumentFile&) = delete;
  DocumentFile& operator=(const DocumentFile&) = delete;

  /// Truncates the file. Returns 0, or the errno of what failed.
  int open(const char* name);

  /// Writes the pieces in order and closes the file. Returns 0, or the errno of what failed.
  int write(std::span<const std::string_view> pieces);

 private:
  int close();

  std::string _name;
  int _descriptor = -1;
};

#pragma once

#include <span>
#include <string>
#include <string_view>

/// The file that gets the document, as a whole or not at all: a document that cannot be written to its end,
/// or whose writing a signal interrupts, leaves an empty file.
class DocumentFile {
 public:
  DocumentFile() = default;
  ~DocumentFile();
  DocumentFile(const DocumentFile&) = delete;
  DocumentFile& operator=(const DocumentFile&) = delete;

  /// Truncates the file. Returns 0, or the errno of what failed.
  int open(const char* name);

  /// Writes the pieces one after the other and closes the file. Returns 0, or the errno of what failed.
  int write(std::span<const std::string_view> pieces);

 private:
  int close();

  std::string _name;
  int _descriptor = -1;
};

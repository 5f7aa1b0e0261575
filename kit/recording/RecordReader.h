#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "recording/Decompressor.h"
#include "recording/RecordTypes.h"

namespace zelkit {

/// Reads the records of a data section in the order of the file, including those inside of compressed ones,
/// and skips the data that follows some records.
class RecordReader {
 public:
  /// `decompress`: false returns compressed records as they are.
  explicit RecordReader(std::string_view data, bool decompress = true)
      : _data(data), _decompress(decompress) {}

  /// Returns false at the end and at damage. The record stays valid until keepOnly().
  bool next(Record& record);

  /// Returns the address of the record that next() returned last.
  [[nodiscard]] const char* place() const { return _place; }
  /// Returns the current offset in the section.
  [[nodiscard]] std::size_t position() const { return _position; }
  /// Returns a message about the damage that ended the reading, or an empty text.
  [[nodiscard]] const std::string& damage() const { return _damage; }
  /// Returns the bytes that followed the last record of tracing data.
  [[nodiscard]] std::string_view tracingData() const { return _tracingData; }

  /// Frees decompressed records except those at these addresses.
  void keepOnly(const std::vector<const char*>& places);

 private:
  bool nextDecompressed(Record& record);
  bool nextOuter(Record& record);
  void decompress(const Record& record);
  void skipFollowing(const Record& record);

  std::string_view _data;
  bool _decompress;
  std::size_t _position = 0;
  const char* _place = nullptr;
  std::string _damage;
  std::string_view _tracingData;
  std::unique_ptr<Decompressor> _decompressor;  ///< null before the first compressed record
  std::string_view _piece;                      ///< the unread decompressed bytes
};

}  // namespace zelkit

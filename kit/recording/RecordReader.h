#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "recording/Decompressor.h"
#include "recording/RecordTypes.h"

namespace zelkit {

/// Walks the records of a data section in the order of the file, those inside of compressed ones too, and
/// passes over the data that follows some records.
class RecordReader {
 public:
  /// `compressed`: false leaves compressed records as they are.
  explicit RecordReader(std::string_view data, bool decompress = true)
      : _data(data), _decompress(decompress) {}

  /// Returns false at the end, or where the data is damaged. The record stays valid until keepOnly().
  bool next(Record& record);

  /// Returns the place of the record that next() gave last.
  [[nodiscard]] const char* place() const { return _place; }
  /// Returns how far the walk has come in the section.
  [[nodiscard]] std::size_t position() const { return _position; }
  /// Returns what ended the walk before the section's end; empty if nothing did.
  [[nodiscard]] const std::string& damage() const { return _damage; }
  /// The bytes that follow a record of tracing data, of the last such record.
  [[nodiscard]] std::string_view tracingData() const { return _tracingData; }

  /// Lets decompressed records go, but for those at these places.
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
  std::unique_ptr<Decompressor> _decompressor;  ///< null until there is a compressed record
  std::string_view _piece;                      ///< what is left of the decompressed bytes
};

}  // namespace zelkit

#pragma once

#include <string_view>
#include <vector>

#include "symbols/KeyList.h"

class FileNames;
class PerfJSONWriter;

/// One symbol: a name, an address range and its uses.
class SymbolTableElement {
 public:
  SymbolTableElement();

  /// The name is not copied and must outlive the symbol. A size above 1 MiB is stored as 0: sizes are
  /// distances to the next symbol, and such a large distance is a gap. A null file becomes the empty file.
  SymbolTableElement(std::string_view name, unsigned long long address, unsigned long long size,
                     FileNames* file, unsigned int line);

  /// Counts one use and returns the key. The first use also registers the symbol with its file.
  unsigned int markUsed(unsigned long long /*address*/) {
    if (!_used) noteFirstUse();
    ++_useCount;
    return _key;
  }

  /// Records the key of a map that used this symbol, once per map.
  void setMapKey(unsigned int key);

  void show() const;

  /// Writes one row of the section "functions". The number is not used.
  void out(PerfJSONWriter& writer, unsigned int) const;

  std::string_view name() const { return _name; }
  unsigned long long address() const { return _address; }
  unsigned long long size() const { return _size; }
  bool used() const { return _used; }
  unsigned int useCount() const { return _useCount; }
  unsigned int key() const { return _key; }
  void setKey(unsigned int key) { _key = key; }
  const FileNames* file() const { return _file; }
  unsigned int lineNumber() const { return _lineNumber; }
  /// In order of first use.
  const std::vector<unsigned int>& mapKeys() const { return _mapKeys.keys(); }

 private:
  void noteFirstUse();

  std::string_view _name;
  unsigned long long _address = 0;
  unsigned long long _size = 0;
  FileNames* _file;
  unsigned int _lineNumber = 0;
  unsigned int _useCount = 0;
  unsigned int _key = 0;  ///< 0 until the first use; maps and symbols share one counter of keys
  bool _used = false;
  KeyList _mapKeys;
};

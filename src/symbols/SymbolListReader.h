#pragma once

#include <cstdio>
#include <string>

class FileNames;
class SymbolTable;

/// Reads a symbol list into a table: one symbol a line, "address type name", optionally followed by a tab and
/// a source file with a colon and a line number, or by a tab and a kernel module. A symbol ends where its
/// successor starts.
///
/// Three oddities are kept, as documents have always been made with them:
/// - the last line is processed twice, because the end of the list is detected only after a failed read; the
///   last symbol therefore has size 0, and a last line without a line end loses its symbol;
/// - the first symbol keeps its line end in its name;
/// - from the first descending address on the list is read into a sorted map.
class SymbolListReader {
 public:
  /// `kernel`: the list is the kernel's own, in which addresses of user space are skipped.
  SymbolListReader(SymbolTable& table, std::FILE* file, bool kernel)
      : _table(table), _file(file), _kernel(kernel) {}

  /// Reads the whole list.
  void read();

 private:
  struct Symbol {
    unsigned long long address = 0;
    std::string name;
    FileNames* file = nullptr;
    unsigned int line = 0;
  };

  static constexpr int kLineSize = 4096;

  bool nextLine();
  bool parseLine();
  bool goesBackward() const;
  char* nameInLine();
  void cutLineEnd();
  void takePending(char* name);
  void readUnsorted();

  SymbolTable& _table;
  std::FILE* _file;
  bool _kernel;
  bool _wide = false;  ///< a 64-bit kernel
  char _line[kLineSize] = {};
  unsigned long long _address = 0;  ///< of the line in _line
  char _type = 0;
  bool _hasPending = false;
  Symbol _pending;               ///< waits for its successor, from which its size follows
  char* _pendingName = nullptr;  ///< position in _line of the pending symbol's name
};

#pragma once

#include <cstdio>
#include <string>

class FileNames;
class SymbolTable;

/// Reads a symbol list into a table: one symbol a line, "address type name", optionally followed by a tab and
/// a source file with a colon and a line number, or by a tab and a kernel module. A symbol reaches up to its
/// successor.
///
/// The symbols that come out are those that documents have always shown, odd ends included:
/// - the last line is processed twice, as the end of the list shows only after a read has failed, so the last
///   symbol has size 0; a last line without a line end loses its symbol;
/// - the first symbol keeps its line end in its name;
/// - a list whose addresses go backward is read into a map instead from there on.
class SymbolListReader {
 public:
  /// `kernel` says that the list is the kernel's own, which has addresses of user space to pass over.
  SymbolListReader(SymbolTable& table, std::FILE* file, bool kernel)
      : _table(table), _file(file), _kernel(kernel) {}

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
  Symbol _pending;               ///< waits for its successor, which tells its size
  char* _pendingName = nullptr;  ///< where in _line the name of the pending symbol stood
};

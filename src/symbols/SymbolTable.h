#pragma once

#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/NameStore.h"
#include "base/PerfFoundation.h"
#include "symbols/PendingTables.h"
#include "symbols/SymbolTableElement.h"

class FileNames;
class PerfJSONWriter;

/// What one synthetic symbol covers.
inline constexpr unsigned long long kPageSize = 0x10000;

/// Returns the start of the page that holds the address.
constexpr unsigned long long pageOf(unsigned long long address) {
  return address & ~(kPageSize - 1);
}

/// The symbols of one program, library or kernel, in the order in which they were added, which for a sorted
/// list is ascending by address. Tables live until the process ends and are shared by all maps of the same
/// file.
class SymbolTable : public PerfFoundation {
 public:
  SymbolTable();
  /// Registers the table under the name, and under its base name too unless another table has that already.
  /// Address and size are those of the table's own element.
  SymbolTable(const char* name, unsigned long long address, unsigned long long size);
  virtual ~SymbolTable();
  SymbolTable(const SymbolTable&) = delete;
  SymbolTable& operator=(const SymbolTable&) = delete;

  /// Appends a symbol; nothing is sorted and duplicates stay.
  SymbolTableElement* addElement(unsigned long long start, unsigned long long size, std::string_view name,
                                 FileNames* file, unsigned int line);

  /// Returns the symbol that covers the address, or null, by binary search. An address on the boundary of two
  /// symbols goes to the one probed first. Symbols out of order, such as those of kernel modules, are found
  /// by chance only.
  SymbolTableElement* findElement(unsigned long long address) const;

  /// Returns the first symbol that covers the address, or null, by a scan from the front.
  SymbolTableElement* findElementLinear(unsigned long long address) const;

  static void createSyntheticTable();

  /// Returns the synthetic symbol of the 64 KiB page at the address, made on first mention; later sizes and
  /// names are dropped.
  static SymbolTableElement* addSyntheticEntry(unsigned long long address, unsigned long long size,
                                               std::string_view name);
  /// Returns the synthetic symbol of the page, or null.
  static SymbolTableElement* findSyntheticEntry(unsigned long long address);

  /// Returns the text of a file's name, which is kept once for all its maps and tables and stays valid.
  static const char* sharedName(std::string_view name);

  static SymbolTable* findExistingSymbolTable(const std::string& name);

  /// Rows of the used symbols. The number is not read.
  void out(PerfJSONWriter& writer, unsigned int) const;
  /// The section "functions": all tables in order of creation.
  static void outAll(PerfJSONWriter& writer);
  /// An array "smapkeys" of the keys of the used symbols.
  void outKeys(PerfJSONWriter& writer) const;

  void show() const;
  void showAllUsed() const;
  static void showAllTablesUsed();

  // Loading, see SymbolLoader.cpp.

  /// Replaces the search path by the ":"-separated directories. A name is always tried verbatim first;
  /// pieces of one character are dropped.
  static void setPath(const std::string& path);

  /// Returns the table of a mapped file: from the cache, or by running nm over the file in each directory of
  /// the search path that has it, until one gives at least two symbols. A file in none of them gives an empty
  /// table; null means that the file was found and no symbols were. Failed tries stay in the cache, so
  /// nothing is searched twice.
  static SymbolTable* findAndRead(const char* name);

  /// Stands for a table whose list nm is still making; 0 for one that is there.
  using Ticket = PendingTables::Ticket;
  /// The same without waiting for nm: sets `result` at once, or at the latest when the ticket is awaited. The
  /// result must stay where it is until then.
  static Ticket request(const char* name, SymbolTable*& result);
  /// Waits for the table, and loads those that were asked for before it.
  static void await(Ticket ticket);

  /// Reads the file at that place of the search path, or, while that gives too few symbols, those after it.
  /// Returns null if none does.
  static SymbolTable* readAlong(const std::string& name, int place, std::string path);
  /// Returns the table known under the name or its base name, or null.
  static SymbolTable* findKnown(const std::string& name);

  /// Runs nm over an existing file, if that is a regular one. Null if that gives fewer than two symbols.
  static SymbolTable* generateAndRead(const char* path);

  /// Adds the symbols of a list as nm prints it, or of the kernel's table. Returns 0, or -1 if it cannot be
  /// opened.
  int readFromFile(const char* path);

  /// Returns the first file of that name, whole or without its directory, at or after position `index` of the
  /// search path, and empty if there is none. `index` becomes its position.
  static std::string findPathForFile(const std::string& name, int& index);

  /// Joins the two and returns 1 if the result can be opened, else 0. Devices, pipes and sockets are not
  /// opened to find out, as that may have effects of its own.
  static int checkFile(const std::string& directory, const std::string& file, std::string& result);

  /// Sets baseName to what follows the last "/" and returns 1; without a "/" returns 0 and leaves it alone.
  static int stripPath(const std::string& path, std::string& baseName);

  unsigned long long lowAddress() const { return _lowAddress; }
  unsigned long long highAddress() const { return _highAddress; }
  const std::deque<SymbolTableElement>& elements() const;

  static std::vector<std::string> _paths;
  static std::vector<SymbolTable*> _allSymbolTables;
  static SymbolTable* _kernelSymTable;
  static SymbolTable* _syntheticSymTable;

 private:
  /// Of a symbol. Its end belongs to it, and to its neighbour as well.
  struct Range {
    unsigned long long start;
    unsigned long long end;
  };

  /// What holds the symbols and their names.
  struct Storage {
    std::deque<SymbolTableElement> symbols;
    std::vector<Range> ranges;  ///< of the symbols, side by side for the search
    NameStore names;
  };

  void enter(const char* name);
  void enterWithBaseName(const char* name);
  static Ticket requestFile(const char* name, SymbolTable*& result);
  static SymbolTable* emptyTable(const char* name);
  void read(std::FILE* list, bool kernel);

  unsigned long long _lowAddress = ~0ULL;  ///< lowest start so far
  unsigned long long _highAddress = 0;     ///< highest start so far, not the highest end
  const char* _fileName;                   ///< shared, see sharedName
  SymbolTableElement _tableElement;        ///< represents the table itself
  std::unique_ptr<Storage> _storage;       ///< null until there is a symbol
};

/// Sets baseName to what follows the last "/" of path, or to the whole of it.
void fileNameNoPath(const std::string& path, std::string& baseName);

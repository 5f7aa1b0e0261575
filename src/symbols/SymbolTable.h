#pragma once

#include <cstdio>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "base/KeyTable.h"
#include "base/NameStore.h"
#include "base/PerfFoundation.h"
#include "symbols/PendingTables.h"
#include "symbols/SymbolSource.h"
#include "symbols/SymbolTableElement.h"

class FileNames;
class PerfJSONWriter;

/// Size of the range that one synthetic symbol covers.
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
  /// symbols belongs to the one probed first. Symbols out of order, such as those of kernel modules, are
  /// found by chance only.
  SymbolTableElement* findElement(unsigned long long address) const;

  /// Returns the first symbol that covers the address, or null, by linear search.
  SymbolTableElement* findElementLinear(unsigned long long address) const;

  /// Creates _syntheticSymTable, once.
  static void createSyntheticTable();

  /// Returns the synthetic symbol of the 64 KiB page at the address, created on first use; later sizes and
  /// names are ignored.
  static SymbolTableElement* addSyntheticEntry(unsigned long long address, unsigned long long size,
                                               std::string_view name);
  /// Returns the synthetic symbol of the page, or null.
  static SymbolTableElement* findSyntheticEntry(unsigned long long address);

  /// Returns the shared copy of a file's name, which stays valid until the process ends.
  static const char* sharedName(std::string_view name);

  /// Returns the table registered under exactly that name, or null.
  static SymbolTable* findExistingSymbolTable(const std::string& name);

  /// Writes the rows of the used symbols. The number is not used.
  void out(PerfJSONWriter& writer, unsigned int) const;
  /// Writes the section "functions": all tables in order of creation.
  static void outAll(PerfJSONWriter& writer);
  /// Writes an array "smapkeys" of the keys of the used symbols.
  void outKeys(PerfJSONWriter& writer) const;

  /// Print all symbols, or the used ones, on standard output.
  void show() const;
  void showAllUsed() const;
  static void showAllTablesUsed();

  // Loading, see SymbolLoader.cpp.

  /// Replaces the search path by the ":"-separated directories. A name is always tried verbatim first;
  /// entries of one character are dropped.
  static void setPath(const std::string& path);

  /// Returns the table of a mapped file: from the cache, or by running nm over the file in each directory of
  /// the search path that has it, until one gives at least two symbols. Returns an empty table if no
  /// directory has the file, and null if the file was found but no symbols were. Failures stay in the cache
  /// too, so nothing is searched for twice.
  static SymbolTable* findAndRead(const char* name);

  /// Identifies a table whose list nm is still writing; 0 for one that exists.
  using Ticket = PendingTables::Ticket;
  /// The same without waiting for nm: sets `result` now, or at the latest when the ticket is awaited.
  /// `result` must stay valid until then.
  static Ticket request(const char* name, SymbolTable*& result);
  /// Waits for the table; first loads those that were requested before it.
  static void await(Ticket ticket);

  /// Reads the symbols of `path`, found at index `place` of the search path, or, as long as there are too
  /// few, of the files found after it. Returns null if no file has enough symbols.
  static SymbolTable* readAlong(const std::string& name, int place, std::string path);
  /// Returns the table known under the name or its base name, or null.
  static SymbolTable* findKnown(const std::string& name);

  /// Runs nm over an existing regular file. Returns null for any other file and for one with fewer than two
  /// symbols.
  static SymbolTable* generateAndRead(const char* path);

  /// Adds the symbols of a list as nm prints it, or of the kernel's table. Returns 0, or -1 if it cannot be
  /// opened.
  int readFromFile(const char* path);

  /// Returns the path of the first file of that name, with or without the name's directory, at or after
  /// `index` of the search path; empty if there is none. Sets `index` to where it was found.
  static std::string findPathForFile(const std::string& name, int& index);

  /// Joins directory and file and returns 1 if the result can be opened, else 0. Devices and pipes are not
  /// opened to find out, as that may have side effects.
  static int checkFile(const std::string& directory, const std::string& file, std::string& result);

  /// Sets baseName to what follows the last "/" and returns 1; without a "/" returns 0 and does not change
  /// it.
  static int stripPath(const std::string& path, std::string& baseName);

  unsigned long long lowAddress() const { return _lowAddress; }
  unsigned long long highAddress() const { return _highAddress; }
  /// Returns the added symbols, without those of the source.
  const std::deque<SymbolTableElement>& elements() const;

  /// Makes the table look in the source first; null changes nothing. The kernel's bounds are then the
  /// source's.
  void setSource(std::unique_ptr<SymbolSource> source);

  /// Returns the symbols that were found in the source, ascending by address, then the added ones.
  std::vector<const SymbolTableElement*> inOrder() const;

  static std::vector<std::string> _paths;
  static std::vector<SymbolTable*> _allSymbolTables;
  static SymbolTable* _kernelSymTable;
  static SymbolTable* _syntheticSymTable;

 private:
  /// Address range of a symbol. The end belongs to it, and to its neighbour too.
  struct Range {
    unsigned long long start;
    unsigned long long end;
  };

  /// The symbols and their names.
  struct Storage {
    std::deque<SymbolTableElement> symbols;
    std::vector<Range> ranges;  ///< of the symbols, contiguous for the search
    NameStore names;
  };

  /// A source and what was found in it.
  struct Sourced {
    std::unique_ptr<SymbolSource> source;
    std::deque<SymbolTableElement> found;
    KeyTable<SymbolTableElement> byNumber;
    NameStore names;
  };

  SymbolTableElement* findInSource(unsigned long long address) const;
  void enter(const char* name);
  void enterWithBaseName(const char* name);
  static Ticket requestFile(const char* name, SymbolTable*& result);
  static SymbolTable* emptyTable(const char* name);
  void read(std::FILE* list, bool kernel);

  unsigned long long _lowAddress = ~0ULL;  ///< lowest start so far
  unsigned long long _highAddress = 0;     ///< highest start so far, not the highest end
  const char* _fileName;                   ///< shared, see sharedName
  SymbolTableElement _tableElement;        ///< represents the table itself
  std::unique_ptr<Sourced> _sourced;       ///< null if nothing is looked up in a source
  std::unique_ptr<Storage> _storage;       ///< null until there is a symbol
};

/// Sets baseName to the text after the last "/" of path, or to path if it has none.
void fileNameNoPath(const std::string& path, std::string& baseName);

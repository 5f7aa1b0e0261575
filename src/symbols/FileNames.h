#pragma once

#include <map>
#include <string>
#include <vector>

class PerfJSONWriter;
class SymbolTableElement;

/// The default source-search service in the help.
#define ZELCONV_OPENGROK_SERVER "localhost:8080"

/// One source file and the used symbols in it. Files come from symbol lists with a file and a line number per
/// symbol; nm as the program calls it prints none, so a normal run has no files.
class FileNames {
 public:
  /// The empty file, key 0, in no table: the file of symbols without a known source.
  FileNames();
  explicit FileNames(const char* name);
  virtual ~FileNames() = default;

  /// Creates _emptyRef, once.
  static void createEmptyRef();

  /// Returns the file of that name, created on first use; never null. Returns the empty file for a null name
  /// and for one of at most four characters.
  static FileNames* findOrCreate(const char* name);

  /// Returns _emptyRef, or a new empty file before it exists.
  static FileNames* emptyRef();

  /// Records a used symbol. Each symbol must be passed only once.
  void markUsed(SymbolTableElement* element);

  /// Writes one row: key, name, and for each used symbol its key and line. Writes nothing for a file without
  /// used symbols.
  virtual void out(PerfJSONWriter& writer);

  /// Writes the section "files", ascending by name.
  static void outAll(PerfJSONWriter& writer);

  unsigned int key() const { return _key; }
  const std::string& name() const { return _name; }

  static FileNames* _emptyRef;
  static std::map<std::string, FileNames*> _fileTable;
  static unsigned int _runningKey;  ///< the last key assigned

  // Kept for the viewer's source search; nothing in the document depends on them.
  static std::string _ogServer;
  static std::string _ogProtocol;
  static bool _ogFunctionOnlyLookup;

 private:
  std::string _name;
  unsigned int _key;
  std::vector<SymbolTableElement*> _symbols;
};

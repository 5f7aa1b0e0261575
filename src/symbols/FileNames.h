#pragma once

#include <map>
#include <string>
#include <vector>

class PerfJSONWriter;
class SymbolTableElement;

/// The source-search service that the options' help names as the default.
#define ZELCONV_OPENGROK_SERVER "localhost:8080"

/// One source file and the used symbols in it. Files come from symbol lists that carry a file and a line
/// number; nm as the program runs it prints none, so in an ordinary run there are no files.
class FileNames {
 public:
  /// The empty file, key 0, which is in no table: what a symbol without a known source refers to.
  FileNames();
  explicit FileNames(const char* name);
  virtual ~FileNames() = default;

  /// Makes _emptyRef, once.
  static void createEmptyRef();

  /// Returns the file of that name, made on first mention; never null. A null name, or one of at most four
  /// characters, is taken not to be a file name and gives the empty file.
  static FileNames* findOrCreate(const char* name);

  /// Returns _emptyRef, or a fresh empty file while there is none.
  static FileNames* emptyRef();

  /// Notes a used symbol. The caller passes each symbol once.
  void markUsed(SymbolTableElement* element);

  /// One row: key, name, and for each used symbol its key and line. Nothing for a file without used symbols.
  virtual void out(PerfJSONWriter& writer);

  /// The section "files", ascending by name.
  static void outAll(PerfJSONWriter& writer);

  unsigned int key() const { return _key; }
  const std::string& name() const { return _name; }

  static FileNames* _emptyRef;
  static std::map<std::string, FileNames*> _fileTable;
  static unsigned int _runningKey;  ///< the last key given

  // Kept for the viewer's source search; nothing in the document depends on them.
  static std::string _ogServer;
  static std::string _ogProtocol;
  static bool _ogFunctionOnlyLookup;

 private:
  std::string _name;
  unsigned int _key;
  std::vector<SymbolTableElement*> _symbols;
};

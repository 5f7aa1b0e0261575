#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

class SymbolTable;

/// The symbol tables that maps have requested and whose lists nm is still writing. They are loaded in the
/// order of the requests, so that keys of files and the order of tables do not depend on the speed of nm. A
/// ticket identifies each.
class PendingTables {
 public:
  /// Tickets are ascending numbers; 0 stands for a table that exists already.
  using Ticket = std::uint32_t;

  /// Adds a table: its file was found at index `place` of the search path, and the table will be stored in
  /// `result`.
  Ticket add(const std::string& name, int place, const std::string& path, SymbolTable** result);

  /// Returns the ticket of the pending table whose file has the path or base name `key`, or 0. Once it is
  /// loaded, the table found for `name` is stored in `result`.
  Ticket share(const std::string& name, const std::string& key, SymbolTable** result);

  bool isLoaded(Ticket ticket) const { return ticket <= _loaded; }

  /// Loads all tables up to that ticket.
  void load(Ticket ticket);

 private:
  struct Sharer {
    std::string name;
    SymbolTable** result;
  };
  struct Pending {
    std::string name;
    int place;  ///< index in the search path
    std::string path;
    SymbolTable** result;
    std::vector<Sharer> sharers;
  };

  Pending& of(Ticket ticket) { return _pending[ticket - _loaded - 1]; }
  void loadFirst();

  std::deque<Pending> _pending;
  std::map<std::string, Ticket> _byName;  ///< by path, and by base name
  Ticket _loaded = 0;                     ///< the last ticket whose table is loaded
};

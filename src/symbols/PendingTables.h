#pragma once

#include <cstdint>
#include <deque>
#include <map>
#include <string>
#include <vector>

class SymbolTable;

/// The symbol tables that maps have asked for and whose lists nm is still making. They are loaded one after
/// the other in the order in which they were asked for, so that keys of files and the order of tables do not
/// depend on how fast nm is; what each of them waits for is known by a ticket.
class PendingTables {
 public:
  /// Tickets count up; 0 is for a table that is there already.
  using Ticket = std::uint32_t;

  /// Notes that a file was found at that place of the search path, and will be asked for at `result`.
  Ticket add(const std::string& name, int place, const std::string& path, SymbolTable** result);

  /// Returns the ticket of the pending table that is known under `key`, by the path of its file or its base
  /// name, or 0. What `name` finds once that is loaded goes to `result`.
  Ticket share(const std::string& name, const std::string& key, SymbolTable** result);

  bool isLoaded(Ticket ticket) const { return ticket <= _loaded; }

  /// Loads all tables up to that one.
  void load(Ticket ticket);

 private:
  struct Sharer {
    std::string name;
    SymbolTable** result;
  };
  struct Pending {
    std::string name;
    int place;  ///< of the search path
    std::string path;
    SymbolTable** result;
    std::vector<Sharer> sharers;
  };

  Pending& of(Ticket ticket) { return _pending[ticket - _loaded - 1]; }
  void loadFirst();

  std::deque<Pending> _pending;
  std::map<std::string, Ticket> _byName;  ///< by path and by base name
  Ticket _loaded = 0;                     ///< the last one
};

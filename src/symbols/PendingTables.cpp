#include "symbols/PendingTables.h"

#include <utility>

#include "symbols/SymbolTable.h"

PendingTables::Ticket PendingTables::add(const std::string& name, int place, const std::string& path,
                                         SymbolTable** result) {
  _pending.push_back({name, place, path, result, {}});
  const Ticket ticket = _loaded + static_cast<Ticket>(_pending.size());
  std::string baseName;
  fileNameNoPath(path, baseName);
  _byName.emplace(path, ticket);
  _byName.emplace(baseName, ticket);
  return ticket;
}

PendingTables::Ticket PendingTables::share(const std::string& name, const std::string& key,
                                           SymbolTable** result) {
  const auto found = _byName.find(key);
  if (found == _byName.end()) return 0;
  of(found->second).sharers.push_back({name, result});
  return found->second;
}

void PendingTables::load(Ticket ticket) {
  while (!isLoaded(ticket)) loadFirst();
}

void PendingTables::loadFirst() {
  const Pending pending = std::move(_pending.front());
  _pending.pop_front();
  ++_loaded;
  std::string baseName;
  fileNameNoPath(pending.path, baseName);
  for (const std::string& name : {pending.path, baseName})
    if (const auto found = _byName.find(name); found != _byName.end() && found->second == _loaded)
      _byName.erase(found);
  *pending.result = SymbolTable::readAlong(pending.name, pending.place, pending.path);
  for (const auto& [name, result] : pending.sharers) *result = SymbolTable::findKnown(name);
}

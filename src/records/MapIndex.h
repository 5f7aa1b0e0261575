#pragma once

#include "records/IndexedSequence.h"

class PerfRecordMMap;

/// All maps of a recording, sorted by process, thread and start, and the search for the one that covers an
/// address.
///
/// The maps are sorted with their tids and searched without them. So where a process has maps from several
/// threads, a search may miss one; documents have always been made that way.
class MapIndex {
 public:
  /// Inserts a map, before those of the same process, thread and start.
  void insert(PerfRecordMMap* map);

  /// Returns a map of the process whose range includes the address, or null.
  PerfRecordMMap* findCovering(unsigned int pid, unsigned long long address) const;

  /// Returns any map of the process, or null.
  PerfRecordMMap* findOfProcess(unsigned int pid) const;

 private:
  struct Entry {
    unsigned long long sortKey;  ///< of 16 bits each of pid and tid, and the start
    PerfRecordMMap* map;
  };

  template <typename Matches>
  PerfRecordMMap* search(unsigned int pid, unsigned long long sought, unsigned long long keyBits,
                         Matches matches) const;

  IndexedSequence<Entry> _entries;  ///< ascending by sort key
};

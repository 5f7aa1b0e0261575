#pragma once

#include "records/IndexedSequence.h"

class PerfRecordMMap;

/// All maps of a recording, sorted by process, thread and start, and the search for the one that covers an
/// address.
///
/// The maps are sorted with their tids but searched without them, so a search may miss a map of a process
/// with maps from several threads; documents have always been made that way.
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
    unsigned long long sortKey;  ///< the start, and 16 bits each of pid and tid
    PerfRecordMMap* map;
  };

  template <typename Matches>
  PerfRecordMMap* search(unsigned int pid, unsigned long long sought, unsigned long long keyBits,
                         Matches matches) const;

  IndexedSequence<Entry> _entries;  ///< ascending by sort key
};

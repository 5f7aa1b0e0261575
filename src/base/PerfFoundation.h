#pragma once

/// Root of the records and the symbol tables.
class PerfFoundation {
 public:
  /// -d: symbol tables do not free their symbols; the end of the process does.
  static inline bool _bypassDestructor = false;
};

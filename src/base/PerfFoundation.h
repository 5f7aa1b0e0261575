#pragma once

/// Root of the records and the symbol tables.
class PerfFoundation {
 public:
  /// -d: a symbol table leaves its symbols to the end of the process.
  static inline bool _bypassDestructor = false;
};

#pragma once

#include <cstddef>

/// Interface of an observer of a run, such as a progress display. All calls come from the run's only thread
/// and must return quickly.
class RunWatcher {
 public:
  virtual ~RunWatcher() = default;

  /// The recording was read up to `offset`.
  virtual void recordingRead(unsigned long long offset) = 0;

  /// The symbols of a file that a map names are requested for the first time.
  virtual void symbolsWanted(const char* file) = 0;

  /// The run waits for nm, which is reading the file; called repeatedly while it waits.
  virtual void nmAwaited(const char* path) = 0;
  /// nm could not be run, for the reason that errno names.
  virtual void nmNotStarted(int error) = 0;
  /// Symbols of a file were read, by nm unless that could not be run; `count` may be 0.
  virtual void symbolsRead(const char* path, std::size_t count) = 0;

  static inline RunWatcher* _current = nullptr;  ///< null if there is no observer
};

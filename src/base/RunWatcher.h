#pragma once

#include <cstddef>

/// Is told what a run does while it goes on, so that somebody can be shown it. All calls come from the run's
/// one thread and ought to return at once.
class RunWatcher {
 public:
  virtual ~RunWatcher() = default;

  /// The recording has been read up to that offset.
  virtual void recordingRead(unsigned long long offset) = 0;

  /// The symbols of a file that a map names are wanted for the first time.
  virtual void symbolsWanted(const char* file) = 0;

  /// The run waits for nm, which is at work over the file; told again and again.
  virtual void nmAwaited(const char* path) = 0;
  /// nm could not be run, for the reason that errno names.
  virtual void nmNotStarted(int error) = 0;
  /// Called with the number of symbols that a file gave over which nm was to run.
  virtual void symbolsRead(const char* path, std::size_t count) = 0;

  static inline RunWatcher* _current = nullptr;  ///< null while nobody watches
};

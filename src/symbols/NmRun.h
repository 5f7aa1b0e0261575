#pragma once

#include <sys/types.h>

#include <cstdio>
#include <string>

/// One run of nm over a file: "nm -nCg FILE". Mangled names are demangled, only external symbols are listed,
/// and they come in numeric order. No shell sees the file's name, and the list goes into a file without a
/// name, in memory where the kernel offers that: nobody can read a command into the one or put a file of his
/// own in the place of the other, and nm never waits for its reader.
class NmRun {
 public:
  /// Starts nm, which ends with this process if it has not ended before.
  explicit NmRun(const std::string& path);
  /// Ends nm if it is still at work.
  ~NmRun();
  NmRun(const NmRun&) = delete;
  NmRun& operator=(const NmRun&) = delete;

  /// Becomes readable when nm ends; -1 if nm was not started.
  int alive() const { return _alive; }
  /// Whether nm has ended, or was never started.
  bool hasEnded() const { return _process <= 0; }
  /// Waits for the end of nm.
  void wait();

  /// What follows is complete once nm has ended.

  /// Returns the list from its start, or null if there is no file for it. A failure of nm leaves it empty.
  std::FILE* list() const { return _list; }
  bool listIsEmpty() const;
  /// Copies what nm has said on its standard error to that of this process.
  void repeatComplaints() const;

  /// Returns why nm was not started, as errno has it; 0 if it was.
  int error() const { return _error; }

 private:
  void start(const std::string& path);

  pid_t _process = 0;
  int _alive = -1;
  int _complaints = -1;
  std::FILE* _list = nullptr;
  int _error = 0;
};

#pragma once

#include <sys/types.h>

#include <cstdio>
#include <string>

/// One run of nm over a file: "nm -nCg FILE". Names are demangled, only external symbols are listed, in
/// numeric order. nm is started without a shell, so the file's name cannot inject a command. The list is
/// written to a file without a name, in memory if the kernel supports that: no other process can replace it,
/// and nm never waits for its reader.
class NmRun {
 public:
  /// Starts nm, which is killed when this process ends.
  explicit NmRun(const std::string& path);
  /// Kills nm if it still runs.
  ~NmRun();
  NmRun(const NmRun&) = delete;
  NmRun& operator=(const NmRun&) = delete;

  /// Returns a descriptor that becomes readable when nm ends; -1 if nm was not started. Children of an nm
  /// that is a script may hold the other end, so hasEnded has to be called now and then.
  int alive() const { return _alive; }
  /// Returns whether nm has ended or was not started. Does not wait.
  bool hasEnded();
  /// Waits for the end of nm.
  void wait();

  /// Results, complete when nm has ended.

  /// Returns the list, positioned at its start, or null if no file could be opened for it. It is empty if nm
  /// failed.
  std::FILE* list() const { return _list; }
  bool listIsEmpty() const;
  /// Copies nm's standard error to that of this process.
  void repeatComplaints() const;

  /// Returns the errno of a failure to start nm, or 0.
  int error() const { return _error; }

 private:
  void start(const std::string& path);
  void reap(int options);

  pid_t _process = 0;
  int _alive = -1;
  int _complaints = -1;
  std::FILE* _list = nullptr;
  int _error = 0;
};

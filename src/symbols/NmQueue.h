#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "symbols/NmRun.h"

/// Queue of runs of nm that will be needed. While the recording is read, as many run in parallel as there are
/// processors; each list is kept until it is taken. The destructor ends the others.
class NmQueue {
 public:
  /// Each call returns the next file to run nm over if the list of the previous file was empty; empty if
  /// there are no more.
  using NextFile = std::function<std::string()>;

  explicit NmQueue(std::size_t processors);

  /// Runs nm over the file as soon as a processor is free.
  void expect(const std::string& path, NextFile next);

  /// Waits for the run over the file and returns it. If it was not expected or not started yet, it is started
  /// now.
  std::unique_ptr<NmRun> take(const std::string& path);

 private:
  struct Job {
    std::string path;
    NextFile next;
    std::unique_ptr<NmRun> run;  ///< null until it is started
    bool isDone = false;
  };

  std::deque<Job>::iterator find(const std::string& path);
  void start(Job& job);
  void startWaiting();
  void waitForAny(const std::string& path);
  void collectEnded();

  /// Approximately in the order in which the lists will be taken.
  std::deque<Job> _jobs;
  std::size_t _processors;
  std::size_t _running = 0;
};

#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>

#include "symbols/NmRun.h"

/// The runs of nm that are expected. As many as there are processors go on side by side while the recording
/// is read; each list is kept until it is taken. What nobody takes ends with the queue.
class NmQueue {
 public:
  /// Returns, call by call, the files over which nm ought to run if the list of the one before was empty;
  /// empty if there are no more.
  using NextFile = std::function<std::string()>;

  explicit NmQueue(std::size_t processors);

  /// Runs nm over the file once a processor is free.
  void expect(const std::string& path, NextFile next);

  /// Returns the finished run over the file. If it was not expected, or none was free for it, it is started
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

  /// In the order in which the lists will be taken, more or less.
  std::deque<Job> _jobs;
  std::size_t _processors;
  std::size_t _running = 0;
};

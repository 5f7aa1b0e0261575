#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "base/RunWatcher.h"
#include "records/RecordingFacts.h"
#include "run/ProgressLine.h"

/// What a person at the terminal is told about a run, on standard error: what went wrong, what is about to
/// come out useless and why, how far a long run has come, and at the end what was kept and lost. Nothing that
/// a program reads depends on it: the document, standard output and the exit status are the same without, and
/// where standard error is no terminal it says nothing at all.
class TerminalReport : public RunWatcher {
 public:
  /// Says nothing if `speaks` is false.
  explicit TerminalReport(bool speaks);
  ~TerminalReport() override;
  TerminalReport(const TerminalReport&) = delete;
  TerminalReport& operator=(const TerminalReport&) = delete;

  /// Whether standard error is a terminal.
  static bool isTerminal();

  /// Names what the command line has after its options.
  void tellIgnored(std::span<char* const> words);

  /// Looks at the recording and at the document's file, while neither is open yet, and tells what the run
  /// will make of them.
  void inspectFiles();

  /// Tells why there is no recording to read: errno, or 0 for an empty file.
  void tellUnreadable(int error);

  /// Tells, once, why there is no document: errno, or 0 for one that is written.
  void tellUnwritable(int error);

  /// Progress is shown from the one to the other.
  void watch();
  void stopWatching();

  /// The keys of all samples are final, and the samples are still there.
  void countSamples();

  /// Prints a summary of the conversion.
  void summarize();

  void recordingRead(unsigned long long offset) override;
  void symbolsWanted(const char* file) override;
  void nmAwaited(const char* path) override;
  void nmNotStarted(int error) override;
  void symbolsRead(const char* path, std::size_t count) override;

 private:
  void say(const std::string& line);
  void sayOfRecording(const std::string& text);
  void tellFormat();
  void tellSampleFields();
  void tellKernel();
  void tellKernelNames();
  void tellPassedOver();
  void tellWithoutSymbols();
  void tellOtherMode(unsigned long long plainSamples, unsigned long long tracePoints);
  std::string progress(const char* file);

  bool _speaks;
  std::optional<RecordingFacts> _facts;  ///< if the recording is a regular file
  bool _saidUnwritable = false;

  ProgressLine _line;
  unsigned long long _offset = 0;        ///< how far the recording is read
  std::size_t _filesWanted = 0;          ///< programs and libraries whose symbols were looked for
  std::optional<std::size_t> _allFiles;  ///< how many the recording names; counted when first shown

  std::size_t _filesRead = 0;  ///< by nm
  std::size_t _filesWithoutSymbols = 0;
  std::string _firstWithoutSymbols;
  int _nmError = 0;  ///< told already
  std::uint64_t _samplesWithoutFunction = 0;
};

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "base/RunWatcher.h"
#include "records/RecordingFacts.h"
#include "run/ProgressLine.h"

/// Messages about a run to a person at a terminal, on standard error: errors, warnings about a useless result
/// and its cause, the progress of a long run, and at the end what was kept and lost. The document, standard
/// output and the exit status do not depend on it, and nothing is printed if standard error is not a
/// terminal.
class TerminalReport : public RunWatcher {
 public:
  /// Prints nothing if `speaks` is false.
  explicit TerminalReport(bool speaks);
  ~TerminalReport() override;
  TerminalReport(const TerminalReport&) = delete;
  TerminalReport& operator=(const TerminalReport&) = delete;

  /// Returns whether standard error is a terminal.
  static bool isTerminal();

  /// Warns about words after the options, which are ignored.
  void tellIgnored(std::span<char* const> words);

  /// Examines the recording and the output file, before either is opened, and warns about problems to expect.
  void inspectFiles();

  /// Prints why the recording cannot be read: errno, or 0 for an empty file.
  void tellUnreadable(int error);

  /// Prints, once, why there is no document; `error` is an errno, or 0 if it was written.
  void tellUnwritable(int error);

  /// Start and end the display of progress.
  void watch();
  void stopWatching();

  /// Called when the keys of all samples are final, before the samples are released.
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
  unsigned long long _offset = 0;        ///< offset up to which the recording was read
  std::size_t _filesWanted = 0;          ///< programs and libraries whose symbols were requested
  std::optional<std::size_t> _allFiles;  ///< how many the recording names; counted when first shown

  std::size_t _filesRead = 0;  ///< by nm
  std::size_t _filesWithoutSymbols = 0;
  std::string _firstWithoutSymbols;
  int _nmError = 0;  ///< printed already
  std::uint64_t _samplesWithoutFunction = 0;
};

#pragma once

/// Source of the records of a conversion.
class RecordSource {
 public:
  virtual ~RecordSource() = default;
  /// Called after the settings are made, before the document is opened.
  virtual void open() = 0;
  /// Reads the event table and passes every record to the creation function of its type.
  virtual void walk() = 0;
  /// Called after the document is closed.
  virtual void close() = 0;
};

/// Runs one conversion as the command line and the environment say. Returns the exit status 0; a fatal error
/// calls errorExit with status -1.
int profile(int argc, char** argv);

/// The same with records from another source than the recording named by the command line. Returns 0, or the
/// errno of what kept the document from being written. Records are kept in static tables, so a process can
/// convert only once.
int profile(int argc, char** argv, RecordSource& records);

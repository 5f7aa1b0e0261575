#pragma once

/// Where the records of a conversion come from.
class RecordSource {
 public:
  virtual ~RecordSource() = default;
  /// Called once the settings are made, before the document is opened.
  virtual void open() = 0;
  /// Reads the event table and gives every record to the creation function of its type.
  virtual void walk() = 0;
  /// Called after the document is closed.
  virtual void close() = 0;
};

/// One conversion from start to end, as the command line and the environment say. Returns the exit status 0;
/// what ends the run early goes through errorExit with status -1.
int profile(int argc, char** argv);

/// The same over records from elsewhere than the recording that the command line names. Records stay in
/// static tables, so a process converts once.
int profile(int argc, char** argv, RecordSource& records);

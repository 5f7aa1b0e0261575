#pragma once

#include <optional>
#include <string>
#include <vector>

#include "document/OutputFile.h"

namespace zelkit {

/// The file of --report, which is opened before the work, so that a bad name costs nothing.
class ReportFile {
 public:
  /// An empty path means no report. Throws std::runtime_error with "PATH: reason", also if the path is that
  /// of an input or of another output.
  ReportFile(const std::string& path, const std::vector<std::string>& inputs,
             const std::vector<std::string>& outputs);

  /// Writes JSON values, separated by commas, as one array. Throws as the constructor does.
  void write(const std::string& reports);

 private:
  std::optional<OutputFile> _file;
};

}  // namespace zelkit

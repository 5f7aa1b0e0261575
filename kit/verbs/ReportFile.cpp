#include "verbs/ReportFile.h"

#include <stdexcept>

#include "document/NewFile.h"

namespace zelkit {

ReportFile::ReportFile(const std::string& path, const std::vector<std::string>& inputs,
                       const std::vector<std::string>& outputs) {
  if (path.empty()) return;
  for (const std::string& output : outputs)
    if (willBeSameFile(path, output)) throw std::runtime_error(path + ": is another output of this run");
  _file.emplace(path, inputs);
}

void ReportFile::write(const std::string& reports) {
  if (!_file) return;
  _file->write("[\n" + reports + "\n]\n");
  _file->commit();
}

}  // namespace zelkit

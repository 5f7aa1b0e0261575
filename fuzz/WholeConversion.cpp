#include "WholeConversion.h"

#include <fstream>
#include <stdexcept>

#include "json/JSONData.h"

namespace {

bool isWhole(const std::string& file) {
  // From the stream: a marker's name may have a NUL, which would end a text.
  std::ifstream stream(file, std::ios::binary);
  loomstat::JSONData document;
  return document.setFromStream(stream) && stream.get() == '\n' && stream.get() == EOF;
}

}  // namespace

bool convertWhole(const Conversion& folder, const std::vector<std::string>& options) {
  std::vector<std::string> all = {"-i", folder.path("perf.data"), "-o", folder.path("perf.json")};
  all.insert(all.end(), options.begin(), options.end());
  try {
    return folder.runProgram(all) == 0 && isWhole(folder.path("perf.json"));
  } catch (const std::out_of_range&) {
    return true;  // an event number that ends the program
  }
}

#include "WholeConversion.h"

#include <sstream>
#include <stdexcept>
#include <string>

#include "json/JSONData.h"

namespace {

/// Numbers beyond 1e16 have an exponent, which the program's own reader does not know: "1.5e+30" becomes
/// "1.530".
std::string withoutExponents(std::string document) {
  for (std::size_t at = document.find("e+", 1); at != std::string::npos; at = document.find("e+", at + 1))
    if (document[at - 1] >= '0' && document[at - 1] <= '9') document.erase(at, 2);
  return document;
}

bool isWhole(const std::string& file) {
  // From a stream: a marker's name may have a NUL, which would end a text.
  std::istringstream stream(withoutExponents(readFile(file)));
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

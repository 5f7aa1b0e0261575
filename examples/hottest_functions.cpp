// Reads a profile document back and prints its ten hottest functions: hottest_functions FILE

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include "json/JSOM.h"

namespace {

using loomstat::JSOM;

constexpr std::size_t kShown = 10;

// Positions in the rows, see docs/profile-document.md.
constexpr int kKey = 0;
constexpr int kFunctionName = 1;
constexpr int kLibraryName = 2;
constexpr int kSampleMapKey = 2;

JSOM rowsOf(JSOM& document, const char* section) {
  return document[section]["data"];
}

void addNames(std::map<long long, std::string>& names, JSOM rows, int nameColumn) {
  for (int i = 0; i < rows.size(); ++i)
    names[rows[i][kKey].longValue(0)] = rows[i][nameColumn].stringValue(JSOM::EMPTY_STRING);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: hottest_functions FILE\n");
    return 2;
  }
  JSOM document;
  if (!document.fromFile(argv[1]).found()) return 1;
  for (const char* section : {"processes", "libraries", "files", "functions", "samples"})
    std::printf("%-10s %6d\n", section, rowsOf(document, section).size());

  // A sample's key names a function, or a library where no function was found; the two share their numbers.
  std::map<long long, std::string> names;
  addNames(names, rowsOf(document, "libraries"), kLibraryName);
  addNames(names, rowsOf(document, "functions"), kFunctionName);
  std::map<long long, int> hits;
  JSOM samples = rowsOf(document, "samples");
  for (int i = 0; i < samples.size(); ++i) ++hits[samples[i][kSampleMapKey].longValue(0)];

  std::vector<std::pair<long long, int>> hottest(hits.begin(), hits.end());
  std::stable_sort(hottest.begin(), hottest.end(),
                   [](const auto& a, const auto& b) { return a.second > b.second; });
  if (hottest.size() > kShown) hottest.resize(kShown);
  std::printf("\n%8s %7s  %s\n", "samples", "share", "function");
  for (const auto& [key, count] : hottest)
    // The first symbol of a list keeps its line end in its name.
    std::printf("%8d %6.1f%%  %s\n", count, 100.0 * count / samples.size(),
                names[key].substr(0, names[key].find('\n')).c_str());
  return 0;
}

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

/// Returns the labels of keys: names of functions; for samples without a function those of libraries and of
/// the 64 KiB around an unmapped address, both as "[in PLACE]". Functions and libraries share their keys.
std::map<long long, std::string> labelsByKey(JSOM& document) {
  std::map<long long, std::string> labels;
  JSOM libraries = rowsOf(document, "libraries");
  for (int i = 0; i < libraries.size(); ++i)
    labels[libraries[i][kKey].longValue(0)] =
        "[in " + libraries[i][kLibraryName].stringValue(JSOM::EMPTY_STRING) + "]";
  JSOM functions = rowsOf(document, "functions");
  for (int i = 0; i < functions.size(); ++i) {
    const std::string name = functions[i][kFunctionName].stringValue(JSOM::EMPTY_STRING);
    // The first symbol of a list keeps its line end in its name.
    labels[functions[i][kKey].longValue(0)] =
        name.starts_with('{') ? "[in " + name + "]" : name.substr(0, name.find('\n'));
  }
  return labels;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: zelconv-hottest-functions FILE\n");
    return 2;
  }
  JSOM document;
  if (!document.fromFile(argv[1]).found()) {
    std::fprintf(stderr, "%s: cannot read the document %s\n", argv[0], argv[1]);
    return 1;
  }
  for (const char* section : {"processes", "libraries", "files", "functions", "samples"})
    std::printf("%-10s %6d\n", section, rowsOf(document, section).size());

  const std::map<long long, std::string> labels = labelsByKey(document);
  std::map<std::string, int> hits;
  JSOM samples = rowsOf(document, "samples");
  for (int i = 0; i < samples.size(); ++i) {
    const auto label = labels.find(samples[i][kSampleMapKey].longValue(0));
    ++hits[label == labels.end() ? "[unknown]" : label->second];
  }

  std::vector<std::pair<std::string, int>> hottest(hits.begin(), hits.end());
  std::stable_sort(hottest.begin(), hottest.end(),
                   [](const auto& a, const auto& b) { return a.second > b.second; });
  if (hottest.size() > kShown) hottest.resize(kShown);
  std::printf("\n%8s %7s  %s\n", "samples", "share", "function");
  for (const auto& [label, count] : hottest)
    std::printf("%8d %6.1f%%  %s\n", count, 100.0 * count / samples.size(), label.c_str());
  return 0;
}

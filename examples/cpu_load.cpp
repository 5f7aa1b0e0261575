// Reads a timechart document back and prints how busy each CPU was, and how many entries there are of each
// class: cpu_load FILE

#include <algorithm>
#include <cstdio>
#include <limits>
#include <map>
#include <string>

#include "json/JSOM.h"

namespace {

using loomstat::JSOM;

/// Returns the time of the last point of any series but those of markers, which have their own scale. A state
/// lasts until the next point of its series, or until then.
double endOf(JSOM entries) {
  double end = std::numeric_limits<double>::lowest();
  for (int i = 0; i < entries.size(); ++i) {
    if (entries[i]["type"].stringValue(JSOM::EMPTY_STRING) == "events") continue;
    JSOM points = entries[i]["data"];
    if (points.size() > 0) end = std::max(end, points[points.size() - 1][0].doubleValue(0));
  }
  return end;
}

/// Seconds from the first point of a series to the document's end, and seconds during which it was not 0.
struct Load {
  double span = 0.0;
  double busy = 0.0;
};

Load loadOf(JSOM points, double documentEnd) {
  Load load;
  for (int i = 0; i < points.size(); ++i) {
    const double end = i + 1 < points.size() ? points[i + 1][0].doubleValue(0) : documentEnd;
    const double length = end - points[i][0].doubleValue(0);
    load.span += length;
    if (points[i][1].longValue(0) != 0) load.busy += length;
  }
  return load;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: zelconv-cpu-load FILE\n");
    return 2;
  }
  JSOM document;
  if (!document.fromFile(argv[1]).found()) {
    std::fprintf(stderr, "%s: cannot read the document %s\n", argv[0], argv[1]);
    return 1;
  }
  JSOM entries = document["entries"];
  const double end = endOf(entries);
  std::map<std::string, int> classes;
  for (int i = 0; i < entries.size(); ++i) {
    const std::string kind = entries[i]["class"].stringValue(JSOM::EMPTY_STRING);
    ++classes[kind];
    if (kind != "cpu:busy") continue;
    const Load load = loadOf(entries[i]["data"], end);
    std::printf("%-12s %9.6f s of %9.6f s, %5.1f%%\n", entries[i]["name"].stringValuePtr(""), load.busy,
                load.span, load.span > 0.0 ? 100.0 * load.busy / load.span : 0.0);
  }
  std::printf("\n%8s  %s\n", "entries", "class");
  for (const auto& [kind, count] : classes) std::printf("%8d  %s\n", count, kind.c_str());
  return 0;
}

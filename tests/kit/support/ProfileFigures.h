#pragma once

#include <algorithm>
#include <map>
#include <string>

#include "document/ByteSource.h"
#include "document/DocumentReader.h"
#include "document/ProfileTables.h"

/// Counts the contents of a profile document.
class ProfileFigures : public zelkit::ProfileTables {
 public:
  explicit ProfileFigures(const std::string& path) {
    zelkit::FileSource source(path);
    damage = readDocument(source, *this).damage;
  }

  void sample(const zelkit::SampleRow& row) override {
    ++samples;
    const Function* function = findFunction(row.mapKey);
    // Names in braces are the engine's synthetic ones for unmapped addresses.
    const bool named = function != nullptr && !function->name.starts_with('{');
    if (!named) ++unnamed;
    ++byFunction[named ? function->name : ""];
    deepest = std::max(deepest, row.trace.size());
    firstTime = samples == 1 ? row.time : firstTime;
  }

  std::string damage;
  std::size_t samples = 0;
  std::size_t unnamed = 0;
  std::size_t deepest = 0;
  double firstTime = 0;
  std::map<std::string, std::size_t> byFunction;
};

#pragma once

#include <span>

#include "json/PerfJSONWriter.h"

/// A column of a section of the profile document: its name and its description.
struct SectionColumn {
  const char* name;
  const char* description;
};

/// Writes one section of the profile document: an object of "descriptions", always labelled and indented, and
/// "data", always without labels and white space, whatever the options say. The viewer reads a row's values
/// by position, in the order of the descriptions.
template <typename Rows>
void writeSection(PerfJSONWriter& writer, const char* name, std::span<const SectionColumn> columns,
                  Rows writeRows) {
  writer.setWhiteSpace(true);
  writer.setIncludeLabels(true);
  writer.newElementStart(name);
  writer.newElementStart("descriptions");
  for (const SectionColumn& column : columns) writer.writeNamed(column.name, column.description);
  writer.newElementEnd();
  writer.writeArrayStart("data");
  writer.setWhiteSpace(false);
  writer.setIncludeLabels(false);
  writeRows();
  writer.writeArrayEnd();
  writer.newElementEnd();
}

#pragma once

#include <string>
#include <utility>
#include <vector>

#include "support/RecordingBuilder.h"

/// The formats of trace-points as perf keeps them, of one system.
inline std::string tracingData(const std::string& system, const std::vector<std::string>& formats) {
  Bytes bytes;
  bytes.append(std::string("\x17\x08\x44tracing", 10)).append(std::string("0.6\0", 4)).u8(0).u8(4).u32(4096);
  for (const char* name : {"header_page", "header_event"})
    bytes.append(std::string(name) + '\0').u64(3).append("abc");
  bytes.u32(1).u64(5).append("ftrac");
  bytes.u32(1).append(system + '\0').u32(formats.size());
  for (const std::string& format : formats) bytes.u64(format.size()).append(format);
  return bytes.str();
}

/// The format text of a trace-point. Fields are "TYPE NAME", offset and size, after the common ones.
struct FormatLine {
  std::string declaration;
  int offset;
  int size;
};

inline std::string formatText(const std::string& name, int id, const std::vector<FormatLine>& fields) {
  std::string text = "name: " + name + "\nID: " + std::to_string(id) + "\nformat:\n";
  const auto add = [&](const FormatLine& field) {
    text += "\tfield:" + field.declaration + ";\toffset:" + std::to_string(field.offset) +
            ";\tsize:" + std::to_string(field.size) + ";\tsigned:0;\n";
  };
  add({"unsigned short common_type", 0, 2});
  add({"int common_pid", 4, 4});
  text += "\n";
  for (const FormatLine& field : fields) add(field);
  return text + "\nprint fmt: \"%s\", REC->name\n";
}

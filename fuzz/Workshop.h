#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// A folder in which the fuzzers' conversions find their input and leave their document, with the machine's
/// files in it and no nm on the path.
class Workshop {
 public:
  Workshop();
  ~Workshop();
  Workshop(const Workshop&) = delete;
  Workshop& operator=(const Workshop&) = delete;

  std::string path(const std::string& name) const { return _folder + "/" + name; }
  void write(const std::string& name, const std::string& text) const;

  /// Converts the file "perf.data" as the program would, to whatever end the rules allow, and answers whether
  /// the document, if there is one, can be read back.
  bool convert(const std::vector<std::string>& options) const;

 private:
  bool documentIsWhole() const;

  std::string _folder;
};

inline std::string textOf(const std::uint8_t* data, std::size_t size) {
  return {reinterpret_cast<const char*>(data), size};
}

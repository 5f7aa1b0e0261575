#include "Workshop.h"

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "json/JSONData.h"
#include "run/MachineFiles.h"
#include "run/profile.h"

Workshop::Workshop() {
  std::string folder = std::filesystem::temp_directory_path() / "zelconv-fuzz.XXXXXX";
  if (mkdtemp(folder.data()) == nullptr) std::abort();
  _folder = folder;
  std::filesystem::create_directories(path("plotx"));
  std::filesystem::create_directories(path("configx"));
  setenv("PATH", _folder.c_str(), 1);
  setenv("ZELVIEW_CONFIG", _folder.c_str(), 1);
  setenv("DOCUMENT_ROOT", _folder.c_str(), 1);
  setenv("BUILD_TYPE", "release", 1);
  write("kallsyms", "c0008000 T stext\nc0008100 T schedule\nc0008200 t idle\nc000f000 T etext\n");
  write("softirqs", "CPU0\n HI: 0\n TIMER: 1\n");
  gMachineFiles.kernelSymbols = path("kallsyms");
  gMachineFiles.uptime = path("uptime");
  gMachineFiles.softInterrupts = path("softirqs");
  gMachineFiles.traceText = path("trace");
  gMachineFiles.kernelLog = path("kmsg");
}

Workshop::~Workshop() {
  std::filesystem::remove_all(_folder);
}

void Workshop::write(const std::string& name, const std::string& text) const {
  std::ofstream(path(name), std::ios::binary) << text;
}

bool Workshop::convert(const std::vector<std::string>& options) const {
  std::vector<std::string> words = {"zelconv", "-i", path("perf.data"), "-o", path("perf.json")};
  words.insert(words.end(), options.begin(), options.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  optind = 1;
  try {
    return profile(static_cast<int>(words.size()), argv.data()) == 0 && documentIsWhole();
  } catch (const std::out_of_range&) {
    return true;  // an event number that ends the program
  }
}

bool Workshop::documentIsWhole() const {
  // From the stream: a marker's name may have a NUL, which would end a text.
  std::ifstream file(path("perf.json"), std::ios::binary);
  loomstat::JSONData document;
  return document.setFromStream(file) && file.get() == '\n' && file.get() == EOF;
}

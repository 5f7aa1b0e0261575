#include "support/Conversion.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/MachineFiles.h"
#include "run/profile.h"

namespace {

// Prints the list prepared for the file's name; its options and the file come as the program gives them.
constexpr const char* kFakeNm = "#!/bin/sh\ncat \"$NM_LISTS/$(basename \"$2\")\" 2>/dev/null\n";

/// Parent of the folders of all conversions of this process. It is removed with those of child processes,
/// which end without a destructor.
class FolderOfAll {
 public:
  FolderOfAll() {
    if (mkdtemp(_path.data()) == nullptr) std::abort();
  }
  ~FolderOfAll() {
    if (getpid() == _owner) std::filesystem::remove_all(_path);
  }
  FolderOfAll(const FolderOfAll&) = delete;
  FolderOfAll& operator=(const FolderOfAll&) = delete;

  const std::string& path() const { return _path; }

 private:
  std::string _path = std::filesystem::temp_directory_path() / "zelconv-test.XXXXXX";
  pid_t _owner = getpid();
};

const FolderOfAll folderOfAll;

}  // namespace

ScopedEnvironment::~ScopedEnvironment() {
  for (auto saved = _saved.rbegin(); saved != _saved.rend(); ++saved) {
    if (saved->wasSet) {
      setenv(saved->name.c_str(), saved->value.c_str(), 1);
    } else {
      unsetenv(saved->name.c_str());
    }
  }
}

void ScopedEnvironment::save(const std::string& name) {
  const char* value = std::getenv(name.c_str());
  _saved.push_back({name, value != nullptr, value != nullptr ? value : ""});
}

void ScopedEnvironment::set(const std::string& name, const std::string& value) {
  save(name);
  setenv(name.c_str(), value.c_str(), 1);
}

void ScopedEnvironment::unset(const std::string& name) {
  save(name);
  unsetenv(name.c_str());
}

Conversion::Conversion() {
  std::string folder = folderOfAll.path() + "/XXXXXX";
  if (mkdtemp(folder.data()) == nullptr) std::abort();
  _folder = folder;
  for (const char* name : {"bin", "lists", "root"}) std::filesystem::create_directory(path(name));
  write("bin/nm", kFakeNm);
  std::filesystem::permissions(path("bin/nm"), std::filesystem::perms::owner_all);
  const char* realPath = std::getenv("PATH");
  _realPath = realPath != nullptr ? realPath : "/usr/bin:/bin";
  _environment.set("PATH", path("bin") + ":" + _realPath);
  _environment.set("NM_LISTS", path("lists"));
  for (const char* name : {"kern_ver", "ARM64", "CHIP", "ZELVIEW_CONFIG", "DOCUMENT_ROOT", "BUILD_TYPE"})
    _environment.unset(name);

  gMachineFiles.kernelSymbols = path("kallsyms");
  gMachineFiles.uptime = path("uptime");
  gMachineFiles.softInterrupts = path("softirqs");
  gMachineFiles.traceText = path("trace");
  gMachineFiles.kernelLog = path("kmsg");
}

Conversion::~Conversion() {
  std::filesystem::remove_all(_folder);
}

void Conversion::write(const std::string& name, const std::string& text) const {
  std::filesystem::create_directories(std::filesystem::path(path(name)).parent_path());
  std::ofstream(path(name), std::ios::binary) << text;
}

std::string Conversion::read(const std::string& name) const {
  return readFile(path(name));
}

void Conversion::library(const std::string& file, const std::string& list) const {
  write("root" + file, "");
  write("lists/" + std::filesystem::path(file).filename().string(), list);
}

void Conversion::useRealNm() {
  _environment.set("PATH", _realPath);
}

std::string Conversion::run(const RecordingBuilder& recording, const std::vector<std::string>& arguments) {
  recording.save(path("perf.data"));
  return runFile(path("perf.data"), arguments);
}

std::string Conversion::runFile(const std::string& file, const std::vector<std::string>& arguments) {
  std::vector<std::string> all = {"-i", file, "-o", path("perf.json"), "-p", path("root")};
  all.insert(all.end(), arguments.begin(), arguments.end());
  if (runProgram(all) != 0) return "the program failed";
  return read("perf.json");
}

int Conversion::runProgram(const std::vector<std::string>& arguments) const {
  std::vector<std::string> words = {"zelconv"};
  words.insert(words.end(), arguments.begin(), arguments.end());
  std::vector<char*> argv;
  for (std::string& word : words) argv.push_back(word.data());
  argv.push_back(nullptr);
  optind = 1;
  return profile(static_cast<int>(words.size()), argv.data());
}

Ending Conversion::runApart(const std::string& recording, const std::vector<std::string>& arguments,
                            const std::function<void()>& prepare) const {
  constexpr unsigned int mostSeconds = 20;
  write("perf.data", recording);
  std::vector<std::string> all = {"-i", path("perf.data"), "-o", path("out"), "-p", path("root")};
  all.insert(all.end(), arguments.begin(), arguments.end());
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    alarm(mostSeconds);
    if (std::freopen("/dev/null", "w", stdout) == nullptr) _exit(99);
    prepare();
    // An exception must end this process, as it ends the program, and not reach the test's own handler.
    [&]() noexcept { _exit(runProgram(all)); }();
  }
  int status = 0;
  rusage usage{};
  wait4(child, &status, 0, &usage);
  Ending ending;
  ending.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  ending.endedWell = ending.status == 0 || ending.status == 255;
  ending.signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  ending.aborted = ending.signal == SIGABRT;
  ending.peakMegabytes = usage.ru_maxrss / 1024;
  return ending;
}

std::string printed(const std::function<void()>& act) {
  std::FILE* text = std::tmpfile();
  std::fflush(nullptr);
  const pid_t child = fork();
  if (child == 0) {
    dup2(fileno(text), STDOUT_FILENO);
    dup2(fileno(text), STDERR_FILENO);
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    act();
    _exit(0);
  }
  waitpid(child, nullptr, 0);
  std::rewind(text);
  std::string result;
  for (int byte = std::fgetc(text); byte != EOF; byte = std::fgetc(text)) result += static_cast<char>(byte);
  std::fclose(text);
  return result;
}

std::string rows(const std::string& document, const std::string& section) {
  const std::size_t start = document.find("\"data\": [", document.find("\n \"" + section + "\": {"));
  if (start == std::string::npos) return "no such section";
  std::string result;
  int depth = 0;
  bool quoted = false;
  for (std::size_t i = start + 9; i < document.size(); ++i) {
    const char c = document[i];
    if (c == '"' && document[i - 1] != '\\') quoted = !quoted;
    if (!quoted && c == ']' && depth-- == 0) break;
    if (depth > 0) result += c;
    if (!quoted && c == '[') ++depth;
    if (!quoted && depth == 0 && c == ',') result += '\n';
  }
  std::string lines;
  std::istringstream stream(result);
  for (std::string line; std::getline(stream, line);)
    if (!line.empty()) lines += line.substr(0, line.size() - 1) + "\n";
  return lines;
}

std::string readFile(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

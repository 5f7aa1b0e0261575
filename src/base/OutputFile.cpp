#include "base/OutputFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

int openOutputFile(const char* path) {
  return aboveStandard(::open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
}

int aboveStandard(int descriptor) {
  if (descriptor < 0 || descriptor > STDERR_FILENO) return descriptor;
  const int moved = ::fcntl(descriptor, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
  const int error = errno;
  ::close(descriptor);
  errno = error;
  return moved;
}

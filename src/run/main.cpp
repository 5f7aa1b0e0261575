#include "run/profile.h"

int main(int argc, char** argv) {
  return profile(argc, argv);
}

#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

/// Names a recording of a real machine, or skips the test where there is none.
#define RECORDING_OR_SKIP(variable, name)                                    \
  const std::string variable = std::string(ZELCONV_RECORDINGS "/") + (name); \
  if (!std::filesystem::exists(variable)) GTEST_SKIP() << "no recording " << (name) << " here"

#include "records/PerfBlockReader.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <random>
#include <thread>

#include "support/Conversion.h"

namespace {

/// What a reader returns for reads of odd sizes up to and beyond the end, and its status after each.
std::string readAll(PerfReader& reader, const std::string& file) {
  std::string all = std::to_string(reader.open(file.c_str()));
  std::mt19937 numbers(1);
  char buffer[2048];
  for (int seek : {-1, 0, 7, -5, 300000, 10, 900000}) {
    reader.seek(seek);
    for (int i = 0; i < 400; ++i) {
      const int size = static_cast<int>(numbers() % 2047 + 1);
      const int got = i % 2 == 0 ? reader.read(buffer, size) : reader.get(buffer, size);
      all.append(",").append(std::to_string(got)).append(reader.status() ? "" : "!");
      if (got > 0) all.append(buffer, static_cast<std::size_t>(got));
    }
  }
  reader.close();
  return all;
}

TEST(PerfBlockReader, ReturnsWhatDirectReadsDo) {
  const Conversion folder;
  std::mt19937 numbers(2);
  std::string bytes;
  while (bytes.size() < 600000) bytes += static_cast<char>(numbers());
  for (const std::size_t size : {0U, 1U, 262144U, 262145U, 600000U}) {
    folder.write("file", bytes.substr(0, size));
    PerfReader plain;
    PerfBlockReader inBlocks;
    EXPECT_EQ(readAll(inBlocks, folder.path("file")), readAll(plain, folder.path("file"))) << size;
  }
  PerfBlockReader directory;
  char byte = 0;
  EXPECT_EQ(directory.open(folder.path("").c_str()), 0);
  EXPECT_EQ(directory.read(&byte, 1), -1);
  PerfBlockReader none;
  EXPECT_EQ(none.open(folder.path("nowhere").c_str()), -1);
  EXPECT_EQ(none.read(&byte, 1), -1);
  EXPECT_FALSE(none.status());
}

TEST(PerfReader, WarnsAboutImplausibleSizes) {
  const Conversion folder;
  folder.write("file", std::string(5000, 'x'));
  char bytes[4096];
  testing::internal::CaptureStdout();
  PerfReader reader;
  reader.open(folder.path("file").c_str());
  for (const int size : {1, 2048, 0, 2049}) reader.read(bytes, size);
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "Large reader size:0\nLarge reader size:2049\n");
  EXPECT_TRUE(reader.status());
}

TEST(PerfBlockReader, ReadsFromAPipeWhatIsAvailable) {
  const Conversion folder;
  ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
  std::thread writer([&] { folder.write("pipe", "abcde"); });
  PerfBlockReader reader;
  reader.open(folder.path("pipe").c_str());
  char bytes[8];
  EXPECT_EQ(reader.read(bytes, 2), 2);
  EXPECT_EQ(reader.read(bytes, 8), 3);
  writer.join();
  EXPECT_EQ(reader.read(bytes, 8), 0);
  EXPECT_FALSE(reader.status());
}

}  // namespace

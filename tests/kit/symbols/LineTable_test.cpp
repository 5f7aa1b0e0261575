#include "symbols/LineTable.h"

#include <gtest/gtest.h>

#include <string>

namespace zelkit {
namespace {

std::string bytesOf(std::initializer_list<int> values) {
  std::string bytes;
  for (const int value : values) bytes += static_cast<char>(value);
  return bytes;
}

/// Returns a table with the folder "/src" and the files "a.cpp" in it and "/b.cpp", the usual one of a row.
std::string tableOf(const std::string& code) {
  // Steps of 2 bytes, lines from -3 in a range of 12, operations from 13 on special.
  std::string header =
      bytesOf({2, 1, 1, -3, 12, 13, 0, 1, 1, 1, 1, 0, 0, 0, 1, 0, 0, 1}) + bytesOf({1, 1, 0x08, 1}) + "/src";
  header += bytesOf({0, 2, 1, 0x1F, 2, 0x0B, 2, 1, 0, 0, 0, 0, 7, 0, 0, 0, 0});
  std::string table =
      bytesOf({5, 0, 8, 0}) + bytesOf({static_cast<int>(header.size()), 0, 0, 0}) + header + code;
  return bytesOf({static_cast<int>(table.size()), 0, 0, 0}) + table;
}

using namespace std::string_view_literals;
constexpr std::string_view kTexts = "\0a.cpp\0/b.cpp\0"sv;

/// Returns the rows of the first table as "ADDRESS FILE:LINE " each.
std::string rowsOf(std::string_view bytes) {
  Bytes tables(bytes);
  const std::optional<LineTable> table = LineTable::next(tables, kTexts);
  if (!table) return "none";
  std::string rows;
  table->forEachRow([&](const LineTable::Row& row) {
    rows +=
        std::to_string(row.address) + ' ' + table->fileName(row.file) + ':' + std::to_string(row.line) + ' ';
  });
  return rows;
}

std::string setAddress(int address) {
  return bytesOf({0, 5, 2, address, 0, 0, 0});
}
const std::string kEnd = bytesOf({0, 1, 1});

TEST(LineTable, RunsEveryOperation) {
  const std::pair<std::string, std::string> cases[] = {
      {bytesOf({3, 9, 4, 0, 1}), "16 /src/a.cpp:10 "},  // file, line, copy
      {bytesOf({3, 9, 1, 2, 0x81, 1, 3, 0x7C, 1}),
       "16 /b.cpp:10 274 /b.cpp:6 "},                                // a distance of 129, and 4 lines back
      {bytesOf({13 + 12 * 2 + 5}), "20 /b.cpp:3 "},                  // special
      {bytesOf({8, 9, 1, 0, 1}), "57 /b.cpp:1 "},                    // the largest special's distance, 1
      {bytesOf({5, 7, 6, 12, 9, 10, 11, 1}), "16 /b.cpp:1 "},        // columns, marks
      {bytesOf({0, 2, 4, 9, 0, 3, 0x80, 1, 2, 1}), "16 /b.cpp:1 "},  // a discriminator, an unknown one
      {bytesOf({3, 0x7F, 1, 3, 4, 1, 3, 1, 1}), "16 /b.cpp:4 "},     // without a line; the next; one too many
      {bytesOf({4, 9, 1}), "16 :1 "},                                // a file that is not there
  };
  for (const auto& [code, rows] : cases)
    EXPECT_EQ(rowsOf(tableOf(setAddress(16) + code + bytesOf({2, 1}) + kEnd)), rows);
}

TEST(LineTable, LeavesOutRowsWithoutCode) {
  const std::string code =
      setAddress(16) + bytesOf({1, 2, 1, 1}) + kEnd + setAddress(18) + bytesOf({3, 4, 1, 2, 1}) + kEnd;
  EXPECT_EQ(rowsOf(tableOf(code)), "16 /b.cpp:1 18 /b.cpp:5 ");
}

TEST(LineTable, IsLeftToOthersWhenItIsOfAnotherFormOrDamaged) {
  const std::string whole = tableOf(setAddress(16) + bytesOf({1, 2, 1}) + kEnd);
  EXPECT_EQ(rowsOf(whole), "16 /b.cpp:1 ");
  const std::pair<std::size_t, char> changes[] = {{4, 4}, {0, 127}, {8, 127}, {13, 2}, {16, 0}, {32, 0x0E}};
  for (const auto& [place, value] : changes) {
    std::string changed = whole;
    changed[place] = value;
    EXPECT_EQ(rowsOf(changed), "none") << place;
  }
  for (std::size_t size = 0; size < whole.size(); ++size) EXPECT_EQ(rowsOf(whole.substr(0, size)), "none");
}

}  // namespace
}  // namespace zelkit

#include "json/JSONParser.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

namespace {

using loomstat::JSONData;

/// The result of a parser: the tree in compact form, the messages, and the rest of the text.
struct Parsed {
  std::string tree;
  std::string messages;
  std::string rest;
};

Parsed parseText(const std::string& text) {
  JSONData node;
  const char* cursor = text.c_str();
  testing::internal::CaptureStderr();
  const bool good = node.setFromJsonString(cursor);
  Parsed result{good ? "+" : "-", testing::internal::GetCapturedStderr(), cursor};
  node.appendJsonString(result.tree, false, 6, 0);
  return result;
}

Parsed parseStream(const std::string& text) {
  JSONData node;
  std::istringstream stream(text);
  testing::internal::CaptureStderr();
  const bool good = node.setFromStream(stream);
  Parsed result{good ? "+" : "-", testing::internal::GetCapturedStderr(), ""};
  node.appendJsonString(result.tree, false, 6, 0);
  stream.clear();
  std::getline(stream, result.rest, '\0');
  return result;
}

struct Case {
  const char* text;
  const char* tree;     ///< + or - for success, then the tree that is left
  const char* message;  ///< of the last line, or empty
  const char* rest;
};

constexpr Case kCases[] = {
    {"[1,2,]", "+[1,2]", "", ""},
    {"[]", "+[]", "", ""},
    {" {} x", "+{}", "", " x"},
    {"[,1]", "-[]", "missing value", ",1]"},
    {"[1,,2]", "-[1]", "missing value", ",2]"},
    {"[[],{\"a\":[{},[1,[]],],\"b\":{}}]", "+[[],{\"a\":[{},[1,[]]],\"b\":{}}]", "", ""},
    {"{\"a\":{\"b\":{\"c\":0}},\"d\":1}", "+{\"a\":{\"b\":{\"c\":0}},\"d\":1}", "", ""},
    {"[0,[1,[2]]", "-[0]", "array comma or end expected", ""},
    {"{\"a\":[],\"b\":{\"c\":[1,[{}?", "-{\"a\":[]}", "array comma or end expected", "?"},
    {"{\"a\":1,\"a\":2,}", "+{\"a\":1,\"a\":2}", "", ""},
    {"[1}", "-[]", "array comma or end expected", "}"},
    {"[}", "-[]", "array not closed", "}"},
    {"[1,2", "-[1]", "array comma or end expected", ""},
    {"[1,", "-[1]", "array not closed", ""},
    {"{", "-{}", "object not closed", ""},
    {"{]", "-{}", "object not closed", "]"},
    {"{,", "-{}", "object key must be a string", ","},
    {"{1:2}", "-{}", "object key must be a string", "1:2}"},
    {"{\"a\":1,,", "-{\"a\":1}", "invalid string for object key", ","},
    {"{\"a\\u00g0\":1}", "-{}", "invalid string for object key", "g0\":1}"},
    {"{\"a\" 1}", "-{}", "object colon expected", "1}"},
    {"{\"a\":1 \"b\":2}", "-{}", "object comma or end expected", "\"b\":2}"},
    {"{\"a\":}", "-{}", "missing value", "}"},
    {"// note\n/* a **/[/*/*/1 // x\n,/**/2]", "+[1,2]", "", ""},
    {"/x", "-", "missing value", "x"},
    {"/* open", "-", "", ""},
    {"", "-", "", ""},
    {" \t\r\n", "-", "", ""},
    {"?", "-", "missing value", "?"},
    {".5", "-", "missing value", ".5"},
    {"+1 ", "-", "invalid number", "+1 "},
    {"-x", "-", "invalid number", "x"},
    {"-0 ", "+0", "", " "},
    {"-0.0 ", "+-0", "", " "},
    {"12. ", "+12", "", " "},
    {"-007.1250 ", "+-7.125", "", " "},
    {"1e5 ", "+1", "", "e5 "},
    {"[1e5]", "-[]", "array comma or end expected", "e5]"},
    {"9223372036854775808 ", "+-9223372036854775808", "", " "},
    {"18446744073709551617 ", "+1", "", " "},
    {"nullx", "+null", "", "x"},
    {"[true,false,null]", "+[true,false,null]", "", ""},
    {"\"a\\qb\"", "+\"a\\\\qb\"", "", ""},
    {"\"\\n\\t\\r\\b\\f\\\"\\\\\\/\n\"", "+\"\\n\\t\\r\\b\\f\\\"\\\\/\\n\"", "", ""},
    {"\"\\u1234\\u00E9\\u00e9\"", "+\"4\x99\xe9\"", "", ""},
    {"\"open", "-\"open\"", "invalid string", ""},
    {"\"open\\", "-\"open\"", "invalid string", ""},
};

std::string expectedMessage(const char* operation, const char* message) {
  return *message != '\0' ? std::string("JSONData::") + operation + ": syntax error: " + message + "\n" : "";
}

TEST(JSONParser, BothParsersAcceptTheSameLanguage) {
  for (const Case& c : kCases) {
    const Parsed text = parseText(c.text);
    EXPECT_EQ(text.tree, c.tree) << c.text;
    EXPECT_EQ(text.messages, expectedMessage("setFromJsonString()", c.message)) << c.text;
    EXPECT_EQ(text.rest, c.rest) << c.text;
    const Parsed stream = parseStream(c.text);
    EXPECT_EQ(stream.tree, c.tree) << c.text;
    EXPECT_EQ(stream.messages, expectedMessage("setFromStream()", c.message)) << c.text;
    EXPECT_EQ(stream.rest, c.rest) << c.text;
  }
}

TEST(JSONParser, ParsersDifferInWordsAndNuls) {
  EXPECT_EQ(parseText("[nulx]").rest, "nulx]");
  EXPECT_EQ(parseText("[nulx]").messages, expectedMessage("setFromJsonString()", "invalid null value"));
  EXPECT_EQ(parseStream("[nulx]").rest, "]");
  EXPECT_EQ(parseText("[truth]").messages, expectedMessage("setFromJsonString()", "invalid boolean value"));
  EXPECT_EQ(parseStream("falsy").messages, expectedMessage("setFromStream()", "invalid boolean value"));
  EXPECT_EQ(parseText(std::string("\"a\0b\"", 5)).tree, "-\"a\"");
  EXPECT_EQ(parseStream(std::string("\"a\0b\"", 5)).tree, std::string("+\"a\0b\"", 6));
  EXPECT_EQ(parseStream(std::string("\"\\\0\"", 4)).tree, std::string("+\"\\\\\0\"", 6));
  JSONData node;
  const char* none = nullptr;
  EXPECT_FALSE(node.setFromJsonString(none));
}

/// Returns the results of the parser's steps for "/**/ , : } "b\\n" -12.5x".
template <typename Source>
std::string steps(Source source) {
  std::string found;
  JSONData node;
  for (const char expected : {',', ':', '}', '"', '-', 'x'}) {
    unsigned short type = 99;
    bool comma = true;
    bool colon = true;
    bool end = true;
    const bool good = JSONData::fetchNextType(source.text, type, comma, colon, end);
    found += std::to_string(type) + (comma ? "," : "") + (colon ? ":" : "") + (end ? "}" : "");
    found += good ? " " : "! ";
    std::string string;
    if (expected == '"') {
      found += JSONData::parseJsonString(source.text, string) ? string : "?";
    } else if (expected == '-') {
      found += node.parseJsonNumberIntoSelf(source.text) ? std::to_string(node.doubleValue()) : "?";
    } else if (good) {
      source.step();
    }
  }
  return found;
}

TEST(JSONParser, OffersItsStepsForBothSources) {
  struct Text {
    const char* text = "/**/ , : } \"b\\n\" -12.5x";
    void step() { ++text; }
  };
  struct Stream {
    std::istringstream text{Text().text};
    void step() { text.get(); }
  };
  const char* const expected = "99, 99: 3} 5 b\n6 -12.50000099! ";
  EXPECT_EQ(steps(Text()), expected);
  EXPECT_EQ(steps(Stream()), expected);
}

TEST(JSONParser, ExtendsAnExistingContainer) {
  JSONData node;
  EXPECT_TRUE(node.setFromJsonStlString("[1]"));
  EXPECT_TRUE(node.setFromJsonStlString("[2] tail"));
  std::string out;
  node.toJsonString(out, false, 4);
  EXPECT_EQ(out, "[1,2]");
}

TEST(JSONParser, AcceptsAnyDepthOfNesting) {
  constexpr std::size_t depth = 1000000;
  JSONData arrays;
  EXPECT_TRUE(arrays.setFromJsonStlString(std::string(depth, '[') + std::string(depth, ']')));
  std::string text;
  for (std::size_t i = 0; i < depth; ++i) text += "{\"a\":";
  JSONData objects;
  EXPECT_FALSE(objects.setFromJsonStlString(text + "1"));
  EXPECT_EQ(objects.length(), 0);
  EXPECT_EQ(objects._refCount, 0);
}

#ifndef ZELCONV_SANITIZED  // a sanitizer retains freed memory
TEST(JSONParser, TreesLeaveNoMemoryBehind) {
  std::string text = "[[";
  for (int i = 0; i < 1000; ++i) text += R"([1],{"key":"a text that is longer than its node"},[2,[3]],)";
  text += "[]]]";
  const auto residentPages = [] {
    std::size_t all = 0;
    std::size_t resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;
    return resident;
  };
  testing::internal::CaptureStderr();
  std::size_t before = 0;
  for (int round = 0; round < 200; ++round) {
    if (round == 20) before = residentPages();
    // A text that ends early fails with a complete member, or with open containers.
    for (const std::size_t missing : {0U, 1U, 2U}) {
      JSONData node;
      EXPECT_EQ(node.setFromJsonStlString(text.substr(0, text.size() - missing)), missing == 0);
    }
  }
  EXPECT_LT(residentPages(), before + 512);
  testing::internal::GetCapturedStderr();
}
#endif

}  // namespace

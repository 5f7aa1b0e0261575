#include "json/JSONData.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>
#include <tuple>

namespace {

using loomstat::JSONData;

JSONData* parsed(const std::string& text) {
  auto* node = new JSONData;
  node->addReference();
  EXPECT_TRUE(node->setFromJsonStlString(text));
  return node;
}

JSONData* number(long long value) {
  auto* node = new JSONData;
  node->setLong(value);
  return node;
}

std::string compact(const JSONData& node) {
  std::string out = "left from before";
  node.toJsonString(out, false, 4);
  return out;
}

TEST(JSONData, FindsTheLastOfEqualKeys) {
  JSONData* node = parsed("{\"a\":1,\"b\":[2],\"a\":3}");
  EXPECT_EQ(node->getByKey("a")->longValue(), 3);
  EXPECT_EQ(node->getByKey("none"), nullptr);
  EXPECT_EQ(*node->getKeyAtIndex(1), "b");
  EXPECT_EQ(node->getByIndex(1)->getByIndex(1), nullptr);
  EXPECT_EQ(node->getByIndex(-1), nullptr);
  node->erase("a");
  EXPECT_EQ(compact(*node), "{\"a\":1,\"b\":[2]}");
  node->erase(-1);
  node->erase(7);
  node->setByKey("c", number(4));
  node->setByKey("a", number(5));
  node->setByKey("none", nullptr);
  EXPECT_EQ(compact(*node), "{\"a\":5,\"c\":4}");
  node->setByKey("a", nullptr);
  EXPECT_EQ(compact(*node), "{\"c\":4}");
  node->clear();
  node->erase(-1);
  EXPECT_EQ(compact(*node), "{}");
  JSONData::release(node);
}

TEST(JSONData, GrowsArraysAtTheirEndOnly) {
  JSONData array;
  JSONData* kept = number(9);
  kept->addReference();
  for (int i = 0; i < 3; ++i) array.setByIndex(i, number(i));
  testing::internal::CaptureStderr();
  array.setByIndex(4, kept);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "JSONData::setByIndex(): index out of range\n");
  EXPECT_EQ(compact(array), "[0,1,2]");
  array.setByIndex(2, nullptr);
  EXPECT_EQ(compact(array), "[0,1]");
  array.getByIndex(0)->addReference();
  JSONData* dropped = array.getByIndex(0);
  array.setByIndex(1, kept);
  EXPECT_EQ(compact(array), "[9]");
  EXPECT_EQ(kept->_refCount, 2);
  JSONData::release(dropped);  // what was before the index is dropped, not released
  JSONData::release(dropped);
  array.reset();
  JSONData::release(kept);
}

TEST(JSONData, KeepsItsContentWhenTheTypeStays) {
  JSONData node;
  node.setString("text");
  node.setString(static_cast<const char*>(nullptr));
  EXPECT_EQ(*node.stringValue(), "text");
  EXPECT_EQ(node.longValue(), 0);
  node.setLong(256);
  EXPECT_FALSE(node.booleanValue());  // the low byte decides
  EXPECT_EQ(node.doubleValue(), 256.0);
  node.setDouble(-2.75);
  EXPECT_EQ(node.longValue(), -2);
  node.setDouble(1e300);
  EXPECT_EQ(node.longValue(), std::numeric_limits<long long>::max());
  node.setBoolean(true);
  EXPECT_EQ(node.doubleValue(), 1.0);
  node.setString(static_cast<const char*>(nullptr));
  EXPECT_EQ(*node.stringValue(), "");
}

TEST(JSONData, CopiesOntoItselfAndDeeply) {
  JSONData* node = parsed("{\"a\":[1,{\"b\":\"x\"}],\"c\":1.5}");
  node->copy(*node);
  JSONData* twin = node->clone();
  EXPECT_EQ(twin->_refCount, 0);
  node->getByKey("a")->getByIndex(1)->setByKey("b", nullptr);
  EXPECT_EQ(compact(*node), "{\"a\":[1,{}],\"c\":1.5}");
  EXPECT_EQ(compact(*twin), "{\"a\":[1,{\"b\":\"x\"}],\"c\":1.5}");
  twin->addReference();
  JSONData::release(twin);
  JSONData::release(node);
}

TEST(JSONData, PrintsPrettyCompactAndToStreams) {
  JSONData* node = parsed("{\"a\\n\":[1,2.50,\"q\\\"\",true,null,[],{}],\"b\":-3}");
  std::string pretty;
  node->toJsonString(pretty, true, 4);
  EXPECT_EQ(pretty,
            "{\n \"a\\n\": [\n  1,\n  2.5,\n  \"q\\\"\",\n  true,\n  null,\n  [\n  ],\n  {\n  }\n ],\n "
            "\"b\": -3\n}");
  std::ostringstream stream;
  stream.width(9);  // is for what is formatted, and no key is
  node->appendStream(stream);
  EXPECT_EQ(stream.str(), compact(*node));
  stream.setstate(std::ios::failbit);
  node->appendStream(stream);
  EXPECT_EQ(stream.str(), compact(*node));
  JSONData::release(node);
  const std::tuple<double, int, const char*> numbers[] = {
      {2.5, 4, "2.5"}, {3.0, 4, "3"}, {120, 0, "12"}, {1e20, 2, "100000000000000000000"}};
  for (const auto& [value, precision, text] : numbers) {
    JSONData real;
    real.setDouble(value);
    std::string out;
    real.appendStringValue(out, precision);
    EXPECT_EQ(out, text);
  }
}

TEST(JSONData, IndentsByFiftySpacesAtMost) {
  JSONData* node = parsed(std::string(60, '[') + std::string(60, ']'));
  std::string out;
  node->toJsonString(out, true, 4);
  EXPECT_NE(out.find("\n" + std::string(50, ' ') + "["), std::string::npos);
  EXPECT_EQ(out.find(std::string(51, ' ')), std::string::npos);
  JSONData::release(node);
}

}  // namespace

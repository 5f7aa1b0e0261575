#include "json/JSOM.h"

#include <gtest/gtest.h>

#include <sstream>

#include "support/Conversion.h"

namespace {

using loomstat::JSOM;

std::string compact(const JSOM& handle) {
  std::string out;
  return handle.toCompactString(out);
}

TEST(JSOM, ReadsWithDefaultsAndWritesOnDemand) {
  JSOM doc;
  EXPECT_EQ(compact(doc), "");
  EXPECT_EQ(doc["x"].longValue(7), 7);
  EXPECT_EQ(compact(doc), "{}");
  EXPECT_EQ(doc["x"]["y"].longValue(7), 7);
  EXPECT_EQ(compact(doc), "{\"x\":{}}");
  doc["list"][-1].setLong(5);
  doc["list"].at(1).setDouble(0.5);
  const std::string key = "text";
  doc.at(key).setString(std::string("t"));
  doc["none"].setString(static_cast<const char*>(nullptr));
  doc["flag"].setBoolean(true);
  EXPECT_EQ(compact(doc), "{\"x\":{},\"list\":[5,0.5],\"text\":\"t\",\"none\":null,\"flag\":true}");
  doc["list"]["name"].setLong(1);  // a write by key turns the array into an object
  EXPECT_EQ(compact(doc["list"]), "{\"name\":1}");
  EXPECT_EQ(*doc.key(1), "list");
  EXPECT_EQ(doc.erase("x").erase(-1).size(), 3);
}

TEST(JSOM, ConvertsValuesInPlace) {
  JSOM doc;
  doc.fromString(
      "[12,\"12x\",\"-34\",\"1.5\",\"oFF\",\"TRUE\",\"false\",\"no\",0.5,true,null,\"-\",\"12.\",\"On\",1."
      "23456]");
  EXPECT_EQ(doc[0].stringValue(JSOM::EMPTY_STRING), "12");
  EXPECT_FALSE(doc[0].isNumber());
  EXPECT_EQ(doc[1].longValue(-1), -1);
  EXPECT_TRUE(doc[1].isString());
  EXPECT_EQ(doc[2].longValue(0), -34);
  EXPECT_TRUE(doc[2].isNumber());
  EXPECT_EQ(doc[3].longValue(-1), -1);
  EXPECT_EQ(doc[3].doubleValue(0), 1.5);
  EXPECT_FALSE(doc[4].booleanValue(true));
  EXPECT_TRUE(doc[5].booleanValue(false));
  EXPECT_TRUE(doc[6].booleanValue(true));
  EXPECT_TRUE(doc[7].booleanValue(true));
  EXPECT_FALSE(doc[8].booleanValue(true));
  EXPECT_STREQ(doc[9].stringValuePtr(""), "true");
  EXPECT_STREQ(doc[10].stringValuePtr("default"), "default");
  EXPECT_EQ(doc[11].doubleValue(7), 7.0);
  EXPECT_EQ(doc[12].doubleValue(7), 12.0);
  EXPECT_TRUE(doc[13].booleanValue(false));
  JSOM::defaultPrecision = 2;
  EXPECT_EQ(doc[14].stringValue(JSOM::EMPTY_STRING), "1.23");
  EXPECT_EQ(compact(doc),
            "[\"12\",\"12x\",-34,1.5,false,true,\"false\",\"no\",0.5,\"true\",null,\"-\",12,true,\"1.23\"]");
}

TEST(JSOM, FailuresPrintALineAndReturnAnInvalidHandle) {
  JSOM doc;
  doc.fromString("[1]");
  testing::internal::CaptureStderr();
  EXPECT_EQ(doc[3].longValue(7), 7);
  doc[3]["a"].setLong(1);
  doc[static_cast<const char*>(nullptr)];
  EXPECT_FALSE(doc.fromString("[1,?]").found());
  EXPECT_FALSE(doc.fromFile("/nonexistent").found());
  EXPECT_FALSE(doc.fromFile("/dev/null").found());
  EXPECT_FALSE(doc.toFile("/nonexistent/x"));
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "JSOM::operator[](int32_t): index out of bounds\n"
            "JSOM::operator[](int32_t): index out of bounds\n"
            "JSOM::operator[](char *): null reference error\n"
            "JSOM::setLong(): null reference error\n"
            "JSOM::operator[](char *): null key pointer\n"
            "JSONData::setFromJsonString(): syntax error: array not closed\n"
            "JSOM::fromFile(): could not open file\n"
            "JSOM::fromFile(): could not read file\n"
            "JSOM::toFile(): could not write file\n");
  EXPECT_EQ(compact(doc), "[1,1]");  // what was read before the error stays
  JSOM::JERROR.longValue(1);
  EXPECT_EQ(JSOM::JERROR.size(), 0);
}

TEST(JSOM, AssignsDeeply) {
  JSOM a;
  a.fromString("{\"x\":[1]}");
  JSOM b;
  b["copy"] = a["x"];
  b["copy"][0].setLong(2);
  b = JSOM::BLANK;
  EXPECT_EQ(compact(a) + compact(b), "{\"x\":[1]}{\"copy\":[2]}");
  b["copy"].copy(JSOM::BLANK);
  EXPECT_EQ(compact(b), "{\"copy\":false}");
  JSOM same(a);
  same["y"].setLong(1);
  EXPECT_EQ(compact(a), "{\"x\":[1],\"y\":1}");
}

TEST(JSOM, LoadsAndStores) {
  const Conversion folder;
  folder.write("doc", "{\"a\":1} trailing");
  JSOM doc;
  doc = doc.fromFile(folder.path("doc").c_str());
  EXPECT_EQ(compact(doc), "{\"a\":1}");
  EXPECT_TRUE(doc.toFile(folder.path("out").c_str()));
  EXPECT_EQ(folder.read("out"), "{\n \"a\": 1\n}");
  std::istringstream in("[1,2] tail");
  std::ostringstream out;
  JSOM streamed;
  EXPECT_TRUE(streamed.fromStream(in).good());
  streamed.toStream(out);
  EXPECT_EQ(out.str(), "[1,2]");
  std::istringstream bad("[1");
  EXPECT_TRUE(streamed.fromStream(bad).fail());
}

TEST(JSOM, ExpandsEnvironmentReferencesInStrings) {
  ScopedEnvironment environment;
  environment.set("ZA", "value");
  environment.unset("ZN");
  const std::pair<const char*, const char*> cases[] = {{"${ZA}/x", "value/x"},
                                                       {"${ZN}/x", "${ZN}/x"},
                                                       {"${ZA}/${ZN}", "value/${ZN}"},
                                                       {"${}", "${}"},
                                                       {"${ZA", "${ZA"},
                                                       {"${ZA}${ZA", "value${ZA"},
                                                       {"$ZA $${ZA}", "$ZA $value"},
                                                       {"${A${ZA}}", "${A${ZA}}"}};
  for (const auto& [text, expanded] : cases) {
    JSOM doc;
    doc["${ZA}"][0]["s"].setString(text);
    doc.expandValues();
    EXPECT_STREQ(doc["${ZA}"][0]["s"].stringValuePtr(""), expanded);
  }
  JSOM doc;
  doc.setString(std::string("${ZA}\0${ZA}", 11));  // a text ends at its NUL
  doc.expandValues();
  EXPECT_EQ(doc.stringValue(JSOM::EMPTY_STRING), "value");
}

}  // namespace

#include "json/JsomStringWriter.h"

#include <gtest/gtest.h>

#include <cmath>

#include "support/WholeText.h"

namespace {

using loomstat::JsomStringWriter;

std::string number(double value, int precision) {
  loomstat::TextBuffer out;
  JsomStringWriter(out).appendDouble(value, precision);
  return wholeText(out);
}

TEST(JsomStringWriter, PrintsDoublesWithoutTrailingZeros) {
  const struct {
    double value;
    int precision;
    const char* text;
  } cases[] = {{1.5, 9, "1.5"},
               {2, 9, "2"},
               {0.1, 9, "0.1"},
               {1e-10, 9, "0"},
               {-1e-10, 9, "-0"},
               {1e16, 9, "10000000000000000"},
               {1.5e16, 9, "1.500000e+16"},
               {-1e17, 9, "-1.000000e+17"},
               {INFINITY, 9, "inf"},
               {NAN, 9, "nan"},
               {1.5, 0, "1.500000"},
               {120, 2, "120"}};
  for (const auto& c : cases) EXPECT_EQ(number(c.value, c.precision), c.text) << c.value;
}

TEST(JsomStringWriter, EscapesSevenBytesAndNoOthers) {
  loomstat::TextBuffer out;
  JsomStringWriter writer(out);
  writer.startArray();
  writer.appendString(std::string("\b\t\n\f\r\"\\/\x01\x80\0z", 12), false);
  writer.appendString("a\"b", 3, true);
  writer.appendString(nullptr, 0, false);
  writer.endArray();
  EXPECT_EQ(wholeText(out), std::string("[\"\\b\\t\\n\\f\\r\\\"\\\\/\x01\x80\0z\",\"a\"b\",null]", 34));
}

TEST(JsomStringWriter, RefusesCallsOutOfOrderAndContinues) {
  loomstat::TextBuffer out;
  JsomStringWriter writer(out);
  testing::internal::CaptureStderr();
  writer.endArray();
  writer.appendLabel("x", true);
  writer.startObject();
  writer.appendInt(1);
  writer.endArray();
  writer.appendLabel("a", true);
  writer.endObject();
  writer.appendLabel("b", true);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            std::string("ERROR: JsonWriter::endArray() No current array on stack. state: \0\n", 66) +
                std::string("ERROR: JsonWriter::appendLabel() No current object on stack. state: \0\n", 70) +
                "ERROR: JsonWriter::appendInt() Invalid sequence. state: {\n"
                "ERROR: JsonWriter::endArray() No current array on stack. state: {\n"
                "ERROR: JsonWriter::endObject() No current object on stack. state: :\n"
                "ERROR: JsonWriter::appendLabel() No current object on stack. state: :\n");
  writer.startArray();
  writer.appendBoolean(true);
  writer.appendJsonValue("");
  writer.end();
  writer.appendLong(-5);
  EXPECT_EQ(wholeText(out), "{\"a\":[true,]}-5");
}

TEST(JsomStringWriter, CompletesALabelWithNullAndIndentsDeepLevelsWithANul) {
  loomstat::TextBuffer out;
  JsomStringWriter writer(out);
  writer._whiteSpace = true;
  for (int i = 0; i < 48; ++i) writer.startArray();
  EXPECT_TRUE(wholeText(out).ends_with("\n" + std::string(47, ' ') + "["));
  writer.startObject();
  EXPECT_TRUE(wholeText(out).ends_with("\n" + std::string(47, ' ') + std::string(1, '\0') + "{"));
  writer._whiteSpace = false;
  writer.appendLabel("a", true);
  writer.end();
  EXPECT_TRUE(wholeText(out).ends_with("{\"a\":null}" + std::string(48, ']')));
}

}  // namespace

// Fields of a JSON object, read strictly.
#include "simulator/json_fields.h"

#include <gtest/gtest.h>

#include <functional>
#include <nlohmann/json.hpp>

#include "simulator/personality_error.h"

namespace kesp::simulator {
namespace {

std::string RefusalOf(const std::function<void()>& action) {
  try {
    action();
  } catch (const PersonalityError& error) {
    return error.what();
  }
  return "not refused";
}

class JsonFieldsTest : public testing::Test {
 protected:
  const nlohmann::json value_ = nlohmann::json::parse(R"({
    "text": "a\u0081\r", "wide": "\u20AC", "hex": "0D 0a", "odd": "0D 0", "number": 5, "negative": -1,
    "huge": 18446744073709551615, "fraction": 1.5, "yes": true, "no": false, "nothing": null
  })");
  const JsonFields fields_{value_, "/at"};
};

TEST_F(JsonFieldsTest, GoodFields_AreRead) {
  EXPECT_EQ(fields_.Text("text"), "a\x81\r");
  EXPECT_EQ(fields_.TextOr("text", "x"), "a\x81\r");
  EXPECT_EQ(fields_.TextOr("absent", "x"), "x");
  EXPECT_EQ(fields_.Hex("hex"), "\r\n");
  EXPECT_EQ(fields_.Whole("number", {5, 5}), 5);
  EXPECT_EQ(fields_.Whole("negative", {-1, 0}), -1);
  EXPECT_EQ(fields_.WholeOr("number", {0, 9}, 7), 5);
  EXPECT_EQ(fields_.WholeOr("absent", {0, 9}, 7), 7);
  EXPECT_TRUE(fields_.YesOrNoOr("yes", false));
  EXPECT_FALSE(fields_.YesOrNoOr("no", true));
  EXPECT_TRUE(fields_.YesOrNoOr("absent", true));
  EXPECT_NO_THROW(fields_.RequireTrue("yes"));
  EXPECT_TRUE(fields_.Has("nothing"));
  EXPECT_FALSE(fields_.Has("absent"));
}

TEST_F(JsonFieldsTest, BadFields_AreRefusedWithTheirPlace) {
  const std::string range = "must be a whole number from 0 to 4";
  const Range limits{0, 4};
  EXPECT_EQ(RefusalOf([&] { (void)fields_.Text("absent"); }), "/at/absent: is missing");
  EXPECT_EQ(RefusalOf([&] { (void)fields_.Text("number"); }), "/at/number: must be a text");
  EXPECT_EQ(RefusalOf([&] { (void)fields_.TextOr("nothing", ""); }), "/at/nothing: must be a text");
  EXPECT_EQ(RefusalOf([&] { (void)fields_.Text("wide"); }),
            "/at/wide: may only hold characters from \\u0000 to \\u00FF (one byte each)");
  EXPECT_EQ(RefusalOf([&] { (void)fields_.Hex("odd"); }),
            "/at/odd: must be pairs of hexadecimal digits, for example \"00 FF\"");
  for (const char* name : {"number", "negative", "huge", "fraction", "text", "yes"})
    EXPECT_EQ(RefusalOf([&] { (void)fields_.Whole(name, limits); }),
              "/at/" + std::string(name) + ": " + range);
  for (const char* name : {"number", "text", "nothing"})
    EXPECT_EQ(RefusalOf([&] { (void)fields_.YesOrNoOr(name, true); }),
              "/at/" + std::string(name) + ": must be true or false");
  EXPECT_EQ(RefusalOf([&] { fields_.RequireTrue("no"); }), "/at/no: must be true, or be left out");
  EXPECT_EQ(RefusalOf([&] { fields_.RequireTrue("number"); }), "/at/number: must be true, or be left out");
}

TEST_F(JsonFieldsTest, HugeNumber_IsNotTakenForANegativeOne) {
  EXPECT_EQ(RefusalOf([&] {
              (void)fields_.Whole("huge", {-1, 4});
            }),
            "/at/huge: must be a whole number from -1 to 4");
}

TEST_F(JsonFieldsTest, AllowOnly_NamesTheFirstUnknownField) {
  const nlohmann::json value = {{"send", "x"}, {"snd", 1}};
  const JsonFields fields(value, "/commands/A?/0");
  EXPECT_EQ(RefusalOf([&] { fields.AllowOnly({"send"}); }), "/commands/A?/0/snd: is not a known field");
  EXPECT_NO_THROW(fields.AllowOnly({"snd", "send", "end"}));
}

TEST_F(JsonFieldsTest, NotAnObject_IsRefused) {
  const nlohmann::json value = nlohmann::json::array();
  EXPECT_EQ(RefusalOf([&] { JsonFields(value, "/default"); }), "/default: must be an object");
  EXPECT_EQ(RefusalOf([&] { JsonFields(value, ""); }), "/: must be an object");
}

}  // namespace
}  // namespace kesp::simulator

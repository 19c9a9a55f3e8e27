#include <any>
#include <cmath>
#include <limits>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include <kelcore/config/ErrorHandling.h>
#include <kelcore/serialization/JSON.h>

namespace {

using namespace kelcore::serialization;

TEST(JSON, AnEmptyObjectAnswersEmptyStringsForMissingMembers) {
    const std::any document = JSONParse("{}");
    ASSERT_TRUE(std::any_cast<JSONObject>(&document));
    EXPECT_TRUE(std::any_cast<const JSONObject&>(document).empty());
    EXPECT_EQ(GetVariantInObject<std::string>(document, "preset_name"), "");
    EXPECT_EQ(GetVariantInObject<std::string>(document, "preset_path"), "");
    EXPECT_EQ(GetVariantInObject<std::string>(document, "file_extension"), "");
}

TEST(JSON, EmptyTextWhitespaceAndNullParseToAnEmptyAny) {
    EXPECT_FALSE(JSONParse("").has_value());
    EXPECT_FALSE(JSONParse(" \t\r\n").has_value());
    EXPECT_FALSE(JSONParse(" null ").has_value());
}

TEST(JSON, EachKindParsesToItsDocumentedType) {
    EXPECT_EQ(std::any_cast<std::string>(JSONParse(R"("text")")), "text");
    EXPECT_EQ(std::any_cast<std::int64_t>(JSONParse("-42")), -42);
    EXPECT_EQ(std::any_cast<double>(JSONParse("2.5")), 2.5);
    EXPECT_EQ(std::any_cast<double>(JSONParse("18446744073709551615")), 18446744073709551615.0);
    EXPECT_EQ(std::any_cast<bool>(JSONParse("true")), true);
    EXPECT_EQ(std::any_cast<JSONArray>(JSONParse("[1,2]")).size(), 2u);
}

TEST(JSON, InvalidJSONThrowsAParseExceptionWithANegativeCode) {
    for (const char* text : {"{", "{\"a\":}", "[1,]", "{'a':1}", "tru", "1 2", "// c\n1"}) {
        try {
            JSONParse(text);
            ADD_FAILURE() << "parsed: " << text;
        } catch (const parse_exception& e) {
            EXPECT_EQ(e.GetCode(), kelcore::config::kResultParseError);
            EXPECT_LT(e.GetCode(), 0);
        }
    }
}

TEST(JSON, InvalidUTF8AndVeryDeepNestingAreRefused) {
    EXPECT_THROW(JSONParse("\"\xC3\x28\""), parse_exception);
    EXPECT_THROW(JSONParse(std::string(1000, '[') + std::string(1000, ']')), parse_exception);
}

TEST(JSON, NumbersBeyondTheRangeOfADoubleAreRefused) {
    EXPECT_THROW(JSONParse("[99000000000000e0365627902]"), parse_exception);
    EXPECT_THROW(JSONParse(R"({"a":{"b":-1e999}})"), parse_exception);
    EXPECT_EQ(std::any_cast<double>(JSONParse("1e-999")), 0.0);
}

TEST(JSON, GetJSONStringRefusesNumbersThatJSONCannotExpress) {
    JSONObject object;
    object.emplace("n", std::numeric_limits<double>::infinity());
    EXPECT_THROW(GetJSONString(object), std::domain_error);
    EXPECT_THROW(GetJSONString(std::any(std::nan(""))), std::domain_error);
}

TEST(JSON, AnArrayAnswersBadAnyCastWhenTakenAsAnObject) {
    const std::any document = JSONParse("[1]");
    EXPECT_THROW(std::any_cast<const JSONObject&>(document), std::bad_any_cast);
    EXPECT_THROW(GetVariantInObject<std::string>(document, "a"), std::bad_any_cast);
}

TEST(JSON, AMemberOfTheWrongTypeThrowsAParseException) {
    const std::any document = JSONParse(R"({"name": 5, "flag": "yes", "count": 2.5})");
    EXPECT_THROW(GetVariantInObject<std::string>(document, "name"), parse_exception);
    EXPECT_THROW(GetVariantInObject<bool>(document, "flag"), parse_exception);
    EXPECT_THROW(GetVariantInObject<std::int64_t>(document, "count"), parse_exception);
    EXPECT_THROW(GetVariantInObject<JSONObject>(document, "name"), parse_exception);
    EXPECT_THROW(GetVariantInObject<JSONArray>(document, "name"), parse_exception);
}

TEST(JSON, MembersReadAsTheirTypeAndMissingOrNullGiveTheDefault) {
    const std::any document =
        JSONParse(R"({"s":"x","b":true,"i":7,"d":1.5,"whole":2.0,"o":{"k":1},"a":[1],"n":null})");
    EXPECT_EQ(GetVariantInObject<std::string>(document, "s"), "x");
    EXPECT_EQ(GetVariantInObject<bool>(document, "b"), true);
    EXPECT_EQ(GetVariantInObject<std::int64_t>(document, "i"), 7);
    EXPECT_EQ(GetVariantInObject<double>(document, "i"), 7.0);
    EXPECT_EQ(GetVariantInObject<double>(document, "d"), 1.5);
    EXPECT_EQ(GetVariantInObject<std::int64_t>(document, "whole"), 2);
    EXPECT_EQ(GetVariantInObject<JSONObject>(document, "o").at("k").as_int64(), 1);
    EXPECT_EQ(GetVariantInObject<JSONArray>(document, "a").size(), 1u);
    EXPECT_EQ(GetVariantInObject<std::string>(document, "n", "fallback"), "fallback");
    EXPECT_EQ(GetVariantInObject<std::int64_t>(document, "missing", 9), 9);
}

TEST(JSON, GetJSONStringKeepsMemberOrder) {
    JSONObject object;
    object.emplace("preset_name", "H.264");
    object.emplace("preset_path", "/presets/h264.epr");
    object.emplace("file_extension", "mp4");
    EXPECT_EQ(
        GetJSONString(object),
        R"({"preset_name":"H.264","preset_path":"/presets/h264.epr","file_extension":"mp4"})");
}

TEST(JSON, UTF8PassesThroughUnescaped) {
    const std::string text = "{\"name\":\"Séquence 日本 🎬\"}";
    const std::any document = JSONParse(text);
    EXPECT_EQ(GetVariantInObject<std::string>(document, "name"), "Séquence 日本 🎬");
    EXPECT_EQ(GetJSONString(document), text);
}

TEST(JSON, ScalarsAndEmptySerialise) {
    EXPECT_EQ(GetJSONString(std::any()), "null");
    EXPECT_EQ(GetJSONString(std::any(std::string("a\"b\n"))), R"("a\"b\n")");
    EXPECT_EQ(GetJSONString(std::any(std::int64_t{-3})), "-3");
    EXPECT_EQ(GetJSONString(std::any(false)), "false");
    EXPECT_EQ(std::any_cast<double>(JSONParse(GetJSONString(std::any(0.1)))), 0.1);
}

TEST(JSON, GetJSONStringRefusesOtherContent) {
    EXPECT_THROW(GetJSONString(std::any(42)), std::bad_any_cast);
}

TEST(JSON, ARoundTripKeepsTheDocument) {
    const std::string text = R"({"z":[1,2.5,"x",true,null,{"y":{}}],"a":-7})";
    EXPECT_EQ(GetJSONString(JSONParse(text)),
              GetJSONString(JSONParse(GetJSONString(JSONParse(text)))));
    EXPECT_EQ(std::any_cast<JSONObject>(JSONParse(GetJSONString(JSONParse(text)))),
              std::any_cast<JSONObject>(JSONParse(text)));
}

}  // namespace

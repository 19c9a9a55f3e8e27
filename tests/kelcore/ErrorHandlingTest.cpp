#include <new>
#include <stdexcept>

#include <gtest/gtest.h>

#include <kelcore/config/ErrorHandling.h>
#include <kelcore/config/Localizer.h>
#include <kelcore/serialization/parse_exception.h>

#include "support/TemporaryDirectory.h"

namespace {

using namespace kelcore::config;

ResultCode ResultOf(auto&& throwIt) {
    try {
        throwIt();
    } catch (...) {
        return ExtractResultFromException(std::current_exception());
    }
    ADD_FAILURE() << "nothing was thrown";
    return kResultSuccess;
}

TEST(KelException, KeepsItsTextAndCode) {
    const kel_exception error("Vantro client name not set", MakeResultCode(0xF865001E));
    EXPECT_STREQ(error.what(), "Vantro client name not set");
    EXPECT_EQ(error.GetText(), "Vantro client name not set");
    EXPECT_EQ(error.GetCode(), MakeResultCode(0xF865001E));
    EXPECT_LT(error.GetCode(), 0);
    EXPECT_TRUE(error.GetAdditionalData().empty());
}

TEST(KelException, AdditionalDataMergesAndALaterValueOverwrites) {
    kel_exception error("text", kResultUnknownFailure);
    error.AddAdditionalData(
        {{kDebugExpression, std::string("a.empty()")}, {kDebugSourceLine, std::int64_t{44}}});
    error.AddAdditionalData(
        {{kDebugSourceLine, std::int64_t{45}}, {kDebugSourceFile, std::string("File.cpp")}});

    const auto& data = error.GetAdditionalData();
    ASSERT_EQ(data.size(), 3u);
    EXPECT_EQ(std::get<std::string>(data.at(kDebugExpression)), "a.empty()");
    EXPECT_EQ(std::get<std::int64_t>(data.at(kDebugSourceLine)), 45);
    EXPECT_EQ(std::get<std::string>(data.at(kDebugSourceFile)), "File.cpp");
}

TEST(ThrowError, ThrowsTheDefaultTextOfALocalizedKeyWithTheCode) {
    Localizer::Get().Reset();
    try {
        ThrowError("$$$/Corvane/test/Broken=Something broke", MakeResultCode(0xF8650001));
        FAIL() << "ThrowError returned";
    } catch (const kel_exception& e) {
        EXPECT_EQ(e.GetText(), "Something broke");
        EXPECT_EQ(e.GetCode(), MakeResultCode(0xF8650001));
    }
}

TEST(ThrowError, UsesTheLocaleTextAndTheContractViolationCodeByDefault) {
    testsupport::TemporaryDirectory dir;
    dir.Write("de_DE.strings", "$$$/Corvane/test/Broken=Etwas ist kaputt\n");
    ASSERT_TRUE(Localizer::Get().LoadLocale(dir.Path(), "de_DE"));
    try {
        ThrowError("$$$/Corvane/test/Broken=Something broke");
        FAIL() << "ThrowError returned";
    } catch (const kel_exception& e) {
        EXPECT_EQ(e.GetText(), "Etwas ist kaputt");
        EXPECT_EQ(e.GetCode(), kResultContractViolation);
    }
    Localizer::Get().Reset();
}

TEST(ThrowError, PlainTextIsUsedAsItStands) {
    try {
        ThrowError("plain = text");
        FAIL() << "ThrowError returned";
    } catch (const kel_exception& e) {
        EXPECT_EQ(e.GetText(), "plain = text");
    }
}

TEST(DoThrowNullPtrException, ThrowsTheNullPointerCodeNamingTheType) {
    try {
        DoThrowNullPtrException(typeid(int));
        FAIL() << "DoThrowNullPtrException returned";
    } catch (const kel_exception& e) {
        EXPECT_EQ(e.GetCode(), kResultNullPointer);
        EXPECT_NE(e.GetText().find(typeid(int).name()), std::string::npos) << e.GetText();
    }
}

TEST(ExtractResultFromException, NullIsSuccess) {
    EXPECT_EQ(ExtractResultFromException(nullptr), kResultSuccess);
}

TEST(ExtractResultFromException, AKelExceptionGivesItsCode) {
    EXPECT_EQ(ResultOf([] { throw kel_exception("x", MakeResultCode(0xBB590001)); }),
              MakeResultCode(0xBB590001));
    EXPECT_EQ(ResultOf([] { throw kelcore::serialization::parse_exception("x"); }),
              kResultParseError);
}

TEST(ExtractResultFromException, AKelExceptionWithANonNegativeCodeStillFails) {
    EXPECT_EQ(ResultOf([] { throw kel_exception("zero", 0); }), kResultUnknownFailure);
    EXPECT_EQ(ResultOf([] { throw kel_exception("positive", 7); }), kResultUnknownFailure);
}

TEST(ExtractResultFromException, StandardExceptionsGiveTheirCodes) {
    EXPECT_EQ(ResultOf([] { throw std::runtime_error("x"); }), kResultStandardException);
    EXPECT_EQ(ResultOf([] { throw std::bad_alloc(); }), kResultOutOfMemory);
}

TEST(ExtractResultFromException, ANonStandardExceptionIsAnUnknownFailure) {
    EXPECT_EQ(ResultOf([] { throw 42; }), kResultUnknownFailure);
    EXPECT_LT(kResultUnknownFailure, 0);
}

}  // namespace

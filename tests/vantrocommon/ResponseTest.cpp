#include <gtest/gtest.h>

#include <vantrocommon/Response.h>
#include <vantrocommon/ResultCodes.h>

namespace {

using vantrocommon::Response;

TEST(Response, DefaultsToSuccessWithoutAMessage) {
    const Response response;
    EXPECT_TRUE(response.IsSuccess());
    EXPECT_EQ(response.GetResult(), kelcore::config::kResultSuccess);
    EXPECT_TRUE(response.GetMessage().empty());
    EXPECT_TRUE(Response::Success().IsSuccess());
}

TEST(Response, ANegativeCodeIsAFailureAndKeepsItsMessage) {
    const Response response(vantrocommon::kResultNetworkFailure, "GET /v2/me: refused");
    EXPECT_FALSE(response.IsSuccess());
    EXPECT_EQ(response.GetResult(), vantrocommon::kResultNetworkFailure);
    EXPECT_EQ(response.GetMessage(), "GET /v2/me: refused");
}

TEST(Response, ANonNegativeCodeIsASuccess) {
    EXPECT_TRUE(Response(1).IsSuccess());
}

TEST(ResultCodes, AreNegativeAndDistinct) {
    const kelcore::config::ResultCode codes[] = {
        vantrocommon::kResultNetworkFailure,   vantrocommon::kResultTimedOut,
        vantrocommon::kResultTlsFailure,       vantrocommon::kResultFileError,
        vantrocommon::kResultBadResponse,      vantrocommon::kResultHttpError,
        vantrocommon::kResultRetriesExhausted, vantrocommon::kResultNotReady,
        vantrocommon::kResultInvalidArgument,  vantrocommon::kResultCancelled};
    for (std::size_t i = 0; i < std::size(codes); ++i) {
        EXPECT_LT(codes[i], 0);
        for (std::size_t j = i + 1; j < std::size(codes); ++j) {
            EXPECT_NE(codes[i], codes[j]);
        }
    }
    EXPECT_EQ(static_cast<std::uint32_t>(vantrocommon::kResultCancelled), 0xBB580011u);
}

}  // namespace

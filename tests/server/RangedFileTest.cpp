// Ranged and conditional file answers, through the static files route of a real server.
#include <gtest/gtest.h>

#include <fstream>
#include <random>

#include "support/VantroServerFixture.h"

namespace {

using testsupport::HttpClient;

class RangedFileTest : public testsupport::VantroServerFixture {
protected:
    void SetUp() override {
        std::mt19937 random(7);
        content.resize(100'000);
        for (auto& byte : content) {
            byte = static_cast<char>(random());
        }
        std::ofstream(server.DataDir() / "static" / "clip.mov", std::ios::binary) << content;
        StartServer();
    }

    HttpClient::Reply Get(const HttpClient::Headers& headers = {}) {
        return client.Get(Url("/static/clip.mov"), headers);
    }

    std::string content;
};

TEST_F(RangedFileTest, AWholeAnswerAdvertisesRangesAndValidators) {
    const auto reply = Get();
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.body, content);
    EXPECT_EQ(reply.Header("accept-ranges"), "bytes");
    EXPECT_EQ(reply.Header("content-type"), "video/quicktime");
    EXPECT_FALSE(reply.Header("etag").empty());
    EXPECT_TRUE(reply.Header("last-modified").ends_with(" GMT")) << reply.Header("last-modified");
}

TEST_F(RangedFileTest, ARangeAnswersItsBytesWith206) {
    const auto reply = Get({{"Range", "bytes=1000-1999"}});
    EXPECT_EQ(reply.status, 206);
    EXPECT_EQ(reply.Header("content-range"), "bytes 1000-1999/100000");
    EXPECT_EQ(reply.Header("content-length"), "1000");
    EXPECT_EQ(reply.Header("accept-ranges"), "bytes");
    EXPECT_EQ(reply.body, content.substr(1000, 1000));
}

TEST_F(RangedFileTest, SuffixAndLastByteRanges) {
    const auto suffix = Get({{"Range", "bytes=-10"}});
    EXPECT_EQ(suffix.status, 206);
    EXPECT_EQ(suffix.body, content.substr(99'990));
    const auto last = Get({{"Range", "bytes=99999-"}});
    EXPECT_EQ(last.status, 206);
    EXPECT_EQ(last.Header("content-range"), "bytes 99999-99999/100000");
    EXPECT_EQ(last.body, content.substr(99'999));
}

TEST_F(RangedFileTest, SeveralRangesGetTheWholeFile) {
    const auto reply = Get({{"Range", "bytes=0-9,20-29"}});
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.body, content);
}

TEST_F(RangedFileTest, AnUnsatisfiableRangeIs416WithTheSize) {
    const auto reply = Get({{"Range", "bytes=100000-"}});
    EXPECT_EQ(reply.status, 416);
    EXPECT_EQ(reply.Header("content-range"), "bytes */100000");
    EXPECT_EQ(reply.Json().at("error").as_string(), "range_not_satisfiable");
}

TEST_F(RangedFileTest, AMatchingIfNoneMatchIs304) {
    const auto etag = Get().Header("etag");
    const auto reply = Get({{"If-None-Match", "\"other\", " + etag}});
    EXPECT_EQ(reply.status, 304);
    EXPECT_TRUE(reply.body.empty());
    EXPECT_EQ(reply.Header("etag"), etag);
    EXPECT_EQ(Get({{"If-None-Match", "\"other\""}}).status, 200);
}

TEST_F(RangedFileTest, IfRangeServesTheRangeOnlyForTheCurrentFile) {
    const auto first = Get();
    const auto matching = Get({{"Range", "bytes=0-99"}, {"If-Range", first.Header("etag")}});
    EXPECT_EQ(matching.status, 206);
    EXPECT_EQ(matching.body, content.substr(0, 100));
    const auto byDate = Get({{"Range", "bytes=0-99"}, {"If-Range", first.Header("last-modified")}});
    EXPECT_EQ(byDate.status, 206);
    const auto stale = Get({{"Range", "bytes=0-99"}, {"If-Range", "\"stale\""}});
    EXPECT_EQ(stale.status, 200);
    EXPECT_EQ(stale.body, content);
}

TEST_F(RangedFileTest, HeadAnswersTheSameHeadersWithoutBody) {
    const auto reply = client.Send("HEAD", Url("/static/clip.mov"), {}, {{"Range", "bytes=10-19"}});
    EXPECT_EQ(reply.status, 206);
    EXPECT_EQ(reply.Header("content-range"), "bytes 10-19/100000");
    EXPECT_EQ(reply.Header("content-length"), "10");
    EXPECT_EQ(reply.Header("accept-ranges"), "bytes");
    EXPECT_TRUE(reply.body.empty());
}

}  // namespace

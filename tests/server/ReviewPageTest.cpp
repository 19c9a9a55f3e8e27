#include <gtest/gtest.h>

#include "ReviewLinkFixture.h"
#include "security/Random.h"

namespace servertest {
namespace {

class ReviewPageTest : public ReviewLinkFixture {
protected:
    /// Makes a link holding `ids`; returns its path `/r/<token>`.
    std::string LinkPath(const std::vector<std::string>& ids) {
        const auto link = NewLink();
        EXPECT_EQ(AddAssets(std::string(link.at("id").as_string()), ids).status, 200);
        const std::string url(link.at("url").as_string());
        return url.substr(url.find("/r/"));
    }

    /// The `src` of the page's video element, or empty.
    static std::string VideoSource(const std::string& html) {
        const auto video = html.find("<video");
        const auto end = html.find('>', video);
        const auto src = html.find(" src=\"", video);
        if (video == std::string::npos || src == std::string::npos || src > end) {
            return {};
        }
        const auto first = src + 6;
        return html.substr(first, html.find('"', first) - first);
    }

    static bool Contains(const std::string& text, const std::string& part) {
        return text.find(part) != std::string::npos;
    }
};

TEST_F(ReviewPageTest, ThePageShowsTheNewestVersionAndKeepsOlderOnesSelectable) {
    const auto stack = AddStack("Trailer <final>.mp4");
    const auto v1 = AddVersion(stack, "Trailer <final>.mp4", Bytes(1000, 1));
    const auto path = LinkPath({stack});

    const auto first = client.Get(Url(path));
    ASSERT_EQ(first.status, 200) << first.body;
    EXPECT_EQ(first.Header("content-type"), "text/html; charset=utf-8");
    EXPECT_EQ(first.Header("cache-control"), "no-cache");
    EXPECT_TRUE(Contains(first.Header("content-security-policy"), "default-src 'none'"));
    EXPECT_TRUE(Contains(first.body, "<meta name=\"viewport\""));
    EXPECT_TRUE(Contains(first.body, "Trailer &lt;final&gt;.mp4"));
    EXPECT_FALSE(Contains(first.body, "<final>"));
    EXPECT_TRUE(Contains(first.body, "controls preload=\"metadata\""));
    EXPECT_EQ(VideoSource(first.body), path + "/media/" + v1);

    // Another version arrives in the same stack: the same URL now plays it.
    const auto v2 = AddVersion(stack, "Trailer <final>.mp4", Bytes(1200, 2));
    const auto second = client.Get(Url(path));
    ASSERT_EQ(second.status, 200);
    EXPECT_EQ(VideoSource(second.body), path + "/media/" + v2);
    const auto versions = second.body.find("id=\"versions\"");
    ASSERT_NE(versions, std::string::npos) << second.body;
    // Newest first, the older one a link of its own.
    const auto two = second.body.find(">Version 2<", versions);
    const auto one = second.body.find(">Version 1<", versions);
    ASSERT_NE(two, std::string::npos);
    ASSERT_NE(one, std::string::npos);
    EXPECT_LT(two, one);
    const std::string olderHref = "?item=" + stack + "&amp;version=1";
    EXPECT_TRUE(Contains(second.body, olderHref)) << second.body;

    const auto older = client.Get(Url(path + "?item=" + stack + "&version=1"));
    ASSERT_EQ(older.status, 200);
    EXPECT_EQ(VideoSource(older.body), path + "/media/" + v1);
    EXPECT_EQ(client.Get(Url(path + "?item=" + stack + "&version=3")).status, 404);
    EXPECT_EQ(client.Get(Url(path + "?item=" + stack + "&version=x")).status, 404);
}

TEST_F(ReviewPageTest, SeveralItemsAreListedAndEachCanBeChosen) {
    const auto a = AddFile(alphaRoot, "alpha.mp4", Bytes(10, 3));
    const auto b = AddFile(alphaRoot, "beta.webm", Bytes(10, 4));
    const auto path = LinkPath({a, b});
    const auto page = client.Get(Url(path));
    ASSERT_EQ(page.status, 200);
    EXPECT_TRUE(Contains(page.body, "id=\"items\""));
    EXPECT_TRUE(Contains(page.body, "beta.webm"));
    EXPECT_EQ(VideoSource(page.body), path + "/media/" + a);
    EXPECT_EQ(VideoSource(client.Get(Url(path + "?item=" + b)).body), path + "/media/" + b);
    EXPECT_EQ(client.Get(Url(path + "?item=" + vantroserver::security::NewId())).status, 404);

    // One item: no list of items.
    EXPECT_FALSE(Contains(client.Get(Url(LinkPath({a}))).body, "id=\"items\""));
}

TEST_F(ReviewPageTest, AnUnknownTokenIsAnHtml404) {
    const auto reply = client.Get(Url("/r/" + std::string(43, 'A')));
    EXPECT_EQ(reply.status, 404);
    EXPECT_EQ(reply.Header("content-type"), "text/html; charset=utf-8");
    EXPECT_EQ(client.Get(Url("/r/short")).status, 404);
}

TEST_F(ReviewPageTest, MediaAnswersRangesWithTheTypeOfTheName) {
    const auto bytes = Bytes(5000, 5);
    const auto file = AddFile(alphaRoot, "clip.mp4", bytes);
    const auto path = LinkPath({file}) + "/media/" + file;

    const auto whole = client.Get(Url(path));
    ASSERT_EQ(whole.status, 200) << whole.body;
    EXPECT_EQ(whole.body, bytes);
    EXPECT_EQ(whole.Header("content-type"), "video/mp4");
    EXPECT_EQ(whole.Header("accept-ranges"), "bytes");
    EXPECT_TRUE(Contains(whole.Header("cache-control"), "immutable"));
    const std::string etag = whole.Header("etag");
    EXPECT_FALSE(etag.empty());

    const auto middle = client.Get(Url(path), {{"Range", "bytes=100-199"}});
    ASSERT_EQ(middle.status, 206);
    EXPECT_EQ(middle.Header("content-range"), "bytes 100-199/5000");
    EXPECT_EQ(middle.body, bytes.substr(100, 100));
    const auto tail = client.Get(Url(path), {{"Range", "bytes=-10"}});
    ASSERT_EQ(tail.status, 206);
    EXPECT_EQ(tail.body, bytes.substr(4990));
    const auto past = client.Get(Url(path), {{"Range", "bytes=5000-"}});
    EXPECT_EQ(past.status, 416);
    EXPECT_EQ(past.Header("content-range"), "bytes */5000");
    EXPECT_EQ(client.Get(Url(path), {{"If-None-Match", etag}}).status, 304);
    const auto head = client.Send("HEAD", Url(path), {}, {});
    EXPECT_EQ(head.status, 200);
    EXPECT_EQ(head.Header("content-length"), "5000");
}

TEST_F(ReviewPageTest, MediaOfEveryVersionOfAStackedItemIsServed) {
    const auto stack = AddStack("shot.mov");
    const auto v1 = AddVersion(stack, "shot.mov", Bytes(300, 6));
    const auto path = LinkPath({stack});
    const auto v2 = AddVersion(stack, "shot.mov", Bytes(400, 7));
    const auto older = client.Get(Url(path + "/media/" + v1));
    ASSERT_EQ(older.status, 200);
    EXPECT_EQ(older.body, Bytes(300, 6));
    EXPECT_EQ(older.Header("content-type"), "video/quicktime");
    EXPECT_EQ(client.Get(Url(path + "/media/" + v2)).body, Bytes(400, 7));
}

TEST_F(ReviewPageTest, MediaOutsideTheLinkIsRefused) {
    const auto inLink = AddFile(alphaRoot, "in.mp4", Bytes(10, 8));
    const auto beside = AddFile(alphaRoot, "beside.mp4", Bytes(10, 9));
    const auto stack = EmptyStack("stack.mp4");
    const auto path = LinkPath({inLink});
    EXPECT_EQ(client.Get(Url(path + "/media/" + beside)).status, 404);
    EXPECT_EQ(client.Get(Url(path + "/media/" + stack)).status, 404);
    EXPECT_EQ(client.Get(Url(path + "/media/not-an-id")).status, 404);
    EXPECT_EQ(client.Get(Url(path + "/media/..%2Fvantro.db")).status, 404);
    // The right file under a token that is not a link's.
    EXPECT_EQ(client.Get(Url("/r/" + std::string(43, 'A') + "/media/" + inLink)).status, 404);
}

}  // namespace
}  // namespace servertest

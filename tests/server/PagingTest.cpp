#include <gtest/gtest.h>

#include "http/FormFields.h"
#include "http/Paging.h"

namespace vantroserver::http {
namespace {

std::optional<Paging> FromTarget(const std::string& query, std::string& error) {
    static const RequestContext::Message request;
    RequestContext context(request, {}, FormFields::Parse(query).value());
    return Paging::FromQuery(context, 100, error);
}

TEST(Paging, DefaultsToTheFirstPageOfTheDefaultSize) {
    std::string error;
    const auto paging = FromTarget("", error);
    ASSERT_TRUE(paging);
    EXPECT_EQ(paging->Page(), 1u);
    EXPECT_EQ(paging->PageSize(), 100u);
    EXPECT_EQ(paging->Offset(), 0u);
}

TEST(Paging, ReadsPageAndSize) {
    std::string error;
    const auto paging = FromTarget("page=3&page_size=20", error);
    ASSERT_TRUE(paging);
    EXPECT_EQ(paging->Offset(), 40u);
    EXPECT_EQ(paging->Limit(), 20u);
    EXPECT_EQ(paging->TotalPages(41), 3u);
    EXPECT_EQ(paging->TotalPages(40), 2u);
    EXPECT_EQ(paging->TotalPages(0), 1u);
}

TEST(Paging, RefusesValuesThatAreNotPositiveNumbersInRange) {
    for (const char* query :
         {"page=0", "page=-1", "page=abc", "page=", "page=1.5", "page=+2", "page_size=0",
          "page_size=1001", "page_size=x", "page=99999999999999999999999"}) {
        std::string error;
        EXPECT_FALSE(FromTarget(query, error)) << query;
        EXPECT_FALSE(error.empty()) << query;
    }
}

TEST(Paging, SetsTheFourHeaders) {
    Paging paging(2, 10);
    Response response;
    paging.AddHeaders(response, 25);
    EXPECT_EQ(response.Head()["PAGE-NUMBER"], "2");
    EXPECT_EQ(response.Head()["TOTAL-PAGES"], "3");
    EXPECT_EQ(response.Head()["PER-PAGE"], "10");
    EXPECT_EQ(response.Head()["TOTAL"], "25");
}

TEST(FormFields, ReadsOnlyTheViewItIsGiven) {
    // A query cut out of a request line, with more text right after it.
    const std::string line = "page=2&page_size=1 HTTP/1.1";
    const auto fields = FormFields::Parse(std::string_view(line).substr(0, 18));
    ASSERT_TRUE(fields);
    EXPECT_EQ(FormFields::Find(*fields, "page_size"), "1");
}

TEST(FormFields, DecodesPlusAndPercentEscapes) {
    const auto fields = FormFields::Parse("a=b+c&d=%2F%20&e");
    ASSERT_TRUE(fields);
    EXPECT_EQ(FormFields::Find(*fields, "a"), "b c");
    EXPECT_EQ(FormFields::Find(*fields, "d"), "/ ");
    EXPECT_EQ(FormFields::Find(*fields, "e"), "");
    EXPECT_FALSE(FormFields::Find(*fields, "f"));
    EXPECT_FALSE(FormFields::Parse("a=%zz"));
}

}  // namespace
}  // namespace vantroserver::http

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <kelappsupport/analytics/UsageEventsCapturedForTesting.h>
#include <vantrokelui/utility/SDMLogging.h>

namespace vantrokelui::utility::SDMLogging {
namespace {

using kelappsupport::analytics::SDMEvent;
using kelappsupport::analytics::SDMErrorHandlingPolicy;

// What a test expects of one event: its two varying names and its one optional field.
struct Expected {
    std::string type;
    std::string subtype;
    std::string uiPath;  // empty: the event has no field
};

void ExpectEvent(const SDMEvent& event, const Expected& expected) {
    EXPECT_EQ(event.GetCategory(), "EXPORT");
    EXPECT_EQ(event.GetSubcategory(), "Publish");
    EXPECT_EQ(event.GetType(), expected.type);
    EXPECT_EQ(event.GetSubtype(), expected.subtype);
    EXPECT_EQ(event.GetPolicy(), SDMErrorHandlingPolicy::kLoggerDecides);
    if (expected.uiPath.empty()) {
        EXPECT_TRUE(event.GetFields().empty());
    } else {
        ASSERT_EQ(event.GetFields().size(), 1u);
        EXPECT_EQ(event.GetFields()[0],
                  (SDMEvent::Field{"kel", "ui_path_to_access", expected.uiPath}));
    }
}

constexpr const char* kDialog = "click:vantro-share-for-review-dialog";

TEST(SDMLogging, EachFunctionSendsItsOneEvent) {
    kelappsupport::analytics::UsageEventsCapturedForTesting events;
    LogUnifiedShareButtonClicked();
    LogLocationPickerOpened(true);
    LogLocationPickerOpened(false);
    LogLocationSet();
    LogShareStart(ShareStartKind::FirstShare);
    LogShareStart(ShareStartKind::UpdateContent);
    LogShareStart(ShareStartKind::NewLink);
    LogCopyLink();
    LogUploadResult(UploadResultKind::Success);
    LogUploadResult(UploadResultKind::Failure);
    LogUploadResult(UploadResultKind::Cancel);

    const std::vector<Expected> expected = {
        {"open", "unified-header-share-button", ""},
        {"open", "vantro-location-picker", "click:first-time-share-view"},
        {"open", "vantro-location-picker", "click:update-share-view"},
        {"set", "vantro-location", ""},
        {"start", "share-first-time", kDialog},
        {"start", "update-content", kDialog},
        {"start", "create-new-media-link", kDialog},
        {"apply", "copy-media-link", kDialog},
        {"success", "upload-media", kDialog},
        {"failure", "upload-media", kDialog},
        {"cancel", "upload-media", kDialog},
    };
    const std::vector<SDMEvent> sent = events.Events();
    ASSERT_EQ(sent.size(), expected.size());
    for (std::size_t i = 0; i < sent.size(); ++i) {
        SCOPED_TRACE(expected[i].subtype);
        ExpectEvent(sent[i], expected[i]);
    }
}

TEST(SDMLogging, AShareStartKindAboveTwoSendsNothing) {
    kelappsupport::analytics::UsageEventsCapturedForTesting events;
    LogShareStart(static_cast<ShareStartKind>(3));
    LogShareStart(static_cast<ShareStartKind>(-1));
    EXPECT_TRUE(events.Events().empty());
}

TEST(SDMLogging, AnUploadResultKindOutsideTheThreeSendsNothing) {
    kelappsupport::analytics::UsageEventsCapturedForTesting events;
    LogUploadResult(static_cast<UploadResultKind>(3));
    EXPECT_TRUE(events.Events().empty());
}

}  // namespace
}  // namespace vantrokelui::utility::SDMLogging

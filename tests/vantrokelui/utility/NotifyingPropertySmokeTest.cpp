#include <memory>
#include <vector>

#include <gtest/gtest.h>

#include <support/MainThreadFixture.h>
#include <vantrokelui/utility/NamedNotifyingProperty.h>

namespace vantrokelui {
namespace {
VANTROKELUI_NAMED_NOTIFYING_PROPERTY(Smoke, double, double);
}

class NotifyingPropertySmoke : public testsupport::MainThreadFixture {};

TEST_F(NotifyingPropertySmoke, DeliversTheCurrentValueThenEachSet) {
    auto property = std::make_shared<SmokeNotifyingProperty>();
    std::vector<double> seen;
    auto binding = property->AddSmokeBinding([&](double value) { seen.push_back(value); });
    property->SetSmoke(1.0);
    property->SetSmoke(2.0);
    EXPECT_TRUE(seen.empty());
    Pump();
    EXPECT_EQ(seen, (std::vector<double>{0.0, 1.0, 2.0}));
}

}  // namespace vantrokelui

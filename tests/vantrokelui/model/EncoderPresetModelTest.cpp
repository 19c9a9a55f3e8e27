#include <vantrokelui/model/EncoderPresetModel.h>

#include <vector>

#include <gtest/gtest.h>

#include <support/MainThreadFixture.h>
#include <vantrokelui/utility/DataBindingTarget.h>

#include "vantrokelui/support/FakeSequenceHost.h"

namespace vantrokelui {
namespace {

using model::testing::U16;

class EncoderPresetModelTest : public testsupport::MainThreadFixture {};

TEST_F(EncoderPresetModelTest, StartsWithThreeEmptyValuesAndIsSharedFromTheStart) {
    const std::shared_ptr<EncoderPresetModel> preset = EncoderPresetModel::Create();
    EXPECT_TRUE(preset->GetPresetName().empty());
    EXPECT_TRUE(preset->GetPresetPath().empty());
    EXPECT_TRUE(preset->GetExtension().empty());
    EXPECT_EQ(preset->SharedAs<EncoderPresetModel>(), preset);
    EXPECT_EQ(preset->WeakAs<PresetPathNotifyingProperty>().lock().get(),
              static_cast<PresetPathNotifyingProperty*>(preset.get()));
}

TEST_F(EncoderPresetModelTest, ThreeValuesAreSeparateAndNotifySeparately) {
    const std::shared_ptr<EncoderPresetModel> preset = EncoderPresetModel::Create();
    utility::DataBindingTarget target;
    std::vector<std::string> seen;
    auto record = [&](const char* name) {
        return [&seen, name](const kelcore::string::string& value) {
            seen.push_back(std::string(name) + "=" + kelcore::string::UTF16toStdString(value));
        };
    };
    target.bindings.push_back(preset->AddPresetNameBinding(record("name")));
    target.bindings.push_back(preset->AddPresetPathBinding(record("path")));
    target.bindings.push_back(preset->AddExtensionBinding(record("ext")));
    preset->SetPresetName(U16("H.264"));
    preset->SetPresetPath(U16("/p/h264.epr"));
    preset->SetExtension(U16("mp4"));
    Pump();
    EXPECT_EQ(seen, (std::vector<std::string>{"name=", "path=", "ext=", "name=H.264",
                                              "path=/p/h264.epr", "ext=mp4"}));
    EXPECT_EQ(preset->GetPresetName(), U16("H.264"));
    EXPECT_EQ(preset->GetPresetPath(), U16("/p/h264.epr"));
    EXPECT_EQ(preset->GetExtension(), U16("mp4"));
}

}  // namespace
}  // namespace vantrokelui

// Every named property: its stored and argument types, its value after construction, and that
// its getter and setter are virtual (an override runs through a pointer to the named class).
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>
#include <boost/intrusive_ptr.hpp>

#include <kelcore/string/String.h>
#include <kelcore/utility/EnableSharedAs.h>
#include <kelcore/utility/Guid.h>
#include <kelui/limner/ColorRGBA.h>
#include <kelui/limner/ImageInterface.h>
#include <kelui/ui/ConstMessage.h>
#include <support/MainThreadFixture.h>
#include <vantrokelui/model/EncodingStatus.h>
#include <vantrokelui/nodes/FetchChildrenState.h>
#include <vantrokelui/utility/AccountsNotifyingProperty.h>
#include <vantrokelui/utility/ActiveAssetDirtyNotifyingProperty.h>
#include <vantrokelui/utility/ActiveAssetNameNotifyingProperty.h>
#include <vantrokelui/utility/AssetTypeIconNotifyingProperty.h>
#include <vantrokelui/utility/ColorNotifyingProperty.h>
#include <vantrokelui/utility/CreateNewLinkModeNotifyingProperty.h>
#include <vantrokelui/utility/CurrentViewIDNotifyingProperty.h>
#include <vantrokelui/utility/EncoderPresetsNotifyingProperty.h>
#include <vantrokelui/utility/EncodingProgressNotifyingProperty.h>
#include <vantrokelui/utility/EncodingStatusNotifyingProperty.h>
#include <vantrokelui/utility/ExtensionNotifyingProperty.h>
#include <vantrokelui/utility/FetchChildrenStateNotifyingProperty.h>
#include <vantrokelui/utility/FilesNotifyingProperty.h>
#include <vantrokelui/utility/FoldersNotifyingProperty.h>
#include <vantrokelui/utility/IDNotifyingProperty.h>
#include <vantrokelui/utility/IconNotifyingProperty.h>
#include <vantrokelui/utility/InvalidateParentForChildNotifyingProperty.h>
#include <vantrokelui/utility/IsLoggedInNotifyingProperty.h>
#include <vantrokelui/utility/IsNetworkConnectedNotifyingProperty.h>
#include <vantrokelui/utility/NameNotifyingProperty.h>
#include <vantrokelui/utility/NotifyingProperty.h>
#include <vantrokelui/utility/PresetNameNotifyingProperty.h>
#include <vantrokelui/utility/PresetPathNotifyingProperty.h>
#include <vantrokelui/utility/ProcessingRemainingTimeNotifyingProperty.h>
#include <vantrokelui/utility/ProjectsNotifyingProperty.h>
#include <vantrokelui/utility/ProposedAccountNotifyingProperty.h>
#include <vantrokelui/utility/ProposedSelectionNotifyingProperty.h>
#include <vantrokelui/utility/ReviewLinkURLNotifyingProperty.h>
#include <vantrokelui/utility/RootFolderNotifyingProperty.h>
#include <vantrokelui/utility/SelectedEncoderPresetNotifyingProperty.h>
#include <vantrokelui/utility/SelectionNotifyingProperty.h>
#include <vantrokelui/utility/SelectionPathNotifyingProperty.h>
#include <vantrokelui/utility/SettingsURLNotifyingProperty.h>
#include <vantrokelui/utility/UploadingSpeedNotifyingProperty.h>
#include <vantrokelui/utility/UserNotifyingProperty.h>
#include <vantrokelui/utility/VersionStacksNotifyingProperty.h>
#include <vantrokelui/utility/WorkspacesNotifyingProperty.h>
#include <vantrokelui/viewmodel/AltSigninVisibleNotifyingProperty.h>
#include <vantrokelui/viewmodel/PolicyVisibleNotifyingProperty.h>
#include <vantrokelui/viewmodel/ShareForReviewViewID.h>

namespace vantrokelui {
namespace {

using kelcore::string::string;
using kelcore::utility::Guid;
using utility::SharedPtrVector;
using ImagePointer = boost::intrusive_ptr<limner::ImageInterface>;
using MessageHandler = std::shared_ptr<std::function<void(kelui::ui::ConstMessage*)>>;

class TestImage final : public limner::ImageInterface {
public:
    float GetWidth() const override { return 16.0f; }
    float GetHeight() const override { return 16.0f; }
};

class PropertyCatalogue : public testsupport::MainThreadFixture {};

int sCatalogueEntries = 0;

}  // namespace

// `sample` is a value other than the default where one can be made here; the node and model
// classes are only declared at this layer, so their pointers and lists use the default.
#define CATALOGUE_ENTRY(Class, Name, T, Arg, expectedDefault, sample)                    \
    static_assert(std::is_same_v<Class::ValueType, T>, #Class " stores " #T);            \
    static_assert(std::is_same_v<Class::ArgumentType, Arg>, #Class " passes " #Arg);     \
    static_assert(std::is_base_of_v<utility::NotifyingProperty<T, Arg>, Class>);         \
    static_assert(std::is_base_of_v<kelcore::utility::EnableSharedAs, Class>);           \
    namespace {                                                                          \
    /* `override` fails to compile unless the named class declares them virtual. */      \
    class Overriding##Name final : public Class {                                        \
    public:                                                                              \
        T Get##Name() const override {                                                   \
            ++gets;                                                                      \
            return Class::Get##Name();                                                   \
        }                                                                                \
        void Set##Name(Arg newValue) override {                                          \
            ++sets;                                                                      \
            Class::Set##Name(std::forward<Arg>(newValue));                               \
        }                                                                                \
        mutable int gets = 0;                                                            \
        int sets = 0;                                                                    \
    };                                                                                   \
    [[maybe_unused]] const int sRegistered##Name = ++sCatalogueEntries;                  \
    }                                                                                    \
    TEST_F(PropertyCatalogue, Name) {                                                    \
        auto plain = std::make_shared<Class>();                                          \
        EXPECT_TRUE(plain->Get##Name() == (expectedDefault)) << "default of " #Class;    \
        EXPECT_TRUE(plain->GetValue() == (expectedDefault));                             \
                                                                                         \
        auto overriding = std::make_shared<Overriding##Name>();                          \
        const std::shared_ptr<Class> named = overriding;                                 \
        EXPECT_TRUE(named->Get##Name() == (expectedDefault));                            \
        EXPECT_EQ(overriding->gets, 1) << "Get" #Name " is not reached through " #Class; \
        const T value = (sample);                                                        \
        named->Set##Name(value);                                                         \
        EXPECT_EQ(overriding->sets, 1) << "Set" #Name " is not reached through " #Class; \
        EXPECT_TRUE(overriding->GetValue() == value);                                    \
                                                                                         \
        int deliveries = 0;                                                              \
        auto binding = named->Add##Name##Binding([&](Arg delivered) {                    \
            ++deliveries;                                                                \
            EXPECT_TRUE(delivered == value);                                             \
        });                                                                              \
        Pump();                                                                          \
        EXPECT_EQ(deliveries, 1);                                                        \
    }

CATALOGUE_ENTRY(IDNotifyingProperty, ID, Guid, const Guid&, Guid(), Guid(1, 2))
CATALOGUE_ENTRY(NameNotifyingProperty, Name, string, const string&, string(), string(u"Clip"))
CATALOGUE_ENTRY(FetchChildrenStateNotifyingProperty, FetchChildrenState, FetchChildrenState,
                const FetchChildrenState&, FetchChildrenState::NotFetched,
                FetchChildrenState::Fetched)
CATALOGUE_ENTRY(IconNotifyingProperty, Icon, ImagePointer, const ImagePointer&, ImagePointer(),
                ImagePointer(new TestImage))
CATALOGUE_ENTRY(ColorNotifyingProperty, Color, limner::ColorRGBA, const limner::ColorRGBA&,
                (limner::ColorRGBA{0.0f, 0.0f, 0.0f, 0.0f}),
                (limner::ColorRGBA{1.0f, 0.5f, 0.25f, 1.0f}))
CATALOGUE_ENTRY(AccountsNotifyingProperty, Accounts, SharedPtrVector<VantroAccount>,
                const SharedPtrVector<VantroAccount>&, SharedPtrVector<VantroAccount>(),
                SharedPtrVector<VantroAccount>())
CATALOGUE_ENTRY(WorkspacesNotifyingProperty, Workspaces, SharedPtrVector<VantroWorkspace>,
                const SharedPtrVector<VantroWorkspace>&, SharedPtrVector<VantroWorkspace>(),
                SharedPtrVector<VantroWorkspace>())
CATALOGUE_ENTRY(ProjectsNotifyingProperty, Projects, SharedPtrVector<VantroProject>,
                const SharedPtrVector<VantroProject>&, SharedPtrVector<VantroProject>(),
                SharedPtrVector<VantroProject>())
CATALOGUE_ENTRY(RootFolderNotifyingProperty, RootFolder, std::shared_ptr<VantroFolder>,
                const std::shared_ptr<VantroFolder>&, nullptr, nullptr)
CATALOGUE_ENTRY(FoldersNotifyingProperty, Folders, SharedPtrVector<VantroFolder>,
                const SharedPtrVector<VantroFolder>&, SharedPtrVector<VantroFolder>(),
                SharedPtrVector<VantroFolder>())
CATALOGUE_ENTRY(FilesNotifyingProperty, Files, SharedPtrVector<VantroFile>,
                const SharedPtrVector<VantroFile>&, SharedPtrVector<VantroFile>(),
                SharedPtrVector<VantroFile>())
CATALOGUE_ENTRY(VersionStacksNotifyingProperty, VersionStacks, SharedPtrVector<VantroVersionStack>,
                const SharedPtrVector<VantroVersionStack>&, SharedPtrVector<VantroVersionStack>(),
                SharedPtrVector<VantroVersionStack>())
CATALOGUE_ENTRY(ProposedAccountNotifyingProperty, ProposedAccount, std::shared_ptr<VantroAccount>,
                const std::shared_ptr<VantroAccount>&, nullptr, nullptr)
CATALOGUE_ENTRY(ProposedSelectionNotifyingProperty, ProposedSelection,
                std::shared_ptr<VantroFolder>, const std::shared_ptr<VantroFolder>&, nullptr,
                nullptr)
CATALOGUE_ENTRY(SelectionNotifyingProperty, Selection, std::shared_ptr<VantroFolder>,
                const std::shared_ptr<VantroFolder>&, nullptr, nullptr)
CATALOGUE_ENTRY(SelectionPathNotifyingProperty, SelectionPath, string, const string&, string(),
                string(u"Team/Project/Folder"))
CATALOGUE_ENTRY(SettingsURLNotifyingProperty, SettingsURL, string, const string&, string(),
                string(u"https://example.invalid/settings"))
CATALOGUE_ENTRY(UserNotifyingProperty, User, std::shared_ptr<VantroUser>,
                const std::shared_ptr<VantroUser>&, nullptr, nullptr)
CATALOGUE_ENTRY(CurrentViewIDNotifyingProperty, CurrentViewID, ShareForReviewViewID,
                ShareForReviewViewID, ShareForReviewViewID::None,
                ShareForReviewViewID::CopyLinkSection)
CATALOGUE_ENTRY(InvalidateParentForChildNotifyingProperty, InvalidateParentForChild, bool, bool,
                false, true)
CATALOGUE_ENTRY(ActiveAssetNameNotifyingProperty, ActiveAssetName, string, const string&, string(),
                string(u"Sequence 01"))
CATALOGUE_ENTRY(ActiveAssetDirtyNotifyingProperty, ActiveAssetDirty, bool, bool, false, true)
CATALOGUE_ENTRY(ReviewLinkURLNotifyingProperty, ReviewLinkURL, string, const string&, string(),
                string(u"https://example.invalid/r/1"))
CATALOGUE_ENTRY(IsNetworkConnectedNotifyingProperty, IsNetworkConnected, bool, bool, false, true)
CATALOGUE_ENTRY(EncoderPresetsNotifyingProperty, EncoderPresets,
                SharedPtrVector<EncoderPresetModel>, const SharedPtrVector<EncoderPresetModel>&,
                SharedPtrVector<EncoderPresetModel>(), SharedPtrVector<EncoderPresetModel>())
CATALOGUE_ENTRY(SelectedEncoderPresetNotifyingProperty, SelectedEncoderPreset,
                std::shared_ptr<EncoderPresetModel>, const std::shared_ptr<EncoderPresetModel>&,
                nullptr, nullptr)
CATALOGUE_ENTRY(IsLoggedInNotifyingProperty, IsLoggedIn, bool, bool, false, true)
CATALOGUE_ENTRY(EncodingStatusNotifyingProperty, EncodingStatus, EncodingStatus, EncodingStatus,
                EncodingStatus::None, EncodingStatus::Uploading)
CATALOGUE_ENTRY(EncodingProgressNotifyingProperty, EncodingProgress, double, double, 0.0, 0.5)
CATALOGUE_ENTRY(ProcessingRemainingTimeNotifyingProperty, ProcessingRemainingTime, double, double,
                0.0, 12.5)
CATALOGUE_ENTRY(UploadingSpeedNotifyingProperty, UploadingSpeed, double, double, 0.0, 1.5e6)
CATALOGUE_ENTRY(AssetTypeIconNotifyingProperty, AssetTypeIcon, MessageHandler,
                const MessageHandler&, nullptr,
                std::make_shared<std::function<void(kelui::ui::ConstMessage*)>>())
CATALOGUE_ENTRY(CreateNewLinkModeNotifyingProperty, CreateNewLinkMode, bool, bool, false, true)
CATALOGUE_ENTRY(PresetNameNotifyingProperty, PresetName, string, const string&, string(),
                string(u"Match Source"))
CATALOGUE_ENTRY(PresetPathNotifyingProperty, PresetPath, string, const string&, string(),
                string(u"/presets/match.preset"))
CATALOGUE_ENTRY(ExtensionNotifyingProperty, Extension, string, const string&, string(),
                string(u"mp4"))
CATALOGUE_ENTRY(viewmodel::PolicyVisibleNotifyingProperty, PolicyVisible, bool, bool, false, true)
CATALOGUE_ENTRY(viewmodel::AltSigninVisibleNotifyingProperty, AltSigninVisible, bool, bool, false,
                true)

#undef CATALOGUE_ENTRY

TEST_F(PropertyCatalogue, HasThirtyEightClasses) {
    EXPECT_EQ(sCatalogueEntries, 38);
}

}  // namespace vantrokelui

#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

#include <atomic>
#include <cstdint>
#include <deque>
#include <limits>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>

#include <kelcore/config/ErrorHandling.h>
#include <kelcore/debug/DebugDatabase.h>
#include <kelcore/debug/Trace.h>
#include <kelcore/threads/MainThread.h>
#include <vantrocommon/Guid.h>
#include <vantrokelui/model/EncoderPresetAttributes.h>
#include <vantrokelui/model/EncoderPresetModel.h>
#include <vantrokelui/model/NetworkConnectionMonitor.h>
#include <vantrokelui/model/ProcessingGuids.h>
#include <vantrokelui/model/SequenceSettings.h>
#include <vantrokelui/model/ShareJob.h>
#include <vantrokelui/model/ShareModel.h>
#include <vantrokelui/model/client/UserFunctions.h>
#include <vantrokelui/model/connector/SignIn.h>
#include <vantrokelui/model/connector/UserFunctions.h>
#include <vantrokelui/nodes/NodeFunctions.h>
#include <vantrokelui/nodes/SelectionFunctions.h>
#include <vantrokelui/nodes/VantroAccount.h>
#include <vantrokelui/nodes/VantroFolder.h>
#include <vantrokelui/nodes/VantroNode.h>
#include <vantrokelui/nodes/VantroProject.h>
#include <vantrokelui/nodes/VantroUser.h>
#include <vantrokelui/utility/SDMLogging.h>
#include <vantrokelui/utility/WeakBindMemberFunction.h>

namespace vantrokelui::viewmodel {

namespace {

constexpr std::string_view kTraceCategory = "VantroNative";
constexpr int kTraceLevel = 5;

/// Which back end serves; read anew at every call.
bool UseVantroCppSdk() {
    return kelcore::debug::DebugDatabase::Instance().GetBoolEntry("VantroNative.UseVantroCppSdk",
                                                                  true);
}

/// Whether the view model's trace lines are wanted; the answer is kept until the trace
/// settings change.
bool TraceWanted() {
    static std::atomic<std::uint32_t> checkedAt{std::numeric_limits<std::uint32_t>::max()};
    static std::atomic<bool> wanted{false};
    const std::uint32_t changeCount = kelcore::debug::TraceChangeCount();
    if (checkedAt.load() != changeCount) {
        wanted.store(kelcore::debug::TraceEnabled(kTraceCategory, kTraceLevel));
        checkedAt.store(changeCount);
    }
    return wanted.load();
}

/// One line per node, children indented by four blanks below their parent.
void DumpTree(std::ostream& out, const std::shared_ptr<VantroNode>& node) {
    static std::string indent;
    out << indent << kelcore::string::UTF16toStdString(node->GetTypeTag()) << " :  \""
        << kelcore::string::UTF16toStdString(node->GetName()) << "\"  " << node->GetID()
        << std::endl;
    const std::string saved = indent;
    indent = "    " + indent;
    for (const std::shared_ptr<VantroNode>& child : node->GetChildren()) {
        DumpTree(out, child);
    }
    indent = saved;
}

}  // namespace

std::shared_ptr<ShareForReviewViewModel> ShareForReviewViewModel::Create() {
    std::shared_ptr<ShareForReviewViewModel> viewModel(new ShareForReviewViewModel());
    viewModel->SetNetworkConnectionMonitor(
        [] { return std::make_shared<model::NetworkConnectionMonitor>(); });
    const std::weak_ptr<ShareForReviewViewModel> weak = viewModel;
    model::SetNotifyingProperties(
        utility::WeakBindMemberFunction(
            weak, &ShareForReviewViewModel::WriteFolderSettingsToCurrentSequence),
        std::weak_ptr<ActiveAssetNameNotifyingProperty>(viewModel),
        std::weak_ptr<ActiveAssetDirtyNotifyingProperty>(viewModel),
        std::weak_ptr<ReviewLinkURLNotifyingProperty>(viewModel),
        std::weak_ptr<CurrentViewIDNotifyingProperty>(viewModel),
        std::weak_ptr<EncodingStatusNotifyingProperty>(viewModel),
        std::weak_ptr<EncodingProgressNotifyingProperty>(viewModel),
        std::weak_ptr<ProcessingRemainingTimeNotifyingProperty>(viewModel),
        std::weak_ptr<UploadingSpeedNotifyingProperty>(viewModel),
        std::weak_ptr<EncoderPresetsNotifyingProperty>(viewModel),
        std::weak_ptr<SelectedEncoderPresetNotifyingProperty>(viewModel),
        std::weak_ptr<CreateNewLinkModeNotifyingProperty>(viewModel));
    return viewModel;
}

ShareForReviewViewModel::ShareForReviewViewModel() {
    // In the constructor the call is not virtual beyond this class, which is the rule wanted.
    ShareForReviewViewModel::SetUser(std::make_shared<VantroUser>());
}

ShareForReviewViewModel::ShareForReviewViewModel(const ShareForReviewViewModel& other)
    : kelcore::utility::detail::SharedAsVirtualBase(other),
      kelcore::utility::EnableSharedAs(other),
      UserNotifyingProperty(other.UserNotifyingProperty::GetValue()),
      CurrentViewIDNotifyingProperty(other.CurrentViewIDNotifyingProperty::GetValue()),
      InvalidateParentForChildNotifyingProperty(
          other.InvalidateParentForChildNotifyingProperty::GetValue()),
      ActiveAssetNameNotifyingProperty(other.ActiveAssetNameNotifyingProperty::GetValue()),
      ActiveAssetDirtyNotifyingProperty(other.ActiveAssetDirtyNotifyingProperty::GetValue()),
      ReviewLinkURLNotifyingProperty(other.ReviewLinkURLNotifyingProperty::GetValue()),
      IsNetworkConnectedNotifyingProperty(other.IsNetworkConnectedNotifyingProperty::GetValue()),
      EncoderPresetsNotifyingProperty(other.EncoderPresetsNotifyingProperty::GetValue()),
      SelectedEncoderPresetNotifyingProperty(
          other.SelectedEncoderPresetNotifyingProperty::GetValue()),
      IsLoggedInNotifyingProperty(other.IsLoggedInNotifyingProperty::GetValue()),
      EncodingStatusNotifyingProperty(other.EncodingStatusNotifyingProperty::GetValue()),
      EncodingProgressNotifyingProperty(other.EncodingProgressNotifyingProperty::GetValue()),
      ProcessingRemainingTimeNotifyingProperty(
          other.ProcessingRemainingTimeNotifyingProperty::GetValue()),
      UploadingSpeedNotifyingProperty(other.UploadingSpeedNotifyingProperty::GetValue()),
      AssetTypeIconNotifyingProperty(other.AssetTypeIconNotifyingProperty::GetValue()),
      CreateNewLinkModeNotifyingProperty(other.CreateNewLinkModeNotifyingProperty::GetValue()) {
    const std::lock_guard lock(other.fieldsMutex);
    networkConnectionMonitor = other.networkConnectionMonitor;
    getActiveSequence = other.getActiveSequence;
    getSequenceValue = other.getSequenceValue;
    setSequenceValue = other.setSequenceValue;
    clearSequenceValue = other.clearSequenceValue;
    assetProcessorInstalled = other.assetProcessorInstalled;
    locationPickerMode = other.locationPickerMode;
    locationPickerCallback = other.locationPickerCallback;
    const std::lock_guard gate(other.viewIDGateMutex);
    currentViewIDMessagesEnabled = other.currentViewIDMessagesEnabled;
}

ShareForReviewViewModel::~ShareForReviewViewModel() = default;

// ---- injection --------------------------------------------------------------------------------

void ShareForReviewViewModel::SetAssetDataMethods(model::GetActiveSequenceFunction getActive,
                                                  model::GetSequenceValueFunction getValue,
                                                  model::SetSequenceValueFunction setValue,
                                                  model::ClearSequenceValueFunction clearValue) {
    const std::lock_guard lock(fieldsMutex);
    getActiveSequence = std::move(getActive);
    getSequenceValue = std::move(getValue);
    setSequenceValue = std::move(setValue);
    clearSequenceValue = std::move(clearValue);
}

void ShareForReviewViewModel::SetAssetProcessorInstalledMethod(std::function<bool()> installed) {
    const std::lock_guard lock(fieldsMutex);
    assetProcessorInstalled = std::move(installed);
}

bool ShareForReviewViewModel::AssetProcessorInstalled() const {
    std::function<bool()> installed;
    {
        const std::lock_guard lock(fieldsMutex);
        installed = assetProcessorInstalled;
    }
    return installed();
}

model::GetActiveSequenceFunction ShareForReviewViewModel::GetActiveSequenceFn() const {
    const std::lock_guard lock(fieldsMutex);
    return getActiveSequence;
}

model::GetSequenceValueFunction ShareForReviewViewModel::GetSequenceValueFn() const {
    const std::lock_guard lock(fieldsMutex);
    return getSequenceValue;
}

model::SetSequenceValueFunction ShareForReviewViewModel::SetSequenceValueFn() const {
    const std::lock_guard lock(fieldsMutex);
    return setSequenceValue;
}

model::ClearSequenceValueFunction ShareForReviewViewModel::ClearSequenceValueFn() const {
    const std::lock_guard lock(fieldsMutex);
    return clearSequenceValue;
}

void ShareForReviewViewModel::ActiveSequence(Guid& project, Guid& sequence) const {
    // A failure leaves the Guids null; what the host makes of null Guids is its own affair.
    (void)GetActiveSequenceFn()(project, sequence);
}

void ShareForReviewViewModel::SetNetworkConnectionMonitor(const MonitorFactory& factory) {
    std::shared_ptr<model::NetworkConnectionMonitorBase> monitor = factory();
    {
        std::shared_ptr<model::NetworkConnectionMonitorBase> previous;
        {
            const std::lock_guard lock(fieldsMutex);
            previous = std::exchange(networkConnectionMonitor, monitor);
        }
        // `previous` dies here, outside the lock: a monitor's destructor waits for a report in
        // progress, and that report may be on its way into this object.
    }
    if (!monitor) {
        return;
    }
    monitor->SetConnectionChangedCallback(utility::WeakBindMemberFunction(
        WeakAs<ShareForReviewViewModel>(),
        &IsNetworkConnectedNotifyingProperty::SetIsNetworkConnected));
    SetIsNetworkConnected(monitor->IsConnected());
}

// ---- the panel's life -----------------------------------------------------------------------

void ShareForReviewViewModel::StartShareForReviewPopup() {
    EnableCurrentViewIDMessages(true);
    SetEncodingStatus(EncodingStatus::None);
    SetEncodingProgress(0.0);
    SetProcessingRemainingTime(0.0);
    SetUploadingSpeed(0.0);
    model::SetCurrentActiveSequenceAndProperties();
    ReadSettingsFromCurrentSequence();
    SetCreateNewLinkMode(false);
    if (kelcore::debug::DebugDatabase::Instance().GetBoolEntry(
            "UnifiedHeader.ShowVantroNativeShareButtonDebugView", false)) {
        SetCurrentViewID(ShareForReviewViewID::DebugView);
        return;
    }
    if (UseVantroCppSdk()) {
        LoginQuiet();
        StartShareForReviewMainWorkflow(GetIsLoggedIn());
    } else {
        // The older library never sets IsLoggedIn: a user with an id counts as signed in.
        const std::shared_ptr<VantroUser> user = GetUser();
        StartShareForReviewMainWorkflow(user->GetID() != Guid());
    }
}

void ShareForReviewViewModel::EnableCurrentViewIDMessages(bool enabled) {
    const std::lock_guard gate(viewIDGateMutex);
    currentViewIDMessagesEnabled = enabled;
}

void ShareForReviewViewModel::StartShareForReviewMainWorkflow(bool loggedIn) {
    // The order is deliberate: without the encoder nothing else matters, not even the network.
    if (!AssetProcessorInstalled()) {
        SetCurrentViewID(ShareForReviewViewID::NoAssetProcessor);
        return;
    }
    if (GetActiveAssetName().empty()) {
        SetCurrentViewID(ShareForReviewViewID::NoAsset);
        return;
    }
    if (!GetIsNetworkConnected()) {
        SetOfflineViewID();
        return;
    }
    if (!loggedIn) {
        SetCurrentViewID(ShareForReviewViewID::SigninPrompt);
        return;
    }
    switch (model::GetShareJobEncodingStatus()) {
        case EncodingStatus::Queued:
            SetCurrentViewID(ShareForReviewViewID::EncodingQueued);
            return;
        case EncodingStatus::Encoding:
            SetCurrentViewID(ShareForReviewViewID::EncodingProgress);
            return;
        case EncodingStatus::Encoded:
        case EncodingStatus::Uploading:
            SetCurrentViewID(ShareForReviewViewID::UploadProgress);
            return;
        case EncodingStatus::UploadFailed:
            SetCurrentViewID(ShareForReviewViewID::ReviewInVantro);
            return;
        default:
            break;
    }
    SetCurrentViewID(GetReviewLinkURL().empty() ? ShareForReviewViewID::ReviewInVantro
                                                : ShareForReviewViewID::CopyLinkSection);
}

void ShareForReviewViewModel::SetOfflineViewID() {
    SetCurrentViewID(!GetReviewLinkURL().empty() && GetIsLoggedIn()
                         ? ShareForReviewViewID::CopyLinkSection
                         : ShareForReviewViewID::Offline);
}

void ShareForReviewViewModel::SetSharePropertiesForCurrentActiveSequence() {
    SetEncodingStatus(EncodingStatus::None);
    SetEncodingProgress(0.0);
    SetProcessingRemainingTime(0.0);
    SetUploadingSpeed(0.0);
    model::SetCurrentActiveSequenceAndProperties();
}

// ---- setters with rules ---------------------------------------------------------------------

void ShareForReviewViewModel::SetCurrentViewID(ShareForReviewViewID id) {
    // While the gate is shut a change is dropped, not stored: a late write by the pipeline
    // cannot reopen a closed panel.
    // SetValue stores and queues its deliveries; it calls nothing under the gate.
    const std::lock_guard gate(viewIDGateMutex);
    if (currentViewIDMessagesEnabled) {
        CurrentViewIDNotifyingProperty::SetValue(id);
    }
    if (id == ShareForReviewViewID::None) {
        currentViewIDMessagesEnabled = false;
    }
}

void ShareForReviewViewModel::SetUser(const std::shared_ptr<VantroUser>& user) {
    if (!user) {
        kelcore::config::ThrowError(
            "$$$/Corvane/vantrokelui/viewmodel/VantroShare/NoNullUser=Contract violation: User "
            "property may not be set to null.");
    }
    UserNotifyingProperty::SetValue(user);
    // Also for the same user: setting it again is how its accounts are fetched anew.
    user->FetchChildren();
}

void ShareForReviewViewModel::SetEncoderPresets(
    const utility::SharedPtrVector<EncoderPresetModel>& presets) {
    EncoderPresetsNotifyingProperty::SetValue(presets);
    SetSelectedEncoderPreset(presets.empty() ? std::shared_ptr<EncoderPresetModel>()
                                             : presets.front());
}

void ShareForReviewViewModel::SetActiveAssetDirty(bool dirty) {
    Guid project;
    Guid sequence;
    ActiveSequence(project, sequence);
    bool stored = false;
    const bool found = model::GetSequenceBool(GetSequenceValueFn(), project, sequence,
                                              model::kAssetModifiedAfterShareKey, stored);
    // A true lands only on a stored false: a sequence never shared gets no mark from it.
    if (!(dirty && (!found || stored))) {
        model::SetSequenceBool(SetSequenceValueFn(), project, sequence,
                               model::kAssetModifiedAfterShareKey, dirty);
    }
    ActiveAssetDirtyNotifyingProperty::SetValue(dirty);
}

void ShareForReviewViewModel::SetIsNetworkConnected(bool connected) {
    IsNetworkConnectedNotifyingProperty::SetValue(connected);
    // For every report, changed or not: coming back online also leaves the offline screen up
    // until the panel opens again.
    if (GetCurrentViewID() != ShareForReviewViewID::None) {
        SetOfflineViewID();
    }
}

// ---- sign-in --------------------------------------------------------------------------------

void ShareForReviewViewModel::Login() {
    const std::weak_ptr<ShareForReviewViewModel> weak = WeakAs<ShareForReviewViewModel>();
    if (UseVantroCppSdk()) {
        model::VantroConnectorIntegration::SignIn([weak](bool success) {
            const std::shared_ptr<ShareForReviewViewModel> self = weak.lock();
            if (!self) {
                return;
            }
            self->SetIsLoggedIn(success);
            if (!success) {
                return;
            }
            kelcore::threads::CallFromMainThread(
                [self] { self->StartShareForReviewMainWorkflow(true); }, 0, true);
            model::VantroConnectorIntegration::GetCurrentUser(
                utility::WeakBindMemberFunction(weak, &UserNotifyingProperty::SetUser));
        });
    } else {
        model::VantroClientIntegration::GetCurrentUser(
            [weak](const std::shared_ptr<VantroUser>& user) {
                if (const std::shared_ptr<ShareForReviewViewModel> self = weak.lock()) {
                    self->SetUser(user);
                    self->SetCurrentViewID(ShareForReviewViewID::ReviewInVantro);
                }
            });
    }
}

void ShareForReviewViewModel::LoginQuiet() {
    if (GetIsLoggedIn()) {
        return;
    }
    model::VantroConnectorIntegration::SignInQuiet(utility::WeakBindMemberFunction(
        WeakAs<ShareForReviewViewModel>(), &ShareForReviewViewModel::Login));
}

void ShareForReviewViewModel::Logout() {
    if (UseVantroCppSdk()) {
        model::VantroConnectorIntegration::SignOut();
    } else {
        model::VantroClientIntegration::SignOut();
    }
    // Local state goes even when the library's sign-out failed.
    SetIsLoggedIn(false);
    SetUser(std::make_shared<VantroUser>());
    SetCurrentViewID(ShareForReviewViewID::None);
}

// ---- location and storage -------------------------------------------------------------------

void ShareForReviewViewModel::SelectLocationAPI(const std::shared_ptr<VantroUser>& user,
                                                LocationCallback callback) {
    SetUser(user);
    locationPickerCallback = std::move(callback);
    locationPickerMode = 1;
    SetCurrentViewID(ShareForReviewViewID::SelectProject);
}

void ShareForReviewViewModel::LocationPickerSelectionCommitted() {
    if (locationPickerMode == 0) {
        // A new link keeps the sequence's old folder until its share succeeds.
        if (!GetCreateNewLinkMode()) {
            WriteFolderSettingsToCurrentSequence();
        }
        utility::SDMLogging::LogLocationSet();
        SetCurrentViewID(ShareForReviewViewID::ReviewInVantro);
    } else if (locationPickerMode == 1) {
        SetCurrentViewID(ShareForReviewViewID::None);
        if (locationPickerCallback) {
            const std::shared_ptr<VantroUser> user = GetUser();
            const std::shared_ptr<VantroFolder> folder = user->GetSelection();
            if (folder) {
                locationPickerCallback(folder->GetID(), user->GetSelectionPath());
            } else {
                locationPickerCallback(Guid(), string());
            }
        }
    }
}

void ShareForReviewViewModel::LocationPickerCancelled() {
    if (locationPickerMode == 0) {
        SetCurrentViewID(ShareForReviewViewID::ReviewInVantro);
    } else if (locationPickerMode == 1) {
        SetCurrentViewID(ShareForReviewViewID::None);
        if (locationPickerCallback) {
            locationPickerCallback(Guid(), string());
        }
    }
}

void ShareForReviewViewModel::CheckStorageLimitOnSelectedAccount(
    std::function<void(bool exceeded)> callback) {
    const std::shared_ptr<VantroFolder> selection = GetUser()->GetSelection();
    const std::shared_ptr<VantroAccount> account = selection ? GetAccount(selection) : nullptr;
    if (!account) {
        // Every doubt is "not exceeded": the share goes ahead and the service decides.
        callback(false);
        return;
    }
    const vantrocommon::Guid id(kelcore::string::UTF16toStdString(account->GetID().AsString()));
    model::VantroConnectorIntegration::CheckStorageLimitOnAccount(id, callback);
}

// ---- the sequence's settings ----------------------------------------------------------------

void ShareForReviewViewModel::ReadSettingsFromCurrentSequence() {
    Guid project;
    Guid sequence;
    ActiveSequence(project, sequence);
    const model::GetSequenceValueFunction getValue = GetSequenceValueFn();

    Guid folderID;
    model::GetSequenceGuid(getValue, project, sequence, model::kUploadFolderGuidKey, folderID);
    const std::shared_ptr<VantroUser> user = GetUser();
    user->SetProposedSelection(nullptr);
    // The tree may not be fetched yet; the folder picker restores the selection from the same
    // id once it is.
    user->SetSelection(std::dynamic_pointer_cast<VantroFolder>(user->FindNode(folderID)));

    string link;
    model::GetSequenceString(getValue, project, sequence, model::kReviewLinkURLKey, link);
    SetReviewLinkURL(link);

    bool dirty = false;
    if (model::GetSequenceBool(getValue, project, sequence, model::kAssetModifiedAfterShareKey,
                               dirty)) {
        SetActiveAssetDirty(dirty);
    }

    if (!link.empty()) {
        SetReviewLinkURL(link);
    } else if (const std::shared_ptr<model::ShareJob> job = model::GetActiveSequenceJob()) {
        // A finished job in memory knows a link the sequence has not stored yet.
        const string jobLink = job->GetReviewLinkURL();
        if (!jobLink.empty()) {
            SetReviewLinkURL(jobLink);
        }
    }

    model::EncoderPresetAttributes attributes;
    if (model::GetEncoderPresetFromSequence(model::ProcessingGuids{project, sequence},
                                            attributes)) {
        const std::shared_ptr<EncoderPresetModel> preset = EncoderPresetModel::Create();
        preset->SetPresetName(attributes.presetName);
        preset->SetPresetPath(attributes.presetPath);
        preset->SetExtension(attributes.fileExtension);
        SetSelectedEncoderPreset(preset);
    }
}

void ShareForReviewViewModel::WriteFolderSettingsToCurrentSequence() {
    const std::shared_ptr<VantroUser> user = GetUser();
    const std::shared_ptr<VantroFolder> selection = user->GetSelection();
    if (!selection) {
        return;
    }
    Guid project;
    Guid sequence;
    ActiveSequence(project, sequence);
    const model::SetSequenceValueFunction setValue = SetSequenceValueFn();
    model::SetSequenceGuid(setValue, project, sequence, model::kUploadFolderGuidKey,
                           selection->GetID());
    // A selected folder always stands under a project; a tree torn down meanwhile may have lost
    // it, and then there is no project to name.
    if (const std::shared_ptr<VantroProject> owner = GetProject(selection)) {
        model::SetSequenceGuid(setValue, project, sequence, model::kUploadFolderParentProjGuidKey,
                               owner->GetID());
    }
    model::SetSequenceString(setValue, project, sequence, model::kUploadFolderPathKey,
                             user->GetSelectionPath());
}

void ShareForReviewViewModel::WriteSelectedEncoderPresetToSequence() {
    Guid project;
    Guid sequence;
    ActiveSequence(project, sequence);
    const std::shared_ptr<EncoderPresetModel> preset = GetSelectedEncoderPreset();
    if (!preset) {
        return;  // nothing chosen, nothing to remember
    }
    const model::EncoderPresetAttributes attributes{
        preset->GetPresetName(), preset->GetPresetPath(), preset->GetExtension()};
    model::SetSequenceString(SetSequenceValueFn(), project, sequence,
                             model::kSelectedEncoderPresetKey,
                             model::FormatEncoderPresetJSON(attributes));
}

void ShareForReviewViewModel::ClearAllSequenceSettings() {
    Guid project;
    Guid sequence;
    ActiveSequence(project, sequence);
    model::ClearAllSequenceSettings(ClearSequenceValueFn(), project, sequence);
}

void ShareForReviewViewModel::CreateNewLink() {
    ResetSelection(GetUser());
    SetCreateNewLinkMode(true);
    SetCurrentViewID(ShareForReviewViewID::ReviewInVantro);
}

void ShareForReviewViewModel::Debug_TraceToConsole() {
    std::ostringstream dump;
    dump << "CurrentViewID :  " << ShareForReviewViewIDDebugName(GetCurrentViewID()) << std::endl;
    dump << "ReviewLinkURL :  " << kelcore::string::UTF16toStdString(GetReviewLinkURL())
         << std::endl;
    const std::shared_ptr<VantroUser> user = GetUser();
    DumpTree(dump, user);
    const bool traced = TraceWanted();
    if (traced) {
        std::ostringstream text;
        text << "ShareForReviewViewModel" << std::endl << dump.str();
        kelcore::debug::Trace(kTraceCategory, kTraceLevel, text.str());
    }
    std::size_t count = 0;
    std::deque<std::shared_ptr<VantroNode>> pending{user};
    while (!pending.empty()) {
        const std::shared_ptr<VantroNode> node = std::move(pending.front());
        pending.pop_front();
        ++count;
        for (std::shared_ptr<VantroNode>& child : node->GetChildren()) {
            pending.push_back(std::move(child));
        }
    }
    if (traced) {
        std::ostringstream text;
        text << "ShareForReviewViewModel nodes count = " << count;
        kelcore::debug::Trace(kTraceCategory, kTraceLevel, text.str());
    }
}

}  // namespace vantrokelui::viewmodel

// The share panel's view model: the one object that holds every value the panel shows, and the
// panel's state machine (CurrentViewID). Screens bind to its properties; the share pipeline holds
// weak pointers to eleven of them and writes progress through their virtual setters, so the
// rules added here (the view gate, the persisted dirty mark, preset reselection, connectivity)
// apply to the pipeline's writes too.
//
// Owned by std::shared_ptr (the host's panel, the screen manager, the views); made only by
// Create. Panel actions run on the main thread. The setters may run on any thread: the pipeline,
// the storage check's executor and the connection monitor's thread all write. The injected
// functions and the monitor are guarded by a mutex (copied out and called outside it); the view
// gate is atomic; the location picker's mode and callback are touched on the main thread only.
//
//   auto viewModel = viewmodel::ShareForReviewViewModel::Create();
//   viewModel->SetAssetDataMethods(getActive, getValue, setValue, clearValue);
//   viewModel->SetAssetProcessorInstalledMethod([] { return true; });
//   viewModel->StartShareForReviewPopup();   // each time the panel opens
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>

#include <kelcore/string/String.h>
#include <kelcore/utility/EnableSharedAs.h>
#include <kelcore/utility/Guid.h>
#include <vantrokelui/model/AssetFunctions.h>
#include <vantrokelui/model/NetworkConnectionMonitorBase.h>
#include <vantrokelui/utility/ActiveAssetDirtyNotifyingProperty.h>
#include <vantrokelui/utility/ActiveAssetNameNotifyingProperty.h>
#include <vantrokelui/utility/AssetTypeIconNotifyingProperty.h>
#include <vantrokelui/utility/CreateNewLinkModeNotifyingProperty.h>
#include <vantrokelui/utility/CurrentViewIDNotifyingProperty.h>
#include <vantrokelui/utility/EncoderPresetsNotifyingProperty.h>
#include <vantrokelui/utility/EncodingProgressNotifyingProperty.h>
#include <vantrokelui/utility/EncodingStatusNotifyingProperty.h>
#include <vantrokelui/utility/InvalidateParentForChildNotifyingProperty.h>
#include <vantrokelui/utility/IsLoggedInNotifyingProperty.h>
#include <vantrokelui/utility/IsNetworkConnectedNotifyingProperty.h>
#include <vantrokelui/utility/ProcessingRemainingTimeNotifyingProperty.h>
#include <vantrokelui/utility/ReviewLinkURLNotifyingProperty.h>
#include <vantrokelui/utility/SelectedEncoderPresetNotifyingProperty.h>
#include <vantrokelui/utility/UploadingSpeedNotifyingProperty.h>
#include <vantrokelui/utility/UserNotifyingProperty.h>
#include <vantrokelui/viewmodel/ShareForReviewViewID.h>

namespace vantrokelui::viewmodel {

class ShareForReviewViewModel : public UserNotifyingProperty,
                                public CurrentViewIDNotifyingProperty,
                                public InvalidateParentForChildNotifyingProperty,
                                public ActiveAssetNameNotifyingProperty,
                                public ActiveAssetDirtyNotifyingProperty,
                                public ReviewLinkURLNotifyingProperty,
                                public IsNetworkConnectedNotifyingProperty,
                                public EncoderPresetsNotifyingProperty,
                                public SelectedEncoderPresetNotifyingProperty,
                                public IsLoggedInNotifyingProperty,
                                public EncodingStatusNotifyingProperty,
                                public EncodingProgressNotifyingProperty,
                                public ProcessingRemainingTimeNotifyingProperty,
                                public UploadingSpeedNotifyingProperty,
                                public AssetTypeIconNotifyingProperty,
                                public CreateNewLinkModeNotifyingProperty,
                                public virtual kelcore::utility::EnableSharedAs {
public:
    using Guid = kelcore::utility::Guid;
    using string = kelcore::string::string;
    using LocationCallback = std::function<void(const Guid& folder, const string& path)>;
    using MonitorFactory = std::function<std::shared_ptr<model::NetworkConnectionMonitorBase>()>;

    /// A view model with every property at its default and a plain user, the real connection
    /// monitor installed, and the eleven properties and the folder writer handed to the share
    /// pipeline. Main thread.
    static std::shared_ptr<ShareForReviewViewModel> Create();

    ~ShareForReviewViewModel() override;
    ShareForReviewViewModel& operator=(const ShareForReviewViewModel&) = delete;

    // Host injection; any thread, before the panel first opens.

    /// The host's four sequence functions (the host hands the same to model::SetAssetDataMethods).
    void SetAssetDataMethods(model::GetActiveSequenceFunction getActiveSequence,
                             model::GetSequenceValueFunction getSequenceValue,
                             model::SetSequenceValueFunction setSequenceValue,
                             model::ClearSequenceValueFunction clearSequenceValue);
    /// Whether the encoding application is installed.
    void SetAssetProcessorInstalledMethod(std::function<bool()> assetProcessorInstalled);
    /// Replaces the monitor with what `factory` makes (an empty factory throws
    /// std::bad_function_call); with a monitor, subscribes to its reports and takes its state now.
    void SetNetworkConnectionMonitor(const MonitorFactory& factory);

    // The panel's life; main thread.

    /// The panel opens: resets the progress values, reads the active sequence, and picks the
    /// first screen (the debug view when its key is set).
    void StartShareForReviewPopup();
    /// Stores the view gate's flag, nothing else. Any thread.
    void EnableCurrentViewIDMessages(bool enabled);
    /// The first screen for an open: encoder missing, no sequence, offline, signed out, then the
    /// active job's status, then link or no link. Main thread.
    void StartShareForReviewMainWorkflow(bool loggedIn);
    /// The offline screen, or the link when there is one and the user is signed in. Any thread.
    void SetOfflineViewID();
    /// Resets the progress values and lets the pipeline publish the active sequence's job.
    void SetSharePropertiesForCurrentActiveSequence();

    // Property setters with rules of their own; any thread.

    /// Stores and notifies only while the gate is open; writing None closes the gate.
    void SetCurrentViewID(ShareForReviewViewID id) override;
    /// Refuses null (contract violation); stores when new; fetches the user's accounts always.
    void SetUser(const std::shared_ptr<VantroUser>& user) override;
    /// Stores when new, then always selects the first preset (null for an empty list).
    void SetEncoderPresets(const utility::SharedPtrVector<EncoderPresetModel>& presets) override;
    /// Persists the mark in the active sequence unless a true would land on nothing or a true.
    void SetActiveAssetDirty(bool dirty) override;
    /// Stores when new; then, unless the panel is closed, shows the offline decision again.
    void SetIsNetworkConnected(bool connected) override;

    // Sign-in; main thread. The back end is chosen by "VantroNative.UseVantroCppSdk" at each call.

    /// Starts a sign-in; its completion moves the panel on.
    virtual void Login();
    /// Signs out, forgets the user and closes the panel, even when the back end's sign-out fails.
    virtual void Logout();

    // Location; main thread.

    /// The picker as a stand-alone dialog: takes `user`, keeps `callback`, shows the project step.
    virtual void SelectLocationAPI(const std::shared_ptr<VantroUser>& user,
                                   LocationCallback callback);
    /// The picker's Commit.
    virtual void LocationPickerSelectionCommitted();
    /// The picker's Cancel.
    virtual void LocationPickerCancelled();
    /// Asks whether the selected folder's account is over its storage limit; `callback` runs on
    /// the back end's executor, with false when nothing is selected, and never without a client.
    void CheckStorageLimitOnSelectedAccount(std::function<void(bool exceeded)> callback);

    // The active sequence's stored settings.

    /// Restores selection, link, dirty mark and preset from the active sequence. Main thread.
    void ReadSettingsFromCurrentSequence();
    /// Writes the selected folder, its project and path into the active sequence. Any thread:
    /// the pipeline calls it when a share starts.
    void WriteFolderSettingsToCurrentSequence();
    /// Writes the selected preset into the active sequence. Any thread.
    void WriteSelectedEncoderPresetToSequence();
    /// Removes all nine stored values of the active sequence; the properties stay. Main thread.
    void ClearAllSequenceSettings();
    /// The next share makes a new link: forgets the selection and shows the share screen.
    void CreateNewLink();
    /// Writes the state and the user's tree to the trace. Main thread.
    void Debug_TraceToConsole();

protected:
    ShareForReviewViewModel();
    /// Copies each value and field; the copy has no observers. Not used by the panel.
    ShareForReviewViewModel(const ShareForReviewViewModel& other);

private:
    bool AssetProcessorInstalled() const;
    void LoginQuiet();

    model::GetActiveSequenceFunction GetActiveSequenceFn() const;
    model::GetSequenceValueFunction GetSequenceValueFn() const;
    model::SetSequenceValueFunction SetSequenceValueFn() const;
    model::ClearSequenceValueFunction ClearSequenceValueFn() const;
    /// Calls the host's getActiveSequence; its answer is not looked at.
    void ActiveSequence(Guid& project, Guid& sequence) const;

    // Guards the injected functions and the monitor pointer; never held while one runs.
    mutable std::mutex fieldsMutex;
    std::shared_ptr<model::NetworkConnectionMonitorBase> networkConnectionMonitor;
    model::GetActiveSequenceFunction getActiveSequence;
    model::GetSequenceValueFunction getSequenceValue;
    model::SetSequenceValueFunction setSequenceValue;
    model::ClearSequenceValueFunction clearSequenceValue;
    std::function<bool()> assetProcessorInstalled;
    std::int32_t locationPickerMode = 0;      // 0 panel, 1 dialog; main thread
    LocationCallback locationPickerCallback;  // main thread
    // Written on the main thread, read by every writer of the view id on any thread. One mutex
    // holds the check, the store and the closing together, so a writer on another thread that
    // passed the gate cannot store its view after a 0 has closed the panel.
    mutable std::mutex viewIDGateMutex;
    bool currentViewIDMessagesEnabled = true;  // under viewIDGateMutex
};

}  // namespace vantrokelui::viewmodel

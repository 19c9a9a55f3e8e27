// The ground of the link and progress screens' tests: the test's thread as the main thread
// (pumped), an in-memory host sequence injected into the view model and the share pipeline, an
// encoder that records what it is asked to render and to cancel, a connection monitor the test
// drives, and a window with a drawing supplier for the screen. The test's thread.
#pragma once

#include <memory>
#include <mutex>
#include <ostream>
#include <vector>

#include <QTest>
#include <QWidget>

#include <kelcore/geom/PointT.h>
#include <kelcore/geom/RectT.h>
#include <kelcore/string/String.h>
#include <kelcore/utility/Guid.h>
#include <kelui/ui/UI_NodeManager.h>
#include <vantrokelui/model/EncoderPresetModel.h>
#include <vantrokelui/model/SequenceSettings.h>
#include <vantrokelui/model/ShareModel.h>
#include <vantrokelui/sharedui/Measuring.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

#include "support/qt/QtMainThreadFixture.h"
#include "vantrokelui/support/FakeSequenceHost.h"
#include "vantrokelui/viewmodel/FakeNetworkMonitor.h"

namespace kelcore::geom {

// Readable failures for the exact rectangles and sizes the layout tests compare.
template <class T>
void PrintTo(const RectT<T>& rect, std::ostream* out) {
    *out << "{" << rect.x << ", " << rect.y << ", " << rect.width << ", " << rect.height << "}";
}
template <class T>
void PrintTo(const PointT<T>& point, std::ostream* out) {
    *out << "{" << point.x << ", " << point.y << "}";
}

}  // namespace kelcore::geom

namespace vantrokelui::view::testing {

using kelcore::string::string;
using ViewID = ShareForReviewViewID;

/// One call of the host's render function. Any thread.
struct RenderRequest {
    string outputFilePath;
    string jobID;
    string presetPath;
};

class ProgressViewFixture : public testsupport::QtMainThreadFixture {
protected:
    void SetUp() override {
        QtMainThreadFixture::SetUp();
        guids = {kelcore::utility::Guid::CreateUnique(), kelcore::utility::Guid::CreateUnique()};
        host = model::testing::FakeSequenceHost::Create();
        host->SetActive(guids);
        model::SetAssetDataMethods(host->GetActiveSequenceFn(), host->GetSequenceValueFn(),
                                   host->SetSequenceValueFn(), host->ClearSequenceValueFn());
        auto log = encoder;
        model::SetAssetProcessingMethod(
            [log](const string& output, const string& jobID, const string& presetPath) {
                const std::lock_guard lock(log->mutex);
                log->renders.push_back({output, jobID, presetPath});
            },
            [log](const string& jobID) {
                const std::lock_guard lock(log->mutex);
                log->cancels.push_back(jobID);
            });
        viewModel = viewmodel::ShareForReviewViewModel::Create();
        viewModel->SetAssetDataMethods(host->GetActiveSequenceFn(), host->GetSequenceValueFn(),
                                       host->SetSequenceValueFn(), host->ClearSequenceValueFn());
        viewModel->SetNetworkConnectionMonitor([monitor = monitor] { return monitor; });
        viewModel->SetActiveAssetName(u"Cut 1");
        viewModel->SetReviewLinkURL(string(kLink));

        root->UI_SetDrawSupplier(kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier());
        root->GetWidget()->setGeometry(100, 100, 340, 300);
        root->UI_Show(true);
        root->GetWidget()->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(root->GetWidget()));
        Pump();
    }

    void TearDown() override {
        for (const auto& child : std::vector(root->GetChildren())) {
            root->ChildRemove(child);
        }
        root.reset();
        viewModel.reset();
        Pump();
        QtMainThreadFixture::TearDown();
    }

    /// The screen `View`, made now with the panel on `id`, in the window at its recommended
    /// size, with every delivery of its bindings done.
    template <class View>
    boost::intrusive_ptr<View> MakeView(ViewID id) {
        viewModel->SetCurrentViewID(id);
        Pump();
        boost::intrusive_ptr<View> view(new View(viewModel));
        root->ChildPushBack(view);
        Pump();
        Resize(view);
        return view;
    }

    /// What the screen manager does when a screen asks for a new size: measures it and sets it.
    static void Resize(const boost::intrusive_ptr<kelui::ui::UI_Node>& view) {
        const auto size = sharedui::GetRecommendedSize(view);
        view->UI_SetLocalRectF({0.0f, 0.0f, size.x, size.y});
    }

    /// What a share already made stores with the sequence (folder, its project, the link), and
    /// a selected preset, so that a new share goes straight to the encoder.
    void StoreEarlierShare() {
        const auto set = host->SetSequenceValueFn();
        model::SetSequenceGuid(set, guids.projectGuid, guids.sequenceGuid,
                               model::kUploadFolderGuidKey, kelcore::utility::Guid::CreateUnique());
        model::SetSequenceGuid(set, guids.projectGuid, guids.sequenceGuid,
                               model::kUploadFolderParentProjGuidKey,
                               kelcore::utility::Guid::CreateUnique());
        model::SetSequenceGuid(set, guids.projectGuid, guids.sequenceGuid,
                               model::kReviewLinkGuidKey, kelcore::utility::Guid::CreateUnique());
        model::SetSequenceString(set, guids.projectGuid, guids.sequenceGuid,
                                 model::kReviewLinkURLKey, kLink);
        auto preset = EncoderPresetModel::Create();
        preset->SetPresetName(u"H.264 Match Source");
        preset->SetPresetPath(u"/presets/h264-match.epr");
        preset->SetExtension(u"mp4");
        viewModel->SetEncoderPresets({preset});
        Pump();
    }

    std::vector<RenderRequest> Renders() const {
        const std::lock_guard lock(encoder->mutex);
        return encoder->renders;
    }
    std::vector<string> Cancels() const {
        const std::lock_guard lock(encoder->mutex);
        return encoder->cancels;
    }

    /// Clicks the middle of `node`'s widget with the left button, as the user does.
    static void Click(const boost::intrusive_ptr<kelui::ui::UI_Node>& node) {
        QWidget* widget = node->GetWidget();
        QTest::mouseClick(widget, Qt::LeftButton, {}, widget->rect().center());
    }

    static constexpr kelcore::string::string_view kLink = u"http://service.invalid/r/Ab12";

    struct EncoderLog {
        std::mutex mutex;
        std::vector<RenderRequest> renders;
        std::vector<string> cancels;
    };

    model::ProcessingGuids guids;
    std::shared_ptr<model::testing::FakeSequenceHost> host;
    std::shared_ptr<EncoderLog> encoder = std::make_shared<EncoderLog>();
    std::shared_ptr<viewmodel::testing::FakeNetworkMonitor> monitor =
        std::make_shared<viewmodel::testing::FakeNetworkMonitor>(true);
    std::shared_ptr<viewmodel::ShareForReviewViewModel> viewModel;
    boost::intrusive_ptr<kelui::ui::UI_SubView> root{new kelui::ui::UI_SubView};
};

}  // namespace vantrokelui::view::testing

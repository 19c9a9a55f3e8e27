// The ground of the link and progress screens' tests, over the panel's common fixture: a
// connection monitor the test drives, the review link in the view model, and clicks as the user
// makes them. The test's thread.
#pragma once

#include <memory>

#include <QTest>
#include <QWidget>

#include <kelcore/string/String.h>
#include <kelcore/utility/Guid.h>

#include "support/qt/PanelFixture.h"
#include "vantrokelui/viewmodel/FakeNetworkMonitor.h"

namespace vantrokelui::view::testing {

class ProgressViewFixture : public PanelFixture {
protected:
    void ConfigureViewModel() override {
        viewModel->SetNetworkConnectionMonitor([monitor = monitor] { return monitor; });
        viewModel->SetReviewLinkURL(string(kLink));
    }

    /// The screen `View`, made now with the panel on `id`, in the window at its recommended
    /// size, with every delivery of its bindings done.
    template <class View>
    boost::intrusive_ptr<View> MakeView(ViewID id) {
        viewModel->SetCurrentViewID(id);
        Pump();
        boost::intrusive_ptr<View> view(new View(viewModel));
        PutInWindow(view);
        return view;
    }

    /// What a share already made stores with the sequence (folder, its project, the link), and
    /// a selected preset, so that a new share goes straight to the encoder.
    void StoreEarlierShare() {
        StoreShare(kelcore::utility::Guid::CreateUnique(), kelcore::utility::Guid::CreateUnique(),
                   kLink);
        viewModel->SetEncoderPresets({Preset(u"H.264 Match Source", u"/presets/h264-match.epr")});
        Pump();
    }

    /// Clicks the middle of `node`'s widget with the left button, as the user does.
    static void Click(const boost::intrusive_ptr<kelui::ui::UI_Node>& node) {
        QWidget* widget = node->GetWidget();
        QTest::mouseClick(widget, Qt::LeftButton, {}, widget->rect().center());
    }

    static constexpr kelcore::string::string_view kLink = u"http://service.invalid/r/Ab12";

    std::shared_ptr<viewmodel::testing::FakeNetworkMonitor> monitor =
        std::make_shared<viewmodel::testing::FakeNetworkMonitor>(true);
};

}  // namespace vantrokelui::view::testing

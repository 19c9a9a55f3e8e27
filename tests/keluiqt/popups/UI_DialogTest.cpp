#include <kelui/controls/OS_ViewContainer.h>
#include <kelui/controls/UI_TextButton.h>
#include <kelui/ui/UI_Dialog.h>
#include <kelui/ui/UI_NodeManager.h>
#include <kelui/ui/UI_SubView.h>

#include <QDialog>
#include <QGuiApplication>
#include <QMetaObject>
#include <QScreen>
#include <QTest>

#include <gtest/gtest.h>

#include "keluiqt/popups/PopupsTestSupport.h"

namespace {

using kelui::controls::UI_TextButton;
using kelui::ui::UI_Dialog;
using kelui::ui::UI_SubView;
using popupstest::HostWindow;
using popupstest::Make;
using popupstest::WaitFor;

// A dialog with content that holds Cancel and OK buttons, as the dialog workflow host builds it.
struct DialogWithButtons {
    explicit DialogWithButtons(QWidget* parent = nullptr)
        : dialog(Make<UI_Dialog>(nullptr, u"Choose a location", kelcore::geom::PointT<float>{},
                                 parent)),
          content(Make<UI_SubView>()),
          cancel(Make<UI_TextButton>()),
          commit(Make<UI_TextButton>()) {
        cancel->SetText(u"Cancel");
        commit->SetText(u"OK");
        cancel->NotifyWhenChanged([this] { ++cancelClicks; });
        commit->NotifyWhenChanged([this] { ++commitClicks; });
        content->ChildPushBack(cancel);
        content->ChildPushBack(commit);
        cancel->UI_SetLocalRectF({150.0f, 110.0f, 80.0f, 24.0f});
        commit->UI_SetLocalRectF({240.0f, 110.0f, 60.0f, 24.0f});
        cancel->UI_Show(true);
        commit->UI_Show(true);
        dialog->GetViewContainer()->ChildPushBack(content);
        content->UI_SetLocalRectF({0.0f, 0.0f, 320.0f, 150.0f});
        content->UI_Show(true);
        dialog->UI_SetLocalRect({0, 0, 320, 150});
        dialog->Position();
        dialog->SetContentSize(320.0f, 150.0f);
        dialog->SetButtons(cancel, commit);
    }

    QWidget* Window() const { return dialog->GetWidget(); }
    // Where keys go when the focus is on the content itself rather than on a button.
    QWidget* Body() const { return content->GetWidget(); }

    // Runs `whileShown` from inside the modal loop, once the dialog is on screen, and returns
    // what RunModal returned.
    int RunModalAnd(std::function<void()> whileShown) {
        QMetaObject::invokeMethod(
            qApp,
            [this, whileShown = std::move(whileShown)] {
                EXPECT_TRUE(dialog->IsShownModal());
                EXPECT_TRUE(Window()->isVisible());
                whileShown();
            },
            Qt::QueuedConnection);
        return dialog->RunModal();
    }

    boost::intrusive_ptr<UI_Dialog> dialog;
    boost::intrusive_ptr<UI_SubView> content;
    boost::intrusive_ptr<UI_TextButton> cancel;
    boost::intrusive_ptr<UI_TextButton> commit;
    int cancelClicks = 0;
    int commitClicks = 0;
};

TEST(UI_Dialog, IsAHiddenTitledDialogWithItsBodyAsChild) {
    DialogWithButtons fixture;
    EXPECT_NE(qobject_cast<QDialog*>(fixture.Window()), nullptr);
    EXPECT_FALSE(fixture.Window()->isVisible());
    EXPECT_FALSE(fixture.dialog->IsShownModal());
    EXPECT_EQ(fixture.Window()->windowTitle(), QStringLiteral("Choose a location"));
    EXPECT_EQ(fixture.dialog->GetViewContainer()->UI_GetParentNode(), fixture.dialog.get());
    EXPECT_EQ(fixture.Window()->size(), QSize(320, 150));
    EXPECT_EQ(fixture.dialog->GetViewContainer()->GetWidget()->geometry(), QRect(0, 0, 320, 150));
    EXPECT_EQ(fixture.cancel->UI_GetDrawSupplier(),
              kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier());
}

TEST(UI_Dialog, KeepsTheButtonsItWasGiven) {
    auto dialog = Make<UI_Dialog>(nullptr, u"", kelcore::geom::PointT<float>{}, nullptr);
    EXPECT_EQ(dialog->GetCancelButton(), nullptr);
    EXPECT_EQ(dialog->GetCommitButton(), nullptr);
    DialogWithButtons fixture;
    EXPECT_EQ(fixture.dialog->GetCancelButton(), fixture.cancel);
    EXPECT_EQ(fixture.dialog->GetCommitButton(), fixture.commit);
}

TEST(UI_Dialog, EscClicksCancelAndClosesAsCancelled) {
    DialogWithButtons fixture;
    const int result =
        fixture.RunModalAnd([&] { QTest::keyClick(fixture.Body(), Qt::Key_Escape); });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(fixture.cancelClicks, 1);
    EXPECT_EQ(fixture.commitClicks, 0);
    EXPECT_FALSE(fixture.Window()->isVisible());
    EXPECT_FALSE(fixture.dialog->IsShownModal());
}

TEST(UI_Dialog, EnterClicksCommitAndClosesAsCommitted) {
    DialogWithButtons fixture;
    const int result =
        fixture.RunModalAnd([&] { QTest::keyClick(fixture.Body(), Qt::Key_Return); });
    EXPECT_EQ(result, 1);
    EXPECT_EQ(fixture.commitClicks, 1);
    EXPECT_EQ(fixture.cancelClicks, 0);
}

TEST(UI_Dialog, TheKeypadsEnterCommitsToo) {
    DialogWithButtons fixture;
    const int result = fixture.RunModalAnd(
        [&] { QTest::keyClick(fixture.Body(), Qt::Key_Enter, Qt::KeypadModifier); });
    EXPECT_EQ(result, 1);
    EXPECT_EQ(fixture.commitClicks, 1);
}

TEST(UI_Dialog, EnterDoesNothingWhileCommitIsDisabled) {
    DialogWithButtons fixture;
    fixture.commit->UI_SetEnabled(false);
    bool stillShown = false;
    const int result = fixture.RunModalAnd([&] {
        QTest::keyClick(fixture.Body(), Qt::Key_Return);
        QCoreApplication::processEvents();
        stillShown = fixture.Window()->isVisible();
        fixture.dialog->DefaultCloseCancel();
    });
    EXPECT_TRUE(stillShown);
    EXPECT_EQ(fixture.commitClicks, 0);
    EXPECT_EQ(result, 0);
}

TEST(UI_Dialog, AnOwnerThatClosesOnCommitStillGetsCommitted) {
    DialogWithButtons fixture;
    // The workflow host hides the dialog from the commit button's handler.
    fixture.commit->NotifyWhenChanged([&] {
        ++fixture.commitClicks;
        fixture.dialog->UI_Hide(true);
    });
    const int result =
        fixture.RunModalAnd([&] { QTest::keyClick(fixture.Body(), Qt::Key_Return); });
    EXPECT_EQ(result, 1);
    EXPECT_EQ(fixture.commitClicks, 1);
}

TEST(UI_Dialog, AnOwnerThatClosesOnCancelGetsCancelled) {
    DialogWithButtons fixture;
    fixture.cancel->NotifyWhenChanged([&] {
        ++fixture.cancelClicks;
        fixture.dialog->UI_Hide(true);
    });
    const int result =
        fixture.RunModalAnd([&] { QTest::keyClick(fixture.Body(), Qt::Key_Escape); });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(fixture.cancelClicks, 1);
}

TEST(UI_Dialog, ClickingTheOwnersButtonsActsThroughTheOwner) {
    DialogWithButtons fixture;
    fixture.commit->NotifyWhenChanged([&] {
        ++fixture.commitClicks;
        fixture.dialog->UI_Hide(true);
    });
    const int result = fixture.RunModalAnd(
        [&] { QTest::mouseClick(fixture.commit->GetWidget(), Qt::LeftButton); });
    EXPECT_EQ(fixture.commitClicks, 1);
    EXPECT_EQ(result, 0);  // the owner closed it without Enter: as cancelled
}

TEST(UI_Dialog, DefaultCloseCancelClosesAsCancelledWithoutClicking) {
    DialogWithButtons fixture;
    const int result = fixture.RunModalAnd([&] { fixture.dialog->DefaultCloseCancel(); });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(fixture.cancelClicks, 0);
    EXPECT_FALSE(fixture.Window()->isVisible());
    fixture.dialog->DefaultCloseCancel();  // closed already: nothing happens
}

TEST(UI_Dialog, EscWithoutButtonsClosesAsCancelled) {
    auto dialog = Make<UI_Dialog>(nullptr, u"", kelcore::geom::PointT<float>{}, nullptr);
    dialog->UI_SetLocalRect({0, 0, 200, 100});
    QMetaObject::invokeMethod(
        qApp, [&] { QTest::keyClick(dialog->GetWidget(), Qt::Key_Escape); }, Qt::QueuedConnection);
    EXPECT_EQ(dialog->RunModal(), 0);
}

TEST(UI_Dialog, TheWindowsCloseButtonCancels) {
    DialogWithButtons fixture;
    const int result = fixture.RunModalAnd([&] { fixture.Window()->close(); });
    EXPECT_EQ(result, 0);
    EXPECT_EQ(fixture.cancelClicks, 1);
}

TEST(UI_Dialog, RunsModalAgainAfterClosing) {
    DialogWithButtons fixture;
    EXPECT_EQ(fixture.RunModalAnd([&] { QTest::keyClick(fixture.Body(), Qt::Key_Escape); }), 0);
    EXPECT_EQ(fixture.RunModalAnd([&] { QTest::keyClick(fixture.Body(), Qt::Key_Return); }), 1);
}

TEST(UI_Dialog, IsApplicationModalWhileRunning) {
    DialogWithButtons fixture;
    Qt::WindowModality modality = Qt::NonModal;
    fixture.RunModalAnd([&] {
        modality = fixture.Window()->windowModality();
        fixture.dialog->DefaultCloseCancel();
    });
    EXPECT_NE(modality, Qt::NonModal);
}

TEST(UI_Dialog, PositionCentresItOnItsParentWindow) {
    HostWindow host(QRect(100, 80, 600, 400));
    DialogWithButtons fixture(&host.window);
    fixture.dialog->Position();
    const QPoint hostCentre = host.window.frameGeometry().center();
    const QPoint dialogCentre = fixture.Window()->frameGeometry().center();
    EXPECT_NEAR(dialogCentre.x(), hostCentre.x(), 1);
    EXPECT_NEAR(dialogCentre.y(), hostCentre.y(), 1);
}

TEST(UI_Dialog, PositionCentresItOnThePrimaryScreenWithoutAParent) {
    DialogWithButtons fixture;
    fixture.dialog->Position();
    const QPoint screenCentre = QGuiApplication::primaryScreen()->availableGeometry().center();
    const QPoint dialogCentre = fixture.Window()->frameGeometry().center();
    EXPECT_NEAR(dialogCentre.x(), screenCentre.x(), 1);
    EXPECT_NEAR(dialogCentre.y(), screenCentre.y(), 1);
}

TEST(UI_Dialog, TheUserCannotResizeIt) {
    DialogWithButtons fixture;
    EXPECT_EQ(fixture.Window()->minimumSize(), QSize(320, 150));
    EXPECT_EQ(fixture.Window()->maximumSize(), QSize(320, 150));
    fixture.dialog->UI_SetLocalRect({0, 0, 400, 200});
    EXPECT_EQ(fixture.Window()->size(), QSize(400, 200));
}

TEST(UI_Dialog, AWindowWithoutASizeTakesTheContentSize) {
    auto dialog = Make<UI_Dialog>(nullptr, u"", kelcore::geom::PointT<float>{}, nullptr);
    dialog->SetContentSize(250.0f, 120.0f);
    EXPECT_EQ(dialog->GetWidget()->size(), QSize(250, 120));
}

}  // namespace

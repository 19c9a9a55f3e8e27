#include <kelui/dialogs/messagebox/Messagebox.h>
#include <kelui/dialogs/messagebox/QtMessageboxPresenter.h>
#include <kelui/ui/QtWindow.h>

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QMessageBox>
#include <QMetaObject>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

#include "keluiqt/popups/PopupsTestSupport.h"

namespace {

using kelui::dialogs::messagebox::MessageboxPresenter;
using kelui::dialogs::messagebox::QtMessageboxPresenter;
using kelui::dialogs::messagebox::UI_MessageBox;

// Installs the Qt presenter for one test.
struct PresenterFixture {
    PresenterFixture() { MessageboxPresenter::SetDefaultInstance(presenter); }
    ~PresenterFixture() { MessageboxPresenter::SetDefaultInstance(nullptr); }

    // Asks through the toolkit's entry while `answer` acts on the box from inside its loop.
    UI_MessageBox::Button Ask(std::function<void(QMessageBox&)> answer, bool* checkBox = nullptr,
                              UI_MessageBox::Button defaultButton = UI_MessageBox::Button1,
                              std::shared_ptr<kelui::ui::UI_Window> parent = nullptr) {
        QMetaObject::invokeMethod(
            qApp,
            [answer = std::move(answer)] {
                auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
                ASSERT_NE(box, nullptr);
                answer(*box);
            },
            Qt::QueuedConnection);
        return kelui::dialogs::messagebox::Messagebox(
            nullptr, "Quit Editor", "Two shares are still uploading.", parent, "Close now",
            "Close later", "", "Keep working", "", checkBox, defaultButton,
            UI_MessageBox::Icon::Warning, nullptr, 0.0f, 0.0f);
    }

    std::shared_ptr<QtMessageboxPresenter> presenter = std::make_shared<QtMessageboxPresenter>();
};

QPushButton* ButtonLabelled(QMessageBox& box, const QString& label) {
    for (QAbstractButton* button : box.buttons()) {
        if (button->text() == label) {
            return qobject_cast<QPushButton*>(button);
        }
    }
    return nullptr;
}

TEST(QtMessageboxPresenter, ShowsTheRequestAndAnswersThePressedButton) {
    PresenterFixture fixture;
    QStringList labels;
    QString title;
    QString text;
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    const auto answer = fixture.Ask([&](QMessageBox& box) {
        title = box.windowTitle();
        text = box.text();
        icon = box.icon();
        // Left to right as the buttons were asked for; empty texts left out.
        QList<QAbstractButton*> buttons = box.buttons();
        std::sort(buttons.begin(), buttons.end(), [](QAbstractButton* a, QAbstractButton* b) {
            return a->mapToGlobal(QPoint()).x() < b->mapToGlobal(QPoint()).x();
        });
        for (QAbstractButton* button : buttons) {
            labels << button->text();
        }
        QTest::mouseClick(ButtonLabelled(box, QStringLiteral("Keep working")), Qt::LeftButton);
    });
    EXPECT_EQ(answer, UI_MessageBox::Button4);
    EXPECT_EQ(title, QStringLiteral("Quit Editor"));
    EXPECT_EQ(text, QStringLiteral("Two shares are still uploading."));
    EXPECT_EQ(icon, QMessageBox::Warning);
    EXPECT_EQ(labels, (QStringList{QStringLiteral("Close now"), QStringLiteral("Close later"),
                                   QStringLiteral("Keep working")}));
}

TEST(QtMessageboxPresenter, EnterPressesTheDefaultButton) {
    PresenterFixture fixture;
    QString defaultLabel;
    const auto answer = fixture.Ask(
        [&](QMessageBox& box) {
            defaultLabel = box.defaultButton() ? box.defaultButton()->text() : QString();
            QTest::keyClick(&box, Qt::Key_Return);
        },
        nullptr, UI_MessageBox::Button2);
    EXPECT_EQ(defaultLabel, QStringLiteral("Close later"));
    EXPECT_EQ(answer, UI_MessageBox::Button2);
}

TEST(QtMessageboxPresenter, TheCheckBoxStartsAsAskedAndItsStateComesBack) {
    PresenterFixture fixture;
    bool dontAskAgain = false;
    bool shownChecked = true;
    const auto answer = fixture.Ask(
        [&](QMessageBox& box) {
            ASSERT_NE(box.checkBox(), nullptr);
            shownChecked = box.checkBox()->isChecked();
            QTest::mouseClick(box.checkBox(), Qt::LeftButton, {}, QPoint(4, 4));
            QTest::mouseClick(ButtonLabelled(box, QStringLiteral("Close now")), Qt::LeftButton);
        },
        &dontAskAgain);
    EXPECT_EQ(answer, UI_MessageBox::Button1);
    EXPECT_FALSE(shownChecked);
    EXPECT_TRUE(dontAskAgain);
}

TEST(QtMessageboxPresenter, HasNoCheckBoxUnlessAsked) {
    PresenterFixture fixture;
    bool hadCheckBox = true;
    fixture.Ask([&](QMessageBox& box) {
        hadCheckBox = box.checkBox() != nullptr;
        QTest::mouseClick(ButtonLabelled(box, QStringLiteral("Close now")), Qt::LeftButton);
    });
    EXPECT_FALSE(hadCheckBox);
}

TEST(QtMessageboxPresenter, BelongsToTheRequestsWindow) {
    PresenterFixture fixture;
    popupstest::HostWindow host;
    QWidget* parent = nullptr;
    fixture.Ask(
        [&](QMessageBox& box) {
            parent = box.parentWidget();
            QTest::mouseClick(ButtonLabelled(box, QStringLiteral("Close now")), Qt::LeftButton);
        },
        nullptr, UI_MessageBox::Button1, std::make_shared<kelui::ui::QtWindow>(&host.window));
    EXPECT_EQ(parent, &host.window);
}

TEST(QtMessageboxPresenter, ALoneButtonAnswersEsc) {
    PresenterFixture fixture;
    QMetaObject::invokeMethod(
        qApp,
        [] {
            QWidget* box = QApplication::activeModalWidget();
            ASSERT_NE(box, nullptr);
            QTest::keyClick(box, Qt::Key_Escape);
        },
        Qt::QueuedConnection);
    const auto answer = kelui::dialogs::messagebox::Messagebox(
        nullptr, "Share", "The link was copied.", nullptr, "OK", "", "", "", "", nullptr,
        UI_MessageBox::Button1, UI_MessageBox::Icon::Information, nullptr, 0.0f, 0.0f);
    EXPECT_EQ(answer, UI_MessageBox::Button1);
}

TEST(QtMessageboxPresenter, ButtonLabelsShowTheirAmpersands) {
    PresenterFixture fixture;
    QString shown;
    QMetaObject::invokeMethod(
        qApp,
        [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            ASSERT_EQ(box->buttons().size(), 1);
            shown = box->buttons().front()->text();
            QTest::mouseClick(box->buttons().front(), Qt::LeftButton);
        },
        Qt::QueuedConnection);
    kelui::dialogs::messagebox::Messagebox(nullptr, "", "", nullptr, "Save & close", "", "", "", "",
                                           nullptr, UI_MessageBox::Button1,
                                           UI_MessageBox::Icon::None, nullptr, 0.0f, 0.0f);
    EXPECT_EQ(shown, QStringLiteral("Save && close"));
}

}  // namespace

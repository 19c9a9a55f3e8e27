#include <kelui/controls/UI_PicturePopup.h>
#include <kelui/controls/UI_Popup.h>
#include <kelui/ui/UI_NodeManager.h>
#include <kelui/utility/SvgImage.h>

#include <QAccessible>
#include <QAction>
#include <QImage>
#include <QMenu>
#include <QTest>

#include <gtest/gtest.h>

#include "keluiqt/popups/PopupsTestSupport.h"

namespace {

using kelui::controls::UI_PicturePopup;
using kelui::controls::UI_Popup;
using popupstest::HostWindow;
using popupstest::Make;
using popupstest::WaitFor;

constexpr char kSquareSvg[] =
    "<svg xmlns='http://www.w3.org/2000/svg' width='16' height='16' viewBox='0 0 16 16'>"
    "<rect x='1' y='1' width='14' height='14' fill='currentColor'/></svg>";

kelui::ui::ImageSupplyFunction SquareSupply(int* calls = nullptr) {
    auto image = kelui::utility::SvgImage::FromData(kSquareSvg);
    return std::make_shared<std::function<void(kelui::ui::ConstMessage*)>>(
        [image, calls](kelui::ui::ConstMessage* message) {
            if (calls) {
                ++*calls;
            }
            if (auto* request = dynamic_cast<kelui::ui::UI_PictureSupplyMessage*>(message)) {
                request->SetImage(image);
            }
        });
}

// A popup with three items, shown in a host window.
struct PopupInWindow {
    explicit PopupInWindow(boost::intrusive_ptr<UI_Popup> made = Make<UI_Popup>())
        : popup(std::move(made)) {
        popup->AddItem(u"First", -1);
        popup->AddItem(u"Second", -1);
        popup->AddItem(u"Third", -1);
        host.node->ChildPushBack(popup);
        popup->UI_SetLocalRectF({20.0f, 20.0f, 160.0f, 24.0f});
        popup->UI_Show(true);
        popup->NotifyWhenChanged([this] { ++notified; });
    }
    ~PopupInWindow() { popup->HideMenu(); }

    QWidget* Button() const { return popup->GetWidget(); }
    QMenu* Menu() const { return popup->GetMenu(); }
    bool OpenWithKeyboard() {
        Button()->setFocus();
        QTest::keyClick(Button(), Qt::Key_Space);
        return WaitFor([this] { return Menu()->isVisible(); });
    }

    HostWindow host;
    boost::intrusive_ptr<UI_Popup> popup;
    int notified = 0;
};

QString AccessibleName(QObject* object) {
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(object);
    return accessible ? accessible->text(QAccessible::Name) : QStringLiteral("<none>");
}

TEST(UI_Popup, AddItemAppendsOrInsertsAndAnswersTheIndex) {
    auto popup = Make<UI_Popup>();
    EXPECT_EQ(popup->AddItem(u"A", -1), 0);
    EXPECT_EQ(popup->AddItem(u"B", -1), 1);
    EXPECT_EQ(popup->AddItem(u"Z", 0), 0);
    EXPECT_EQ(popup->AddItem(u"End", 99), 3);

    ASSERT_EQ(popup->GetItemCount(), 4);
    EXPECT_EQ(popup->GetItemText(0), u"Z");
    EXPECT_EQ(popup->GetItemText(1), u"A");
    EXPECT_EQ(popup->GetItemText(3), u"End");
    EXPECT_EQ(popup->GetItemText(4), u"");
    EXPECT_EQ(popup->GetItemText(-1), u"");
    // The list shows the items in the same order.
    ASSERT_EQ(popup->GetMenu()->actions().size(), 4);
    EXPECT_EQ(popup->GetMenu()->actions()[1]->text(), QStringLiteral("A"));
}

TEST(UI_Popup, InsertingBeforeTheChosenItemKeepsItChosen) {
    auto popup = Make<UI_Popup>();
    popup->AddItem(u"A", -1);
    popup->AddItem(u"B", -1);
    popup->SetValue(1);
    popup->AddItem(u"Before", 0);
    EXPECT_EQ(popup->GetValue(), 2);
    EXPECT_EQ(popup->GetItemText(popup->GetValue()), u"B");
}

TEST(UI_Popup, StartsWithNoItemChosen) {
    auto popup = Make<UI_Popup>();
    popup->AddItem(u"A", -1);
    EXPECT_EQ(popup->GetValue(), -1);
}

TEST(UI_Popup, ValueMinusOneShowsNoItem) {
    auto withItems = Make<UI_Popup>();
    withItems->AddItem(u"Something long enough to see", -1);
    withItems->SetValue(0);
    auto empty = Make<UI_Popup>();
    for (const auto& popup : {withItems, empty}) {
        popup->UI_SetLocalRectF({0.0f, 0.0f, 200.0f, 24.0f});
    }
    const QImage showingItem = withItems->GetWidget()->grab().toImage();

    withItems->SetValue(-1);

    EXPECT_EQ(withItems->GetValue(), -1);
    const QImage showingNone = withItems->GetWidget()->grab().toImage();
    EXPECT_NE(showingNone, showingItem);
    EXPECT_EQ(showingNone, empty->GetWidget()->grab().toImage());
    EXPECT_EQ(AccessibleName(withItems->GetWidget()), QString());
}

TEST(UI_Popup, SetValueOutOfRangeChoosesNone) {
    auto popup = Make<UI_Popup>();
    popup->AddItem(u"A", -1);
    popup->SetValue(0);
    popup->SetValue(5);
    EXPECT_EQ(popup->GetValue(), -1);
}

TEST(UI_Popup, SetValueDoesNotNotify) {
    auto popup = Make<UI_Popup>();
    int notified = 0;
    popup->NotifyWhenChanged([&] { ++notified; });
    popup->AddItem(u"A", -1);
    popup->AddItem(u"B", -1);
    popup->SetValue(1);
    popup->SetValue(-1);
    EXPECT_EQ(notified, 0);
}

TEST(UI_Popup, PickingWithTheKeyboardSetsTheValueAndNotifiesOnce) {
    PopupInWindow fixture;
    fixture.popup->SetValue(0);
    ASSERT_TRUE(fixture.OpenWithKeyboard());
    // The chosen item is where the keyboard starts.
    EXPECT_EQ(fixture.Menu()->activeAction(), fixture.Menu()->actions()[0]);

    QTest::keyClick(fixture.Menu(), Qt::Key_Down);
    QTest::keyClick(fixture.Menu(), Qt::Key_Return);

    EXPECT_TRUE(WaitFor([&] { return !fixture.Menu()->isVisible(); }));
    EXPECT_EQ(fixture.popup->GetValue(), 1);
    EXPECT_EQ(fixture.notified, 1);
    EXPECT_EQ(AccessibleName(fixture.Button()), QStringLiteral("Second"));
}

TEST(UI_Popup, PickingWithTheMouseSetsTheValueAndNotifiesOnce) {
    PopupInWindow fixture;
    QTest::mouseClick(fixture.Button(), Qt::LeftButton);
    ASSERT_TRUE(WaitFor([&] { return fixture.Menu()->isVisible(); }));
    QAction* third = fixture.Menu()->actions()[2];

    QTest::mouseClick(fixture.Menu(), Qt::LeftButton, {},
                      fixture.Menu()->actionGeometry(third).center());

    EXPECT_TRUE(WaitFor([&] { return !fixture.Menu()->isVisible(); }));
    EXPECT_EQ(fixture.popup->GetValue(), 2);
    EXPECT_EQ(fixture.notified, 1);
    EXPECT_FALSE(fixture.popup->IsMenuShowing());
}

TEST(UI_Popup, PickingTheChosenItemAgainStillNotifies) {
    PopupInWindow fixture;
    fixture.popup->SetValue(1);
    ASSERT_TRUE(fixture.OpenWithKeyboard());
    QTest::keyClick(fixture.Menu(), Qt::Key_Return);
    EXPECT_TRUE(WaitFor([&] { return !fixture.Menu()->isVisible(); }));
    EXPECT_EQ(fixture.popup->GetValue(), 1);
    EXPECT_EQ(fixture.notified, 1);
}

TEST(UI_Popup, AltDownAndF4OpenTheList) {
    for (const auto& [key, modifiers] :
         {std::pair{Qt::Key_Down, Qt::KeyboardModifiers(Qt::AltModifier)},
          std::pair{Qt::Key_F4, Qt::KeyboardModifiers()}}) {
        PopupInWindow fixture;
        fixture.Button()->setFocus();
        QTest::keyClick(fixture.Button(), key, modifiers);
        EXPECT_TRUE(WaitFor([&] { return fixture.Menu()->isVisible(); })) << key;
        QTest::keyClick(fixture.Menu(), Qt::Key_Escape);
        EXPECT_TRUE(WaitFor([&] { return !fixture.Menu()->isVisible(); })) << key;
    }
}

TEST(UI_Popup, EscClosesTheListWithoutPicking) {
    PopupInWindow fixture;
    fixture.popup->SetValue(2);
    ASSERT_TRUE(fixture.OpenWithKeyboard());
    QTest::keyClick(fixture.Menu(), Qt::Key_Up);
    QTest::keyClick(fixture.Menu(), Qt::Key_Escape);
    EXPECT_TRUE(WaitFor([&] { return !fixture.Menu()->isVisible(); }));
    EXPECT_EQ(fixture.popup->GetValue(), 2);
    EXPECT_EQ(fixture.notified, 0);
    EXPECT_FALSE(fixture.popup->IsMenuShowing());
}

TEST(UI_Popup, DisabledItemsCannotBePicked) {
    PopupInWindow fixture;
    fixture.popup->DisableItem(1, true);
    EXPECT_FALSE(fixture.popup->IsItemEnabled(1));
    EXPECT_TRUE(fixture.popup->IsItemEnabled(0));
    EXPECT_FALSE(fixture.popup->IsItemEnabled(7));
    ASSERT_TRUE(fixture.OpenWithKeyboard());
    QAction* second = fixture.Menu()->actions()[1];

    QTest::mouseClick(fixture.Menu(), Qt::LeftButton, {},
                      fixture.Menu()->actionGeometry(second).center());
    EXPECT_TRUE(fixture.Menu()->isVisible());
    EXPECT_EQ(fixture.notified, 0);
    // The keyboard steps over it: from the first item, Down lands on the third.
    fixture.Menu()->setActiveAction(fixture.Menu()->actions()[0]);
    QTest::keyClick(fixture.Menu(), Qt::Key_Down);
    QTest::keyClick(fixture.Menu(), Qt::Key_Return);

    EXPECT_TRUE(WaitFor([&] { return !fixture.Menu()->isVisible(); }));
    EXPECT_EQ(fixture.popup->GetValue(), 2);
    EXPECT_EQ(fixture.notified, 1);
}

TEST(UI_Popup, EnableAllItemsEnablesEveryItem) {
    auto popup = Make<UI_Popup>();
    popup->AddItem(u"A", -1);
    popup->AddItem(u"B", -1);
    popup->DisableItem(0, true);
    popup->DisableItem(1, true);
    popup->EnableAllItems();
    EXPECT_TRUE(popup->IsItemEnabled(0));
    EXPECT_TRUE(popup->IsItemEnabled(1));
}

TEST(UI_Popup, DeleteAllItemsEmptiesTheListAndChoosesNone) {
    auto popup = Make<UI_Popup>();
    popup->AddItem(u"A", -1);
    popup->AddItem(u"B", -1);
    popup->SetValue(1);
    popup->DeleteAllItems();
    EXPECT_EQ(popup->GetItemCount(), 0);
    EXPECT_EQ(popup->GetValue(), -1);
    EXPECT_TRUE(popup->GetMenu()->actions().isEmpty());
    EXPECT_EQ(popup->AddItem(u"C", -1), 0);
}

TEST(UI_Popup, PreAndPostShowCallbacksRunAroundTheList) {
    PopupInWindow fixture;
    std::vector<std::string> events;
    fixture.popup->SetPreShowMenuCallback([&](UI_Popup& popup) {
        EXPECT_EQ(&popup, fixture.popup.get());
        events.push_back(fixture.Menu()->isVisible() ? "pre while open" : "pre");
    });
    fixture.popup->SetPostShowMenuCallback([&](UI_Popup&) {
        events.push_back(fixture.Menu()->isVisible() ? "post while open" : "post");
    });
    fixture.popup->NotifyWhenChanged([&] { events.push_back("picked"); });

    fixture.popup->ShowMenu();
    ASSERT_TRUE(WaitFor([&] { return fixture.Menu()->isVisible(); }));
    EXPECT_EQ(events, (std::vector<std::string>{"pre"}));
    QTest::keyClick(fixture.Menu(), Qt::Key_Down);
    QTest::keyClick(fixture.Menu(), Qt::Key_Return);
    ASSERT_TRUE(WaitFor([&] { return events.size() == 3; }));

    EXPECT_EQ(events, (std::vector<std::string>{"pre", "post", "picked"}));
}

TEST(UI_Popup, PostShowCallbackRunsWhenTheListIsDismissedWithEsc) {
    PopupInWindow fixture;
    int pre = 0;
    int post = 0;
    fixture.popup->SetPreShowMenuCallback([&](UI_Popup&) { ++pre; });
    fixture.popup->SetPostShowMenuCallback([&](UI_Popup&) { ++post; });
    ASSERT_TRUE(fixture.OpenWithKeyboard());
    EXPECT_EQ(post, 0);

    QTest::keyClick(fixture.Menu(), Qt::Key_Escape);

    EXPECT_TRUE(WaitFor([&] { return post == 1; }));
    EXPECT_EQ(pre, 1);
    EXPECT_EQ(fixture.notified, 0);
}

TEST(UI_Popup, ShowMenuDoesNothingWhenDisabledOrEmpty) {
    PopupInWindow fixture;
    int pre = 0;
    fixture.popup->SetPreShowMenuCallback([&](UI_Popup&) { ++pre; });
    fixture.popup->UI_SetEnabled(false);
    fixture.popup->ShowMenu();
    EXPECT_FALSE(fixture.popup->IsMenuShowing());
    fixture.popup->UI_SetEnabled(true);
    fixture.popup->DeleteAllItems();
    fixture.popup->ShowMenu();
    EXPECT_FALSE(fixture.popup->IsMenuShowing());
    EXPECT_EQ(pre, 0);
}

TEST(UI_Popup, ItemTextsAreTheListsAccessibleNames) {
    PopupInWindow fixture;
    fixture.popup->AddItem(u"Save & share", -1);
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(fixture.Menu());
    ASSERT_NE(list, nullptr);
    ASSERT_EQ(list->childCount(), 4);
    EXPECT_EQ(list->child(0)->text(QAccessible::Name), QStringLiteral("First"));
    EXPECT_EQ(list->child(3)->text(QAccessible::Name), QStringLiteral("Save & share"));
    // The label is shown as it is written, not as a shortcut.
    EXPECT_EQ(fixture.Menu()->actions()[3]->iconText(), QStringLiteral("Save & share"));
}

TEST(UI_Popup, AccessibleNameIsTheChosenItemUnlessTheOwnerSetOne) {
    PopupInWindow fixture;
    QAccessibleInterface* button = QAccessible::queryAccessibleInterface(fixture.Button());
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->role(), QAccessible::ButtonMenu);
    fixture.popup->SetValue(2);
    EXPECT_EQ(button->text(QAccessible::Name), QStringLiteral("Third"));

    fixture.popup->SetAccessibleName(u"Encoder preset");
    fixture.popup->SetValue(0);
    EXPECT_EQ(button->text(QAccessible::Name), QStringLiteral("Encoder preset"));
}

TEST(UI_Popup, AccessiblePressOpensTheList) {
    PopupInWindow fixture;
    QAccessibleInterface* button = QAccessible::queryAccessibleInterface(fixture.Button());
    ASSERT_NE(button, nullptr);
    ASSERT_NE(button->actionInterface(), nullptr);
    button->actionInterface()->doAction(QAccessibleActionInterface::showMenuAction());
    EXPECT_TRUE(WaitFor([&] { return fixture.Menu()->isVisible(); }));
    EXPECT_TRUE(button->state().expanded);
}

TEST(UI_Popup, TabMovesTheFocusToTheNextPopup) {
    PopupInWindow fixture;
    auto second = Make<UI_Popup>();
    second->AddItem(u"Other", -1);
    fixture.host.node->ChildPushBack(second);
    second->UI_SetLocalRectF({20.0f, 60.0f, 160.0f, 24.0f});
    second->UI_Show(true);
    fixture.host.window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&fixture.host.window));
    EXPECT_EQ(fixture.Button()->focusPolicy(), Qt::StrongFocus);
    fixture.Button()->setFocus(Qt::OtherFocusReason);
    ASSERT_TRUE(fixture.Button()->hasFocus());

    QTest::keyClick(fixture.Button(), Qt::Key_Tab);

    EXPECT_TRUE(second->GetWidget()->hasFocus());
}

TEST(UI_Popup, ShowsAFocusRingOnlyWhenTheKeyboardBroughtTheFocus) {
    PopupInWindow fixture;
    fixture.host.window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&fixture.host.window));
    const QImage unfocused = fixture.Button()->grab().toImage();
    fixture.Button()->setFocus(Qt::MouseFocusReason);
    ASSERT_TRUE(fixture.Button()->hasFocus());
    const QImage clicked = fixture.Button()->grab().toImage();
    fixture.Button()->clearFocus();
    fixture.Button()->setFocus(Qt::TabFocusReason);
    const QImage tabbed = fixture.Button()->grab().toImage();
    EXPECT_EQ(clicked, unfocused);
    EXPECT_NE(tabbed, unfocused);
}

TEST(UI_Popup, MeasuresTheWidestItemTheChosenItemOrTheGivenWidth) {
    auto popup = Make<UI_Popup>();
    popup->AddItem(u"Short", -1);
    popup->AddItem(u"A considerably longer item", -1);
    popup->SetValue(0);
    auto measuring =
        kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier()->GetMeasuringLimner();
    const float longText =
        measuring->MeasureText(u"A considerably longer item", limner::FontDescription{}).x;
    const float shortText = measuring->MeasureText(u"Short", limner::FontDescription{}).x;

    const auto widest = popup->UI_GetRecommendedSize(*measuring);
    EXPECT_EQ(widest.y, 24.0f);
    EXPECT_GT(widest.x, longText + 8.0f);  // text, chevron and padding
    EXPECT_LT(widest.x, longText + 40.0f);

    popup->SetPickerMeasureStrategy(UI_Popup::kMeasureChosenItem);
    EXPECT_EQ(popup->GetPickerMeasureStrategy(), 1u);
    const auto chosen = popup->UI_GetRecommendedSize(*measuring);
    EXPECT_GT(chosen.x, shortText + 8.0f);
    EXPECT_FLOAT_EQ(widest.x - chosen.x, std::ceil(longText) - std::ceil(shortText));

    popup->SetPickerMeasureStrategy(UI_Popup::kMeasureGivenWidth);
    EXPECT_EQ(popup->UI_GetRecommendedSize(*measuring).x, widest.x);  // no width yet
    popup->UI_SetLocalRectF({0.0f, 0.0f, 233.0f, 24.0f});
    EXPECT_EQ(popup->UI_GetRecommendedSize(*measuring).x, 233.0f);
}

TEST(UI_Popup, KeepsItsChromeType) {
    auto popup = Make<UI_Popup>();
    EXPECT_EQ(popup->GetButtonChromeType(), 0u);
    popup->SetButtonChromeType(10);
    EXPECT_EQ(popup->GetButtonChromeType(), 10u);
}

TEST(UI_Popup, BorderlessChromeDrawsNoBox) {
    auto standard = Make<UI_Popup>();
    auto borderless = Make<UI_Popup>();
    borderless->SetButtonChromeType(UI_Popup::kChromeBorderless);
    for (const auto& popup : {standard, borderless}) {
        popup->UI_SetLocalRectF({0.0f, 0.0f, 120.0f, 24.0f});
    }
    // The left edge halfway down is the box's border, or bare background like the middle of
    // the empty button.
    const QImage standardImage = standard->GetWidget()->grab().toImage();
    const QImage borderlessImage = borderless->GetWidget()->grab().toImage();
    EXPECT_NE(standardImage.pixel(0, 12), standardImage.pixel(40, 12));
    EXPECT_EQ(borderlessImage.pixel(0, 12), borderlessImage.pixel(40, 12));
}

TEST(UI_Popup, ItemsWithACustomIconShowTheSuppliedPicture) {
    PopupInWindow fixture;
    int calls = 0;
    fixture.popup->SetImageSupplyFunction(SquareSupply(&calls));
    fixture.popup->AddItemWithCustomIcon(u"Account", -1);
    const QList<QAction*> actions = fixture.Menu()->actions();
    EXPECT_TRUE(actions[0]->icon().isNull());
    ASSERT_FALSE(actions[3]->icon().isNull());
    const QImage icon = actions[3]->icon().pixmap(16, 16).toImage();
    EXPECT_EQ(qAlpha(icon.pixel(8, 8)), 255);
    EXPECT_EQ(qAlpha(icon.pixel(0, 0)), 0);
    EXPECT_GE(calls, 1);
}

TEST(UI_Popup, ItemsWithACustomIconHaveNoneWithoutASupplyFunction) {
    auto popup = Make<UI_Popup>();
    popup->AddItemWithCustomIcon(u"Account", -1);
    EXPECT_TRUE(popup->GetMenu()->actions()[0]->icon().isNull());
}

TEST(UI_Popup, TheListOpensOnTheChosenItem) {
    PopupInWindow fixture;
    fixture.popup->SetValue(2);
    fixture.popup->ShowMenu();
    ASSERT_TRUE(WaitFor([&] { return fixture.Menu()->isVisible(); }));
    EXPECT_EQ(fixture.Menu()->activeAction(), fixture.Menu()->actions()[2]);
    // Below the button, at least as wide as it.
    EXPECT_EQ(fixture.Menu()->geometry().top(),
              fixture.Button()->mapToGlobal(QPoint(0, fixture.Button()->height())).y());
    EXPECT_GE(fixture.Menu()->width(), fixture.Button()->width());
}

TEST(UI_PicturePopup, IsAnEighteenPixelSquare) {
    auto popup = Make<UI_PicturePopup>();
    auto measuring =
        kelui::ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier()->GetMeasuringLimner();
    popup->AddItem(u"A long command name", -1);
    const auto size = popup->UI_GetRecommendedSize(*measuring);
    EXPECT_EQ(size.x, 18.0f);
    EXPECT_EQ(size.y, 18.0f);
}

TEST(UI_PicturePopup, AccessibleNameIsMoreUnlessTheOwnerSetOne) {
    auto popup = Make<UI_PicturePopup>();
    popup->AddItem(u"Sign out", -1);
    popup->SetValue(0);
    EXPECT_EQ(AccessibleName(popup->GetWidget()), QStringLiteral("More"));
    popup->SetAccessibleName(u"Account menu");
    EXPECT_EQ(AccessibleName(popup->GetWidget()), QStringLiteral("Account menu"));
}

TEST(UI_PicturePopup, DrawsOnlyItsPicture) {
    auto popup = Make<UI_PicturePopup>();
    popup->AddItem(u"Sign out", -1);
    popup->SetValue(0);
    popup->UI_SetLocalRectF({0.0f, 0.0f, 18.0f, 18.0f});
    // Without a picture the button is bare background: no text, no chevron, no box.
    const QImage empty = popup->GetWidget()->grab().toImage();
    const QRgb background = empty.pixel(0, 0);
    for (int y = 0; y < empty.height(); ++y) {
        for (int x = 0; x < empty.width(); ++x) {
            ASSERT_EQ(empty.pixel(x, y), background) << x << "," << y;
        }
    }
    popup->SetImageSupplyFunction(SquareSupply());
    const QImage withPicture = popup->GetWidget()->grab().toImage();
    EXPECT_NE(withPicture.pixel(9, 9), background);  // the square, centred
    EXPECT_EQ(withPicture.pixel(0, 0), background);  // nothing around it
}

TEST(UI_PicturePopup, EveryPickIsACommandThatNotifies) {
    PopupInWindow fixture(Make<UI_PicturePopup>());
    fixture.popup->UI_SetLocalRectF({200.0f, 20.0f, 18.0f, 18.0f});
    ASSERT_TRUE(fixture.OpenWithKeyboard());
    // The list hangs from the button's right edge.
    const QPoint buttonRight = fixture.Button()->mapToGlobal(QPoint(fixture.Button()->width(), 0));
    EXPECT_NEAR(fixture.Menu()->geometry().right() + 1, buttonRight.x(), 1);
    QTest::keyClick(fixture.Menu(), Qt::Key_Down);
    QTest::keyClick(fixture.Menu(), Qt::Key_Return);
    EXPECT_TRUE(WaitFor([&] { return fixture.notified == 1; }));
    EXPECT_EQ(fixture.popup->GetValue(), 0);
}

}  // namespace

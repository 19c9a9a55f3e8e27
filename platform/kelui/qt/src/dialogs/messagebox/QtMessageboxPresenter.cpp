#include <kelui/dialogs/messagebox/QtMessageboxPresenter.h>

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>

#include <kelcore/config/Localizer.h>
#include <kelui/ui/MainTopLevelWindow.h>
#include <kelui/ui/QtConversions.h>
#include <kelui/ui/QtWidgetHolder.h>

namespace kelui::dialogs::messagebox {

namespace {

QMessageBox::Icon ToQtIcon(UI_MessageBox::Icon icon) {
    switch (icon) {
        case UI_MessageBox::Icon::Information:
        case UI_MessageBox::Icon::Success:
            return QMessageBox::Information;
        case UI_MessageBox::Icon::Question:
            return QMessageBox::Question;
        case UI_MessageBox::Icon::Error:
            return QMessageBox::Critical;
        case UI_MessageBox::Icon::Warning:
            return QMessageBox::Warning;
        case UI_MessageBox::Icon::None:
            break;
    }
    return QMessageBox::NoIcon;
}

QWidget* FindParentWidget(const MessageboxRequest& request) {
    std::shared_ptr<ui::UI_Window> window = request.parent;
    if (!window) {
        window = ui::GetMainTopLevelWindow();
    }
    const auto* holder = dynamic_cast<const ui::QtWidgetHolder*>(window.get());
    QWidget* widget = holder ? holder->GetQWidget() : nullptr;
    return widget ? widget->window() : nullptr;
}

}  // namespace

UI_MessageBox::Button QtMessageboxPresenter::Present(const MessageboxRequest& request,
                                                     std::optional<bool>& checkBox) {
    QPointer<QMessageBox> box = new QMessageBox(FindParentWidget(request));
    box->setWindowTitle(QString::fromStdString(request.title));
    box->setText(QString::fromStdString(request.message));
    box->setIcon(ToQtIcon(request.icon));

    // Every button keeps the place it was asked for: one role for all, whose buttons the box
    // lays out in the order they were added.
    std::vector<std::pair<QAbstractButton*, UI_MessageBox::Button>> buttons;
    std::uint32_t bit = UI_MessageBox::Button1;
    for (const std::string& label : request.buttons) {
        if (!label.empty()) {
            QString text = QString::fromStdString(label);
            text.replace(QLatin1Char('&'), QLatin1String("&&"));
            QPushButton* button = box->addButton(text, QMessageBox::ActionRole);
            buttons.emplace_back(button, static_cast<UI_MessageBox::Button>(bit));
            if (bit == request.defaultButton) {
                box->setDefaultButton(button);
            }
        }
        bit <<= 1U;
    }
    if (buttons.size() == 1) {
        box->setEscapeButton(buttons.front().first);
    }
    if (request.checkBox) {
        auto* check = new QCheckBox(ui::ToQString(kelcore::config::Localizer::Get().GetString(
            "$$$/Corvane/kelui/dialogs/messagebox/DontShowAgain=Don't show this message again")));
        check->setChecked(*request.checkBox);
        box->setCheckBox(check);
    }

    box->exec();
    if (!box) {
        return UI_MessageBox::NoButton;  // its parent window went away meanwhile
    }
    UI_MessageBox::Button answer = UI_MessageBox::NoButton;
    for (const auto& [button, value] : buttons) {
        if (box->clickedButton() == button) {
            answer = value;
        }
    }
    if (request.checkBox && box->checkBox()) {
        checkBox = box->checkBox()->isChecked();
    }
    delete box.data();
    return answer;
}

}  // namespace kelui::dialogs::messagebox

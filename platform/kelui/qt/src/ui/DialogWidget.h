// The window of a UI_Dialog: a QDialog whose Esc, Enter and close button go to the node, which
// acts through the dialog's buttons and then closes it with a result. Private to the toolkit;
// main thread.
#pragma once

#include <QDialog>

namespace kelui::ui {
class UI_Dialog;
}

namespace kelui::ui::detail {

class DialogWidget final : public QDialog {
    Q_OBJECT
public:
    DialogWidget(UI_Dialog& node, QWidget* parent);

    /// The node dies before its window is deleted: from then on the window acts as a plain
    /// QDialog.
    void DetachNode() { node = nullptr; }

    void reject() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    UI_Dialog* node;
};

}  // namespace kelui::ui::detail

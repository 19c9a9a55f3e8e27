// One toast on screen: a rounded card with its type's icon, the message (one line cut with an
// ellipsis, or wrapped), the action button when the toast has a label, and a close button. It
// lies at the bottom centre of the host's window (as a child of it, following its size) or,
// without one, at the bottom of the primary screen as a small tool window that never takes the
// focus on its own. It closes by itself after its duration, on Esc, on its close button or on its
// action button, and says how once through `finished`. Screen readers hear the message as an
// alert. Made and owned by QtToastManager; private to the toolkit; main thread.
#pragma once

#include <string>

#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <boost/intrusive_ptr.hpp>

#include <kelui/limner/ImageInterface.h>
#include <kelui/sharedui/ToastLineType.h>
#include <kelui/sharedui/ToastType.h>

class QAbstractButton;
class QPushButton;

namespace kelui::sharedui::detail {

class ToastWidget final : public QWidget {
    Q_OBJECT
public:
    enum Outcome { kActionPressed = 0, kDismissed = 1 };

    /// A hidden toast over `host`'s window (null: a window of its own). `duration` is in
    /// milliseconds.
    ToastWidget(QWidget* host, const std::string& message, const std::string& buttonLabel,
                ToastType type, ToastLineType lineType, int duration);
    ~ToastWidget() override;

    /// Places, shows and announces the toast and starts its timer.
    void Present();
    /// Hides the toast and reports `outcome`, once; later calls do nothing.
    void Finish(Outcome outcome);
    bool IsFinished() const { return finished; }

    /// The message as shown: cut with an ellipsis when a single line does not fit.
    QString GetShownText() const;
    QPushButton* GetActionButton() const { return actionButton; }
    QAbstractButton* GetCloseButton() const { return closeButton; }

signals:
    /// The toast went away: `outcome` is an Outcome.
    void Finished(int outcome);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Layout();
    void Place();

    QPointer<QWidget> host;
    QString message;
    ToastLineType lineType;
    boost::intrusive_ptr<limner::ImageInterface> icon;
    QPushButton* actionButton = nullptr;
    QAbstractButton* closeButton = nullptr;
    QTimer timer;
    QRect iconRect;
    QRect textRect;
    bool finished = false;
};

}  // namespace kelui::sharedui::detail

#include <kelui/ui/QtMainThreadDispatcher.h>

#include <QCoreApplication>
#include <QMetaObject>
#include <QObject>

namespace kelui::ui {

QtMainThreadDispatcher::QtMainThreadDispatcher() : receiver(std::make_unique<QObject>()) {
    receiver->moveToThread(QCoreApplication::instance()->thread());
}

QtMainThreadDispatcher::~QtMainThreadDispatcher() = default;

void QtMainThreadDispatcher::Post(std::function<void()> task) {
    // A queued call carries the closure as a posted event of the receiver: Qt delivers the
    // posted events of one receiver in posting order, and drops them if the receiver goes.
    QMetaObject::invokeMethod(receiver.get(), std::move(task), Qt::QueuedConnection);
}

}  // namespace kelui::ui

#include <kelui/ui/QtMainThreadDispatcher.h>

#include <QCoreApplication>
#include <QEvent>
#include <QObject>

namespace kelui::ui {

// Lives on the main thread and turns each wake-up event into a run of the waiting closures.
class QtMainThreadDispatcher::Receiver final : public QObject {
public:
    explicit Receiver(QtMainThreadDispatcher& dispatcher) : dispatcher(dispatcher) {}

    static QEvent::Type WakeUpType() {
        static const auto type = static_cast<QEvent::Type>(QEvent::registerEventType());
        return type;
    }

protected:
    // Only wake-up events are posted to this private receiver, and QObject::event hands every
    // user event type here. The event itself is not read before RunWaiting takes the lock: it
    // was made by the posting thread.
    void customEvent(QEvent* /*event*/) override { dispatcher.RunWaiting(); }

private:
    QtMainThreadDispatcher& dispatcher;
};

QtMainThreadDispatcher::QtMainThreadDispatcher() : receiver(std::make_unique<Receiver>(*this)) {
    receiver->moveToThread(QCoreApplication::instance()->thread());
}

QtMainThreadDispatcher::~QtMainThreadDispatcher() {
    {
        // Taking the lock also orders the posters' wake-up events before Qt deletes them with
        // the receiver.
        const std::lock_guard lock(mutex);
        closed = true;
        waiting.clear();
    }
    receiver.reset();
}

void QtMainThreadDispatcher::Post(std::function<void()> task) {
    const std::lock_guard lock(mutex);
    if (closed) {
        return;
    }
    waiting.push_back(std::move(task));
    if (!wakePosted) {
        // Posted under the lock: the main thread takes the lock before Qt frees the event.
        wakePosted = true;
        QCoreApplication::postEvent(receiver.get(), new QEvent(Receiver::WakeUpType()));
    }
}

void QtMainThreadDispatcher::RunWaiting() {
    std::deque<std::function<void()>> batch;
    {
        const std::lock_guard lock(mutex);
        batch.swap(waiting);
        wakePosted = false;
    }
    for (auto& task : batch) {
        task();
    }
}

}  // namespace kelui::ui

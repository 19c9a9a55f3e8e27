#include <kelui/sharedui/QtToastManager.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

#include <QMetaObject>
#include <QObject>
#include <QPointer>

#include <kelcore/logging/Logging.h>
#include <kelui/ui/MainTopLevelWindow.h>
#include <kelui/ui/QtWidgetHolder.h>

#include "sharedui/ToastWidget.h"

namespace kelui::sharedui {

struct QtToastManager::State {
    // The receiver of the toasts' signals: connections end with the manager.
    QObject context;
    struct Shown {
        ToastMessage toast;
        detail::ToastWidget* raw = nullptr;  // identifies the widget after it is gone
        QPointer<detail::ToastWidget> widget;
    };
    std::optional<Shown> current;
    // Highest priority first; equal priorities in their order of arrival.
    std::vector<ToastMessage> waiting;
};

namespace {

QWidget* FindHostWidget(const ToastMessage& toast) {
    std::shared_ptr<ui::UI_Window> window = toast.window.lock();
    if (!window) {
        window = ui::GetMainTopLevelWindow();
    }
    const auto* holder = dynamic_cast<const ui::QtWidgetHolder*>(window.get());
    return holder ? holder->GetQWidget() : nullptr;
}

// Runs a toast's function from Qt's event loop, which an exception must not unwind through.
void RunGuarded(const std::function<void()>& function) {
    if (!function) {
        return;
    }
    try {
        function();
    } catch (...) {
        kelcore::logging::LogException("QtToastManager", std::current_exception());
    }
}

}  // namespace

QtToastManager::QtToastManager() : state(std::make_unique<State>()) {}

QtToastManager::~QtToastManager() {
    if (state->current && state->current->widget) {
        QObject::disconnect(state->current->widget, nullptr, &state->context, nullptr);
        delete state->current->widget.data();
    }
}

QWidget* QtToastManager::GetShownToast() const {
    return state->current ? state->current->widget.data() : nullptr;
}

std::size_t QtToastManager::GetWaitingCount() const {
    return state->waiting.size();
}

void QtToastManager::Display(ToastMessage toast) {
    auto& waiting = state->waiting;
    if (!state->current) {
        ShowNow(std::move(toast));
        return;
    }
    const std::int32_t priority = toast.priority;
    if (priority < state->current->toast.priority) {
        const auto position = std::find_if(
            waiting.begin(), waiting.end(),
            [priority](const ToastMessage& queued) { return queued.priority < priority; });
        waiting.insert(position, std::move(toast));
        return;
    }
    // The newer news replaces the toast on screen and goes ahead of its equals.
    const auto position = std::find_if(
        waiting.begin(), waiting.end(),
        [priority](const ToastMessage& queued) { return queued.priority <= priority; });
    waiting.insert(position, std::move(toast));
    if (state->current->widget) {
        state->current->widget->Finish(detail::ToastWidget::kDismissed);
    }
}

void QtToastManager::ShowNow(ToastMessage toast) {
    // 0 seconds keeps the toast until the user dismisses it (a failure that offers Try again).
    const int milliseconds =
        toast.duration > 0.0 ? static_cast<int>(std::lround(toast.duration * 1000.0)) : 0;
    auto* widget = new detail::ToastWidget(FindHostWidget(toast), toast.message, toast.buttonLabel,
                                           toast.type, toast.lineType, milliseconds);
    state->current = State::Shown{std::move(toast), widget, widget};
    // `this` outlives the connections: they are made with the manager's own context object.
    QObject::connect(widget, &detail::ToastWidget::Finished, &state->context,
                     [this, widget](int outcome) { OnFinished(widget, outcome); });
    QObject::connect(widget, &QObject::destroyed, &state->context,
                     [this, widget] { OnDestroyed(widget); });
    widget->Present();
}

void QtToastManager::ShowNext() {
    if (state->current || state->waiting.empty()) {
        return;
    }
    ToastMessage next = std::move(state->waiting.front());
    state->waiting.erase(state->waiting.begin());
    ShowNow(std::move(next));
}

void QtToastManager::OnFinished(QWidget* widget, int outcome) {
    if (!state->current || state->current->raw != widget) {
        return;
    }
    ToastMessage toast = std::move(state->current->toast);
    state->current.reset();
    widget->deleteLater();
    // Either function may show another toast; the next waiting one follows only if none did.
    RunGuarded(outcome == detail::ToastWidget::kActionPressed ? toast.action : toast.dismissal);
    ShowNext();
}

void QtToastManager::OnDestroyed(QWidget* widget) {
    if (!state->current || state->current->raw != widget) {
        return;
    }
    // Its window was closed under it: the toast went away unanswered. The functions run from the
    // event loop, not from inside the window's destruction; the queued call belongs to the
    // manager's context object, so it is dropped if the manager goes first.
    auto toast = std::make_shared<ToastMessage>(std::move(state->current->toast));
    state->current.reset();
    QMetaObject::invokeMethod(
        &state->context,
        [this, toast] {
            RunGuarded(toast->dismissal);
            ShowNext();
        },
        Qt::QueuedConnection);
}

}  // namespace kelui::sharedui

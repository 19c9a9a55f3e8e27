#include "controls/StaticTextWidget.h"

#include <QAccessible>
#include <QAccessibleWidget>

namespace kelui::controls::detail {

namespace {

// A plain widget reads as a client area; text reads better as what it is.
class StaticTextAccessible final : public QAccessibleWidget {
public:
    explicit StaticTextAccessible(QWidget* widget)
        : QAccessibleWidget(widget, QAccessible::StaticText) {}
};

QAccessibleInterface* CreateStaticTextAccessible(const QString& className, QObject* object) {
    if (object && object->isWidgetType() &&
        className == QLatin1String(StaticTextWidget::staticMetaObject.className())) {
        return new StaticTextAccessible(static_cast<QWidget*>(object));
    }
    return nullptr;
}

}  // namespace

StaticTextWidget::StaticTextWidget() {
    // The node's pointer events need enter, move and leave, as for any plain node.
    setMouseTracking(true);
    setAttribute(Qt::WA_Hover, true);
}

void StaticTextWidget::SetPaintFunction(std::function<void(QWidget&)> function) {
    paint = std::move(function);
}

void StaticTextWidget::InstallAccessibility() {
    static const bool installed = [] {
        QAccessible::installFactory(&CreateStaticTextAccessible);
        return true;
    }();
    static_cast<void>(installed);
}

void StaticTextWidget::paintEvent(QPaintEvent* /*event*/) {
    if (paint) {
        paint(*this);
    }
}

}  // namespace kelui::controls::detail

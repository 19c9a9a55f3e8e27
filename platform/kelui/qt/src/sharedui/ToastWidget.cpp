#include "sharedui/ToastWidget.h"

#include <algorithm>
#include <cmath>

#include <QAbstractButton>
#include <QAccessible>
#include <QAccessibleWidget>
#include <QEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPushButton>
#include <QScreen>

#include <kelcore/config/Localizer.h>
#include <kelui/limner/PaintableImage.h>
#include <kelui/ui/QtConversions.h>
#include <kelui/ui/UI_NodeManager.h>
#include <kelui/utility/ImageProvider.h>

namespace kelui::sharedui::detail {

namespace {

constexpr int kPadding = 12;
constexpr int kVerticalPadding = 10;
constexpr int kIconSize = 16;
constexpr int kGap = 8;
constexpr int kCloseSize = 20;
constexpr int kMinimumHeight = 40;
constexpr int kMaximumWidth = 560;
constexpr int kMargin = 16;
constexpr qreal kCornerRadius = 6.0;

skins::Theme CurrentTheme() {
    return ui::UI_NodeManager::Get(0).GetDefaultDrawSupplier()->GetTheme();
}

const char* IconName(ToastType type) {
    switch (type) {
        case ToastType::Success:
            return "S_Check_16";
        case ToastType::Warning:
        case ToastType::Error:
            return "S_Alert_16";
        case ToastType::Information:
            break;
    }
    return "S_Info_16";
}

// The toast's small "×": drawn from the theme, shaded while hovered, ringed while focused.
class ToastCloseButton final : public QAbstractButton {
public:
    explicit ToastCloseButton(QWidget* parent) : QAbstractButton(parent) {
        setFocusPolicy(Qt::StrongFocus);
        setAttribute(Qt::WA_Hover, true);
        setCursor(Qt::ArrowCursor);
        setAccessibleName(ui::ToQString(kelcore::config::Localizer::Get().GetString(
            "$$$/Corvane/kelui/sharedui/Toast/Close=Close")));
    }

    QSize sizeHint() const override { return {kCloseSize, kCloseSize}; }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        const skins::Theme theme = CurrentTheme();
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing, true);
        const QRectF bounds = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
        if (isDown() || underMouse()) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(ui::ToQColor(skins::GetPaletteGrayColor(theme, isDown() ? 4 : 3)));
            painter.drawRoundedRect(bounds, 3.0, 3.0);
        }
        if (hasFocus()) {
            painter.setPen(QPen(ui::ToQColor(theme.accent), 1.5));
            painter.setBrush(Qt::NoBrush);
            painter.drawRoundedRect(bounds.adjusted(0.5, 0.5, -0.5, -0.5), 3.0, 3.0);
        }
        painter.setPen(QPen(ui::ToQColor(skins::GetPaletteGrayColor(theme, 8)), 1.5, Qt::SolidLine,
                            Qt::RoundCap));
        const QPointF centre = QRectF(rect()).center();
        constexpr qreal kArm = 3.5;
        painter.drawLine(centre + QPointF(-kArm, -kArm), centre + QPointF(kArm, kArm));
        painter.drawLine(centre + QPointF(-kArm, kArm), centre + QPointF(kArm, -kArm));
    }
    void enterEvent(QEnterEvent* event) override {
        update();
        QAbstractButton::enterEvent(event);
    }
    void leaveEvent(QEvent* event) override {
        update();
        QAbstractButton::leaveEvent(event);
    }
};

// Screen readers hear a toast as an alert whose name and description are its message.
class ToastAccessible final : public QAccessibleWidget {
public:
    explicit ToastAccessible(QWidget* widget)
        : QAccessibleWidget(widget, QAccessible::AlertMessage) {}
};

QAccessibleInterface* MakeToastAccessible(const QString& className, QObject* object) {
    if (className == QLatin1String(ToastWidget::staticMetaObject.className()) &&
        object->isWidgetType()) {
        return new ToastAccessible(static_cast<QWidget*>(object));
    }
    return nullptr;
}

}  // namespace

ToastWidget::ToastWidget(QWidget* hostWidget, const std::string& text,
                         const std::string& buttonLabel, ToastType toastType,
                         ToastLineType toastLineType, int duration)
    : QWidget(
          hostWidget ? hostWidget->window() : nullptr,
          hostWidget ? Qt::Widget : Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      host(hostWidget ? hostWidget->window() : nullptr),
      message(QString::fromStdString(text)),
      lineType(toastLineType),
      icon(utility::ImageProvider::GetThemeImage(IconName(toastType))) {
    static const bool factoryInstalled = [] {
        QAccessible::installFactory(&MakeToastAccessible);
        return true;
    }();
    static_cast<void>(factoryInstalled);

    hide();
    setObjectName(QStringLiteral("kelui.Toast"));
    setAccessibleName(message);
    setAccessibleDescription(message);
    setFocusPolicy(Qt::ClickFocus);
    if (!host) {
        // A notice beside the user's work: it must not take the keyboard from it.
        setAttribute(Qt::WA_ShowWithoutActivating, true);
    }
    // Every connection below has `this` as its context, so no lambda outlives the toast.
    if (!buttonLabel.empty()) {
        QString label = QString::fromStdString(buttonLabel);
        label.replace(QLatin1Char('&'), QLatin1String("&&"));
        actionButton = new QPushButton(label, this);
        actionButton->setObjectName(QStringLiteral("kelui.ToastAction"));
        actionButton->setAutoDefault(false);
        connect(actionButton, &QAbstractButton::clicked, this, [this] { Finish(kActionPressed); });
    }
    closeButton = new ToastCloseButton(this);
    closeButton->setObjectName(QStringLiteral("kelui.ToastClose"));
    connect(closeButton, &QAbstractButton::clicked, this, [this] { Finish(kDismissed); });
    timer.setParent(this);
    timer.setObjectName(QStringLiteral("kelui.ToastTimer"));
    timer.setSingleShot(true);
    timer.setInterval(duration);
    connect(&timer, &QTimer::timeout, this, [this] { Finish(kDismissed); });
    if (host) {
        host->installEventFilter(this);
    }
}

ToastWidget::~ToastWidget() {
    if (host) {
        host->removeEventFilter(this);
    }
}

void ToastWidget::Present() {
    Layout();
    Place();
    show();
    raise();
    if (timer.interval() > 0) {
        timer.start();
    }
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

void ToastWidget::Finish(Outcome outcome) {
    if (finished) {
        return;
    }
    finished = true;
    timer.stop();
    hide();
    emit Finished(outcome);
}

QString ToastWidget::GetShownText() const {
    if (lineType == ToastLineType::MultiLine) {
        return message;
    }
    QString line = message;
    line.replace(QLatin1Char('\n'), QLatin1Char(' '));
    return fontMetrics().elidedText(line, Qt::ElideRight, textRect.width());
}

void ToastWidget::Layout() {
    const QRect area = host ? host->rect()
                            : (QGuiApplication::primaryScreen()
                                   ? QGuiApplication::primaryScreen()->availableGeometry()
                                   : QRect(0, 0, 800, 600));
    const int maximumWidth = std::max(160, std::min(kMaximumWidth, area.width() - 2 * kMargin));
    const int iconWidth = icon ? kIconSize + kGap : 0;
    const QSize actionSize = actionButton ? actionButton->sizeHint() : QSize();
    const int actionWidth = actionButton ? actionSize.width() + kPadding : 0;
    const int fixedWidth = kPadding + iconWidth + actionWidth + kGap + kCloseSize + kGap;
    const QFontMetrics metrics = fontMetrics();
    const int naturalTextWidth =
        lineType == ToastLineType::MultiLine
            ? metrics.boundingRect(QRect(0, 0, 100000, 100000), 0, message).width()
            : metrics.horizontalAdvance(message);
    const int textWidth = std::max(40, std::min(naturalTextWidth + 1, maximumWidth - fixedWidth));
    int textHeight = metrics.height();
    if (lineType == ToastLineType::MultiLine) {
        textHeight = metrics.boundingRect(QRect(0, 0, textWidth, 100000), Qt::TextWordWrap, message)
                         .height();
    }
    const int height = std::max(
        {kMinimumHeight, textHeight + 2 * kVerticalPadding, actionSize.height() + 2 * kGap});
    const int width = fixedWidth + textWidth;
    resize(width, height);

    iconRect = QRect(kPadding, (height - kIconSize) / 2, kIconSize, kIconSize);
    textRect = QRect(kPadding + iconWidth, (height - textHeight) / 2, textWidth, textHeight);
    if (actionButton) {
        actionButton->setGeometry(textRect.right() + 1 + kPadding,
                                  (height - actionSize.height()) / 2, actionSize.width(),
                                  actionSize.height());
    }
    closeButton->setGeometry(width - kGap - kCloseSize, (height - kCloseSize) / 2, kCloseSize,
                             kCloseSize);
}

void ToastWidget::Place() {
    if (host) {
        move((host->width() - width()) / 2, host->height() - height() - kMargin);
        return;
    }
    const QScreen* screen = QGuiApplication::primaryScreen();
    const QRect area = screen ? screen->availableGeometry() : QRect(0, 0, 800, 600);
    move(area.x() + (area.width() - width()) / 2, area.bottom() + 1 - height() - 2 * kMargin);
}

void ToastWidget::paintEvent(QPaintEvent* /*event*/) {
    const skins::Theme theme = CurrentTheme();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing, true);
    // A card a step above the window it lies on: lighter than a dark window, whiter than a
    // light one.
    painter.setPen(QPen(ui::ToQColor(skins::GetPaletteGrayColor(theme, 4)), 1.0));
    painter.setBrush(ui::ToQColor(skins::GetPaletteGrayColor(theme, theme.dark ? 2 : 0)));
    // A window of its own cannot be see-through everywhere, so it keeps square corners.
    const qreal radius = host ? kCornerRadius : 0.0;
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    if (const auto* paintable = dynamic_cast<const limner::PaintableImage*>(icon.get())) {
        paintable->Paint(painter, QRectF(iconRect), theme);
    }
    painter.setPen(ui::ToQColor(theme.text));
    const int flags = Qt::AlignLeft | Qt::AlignVCenter |
                      (lineType == ToastLineType::MultiLine ? Qt::TextWordWrap : 0);
    painter.drawText(textRect, flags, GetShownText());
}

void ToastWidget::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape) {
        event->accept();
        Finish(kDismissed);
        return;
    }
    QWidget::keyPressEvent(event);
}

bool ToastWidget::eventFilter(QObject* watched, QEvent* event) {
    if (watched == host && event->type() == QEvent::Resize && !finished) {
        Layout();
        Place();
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace kelui::sharedui::detail

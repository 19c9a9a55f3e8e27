// The widget of UI_StaticText: painted by its node, and a class of its own so that
// accessibility can tell it apart and present it as static text. Private to the toolkit; main
// thread.
#pragma once

#include <functional>

#include <QWidget>

namespace kelui::controls::detail {

class StaticTextWidget final : public QWidget {
    Q_OBJECT
public:
    StaticTextWidget();

    /// Paints through `paint` from now on; an empty function stops painting (the node is gone).
    void SetPaintFunction(std::function<void(QWidget&)> paint);

    /// Makes screen readers see every StaticTextWidget as static text. Idempotent.
    static void InstallAccessibility();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::function<void(QWidget&)> paint;
};

}  // namespace kelui::controls::detail

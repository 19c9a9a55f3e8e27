#include <kelui/controls/UI_HotTextURL.h>

#include <kelcore/utility/OpenFileInDefaultApplication.h>
#include <kelui/ui/QtConversions.h>
#include <kelui/ui/UI_NodeManager.h>

#include "controls/ButtonLook.h"
#include "controls/ButtonWidget.h"
#include "controls/LinkText.h"

namespace kelui::controls {

using kelcore::geom::PointT;
using kelcore::geom::RectT;

namespace {

detail::LinkTextLayout LayOut(const UI_HotTextURL& link) {
    const RectT<float> local = link.UI_GetLocalRectF();
    return detail::LayoutLinkText(ui::ToQString(link.GetText()), link.GetFontDescription(),
                                  {0.0f, 0.0f, local.width, local.height}, link.GetTextAlignment(),
                                  link.GetTextTruncation());
}

}  // namespace

UI_HotTextURL::UI_HotTextURL()
    : UI_TextControlBase(new detail::LinkWidget(detail::ButtonWidget::Callbacks{
          // The node owns the widget and detaches these before it goes (see ~UI_HotTextURL).
          [this](QWidget& widget) { PaintWidget(widget); },
          [this](const QPointF& position) {
              const PointT<float> origin = GetOriginInWidget();
              return detail::IsOnLinkText(LayOut(*this),
                                          {static_cast<float>(position.x()) - origin.x,
                                           static_cast<float>(position.y()) - origin.y});
          }})) {
    GetLinkWidget()->SetPointingCursor(true);
    // The widget is the sender and dies with this node, so `this` outlives every emission.
    QObject::connect(GetLinkWidget(), &QAbstractButton::clicked, GetLinkWidget(),
                     [this] { Follow(); });
}

UI_HotTextURL::~UI_HotTextURL() {
    if (detail::ButtonWidget* widget = GetLinkWidget()) {
        widget->DetachCallbacks();
        QObject::disconnect(widget, &QAbstractButton::clicked, widget, nullptr);
    }
}

detail::ButtonWidget* UI_HotTextURL::GetLinkWidget() const {
    return qobject_cast<detail::ButtonWidget*>(GetWidget());
}

void UI_HotTextURL::SetURL(std::string newURL) {
    url = std::move(newURL);
    if (detail::ButtonWidget* widget = GetLinkWidget()) {
        widget->setAccessibleDescription(QString::fromStdString(url));
    }
}

void UI_HotTextURL::Click() {
    if (detail::ButtonWidget* widget = GetLinkWidget()) {
        widget->click();
    }
}

void UI_HotTextURL::Follow() {
    boost::intrusive_ptr<ui::UI_Node> keep(this);
    if (!url.empty()) {
        kelcore::utility::OpenFileInDefaultApplication(url);
    }
    NotifyChanged();
    detail::ReleaseAfterCurrentEvent(std::move(keep));
}

void UI_HotTextURL::SetText(kelcore::string::string_view newText, bool invalidate) {
    UI_TextControlBase::SetText(newText, invalidate);
    if (detail::ButtonWidget* widget = GetLinkWidget()) {
        widget->setText(detail::ToPlainButtonText(GetText()));
    }
}

void UI_HotTextURL::TextFaceChanged() {
    UI_TextControlBase::TextFaceChanged();
    if (detail::ButtonWidget* widget = GetLinkWidget()) {
        widget->setText(detail::ToPlainButtonText(GetText()));
    }
}

kelcore::string::string UI_HotTextURL::GetDisplayedText() const {
    return ui::FromQString(LayOut(*this).shown);
}

PointT<float> UI_HotTextURL::UI_GetRecommendedSize(limner::Limner& measuring) {
    return detail::GetLinkRecommendedSize(measuring, GetText(), GetFontDescription());
}

void UI_HotTextURL::UI_Draw(limner::Limner& limner) {
    const auto supplier = UI_GetDrawSupplierOrDefault();
    const skins::Theme theme = supplier->GetTheme();
    const detail::ButtonWidget* widget = GetLinkWidget();
    const bool enabled = widget && widget->isEnabled();
    const detail::LinkTextLayout layout = LayOut(*this);
    const limner::ColorRGBA color =
        enabled ? GetTextColor().value_or(theme.link) : theme.disabledText;
    detail::DrawLinkText(limner, layout, GetFontDescription(), color,
                         enabled && widget->IsHovered());
    if (enabled && widget->HasVisibleFocus()) {
        const RectT<float> local = UI_GetLocalRectF();
        detail::DrawLinkFocusRing(limner, layout, {0.0f, 0.0f, local.width, local.height},
                                  detail::GetFocusRingColor(theme));
    }
}

}  // namespace kelui::controls

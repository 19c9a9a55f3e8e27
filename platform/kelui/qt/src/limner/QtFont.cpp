#include "limner/QtFont.h"

#include <cmath>

#include <QApplication>
#include <QFontDatabase>
#include <QTextLayout>

#include <kelui/ui/QtConversions.h>

namespace limner {

QFont QtFont::MakeQFont(const FontDescription& description) {
    QFont font = QApplication::font();
    if (!description.family.empty()) {
        font.setFamilies({QString::fromStdString(description.family)});
    }
    if (description.pixelSize > 0.0f) {
        font.setPixelSize(static_cast<int>(std::lround(description.pixelSize)));
    }
    const QString style = QString::fromStdString(description.styleName).toLower();
    font.setBold(style.contains(QLatin1String("bold")));
    font.setItalic(style.contains(QLatin1String("italic")) ||
                   style.contains(QLatin1String("oblique")));
    return font;
}

QtFont::QtFont(const FontDescription& description)
    : description(description), font(MakeQFont(description)), metrics(font) {}

kelcore::geom::PointT<float> QtFont::MeasureText(kelcore::string::string_view text) const {
    const QString qtext = kelui::ui::ToQString(text);
    return {static_cast<float>(metrics.horizontalAdvance(qtext)),
            static_cast<float>(metrics.height())};
}

float QtFont::GetWrappedTextHeight(kelcore::string::string_view text, float width,
                                   int maxLines) const {
    // QTextLayout wraps exactly as the painter does when it draws with Qt::TextWordWrap.
    QTextLayout layout(kelui::ui::ToQString(text), font);
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    layout.beginLayout();
    qreal height = 0.0;
    int lines = 0;
    for (;;) {
        if (maxLines >= 0 && lines >= maxLines) {
            break;
        }
        QTextLine line = layout.createLine();
        if (!line.isValid()) {
            break;
        }
        line.setLineWidth(width);
        height += line.height();
        ++lines;
    }
    layout.endLayout();
    if (lines == 0) {
        height = metrics.height();
    }
    return static_cast<float>(height);
}

float QtFont::GetLineHeight() const {
    return static_cast<float>(metrics.lineSpacing());
}

std::string ValidateFontName(const std::string& name) {
    if (name.empty()) {
        return {};
    }
    return QFontDatabase::hasFamily(QString::fromStdString(name)) ? name : std::string{};
}

}  // namespace limner

#include <kelui/datatransfer/Clipboard.h>

#include <QClipboard>
#include <QGuiApplication>

#include <kelui/ui/QtConversions.h>

namespace kelui::datatransfer {

void Clipboard::SendToClipboard(const std::shared_ptr<ClipboardSendData>& data) {
    if (!data) {
        return;
    }
    QClipboard* clipboard = QGuiApplication::clipboard();
    const QString text = ui::ToQString(data->GetText());
    clipboard->setText(text, QClipboard::Clipboard);
    if (clipboard->supportsSelection()) {
        clipboard->setText(text, QClipboard::Selection);
    }
}

kelcore::string::string Clipboard::GetClipboardText() {
    return ui::FromQString(QGuiApplication::clipboard()->text(QClipboard::Clipboard));
}

}  // namespace kelui::datatransfer

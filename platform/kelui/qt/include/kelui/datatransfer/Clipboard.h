// The system clipboard, over QGuiApplication::clipboard(): copying puts plain text on the
// clipboard and, where the platform has one (X11), on the selection too, so both paste and
// middle-click paste give it. Static functions; main thread (needs a QGuiApplication).
//
//   Clipboard::SendToClipboard(NewClipboardSendData(u"https://review.example/abc"));
#pragma once

#include <memory>

#include <kelcore/string/String.h>
#include <kelui/datatransfer/ClipboardSendData.h>

namespace kelui::datatransfer {

class Clipboard {
public:
    /// Puts the text of `data` on the clipboard (and the selection where supported). Does
    /// nothing for null data.
    static void SendToClipboard(const std::shared_ptr<ClipboardSendData>& data);
    /// The plain text on the clipboard now; empty when it holds none.
    static kelcore::string::string GetClipboardText();
};

}  // namespace kelui::datatransfer

// What a control puts on the clipboard when the user copies (a review link, an error's
// details): a record of the text, made once and handed to Clipboard::SendToClipboard. Immutable
// once made, so any thread may hold it; sending is main-thread only.
//
//   auto data = kelui::datatransfer::NewClipboardSendData(link);
//   kelui::datatransfer::Clipboard::SendToClipboard(data);
#pragma once

#include <memory>

#include <kelcore/string/String.h>

namespace kelui::datatransfer {

class ClipboardSendData {
public:
    explicit ClipboardSendData(kelcore::string::string text) : text(std::move(text)) {}

    /// The text to put on the clipboard.
    const kelcore::string::string& GetText() const { return text; }

private:
    kelcore::string::string text;
};

/// A record of `text` to send to the clipboard.
std::shared_ptr<ClipboardSendData> NewClipboardSendData(kelcore::string::string_view text);

}  // namespace kelui::datatransfer

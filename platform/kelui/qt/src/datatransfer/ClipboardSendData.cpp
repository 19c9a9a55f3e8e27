#include <kelui/datatransfer/ClipboardSendData.h>

namespace kelui::datatransfer {

std::shared_ptr<ClipboardSendData> NewClipboardSendData(kelcore::string::string_view text) {
    return std::make_shared<ClipboardSendData>(kelcore::string::string(text));
}

}  // namespace kelui::datatransfer

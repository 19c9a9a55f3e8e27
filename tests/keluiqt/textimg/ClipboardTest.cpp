#include <kelui/datatransfer/Clipboard.h>

#include <QClipboard>
#include <QGuiApplication>

#include <gtest/gtest.h>

namespace {

using kelui::datatransfer::Clipboard;
using kelui::datatransfer::NewClipboardSendData;

TEST(ClipboardSendData, KeepsTheTextToSend) {
    const auto data = NewClipboardSendData(u"https://review.example/r/Ab12");
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->GetText(), u"https://review.example/r/Ab12");
}

TEST(Clipboard, TextSentIsTheTextOnTheClipboard) {
    const kelcore::string::string link =
        u"https://review.example/r/Ab12 \u00e9t\u00e9 \u2192 \u6620\u50cf";

    Clipboard::SendToClipboard(NewClipboardSendData(link));

    EXPECT_EQ(Clipboard::GetClipboardText(), link);
    QClipboard* clipboard = QGuiApplication::clipboard();
    EXPECT_EQ(clipboard->text(),
              QString::fromUtf16(link.data(), static_cast<qsizetype>(link.size())));
    if (clipboard->supportsSelection()) {
        EXPECT_EQ(clipboard->text(QClipboard::Selection), clipboard->text());
    }
}

TEST(Clipboard, NullDataLeavesTheClipboardAsItWas) {
    Clipboard::SendToClipboard(NewClipboardSendData(u"kept"));
    Clipboard::SendToClipboard(nullptr);
    EXPECT_EQ(Clipboard::GetClipboardText(), u"kept");
}

TEST(Clipboard, AClipboardWithoutTextGivesEmptyText) {
    QGuiApplication::clipboard()->clear();
    EXPECT_TRUE(Clipboard::GetClipboardText().empty());
}

}  // namespace

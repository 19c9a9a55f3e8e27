#include <kelui/utility/OS_ResourceManager.h>

#include <algorithm>
#include <cctype>
#include <string_view>

#include <QDir>
#include <QFileInfo>
#include <QString>
#include <QStringList>

#include <kelui/limner/PaintableImage.h>
#include <kelui/utility/SvgImage.h>

namespace kelui::utility {

namespace {

constexpr std::string_view kResourceSuffix = "_N_D_AT_2X";
constexpr std::string_view kDoubleResolutionSuffix = "_AT_2X";
constexpr std::string_view kExtension = ".svg";

bool EndsWith(std::string_view text, std::string_view suffix) {
    return text.size() >= suffix.size() && text.substr(text.size() - suffix.size()) == suffix;
}

std::string ToUpper(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

// Qt's file classes rather than std::filesystem: the folder may be one compiled in as Qt
// resources (":/…"), which only Qt can read.
QString ToQPath(const std::filesystem::path& path) {
    return QString::fromStdString(path.string());
}

// Artwork saved for double resolution ("…_AT_2X.svg") is drawn at twice its size in pixels;
// it lays out at its natural size, half that, and still renders at the device's resolution.
class DoubleResolutionImage final : public limner::PaintableImage {
public:
    explicit DoubleResolutionImage(boost::intrusive_ptr<SvgImage> artwork)
        : artwork(std::move(artwork)) {}

    float GetWidth() const override { return artwork->GetWidth() / 2.0f; }
    float GetHeight() const override { return artwork->GetHeight() / 2.0f; }
    void Paint(QPainter& painter, const QRectF& target,
               const kelui::skins::Theme& theme) const override {
        artwork->Paint(painter, target, theme);
    }

private:
    boost::intrusive_ptr<SvgImage> artwork;
};

}  // namespace

OS_ResourceManager::OS_ResourceManager(std::filesystem::path folder) : folder(std::move(folder)) {}

std::string OS_ResourceManager::ToResourceName(const std::string& name) {
    std::string upper = ToUpper(name);
    if (!EndsWith(upper, kResourceSuffix)) {
        upper += kResourceSuffix;
    }
    return upper;
}

std::filesystem::path OS_ResourceManager::FindFile(const std::string& name) const {
    if (name.empty()) {
        return {};
    }
    const QDir directory(ToQPath(folder));
    const auto existing = [this, &directory](const std::string& fileName) {
        return QFileInfo(directory, QString::fromStdString(fileName)).isFile()
                   ? folder / fileName
                   : std::filesystem::path{};
    };
    if (auto exact = existing(name + std::string(kExtension)); !exact.empty()) {
        return exact;
    }
    if (!EndsWith(name, kResourceSuffix)) {
        return existing(ToResourceName(name) + std::string(kExtension));
    }
    // A name in the resource spelling: the file whose own name spells that way. The listing is
    // sorted, so the same file wins whatever order the folder keeps them in.
    const QStringList files = directory.entryList({QStringLiteral("*.svg")},
                                                  QDir::Files | QDir::CaseSensitive, QDir::Name);
    for (const QString& file : files) {
        const std::string fileName = file.toStdString();
        const std::string stem = fileName.substr(0, fileName.size() - kExtension.size());
        if (ToResourceName(stem) == name) {
            return folder / fileName;
        }
    }
    return {};
}

boost::intrusive_ptr<limner::ImageInterface> OS_ResourceManager::GetImage(const std::string& name) {
    if (const auto cached = images.find(name); cached != images.end()) {
        return cached->second;
    }
    const std::filesystem::path file = FindFile(name);
    if (file.empty()) {
        return nullptr;
    }
    boost::intrusive_ptr<SvgImage> artwork = SvgImage::FromFile(file);
    if (!artwork) {
        return nullptr;
    }
    boost::intrusive_ptr<limner::ImageInterface> image;
    if (EndsWith(ToUpper(file.stem().string()), kDoubleResolutionSuffix)) {
        image = new DoubleResolutionImage(std::move(artwork));
    } else {
        image = std::move(artwork);
    }
    images.emplace(name, image);
    return image;
}

bool OS_ResourceManager::HasImage(const std::string& name) {
    return GetImage(name) != nullptr;
}

}  // namespace kelui::utility

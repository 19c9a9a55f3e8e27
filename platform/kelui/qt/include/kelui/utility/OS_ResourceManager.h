// A resource manager over a folder of SVG files, one per image, named after the image
// ("S_Copy_16" is S_Copy_16.svg). A name is also found in the toolkit's resource spelling:
// upper case with the suffix of a normal, dark, double-resolution picture
// ("S_COPY_16_N_D_AT_2X"), and the other way round. Images are rendered with QSvgRenderer at the
// device pixel ratio they are drawn at, and artwork drawn in `currentColor` takes the theme's
// text colour. Main thread.
//
//   kelui::utility::OS_ResourceManager resources(moduleDirectory / "icons");
//   auto logo = resources.GetImage("VantroInlineLogo_Lg");
#pragma once

#include <filesystem>
#include <map>
#include <string>

#include <kelui/utility/ResourceManager.h>

namespace kelui::utility {

class OS_ResourceManager final : public ResourceManager {
public:
    /// A manager over the SVG files in `folder` (which need not exist: then it has nothing).
    explicit OS_ResourceManager(std::filesystem::path folder);

    boost::intrusive_ptr<limner::ImageInterface> GetImage(const std::string& name) override;
    bool HasImage(const std::string& name) override;

    /// The toolkit's resource spelling of `name`: "S_Copy_16" gives "S_COPY_16_N_D_AT_2X".
    static std::string ToResourceName(const std::string& name);

private:
    std::filesystem::path FindFile(const std::string& name) const;

    std::filesystem::path folder;
    std::map<std::string, boost::intrusive_ptr<limner::ImageInterface>> images;
};

}  // namespace kelui::utility

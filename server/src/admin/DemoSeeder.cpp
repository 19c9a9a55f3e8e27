#include "admin/DemoSeeder.h"

#include <cstdio>

namespace vantroserver::admin {

namespace {

constexpr std::int64_t kMegabyte = 1024 * 1024;
constexpr std::int64_t kGigabyte = 1024 * kMegabyte;

// Sizes that look like real media without being all alike.
std::int64_t ClipSize(int index) {
    return (40 + (index * 37) % 900) * kMegabyte;
}

std::string Numbered(const char* pattern, int number) {
    char text[64];
    std::snprintf(text, sizeof text, pattern, number);
    return text;
}

}  // namespace

DemoSeeder::Summary DemoSeeder::Seed(store::Store& store) {
    Summary summary;
    auto& users = store.Users();
    auto& accounts = store.Accounts();
    auto& teams = store.Teams();
    auto& projects = store.Projects();
    auto& assets = store.Assets();

    const auto demo = users.Add({kDemoUsername, kDemoPassword, "Demo User", "demo@example.com"});
    const auto alex =
        users.Add({kSecondUsername, kSecondPassword, "Alex Rivera", "alex@example.com"});
    summary.emplace_back("demo_username", kDemoUsername);
    summary.emplace_back("demo_password", kDemoPassword);
    summary.emplace_back("demo_user_id", demo.id);
    summary.emplace_back("second_username", kSecondUsername);
    summary.emplace_back("second_password", kSecondPassword);
    summary.emplace_back("second_user_id", alex.id);

    // Northwind: demo's own account, shared in part with alex.
    const auto northwind = accounts.Add("Northwind Studio", demo.id, 2048 * kGigabyte);
    accounts.AddMember(northwind.id, alex.id);
    const auto editorial = teams.Add(northwind.id, "Editorial", {demo.id, alex.id});
    const auto color = teams.Add(northwind.id, "Color", {demo.id});
    const auto sound = teams.Add(northwind.id, "Sound", {alex.id});
    summary.emplace_back("account_id", northwind.id);
    summary.emplace_back("team_editorial_id", editorial.id);
    summary.emplace_back("team_color_id", color.id);
    summary.emplace_back("team_sound_id", sound.id);

    const auto feature = projects.Add(editorial.id, "Feature Film");
    const auto trailer = projects.Add(editorial.id, "Trailer");
    projects.Add(editorial.id, "Spring Commercial");
    const auto grade = projects.Add(color.id, "Feature Film Grade");
    projects.Add(sound.id, "Mix Stems");
    summary.emplace_back("project_feature_id", feature.id);
    summary.emplace_back("project_feature_root_id", feature.rootAssetId);
    summary.emplace_back("project_trailer_id", trailer.id);

    // Feature Film: a nested tree with files and version stacks at several depths.
    const std::string root = feature.rootAssetId;
    const auto footage = assets.CreateFolder(root, "Footage");
    const auto edits = assets.CreateFolder(root, "Edits");
    const auto exports = assets.CreateFolder(root, "Exports");
    const auto audio = assets.CreateFolder(root, "Audio");
    for (int day = 1; day <= 3; ++day) {
        const auto dayFolder = assets.CreateFolder(footage.id, Numbered("Day %02d", day));
        for (const char* camera : {"Camera A", "Camera B"}) {
            const auto cameraFolder = assets.CreateFolder(dayFolder.id, camera);
            for (int clip = 1; clip <= 4; ++clip) {
                assets.AddFile(
                    cameraFolder.id,
                    Numbered(camera[7] == 'A' ? "A%03d.mov" : "B%03d.mov", day * 10 + clip),
                    ClipSize(day * 10 + clip));
            }
        }
    }
    const auto roughCut = assets.CreateVersionStack(edits.id, "Rough Cut");
    for (int version = 1; version <= 3; ++version) {
        assets.AddFile(roughCut.id, Numbered("rough_cut_v%d.mp4", version),
                       (700 + 50 * version) * kMegabyte);
    }
    const auto fineCut = assets.CreateVersionStack(edits.id, "Fine Cut");
    assets.AddFile(fineCut.id, "fine_cut_v1.mp4", 820 * kMegabyte);
    assets.AddFile(edits.id, "Edit Notes.pdf", 2 * kMegabyte);
    assets.AddFile(exports.id, "Feature Film - Review.mp4", 1200 * kMegabyte);
    assets.AddFile(audio.id, "Temp Score.wav", 310 * kMegabyte);
    assets.CreateFolder(audio.id, "Foley");
    summary.emplace_back("folder_footage_id", footage.id);
    summary.emplace_back("version_stack_rough_cut_id", roughCut.id);

    // The dailies folder is large enough to take several pages.
    const auto dailies = assets.CreateFolder(root, "Dailies");
    for (int index = 1; index <= kLargeFolderChildren; ++index) {
        if (index % 25 == 0) {
            const auto stack = assets.CreateVersionStack(dailies.id, Numbered("Shot %03d", index));
            assets.AddFile(stack.id, Numbered("shot_%03d_v1.mov", index), ClipSize(index));
            assets.AddFile(stack.id, Numbered("shot_%03d_v2.mov", index), ClipSize(index + 1));
        } else if (index % 50 == 1) {
            assets.CreateFolder(dailies.id, Numbered("Shot %03d extras", index));
        } else {
            assets.AddFile(dailies.id, Numbered("Shot %03d.mov", index), ClipSize(index));
        }
    }
    summary.emplace_back("folder_dailies_id", dailies.id);

    const auto trailerRoot = trailer.rootAssetId;
    const auto trailerCut = assets.CreateVersionStack(trailerRoot, "Trailer Cut");
    assets.AddFile(trailerCut.id, "trailer_v1.mp4", 180 * kMegabyte);
    assets.AddFile(trailerCut.id, "trailer_v2.mp4", 185 * kMegabyte);
    assets.AddFile(grade.rootAssetId, "Grade Reference.png", 8 * kMegabyte);

    // Harbor: alex's account, where demo sees one project only because it is shared.
    const auto harbor = accounts.Add("Harbor Films", alex.id, 500 * kGigabyte);
    const auto production = teams.Add(harbor.id, "Production", {alex.id});
    const auto documentary = projects.Add(production.id, "Documentary");
    projects.Add(production.id, "Music Video");
    projects.Share(documentary.id, demo.id);
    const auto interviews = assets.CreateFolder(documentary.rootAssetId, "Interviews");
    assets.AddFile(interviews.id, "Interview 01.mov", 2 * kGigabyte);
    assets.AddFile(interviews.id, "Interview 02.mov", 3 * kGigabyte);
    const auto docCut = assets.CreateVersionStack(documentary.rootAssetId, "Assembly");
    assets.AddFile(docCut.id, "assembly_v1.mp4", 900 * kMegabyte);
    summary.emplace_back("second_account_id", harbor.id);
    summary.emplace_back("shared_project_id", documentary.id);
    return summary;
}

}  // namespace vantroserver::admin

#include "Commands.h"

#include <atomic>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sstream>

#include <kelcore/threads/MainThread.h>
#include <kelcore/utility/Guid.h>
#include <kelcore/utility/OpenFileInDefaultApplication.h>
#include <vantroauth/BrowserOpener.h>
#include <vantroauth/jwt/AuthManager.h>
#include <vantrokelui/model/SequenceSettings.h>
#include <vantrokelui/nodes/VantroUser.h>
#include <vantrokelui/viewmodel/ShareForReviewViewModel.h>

#include "CloudBrowser.h"
#include "CloudSession.h"
#include "ProjectFile.h"

namespace vantroshare::commands {

namespace model = vantrokelui::model;
using vantrokelui::viewmodel::ShareForReviewViewModel;

namespace {

int Fail(const std::string& message) {
    std::cerr << "vantro-share: " << message << std::endl;
    return 1;
}

std::string Utf8(const kelcore::string::string& text) {
    return kelcore::string::UTF16toStdString(text);
}

// A signed-in view model for the commands that read the tree; null with the message printed.
std::shared_ptr<ShareForReviewViewModel> SignedInViewModel(MainLoop& loop) {
    CloudSession::Start();
    auto viewModel = CloudSession::BrowsingViewModel();
    if (const auto failure = CloudSession::SignInQuietly(loop, viewModel, false)) {
        Fail(*failure);
        return nullptr;
    }
    return viewModel;
}

}  // namespace

int Login(MainLoop& loop) {
    CloudSession::Start();
    vantroauth::SetBrowserOpener([](const std::string& url) {
        std::cerr << "Sign in at this address (opening it in your browser):\n  " << url
                  << std::endl;
        // Without a browser the user opens the printed address by hand; the sign-in waits.
        (void)kelcore::utility::OpenFileInDefaultApplication(url);
        return true;
    });
    auto result = std::make_shared<std::atomic<int>>(1);
    auto finished = std::make_shared<std::atomic<bool>>(false);
    const auto started =
        vantroauth::jwt::Login(CloudSession::HomeUser(), [result, finished](int code) {
            result->store(code);
            finished->store(true);
            kelcore::threads::AsyncCallFromMainThread([] {});
        });
    if (!started.IsSuccess()) {
        vantroauth::SetBrowserOpener({});
        return Fail("sign-in could not start: " + started.GetMessage());
    }
    loop.SetCancellable(false);
    loop.RunUntil([&] { return finished->load(); }, std::chrono::hours(1));
    vantroauth::SetBrowserOpener({});
    if (result->load() != 0) {
        std::ostringstream code;
        code << std::hex << static_cast<std::uint32_t>(result->load());
        return Fail("sign-in failed (code 0x" + code.str() + ")");
    }
    std::cout << "signed in to " << CloudSession::ServiceURL() << std::endl;
    return 0;
}

int LoginWithToken(MainLoop& loop, const std::string& source) {
    std::string text;
    if (source == "-") {
        text.assign(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>());
    } else {
        std::ifstream in(source, std::ios::binary);
        if (!in) {
            return Fail("cannot read the token answer " + source);
        }
        text.assign(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
    }
    CloudSession::Start();
    const auto stored = vantroauth::jwt::StoreTokenAnswer(CloudSession::HomeUser(), text);
    if (!stored.IsSuccess()) {
        return Fail("the token answer was not accepted: " + stored.GetMessage());
    }
    // The token is only worth keeping if the service takes it.
    auto viewModel = CloudSession::BrowsingViewModel();
    if (const auto failure = CloudSession::SignInQuietly(loop, viewModel, false)) {
        (void)vantroauth::jwt::Logout();
        return Fail("the service refused the token answer (" + *failure + ")");
    }
    std::cout << "signed in to " << CloudSession::ServiceURL() << " as "
              << Utf8(viewModel->GetUser()->GetName()) << std::endl;
    return 0;
}

int Logout() {
    CloudSession::Start();
    if (!CloudSession::HasStoredToken()) {
        std::cout << "not signed in" << std::endl;
        return 0;
    }
    const auto result = vantroauth::jwt::Logout();
    if (!result.IsSuccess()) {
        return Fail("sign-out failed: " + result.GetMessage());
    }
    std::cout << "signed out of " << CloudSession::ServiceURL() << std::endl;
    return 0;
}

int List(MainLoop& loop, const std::string& path) {
    const auto viewModel = SignedInViewModel(loop);
    if (!viewModel) {
        return 1;
    }
    CloudBrowser browser(loop, viewModel->GetUser());
    const CloudBrowser::Result found = browser.Walk(CloudBrowser::SplitPath(path), false);
    if (!found.node) {
        return Fail(found.error);
    }
    std::vector<std::shared_ptr<vantrokelui::VantroNode>> children;
    const CloudBrowser::Result listed = browser.Children(found.node, children);
    if (!listed.node) {
        return Fail(listed.error);
    }
    for (const auto& child : children) {
        const std::string kind = CloudBrowser::KindOf(child);
        std::cout << Utf8(child->GetName()) << (kind == "folder" ? "/" : "");
        if (kind == "version stack" || kind == "file") {
            std::cout << "\t(" << kind << ")";
        }
        std::cout << "\n";
    }
    std::cout << std::flush;
    return 0;
}

int Status(MainLoop& loop, const std::filesystem::path& projectFile) {
    CloudSession::Start();
    std::cout << "service: " << CloudSession::ServiceURL() << "\n";
    if (!CloudSession::HasStoredToken()) {
        std::cout << "signed in: no\n";
    } else {
        auto viewModel = CloudSession::BrowsingViewModel();
        if (const auto failure = CloudSession::SignInQuietly(loop, viewModel, false)) {
            std::cout << "signed in: a token is stored, but " << *failure << "\n";
        } else {
            std::cout << "signed in: " << Utf8(viewModel->GetUser()->GetName()) << "\n";
        }
    }
    if (projectFile.empty()) {
        std::cout << std::flush;
        return 0;
    }
    std::shared_ptr<ProjectFile> project;
    try {
        project = ProjectFile::Load(projectFile);
    } catch (const ProjectFileError& error) {
        std::cout << std::flush;
        return Fail(error.what());
    }
    std::cout << "project: " << project->ProjectName() << "\n";
    const auto value = [&](const kelcore::utility::Guid& id, kelcore::string::string_view key) {
        return project->GetValue(id, Utf8(kelcore::string::string(key)));
    };
    for (const auto& sequence : project->Sequences()) {
        const auto link = value(sequence.id, model::kReviewLinkURLKey);
        const auto stack = value(sequence.id, model::kVersionStackGuidKey);
        const auto modified = value(sequence.id, model::kAssetModifiedAfterShareKey);
        std::cout << "sequence: " << sequence.name << "\n"
                  << "  link: " << (link ? *link : "(none)") << "\n"
                  << "  version stack: " << (stack ? *stack : "(none)") << "\n"
                  << "  modified since share: " << (modified ? *modified : "(never shared)")
                  << "\n";
        const std::string shared = project->SharedFingerprint(sequence.id);
        if (!shared.empty()) {
            std::cout << "  edited since the last share here: "
                      << (shared == project->ContentFingerprint(sequence.id) ? "no" : "yes")
                      << "\n";
        }
    }
    std::cout << std::flush;
    return 0;
}

}  // namespace vantroshare::commands

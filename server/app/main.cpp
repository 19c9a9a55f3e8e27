// vantro-server: the admin commands that set up a data directory and the HTTP service that
// serves it. Parses the command line, runs one command on the main thread and turns every
// failure into a message on stderr and exit code 1.
#include <CLI/CLI.hpp>

#include <charconv>
#include <cstdint>
#include <iostream>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "admin/AdminCommands.h"
#include "http/PublicBase.h"
#include "http/Server.h"
#include "security/PasswordHasher.h"
#include "store/DataDirectory.h"
#include "store/StoreOptions.h"

namespace {

using vantroserver::admin::AdminCommands;

template <typename Number>
std::optional<Number> ParseNumber(std::string_view text) {
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return value;
}

/// `127.0.0.1:8080`, `localhost:0` or `[::1]:8080`.
void ParseListen(const std::string& text, vantroserver::http::ServeOptions& options) {
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos || colon == 0) {
        throw CLI::ValidationError("--listen", "expected HOST:PORT, got " + text);
    }
    std::string host = text.substr(0, colon);
    if (host.size() >= 2 && host.front() == '[' && host.back() == ']') {
        host = host.substr(1, host.size() - 2);
    }
    const auto port = ParseNumber<unsigned short>(std::string_view(text).substr(colon + 1));
    if (!port || host.empty()) {
        throw CLI::ValidationError("--listen", "expected HOST:PORT (port 0 to 65535), got " + text);
    }
    options.listenAddress = host;
    options.port = *port;
}

/// `N/MS`: at most N requests per MS milliseconds.
vantroserver::http::RateLimit ParseRateLimit(const std::string& text) {
    const std::size_t slash = text.find('/');
    const auto requests =
        slash == std::string::npos ? std::nullopt : ParseNumber<std::size_t>(text.substr(0, slash));
    const auto window = slash == std::string::npos
                            ? std::nullopt
                            : ParseNumber<std::int64_t>(text.substr(slash + 1));
    if (!requests || !window || *requests == 0 || *window <= 0) {
        throw CLI::ValidationError("--rate-limit",
                                   "expected N/MS with positive numbers, got " + text);
    }
    return {*requests, std::chrono::milliseconds(*window)};
}

std::string UrlHost(const std::string& address) {
    return address.find(':') != std::string::npos ? "[" + address + "]" : address;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("vantro-server: the review service and its administration", "vantro-server");
    app.require_subcommand(1);

    std::string dataDir;
    const auto addData = [&dataDir](CLI::App* command) {
        command->add_option("--data", dataDir, "The data directory")->required();
    };
    unsigned passwordIterations = vantroserver::security::PasswordHasher::kDefaultIterations;
    const auto addIterations = [&passwordIterations](CLI::App* command) {
        command
            ->add_option("--password-iterations", passwordIterations,
                         "PBKDF2 iterations for the new password hashes (default 600000; lower "
                         "only for test suites)")
            ->check(CLI::Range(1u, 10'000'000u));
    };
    // Every command is a lambda run after parsing, inside one error handler.
    std::function<void(AdminCommands&)> adminAction;
    std::function<int()> serveAction;

    auto* init = app.add_subcommand("init", "Create a data directory (database, signing key)");
    addData(init);
    init->callback([&] { adminAction = [](AdminCommands& admin) { admin.Init(); }; });

    auto* user = app.add_subcommand("user", "Users")->require_subcommand(1);
    auto* userAdd = user->add_subcommand("add", "Add a user; prints its id");
    vantroserver::store::NewUser newUser;
    userAdd->add_option("--username", newUser.username, "Sign-in name")->required();
    userAdd->add_option("--password", newUser.password, "Password")->required();
    userAdd->add_option("--name", newUser.name, "Display name");
    userAdd->add_option("--email", newUser.email, "Email address");
    addData(userAdd);
    addIterations(userAdd);
    userAdd->callback([&] { adminAction = [&](AdminCommands& admin) { admin.AddUser(newUser); }; });

    std::string id, name, owner, account, team, parent, project, userRef;
    std::int64_t storageLimit = 0, size = 0;
    std::vector<std::string> members;

    auto* client = app.add_subcommand("client", "OAuth clients")->require_subcommand(1);
    auto* clientAdd = client->add_subcommand("add", "Register a public client id");
    clientAdd->add_option("--id", id, "Client id")->required();
    addData(clientAdd);
    clientAdd->callback([&] { adminAction = [&](AdminCommands& admin) { admin.AddClient(id); }; });

    auto* accountCommand = app.add_subcommand("account", "Accounts")->require_subcommand(1);
    auto* accountAdd = accountCommand->add_subcommand("add", "Add an account; prints its id");
    accountAdd->add_option("--name", name, "Account name")->required();
    accountAdd->add_option("--owner", owner, "Owner (username or user id)")->required();
    accountAdd->add_option("--storage-limit", storageLimit, "Storage limit in bytes")
        ->required()
        ->check(CLI::Range(std::int64_t{0}, std::numeric_limits<std::int64_t>::max()));
    addData(accountAdd);
    accountAdd->callback([&] {
        adminAction = [&](AdminCommands& admin) { admin.AddAccount(name, owner, storageLimit); };
    });
    auto* member =
        accountCommand->add_subcommand("member", "Account members")->require_subcommand(1);
    auto* memberAdd = member->add_subcommand("add", "Add a member to an account");
    memberAdd->add_option("--account", account, "Account id")->required();
    memberAdd->add_option("--user", userRef, "Username or user id")->required();
    addData(memberAdd);
    memberAdd->callback([&] {
        adminAction = [&](AdminCommands& admin) { admin.AddAccountMember(account, userRef); };
    });

    auto* teamCommand = app.add_subcommand("team", "Teams")->require_subcommand(1);
    auto* teamAdd = teamCommand->add_subcommand("add", "Add a team; prints its id");
    teamAdd->add_option("--account", account, "Account id")->required();
    teamAdd->add_option("--name", name, "Team name")->required();
    teamAdd->add_option("--member", members, "A member (username or user id); repeatable");
    addData(teamAdd);
    teamAdd->callback([&] {
        adminAction = [&](AdminCommands& admin) { admin.AddTeam(account, name, members); };
    });

    auto* projectCommand = app.add_subcommand("project", "Projects")->require_subcommand(1);
    auto* projectAdd = projectCommand->add_subcommand(
        "add", "Add a project and its root folder; prints the project id, then the folder id");
    projectAdd->add_option("--team", team, "Team id")->required();
    projectAdd->add_option("--name", name, "Project name")->required();
    addData(projectAdd);
    projectAdd->callback(
        [&] { adminAction = [&](AdminCommands& admin) { admin.AddProject(team, name); }; });

    auto* folder = app.add_subcommand("folder", "Folders")->require_subcommand(1);
    auto* folderAdd = folder->add_subcommand("add", "Add a folder; prints its id");
    folderAdd->add_option("--parent", parent, "Parent folder id")->required();
    folderAdd->add_option("--name", name, "Folder name")->required();
    addData(folderAdd);
    folderAdd->callback(
        [&] { adminAction = [&](AdminCommands& admin) { admin.AddFolder(parent, name); }; });

    auto* file = app.add_subcommand("file", "Files")->require_subcommand(1);
    auto* fileAdd = file->add_subcommand(
        "add", "Add a file to a folder, or a version to a version stack; prints its id");
    fileAdd->add_option("--parent", parent, "Parent folder or version stack id")->required();
    fileAdd->add_option("--name", name, "File name")->required();
    fileAdd->add_option("--size", size, "Size in bytes")
        ->required()
        ->check(CLI::Range(std::int64_t{0}, std::numeric_limits<std::int64_t>::max()));
    addData(fileAdd);
    fileAdd->callback(
        [&] { adminAction = [&](AdminCommands& admin) { admin.AddFile(parent, name, size); }; });

    auto* share = app.add_subcommand("share", "Sharing")->require_subcommand(1);
    auto* shareProject = share->add_subcommand("project", "Share a project with a user");
    shareProject->add_option("--project", project, "Project id")->required();
    shareProject->add_option("--user", userRef, "Username or user id")->required();
    addData(shareProject);
    shareProject->callback(
        [&] { adminAction = [&](AdminCommands& admin) { admin.ShareProject(project, userRef); }; });

    auto* seed = app.add_subcommand("seed", "Demo data")->require_subcommand(1);
    auto* seedDemo = seed->add_subcommand(
        "demo", "Fill the directory with demo data; prints credentials and ids as key=value");
    addData(seedDemo);
    addIterations(seedDemo);
    seedDemo->callback([&] { adminAction = [](AdminCommands& admin) { admin.SeedDemo(); }; });

    auto* token = app.add_subcommand("token", "Access tokens")->require_subcommand(1);
    auto* tokenIssue = token->add_subcommand(
        "issue", "Sign a user in without a browser; prints the token endpoint's JSON answer");
    std::string tokenClient = vantroserver::store::DataDirectory::kDefaultClientId;
    std::int64_t tokenTtl = 3600;
    tokenIssue->add_option("--user", userRef, "Username or user id")->required();
    tokenIssue->add_option("--client", tokenClient, "Client id")->capture_default_str();
    tokenIssue
        ->add_option("--access-token-ttl", tokenTtl,
                     "Access token lifetime in seconds (as the server's)")
        ->capture_default_str()
        ->check(CLI::Range(std::int64_t{1}, std::int64_t{30} * 24 * 3600));
    addData(tokenIssue);
    tokenIssue->callback([&] {
        adminAction = [&](AdminCommands& admin) {
            admin.IssueToken(userRef, tokenClient, std::chrono::seconds(tokenTtl));
        };
    });

    vantroserver::http::ServeOptions serveOptions;
    std::string listen = "127.0.0.1:8080";
    std::string rateLimit;
    std::int64_t accessTokenTtl = 3600;
    std::string tlsCert, tlsKey;
    std::string publicUrl;
    auto* serve = app.add_subcommand("serve", "Run the HTTP service until SIGINT or SIGTERM");
    addData(serve);
    serve->add_option("--listen", listen, "HOST:PORT to listen on (port 0 picks a free one)")
        ->capture_default_str();
    serve->add_option("--rate-limit", rateLimit, "At most N requests per MS ms per token (N/MS)");
    serve->add_option("--page-size", serveOptions.pageSize, "Default page size")
        ->capture_default_str()
        ->check(CLI::Range(std::size_t{1}, std::size_t{1000}));
    serve->add_option("--access-token-ttl", accessTokenTtl, "Access token lifetime in seconds")
        ->capture_default_str()
        ->check(CLI::Range(std::int64_t{1}, std::int64_t{30} * 24 * 3600));
    auto* certOption = serve->add_option("--tls-cert", tlsCert, "TLS certificate chain (PEM)")
                           ->check(CLI::ExistingFile);
    auto* keyOption =
        serve->add_option("--tls-key", tlsKey, "TLS private key (PEM)")->check(CLI::ExistingFile);
    certOption->needs(keyOption);
    keyOption->needs(certOption);
    serve->add_option("--public-url", publicUrl,
                      "Base of the URLs handed out, e.g. https://review.example.org (default: "
                      "the address listened on)");
    std::int64_t uploadTtl = 86400;
    serve
        ->add_option("--upload-ttl", uploadTtl,
                     "Seconds an unfinished upload is kept before it and its bytes go")
        ->capture_default_str()
        ->check(CLI::Range(std::int64_t{1}, std::int64_t{365} * 24 * 3600));
    serve->add_flag("--enable-test-hooks", serveOptions.enableTestHooks,
                    "Enable the fault-injection routes under /test");
    serve->callback([&] {
        serveOptions.dataDir = dataDir;
        ParseListen(listen, serveOptions);
        if (!rateLimit.empty()) {
            serveOptions.rateLimit = ParseRateLimit(rateLimit);
        }
        serveOptions.accessTokenTtl = std::chrono::seconds(accessTokenTtl);
        serveOptions.uploadTtl = std::chrono::seconds(uploadTtl);
        if (!publicUrl.empty()) {
            if (!vantroserver::http::PublicBase::IsAcceptable(publicUrl)) {
                throw CLI::ValidationError(
                    "--public-url",
                    "expected an http or https URL without query, got " + publicUrl);
            }
            serveOptions.publicUrl = publicUrl;
        }
        if (!tlsCert.empty()) {
            serveOptions.tlsCert = tlsCert;
            serveOptions.tlsKey = tlsKey;
        }
        serveAction = [&] {
            const std::string scheme = serveOptions.tlsCert ? "https" : "http";
            const std::string host = UrlHost(serveOptions.listenAddress);
            return vantroserver::http::RunServer(serveOptions, [&](unsigned short port) {
                // Tests read this line to learn the port: it must come first and be flushed.
                std::cout << "listening on " << scheme << "://" << host << ":" << port << std::endl;
            });
        };
    });

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        const int code = app.exit(error);
        return code == 0 ? 0 : 1;
    }

    try {
        if (serveAction) {
            return serveAction();
        }
        vantroserver::store::StoreOptions options;
        options.passwordIterations = passwordIterations;
        AdminCommands admin(dataDir, std::cout, options);
        adminAction(admin);
        std::cout.flush();
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "vantro-server: " << error.what() << std::endl;
        return 1;
    }
}

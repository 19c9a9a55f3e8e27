// A small world for API tests, made with the admin commands before the server starts:
//   ann  - member of Acme (Editors, Sales) and Zeta; owns both.
//   bob  - member of Acme (team Hidden with project Secret) and owner of Bobco.
//   carol - in no team; project Beta (of Acme's Editors) is shared with her.
// Acme/Editors/Alpha's root folder holds seven children named a..g in scrambled order:
// folders a, c, e, a file b of 100 bytes, d of 250, f of 50 and a folder g.
#pragma once

#include <string>
#include <vector>

#include "support/VantroServerFixture.h"

namespace servertest {

class ServerWorldFixture : public testsupport::VantroServerFixture {
protected:
    void BuildWorld() {
        ann = AddUser("ann", "pw-ann");
        bob = AddUser("bob", "pw-bob");
        carol = AddUser("carol", "pw-carol");
        acme = AdminId(
            {"account", "add", "--name", "Acme", "--owner", "ann", "--storage-limit", "1000000"});
        zeta = AdminId(
            {"account", "add", "--name", "Zeta", "--owner", "ann", "--storage-limit", "5000"});
        bobco = AdminId(
            {"account", "add", "--name", "Bobco", "--owner", "bob", "--storage-limit", "5000"});
        Admin({"account", "member", "add", "--account", acme, "--user", "bob"});
        sales = AdminId({"team", "add", "--account", acme, "--name", "Sales", "--member", "ann"});
        editors =
            AdminId({"team", "add", "--account", acme, "--name", "Editors", "--member", "ann"});
        hidden = AdminId({"team", "add", "--account", acme, "--name", "Hidden", "--member", "bob"});
        bobTeam = AdminId({"team", "add", "--account", bobco, "--name", "Crew", "--member", "bob"});
        beta = AdminId({"project", "add", "--team", editors, "--name", "Beta"});
        alpha = AdminId({"project", "add", "--team", editors, "--name", "Alpha"});
        secret = AdminId({"project", "add", "--team", hidden, "--name", "Secret"});
        bobProject = AdminId({"project", "add", "--team", bobTeam, "--name", "Tools"});
        Admin({"share", "project", "--project", beta, "--user", "carol"});
    }

    /// Fills Alpha's root folder (found through the API as ann sees it).
    void FillAlpha(const std::string& alphaRoot) {
        for (const char* name : {"e", "a", "g", "c"}) {
            children.push_back(AdminId({"folder", "add", "--parent", alphaRoot, "--name", name}));
        }
        const std::vector<std::pair<const char*, const char*>> files{
            {"d", "250"}, {"b", "100"}, {"f", "50"}};
        for (const auto& [name, size] : files) {
            children.push_back(
                AdminId({"file", "add", "--parent", alphaRoot, "--name", name, "--size", size}));
        }
    }

    /// The root folder id of a project, read from the project listing of its team.
    std::string RootOf(const std::string& token, const std::string& team,
                       const std::string& project) {
        const auto reply =
            client.Get(Url("/v2/teams/" + team + "/projects"), testsupport::Bearer(token));
        const auto projects = reply.Json();
        for (const auto& item : projects.as_array()) {
            if (item.at("id").as_string() == project) {
                return std::string(item.at("root_asset_id").as_string());
            }
        }
        ADD_FAILURE() << "project " << project << " not listed: " << reply.body;
        return {};
    }

    std::string ann, bob, carol;
    std::string acme, zeta, bobco;
    std::string sales, editors, hidden, bobTeam;
    std::string alpha, beta, secret, bobProject;
    std::vector<std::string> children;
};

/// The `name` members of a JSON array of objects, in order.
inline std::vector<std::string> Names(const boost::json::value& list) {
    std::vector<std::string> names;
    for (const auto& item : list.as_array()) {
        names.emplace_back(item.at("name").as_string());
    }
    return names;
}

}  // namespace servertest

// Review links: named, token-addressed selections of a project's files and version stacks that
// people without an account can watch. Stacked items are resolved to their newest version when
// read, never when added. Part of a Store; any thread. Who may manage a link is the caller's
// business: whoever sees its project.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "store/Asset.h"
#include "store/Page.h"
#include "store/ReviewLink.h"
#include "store/ReviewLinkItem.h"

namespace vantroserver::store {

class StoreCore;

class ReviewLinkStore {
public:
    static constexpr std::size_t kMaxNameLength = 255;
    /// Random bytes in a token: far beyond what can be guessed.
    static constexpr std::size_t kTokenBytes = 32;
    /// Assets one request may add; keeps one transaction short.
    static constexpr std::size_t kMaxAssetsPerAdd = 1000;

    explicit ReviewLinkStore(std::shared_ptr<StoreCore> core);

    /// Throws StoreError: NotFound for an unknown project or user, Invalid for a bad name.
    ReviewLink Create(std::string_view projectId, std::string_view creatorId,
                      std::string_view name);

    std::optional<ReviewLink> Find(std::string_view id) const;
    /// The link whose public URL ends in `token`; nothing for an unknown or malformed token.
    std::optional<ReviewLink> FindByToken(std::string_view token) const;

    /// The project's links by name, then id.
    Page<ReviewLink> ListForProject(std::string_view projectId, PageRequest page) const;

    /// Adds the assets, in order, after those already there; an asset already in the link keeps
    /// its place. All or nothing. Throws StoreError: NotFound for an unknown link, or an asset
    /// that does not exist or lies outside the link's project; Invalid for a folder or more
    /// than kMaxAssetsPerAdd ids.
    void AddItems(std::string_view linkId, const std::vector<std::string>& assetIds);

    /// The link's items in the order they were added, each resolved to what it shows now.
    std::vector<ReviewLinkItem> Items(std::string_view linkId) const;

    /// The files of a version stack, newest first.
    std::vector<Asset> Versions(std::string_view stackId) const;

    /// Whether the file `fileId` may be watched through the link: it is an item, or a version
    /// in the stack of an item.
    bool HoldsFile(std::string_view linkId, std::string_view fileId) const;

private:
    std::shared_ptr<StoreCore> core;
};

}  // namespace vantroserver::store

// Reads the service's JSON into the SDK's records, leniently: a member that is missing, null or
// of another kind leaves its field empty or at its default, and a list that is not an array is
// an empty list. Only an answer that is not JSON at all is refused (ParseBody). Stateless; any
// thread.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include <boost/json/value.hpp>

#include <vantrocommon/http/Reply.h>
#include <vantrosdk/Account.h>
#include <vantrosdk/Asset.h>
#include <vantrosdk/Project.h>
#include <vantrosdk/ReviewLink.h>
#include <vantrosdk/User.h>
#include <vantrosdk/Workspace.h>

namespace vantrosdk::detail {

/// The reply's body as JSON. A successful reply whose body is not JSON throws kel_exception
/// kResultBadResponse; an unsuccessful one reads as null, since error bodies only add detail
/// to the status.
boost::json::value ParseBody(const vantrocommon::http::Reply& reply);

User ReadUser(const boost::json::value& value);
Account ReadAccount(const boost::json::value& value);
Workspace ReadWorkspace(const boost::json::value& value);
Asset ReadAsset(const boost::json::value& value);
Project ReadProject(const boost::json::value& value);
ReviewLink ReadReviewLink(const boost::json::value& value);

/// Each element of an array read with `read`; empty for anything but an array.
template <class Read>
auto ReadList(const boost::json::value& value, Read read) {
    std::vector<decltype(read(value))> list;
    if (const auto* array = value.if_array()) {
        list.reserve(array->size());
        for (const auto& element : *array) {
            list.push_back(read(element));
        }
    }
    return list;
}

/// Member readers shared with the transfer pipeline.
std::optional<vantrocommon::Guid> GuidMember(const boost::json::value& object,
                                             std::string_view name);
std::string StringMember(const boost::json::value& object, std::string_view name);
std::optional<std::uint64_t> UnsignedMember(const boost::json::value& object,
                                            std::string_view name);
std::optional<std::int64_t> IntegerMember(const boost::json::value& object, std::string_view name);

}  // namespace vantrosdk::detail

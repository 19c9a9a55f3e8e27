// What the client nodes share in reaching the datastore: the datastore in use, the executor a
// continuation runs on, a node's own reference taken safely, and an item's name as a node
// shows it. Implementation only; any thread.
#pragma once

#include <memory>
#include <string>

#include <kelcore/async/Executors.h>
#include <kelcore/async/Future.h>
#include <kelcore/string/String.h>
#include <kelcore/utility/ImmutableString.h>
#include <vantroclient/VantroDatastore.h>

namespace vantrokelui::model::VantroClientIntegration::detail {

/// The datastore of the empty name, the one in use. Any thread.
inline std::shared_ptr<vantro::VantroDatastore> Datastore() {
    return vantro::VantroDatastore::GetDatastore(kelcore::utility::ImmutableString());
}

/// The future's own executor; the default pool when it carries none, so that a continuation
/// never runs inline in the call that attached it.
template <class T>
std::shared_ptr<kelcore::threads::AsyncExecutor> ExecutorOf(const kelcore::async::Future<T>& f) {
    std::shared_ptr<kelcore::threads::AsyncExecutor> executor = f.GetExecutor();
    return executor ? executor : kelcore::async::GetDefaultExecutor();
}

/// A strong reference to `node`, or null once its last owner has let go (while it is being
/// destroyed, too). Unlike WeakAs, never throws; for receives that may race with the end.
template <class Node>
std::shared_ptr<Node> LockSelf(Node& node) noexcept {
    return std::dynamic_pointer_cast<Node>(node.weak_from_this().lock());
}

/// The item's name in UTF-16, read under the item's own lock (the datastore refreshes records
/// in place); empty when the service gave none.
template <class Item>
kelcore::string::string LockedNameOf(const Item& item) {
    std::string name;
    {
        const auto lock = item.Lock();
        name = item.GetName(lock).value_or(std::string());
    }
    return kelcore::string::StdToUTF16String(name);
}

}  // namespace vantrokelui::model::VantroClientIntegration::detail

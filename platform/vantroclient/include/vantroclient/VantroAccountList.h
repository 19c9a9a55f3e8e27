// Accounts of the signed-in user, whole. Held by InterfaceRef; any thread.
//
//   for (std::uint64_t i = 0; i < list->GetCount(); ++i) { auto item = list->GetAccount(i); }
#pragma once

#include <cstdint>
#include <vector>

#include <kelcore/classref/InterfaceRef.h>
#include <vantroclient/VantroAccount.h>
#include <vantroclient/VantroResourceList.h>
#include <vantroclient/v2/Account.h>

namespace vantro {

class VantroAccountList final : public VantroResourceList<v2::Account> {
public:
    explicit VantroAccountList(std::vector<kelcore::classref::InterfaceRef<VantroAccount>> items)
        : VantroResourceList(AsStored(std::move(items))) {}

    /// The account at `index`; null past the end. Any thread.
    kelcore::classref::InterfaceRef<VantroAccount> GetAccount(std::uint64_t index) const {
        return ItemAt<VantroAccount>(index);
    }
};

}  // namespace vantro

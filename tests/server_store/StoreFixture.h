// A fresh store in a temporary directory for each test, with cheap password hashing and a
// clock the test moves by hand (so expiry is tested without waiting).
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <string>

#include "store/Store.h"
#include "support/TemporaryDirectory.h"

namespace storetest {

class StoreFixture : public ::testing::Test {
protected:
    StoreFixture() {
        vantroserver::store::StoreOptions options;
        options.passwordIterations = 1000;
        options.clock = [this] { return now; };
        store = vantroserver::store::Store::Open(directory.Path() / "vantro.db", true, options);
    }

    void Advance(std::chrono::milliseconds by) { now += by; }

    std::string AddUser(const std::string& username) {
        return store->Users().Add({username, "pw-" + username, "", ""}).id;
    }

    testsupport::TemporaryDirectory directory;
    vantroserver::store::Timestamp now{std::chrono::milliseconds(1'700'000'000'000)};
    std::shared_ptr<vantroserver::store::Store> store;
};

}  // namespace storetest

// The kind of StoreError an action throws, for tests that check which refusal they get.
#pragma once

#include <gtest/gtest.h>

#include <functional>

#include "store/StoreError.h"

namespace storetest {

inline vantroserver::store::StoreError::Kind KindOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const vantroserver::store::StoreError& error) {
        return error.GetKind();
    }
    ADD_FAILURE() << "no StoreError thrown";
    return vantroserver::store::StoreError::Kind::Database;
}

}  // namespace storetest

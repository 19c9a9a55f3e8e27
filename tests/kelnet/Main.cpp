// The test program's entry: its tests, or, with NamespaceProbe::kOption, one namespace probe
// scenario (the program runs itself inside a namespace to watch a network it may change).
#include <gtest/gtest.h>

#include <string_view>

#include "NamespaceProbe.h"

int main(int argc, char** argv) {
    if (argc == 3 && std::string_view(argv[1]) == kelnettest::NamespaceProbe::kOption) {
        return kelnettest::NamespaceProbe::Run(argv[2]);
    }
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}

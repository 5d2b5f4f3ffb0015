// SPDX-License-Identifier: Apache-2.0
#include "test_seed.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <random>

namespace {

/// Names the seed beside each failure; silent on success.
class SeedPrinter : public testing::EmptyTestEventListener
{
    void OnTestEnd(const testing::TestInfo& info) override
    {
        if (info.result()->Failed()) {
            std::cout << "To repeat: LUMO_TEST_SEED=" << testSeed() << '\n';
        }
    }
};

} // namespace

std::uint32_t testSeed()
{
    static const std::uint32_t seed = [] {
        const char* given = std::getenv("LUMO_TEST_SEED");
        return given != nullptr ? static_cast<std::uint32_t>(std::strtoul(given, nullptr, 10))
                                : std::random_device{}();
    }();
    return seed;
}

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    const QCoreApplication application(argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new SeedPrinter);
    return RUN_ALL_TESTS();
}

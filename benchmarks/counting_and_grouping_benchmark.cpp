// SPDX-License-Identifier: Apache-2.0
#include "lumo/core/init/adjacency_map.h"
#include "lumo/core/init/histogram.h"

#include <benchmark/benchmark.h>
#include <boost/pending/disjoint_sets.hpp>

#include <cstdint>
#include <numeric>
#include <random>
#include <set>
#include <vector>

namespace lumo {
namespace {

constexpr std::size_t kConnections = 1000000;

std::vector<std::pair<int, int>> randomConnections(int numbers)
{
    std::mt19937 rng(1);
    std::uniform_int_distribution<int> number(0, numbers - 1);
    std::vector<std::pair<int, int>> connections(kConnections);
    for (auto& [a, b] : connections) {
        a = number(rng);
        b = number(rng);
    }
    return connections;
}

void adjacencyMap(benchmark::State& state)
{
    const auto connections = randomConnections(static_cast<int>(state.range(0)));
    for (auto iteration : state) {
        const AdjacencyMap map;
        for (const auto& [a, b] : connections) {
            map.connect(a, b);
        }
        benchmark::DoNotOptimize(map.blocks());
    }
}

/// The same blocks, without their order of creation; the numbers are known to
/// be a range.
void boostDisjointSets(benchmark::State& state)
{
    const int numbers = static_cast<int>(state.range(0));
    const auto connections = randomConnections(numbers);
    for (auto iteration : state) {
        std::vector<int> ranks(static_cast<std::size_t>(numbers));
        std::vector<int> parents(ranks.size());
        boost::disjoint_sets<int*, int*> sets(ranks.data(), parents.data());
        std::vector<bool> seen(ranks.size());
        for (int i = 0; i < numbers; ++i) {
            sets.make_set(i);
        }
        for (const auto& [a, b] : connections) {
            if (a != b) {
                sets.union_set(a, b);
                seen[static_cast<std::size_t>(a)] = seen[static_cast<std::size_t>(b)] = true;
            }
        }
        std::vector<int> blockOf(ranks.size(), -1);
        std::vector<std::set<int>> blocks;
        for (int i = 0; i < numbers; ++i) {
            if (!seen[static_cast<std::size_t>(i)]) {
                continue;
            }
            int& block = blockOf[static_cast<std::size_t>(sets.find_set(i))];
            if (block < 0) {
                block = static_cast<int>(blocks.size());
                blocks.emplace_back();
            }
            std::set<int>& numbersOfBlock = blocks[static_cast<std::size_t>(block)];
            numbersOfBlock.insert(numbersOfBlock.end(), i);
        }
        benchmark::DoNotOptimize(blocks.data());
    }
}

BENCHMARK(adjacencyMap)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(boostDisjointSets)->Arg(1000)->Arg(1000000)->Unit(benchmark::kMillisecond);

constexpr std::size_t kBins = 256;
constexpr std::size_t kAdded = 100000000;

/// More than fit into the cache would measure the memory.
std::vector<double> randomNumbers()
{
    std::mt19937 rng(1);
    std::normal_distribution<double> normal(0.0, 1.0);
    std::vector<double> numbers(10000);
    for (double& number : numbers) {
        number = normal(rng);
    }
    return numbers;
}

void histogram(benchmark::State& state)
{
    const std::vector<double> numbers = randomNumbers();
    for (auto iteration : state) {
        Histogram counts(-3.0, 3.0, kBins);
        for (std::size_t added = 0; added < kAdded; added += numbers.size()) {
            for (const double number : numbers) {
                counts.addDatum(number);
            }
        }
        benchmark::DoNotOptimize(counts.count());
    }
}

void countingLoop(benchmark::State& state)
{
    const std::vector<double> numbers = randomNumbers();
    for (auto iteration : state) {
        std::vector<std::size_t> counts(kBins);
        const double scale = kBins / 6.0;
        for (std::size_t added = 0; added < kAdded; added += numbers.size()) {
            for (const double number : numbers) {
                if (!(number >= Histogram::kNoData)) {
                    continue;
                }
                const double position = number * scale + 0.5 * kBins;
                if (position < 0.0) {
                    ++counts.front();
                } else if (position >= kBins) {
                    ++counts.back();
                } else {
                    ++counts[static_cast<std::size_t>(position)];
                }
            }
        }
        benchmark::DoNotOptimize(std::accumulate(counts.begin(), counts.end(), std::size_t{0}));
    }
}

BENCHMARK(histogram)->Unit(benchmark::kMillisecond);
BENCHMARK(countingLoop)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace lumo

BENCHMARK_MAIN();

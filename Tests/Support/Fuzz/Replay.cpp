// Runs a fuzzer's entry point without libFuzzer: every file of the corpus, then random mutations of
// those files. The seed is printed, and taken from the environment to see a failure again.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "Tests/Support/Seed.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

using Input = std::vector<std::uint8_t>;

constexpr int kMutations = 1500;
constexpr int kFullMutations = 15'000;
constexpr std::size_t kLongestInput = 4096;

std::vector<Input> readCorpus(const std::filesystem::path& folder)
{
    std::vector<std::filesystem::path> paths;
    if (std::filesystem::is_directory(folder))
        std::ranges::copy(std::filesystem::directory_iterator{folder}, std::back_inserter(paths));
    std::ranges::sort(paths);
    std::vector<Input> corpus{Input{}};
    for (auto& path : paths) {
        std::ifstream file{path, std::ios::binary};
        corpus.emplace_back(std::istreambuf_iterator<char>{file}, std::istreambuf_iterator<char>{});
    }
    return corpus;
}

class Mutator {
public:
    explicit Mutator(std::uint32_t seed) : m_random(seed) { }

    Input mutated(const std::vector<Input>& corpus)
    {
        Input input = corpus[below(corpus.size())];
        for (std::size_t i = 0, count = 1 + below(8); i < count; ++i)
            mutate(input, corpus);
        input.resize(std::min(input.size(), kLongestInput));
        return input;
    }

private:
    std::size_t below(std::size_t limit)
    {
        return std::uniform_int_distribution<std::size_t>{0, limit - 1}(m_random);
    }
    std::uint8_t byte() { return static_cast<std::uint8_t>(below(256)); }
    auto place(Input& input) { return input.begin() + static_cast<long>(below(input.size() + 1)); }

    void mutate(Input& input, const std::vector<Input>& corpus)
    {
        auto choice = below(6);
        if (choice == 0 || input.empty())
            input.insert(place(input), byte());
        else if (choice == 1)
            input[below(input.size())] = byte();
        else if (choice == 2)
            input[below(input.size())] ^= static_cast<std::uint8_t>(1U << below(8));
        else if (choice == 3)
            input.resize(below(input.size()));
        else if (choice == 4)
            duplicatePart(input);
        else
            splice(input, corpus[below(corpus.size())]);
    }
    void duplicatePart(Input& input)
    {
        Input part(input.begin() + static_cast<long>(below(input.size())), input.end());
        input.insert(place(input), part.begin(), part.end());
    }
    void splice(Input& input, const Input& other)
    {
        input.insert(place(input), other.begin(), other.end());
    }

    std::mt19937 m_random;
};

}

int main(int argc, char** argv)
{
    auto corpus = readCorpus(argc > 1 ? argv[1] : "");
    const auto seed = quorvel::test::seed();
    std::printf("%zu inputs in the corpus\n", corpus.size() - 1);
    std::fflush(stdout);
    for (auto& input : corpus)
        LLVMFuzzerTestOneInput(input.data(), input.size());
    Mutator mutator{seed};
    const int mutations = std::getenv("QUORVEL_TEST_FULL") ? kFullMutations : kMutations;
    for (int i = 0; i < mutations; ++i) {
        auto input = mutator.mutated(corpus);
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
}

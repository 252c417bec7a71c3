#pragma once

#include <cstddef>
#include <cstdint>
#include <random>

/// Where a test that goes by chance takes its decisions from: a generator of random numbers, or
/// the input of a fuzzer.
class Choices {
  public:
    virtual ~Choices() = default;

    /// Any number.
    virtual std::uint32_t number() = 0;

    /// A number below `count`, which is not 0.
    virtual std::size_t below(std::size_t count) { return number() % count; }
};

/// The same decisions for the same seed.
class RandomChoices final : public Choices {
  public:
    explicit RandomChoices(std::uint32_t seed) : m_random(seed) {}
    std::uint32_t number() override { return static_cast<std::uint32_t>(m_random()); }

  private:
    std::mt19937 m_random;
};

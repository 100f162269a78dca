#pragma once
// Decisions from a fuzzer's bytes.

#include <cstddef>
#include <cstdint>

/// Throws the bytes one after another, and behind their end numbers that all of them decide: a
/// few bytes make as rich a project as many, and one more byte changes one decision.
class Dice
{
public:
    Dice(std::uint8_t const* data, std::size_t size) : m_data(data), m_end(data + size)
    {
        for (std::uint8_t const* byte = m_data; byte != m_end; ++byte)
        {
            m_state = (m_state ^ *byte) * 0x100000001b3U;
        }
    }

    /// Both ends included.
    int upTo(int least, int most)
    {
        auto const count = static_cast<std::uint32_t>(most - least) + 1;
        constexpr std::uint32_t ONE_BYTE = 256;
        std::uint32_t number = next();
        for (std::uint32_t range = ONE_BYTE; range < count; range *= ONE_BYTE)
        {
            number = number * ONE_BYTE + next();
        }
        return least + static_cast<int>(number % count);
    }

    bool chance()
    {
        return upTo(0, 1) == 1;
    }

    template <typename Value, std::size_t count>
    Value pick(Value const (&values)[count])
    {
        return values[static_cast<std::size_t>(upTo(0, static_cast<int>(count) - 1))];
    }

private:
    std::uint32_t next()
    {
        if (m_data != m_end)
        {
            return *m_data++;
        }
        m_state += 0x9e3779b97f4a7c15U;
        std::uint64_t mixed = (m_state ^ (m_state >> 30)) * 0xbf58476d1ce4e5b9U;
        mixed = (mixed ^ (mixed >> 27)) * 0x94d049bb133111ebU;
        return static_cast<std::uint32_t>(mixed >> 56);
    }

    std::uint8_t const* m_data;
    std::uint8_t const* m_end;
    std::uint64_t m_state = 0xcbf29ce484222325U;
};

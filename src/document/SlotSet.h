#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillery {

// A set of table slots as one bit each; combining two sets costs a pass over 64 slots a step.
class SlotSet {
public:
    SlotSet() = default;
    explicit SlotSet(std::size_t size)
        : m_words((size + 63) / 64)
        , m_size(size) {}

    std::size_t size() const { return m_size; }
    void resize(std::size_t size) {
        m_words.resize((size + 63) / 64);
        m_size = size;
    }
    bool contains(std::size_t slot) const { return (m_words[slot / 64] >> (slot % 64)) & 1; }
    void insert(std::size_t slot) { m_words[slot / 64] |= std::uint64_t{1} << (slot % 64); }
    void erase(std::size_t slot) { m_words[slot / 64] &= ~(std::uint64_t{1} << (slot % 64)); }
    void set(std::size_t slot, bool on) { on ? insert(slot) : erase(slot); }

    SlotSet& operator&=(const SlotSet& other) {
        for (std::size_t i = 0; i < m_words.size() && i < other.m_words.size(); ++i)
            m_words[i] &= other.m_words[i];
        return *this;
    }
    void subtract(const SlotSet& other) {
        for (std::size_t i = 0; i < m_words.size() && i < other.m_words.size(); ++i)
            m_words[i] &= ~other.m_words[i];
    }
    std::size_t count() const {
        std::size_t total = 0;
        for (std::uint64_t word : m_words)
            total += static_cast<std::size_t>(std::popcount(word));
        return total;
    }
    // Calls visit(slot) for the members in [from, to) in increasing order until it returns false.
    template <typename Visit>
    void forEach(std::size_t from, std::size_t to, Visit visit) const {
        for (std::size_t w = from / 64; w * 64 < to && w < m_words.size(); ++w) {
            std::uint64_t word = m_words[w];
            if (w == from / 64)
                word &= ~std::uint64_t{0} << (from % 64);
            while (word) {
                std::size_t slot = w * 64 + static_cast<std::size_t>(std::countr_zero(word));
                if (slot >= to || !visit(slot))
                    return;
                word &= word - 1;
            }
        }
    }
    std::size_t memoryBytes() const { return m_words.capacity() * sizeof(std::uint64_t); }

private:
    std::vector<std::uint64_t> m_words;
    std::size_t m_size = 0;
};

} // namespace quillery

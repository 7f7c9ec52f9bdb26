#pragma once

// A map from small fixed keys (a few ints) to non-negative ints in one array:
// open addressing with linear probing, so an entry costs no allocation of
// its own. The recording observer indexes every element and record with it.

#include <QtCore/QtGlobal>

#include <cstddef>
#include <vector>

namespace lcdcfg {

// Mixes a 64-bit value so that its low bits depend on all of it.
inline quint64 mixBits(quint64 h) {
    h ^= h >> 33;
    h *= 0xFF51AFD7ED558CCDull;
    h ^= h >> 33;
    h *= 0xC4CEB9FE1A85EC53ull;
    h ^= h >> 33;
    return h;
}

// `Key` has `quint64 hash() const` and `==`.
template <class Key> class FlatIndex {
public:
    // The value of `key`, or -1.
    int find(const Key& key) const {
        if (m_slots.empty()) return -1;
        const std::size_t mask = m_slots.size() - 1;
        for (std::size_t i = std::size_t(key.hash()) & mask;; i = (i + 1) & mask) {
            const Slot& s = m_slots[i];
            if (s.value < 0) return -1;
            if (s.key == key) return s.value;
        }
    }
    // The value of `key`; `fresh` (>= 0) becomes it when there is none.
    int findOrInsert(const Key& key, int fresh) {
        if (2 * (m_count + 1) > m_slots.size()) grow();
        const std::size_t mask = m_slots.size() - 1;
        for (std::size_t i = std::size_t(key.hash()) & mask;; i = (i + 1) & mask) {
            Slot& s = m_slots[i];
            if (s.value < 0) {
                s = {key, fresh};
                ++m_count;
                return fresh;
            }
            if (s.key == key) return s.value;
        }
    }
    // Every key with its value, in no particular order.
    template <class F> void forEach(F&& f) const {
        for (const Slot& s : m_slots)
            if (s.value >= 0) f(s.key, s.value);
    }

private:
    struct Slot {
        Key key{};
        int value = -1;
    };
    void grow() {
        std::vector<Slot> old(m_slots.size() < 64 ? 64 : 2 * m_slots.size());
        old.swap(m_slots);
        m_count = 0;
        for (const Slot& s : old)
            if (s.value >= 0) findOrInsert(s.key, s.value);
    }

    std::vector<Slot> m_slots; // a power of two long, at most half full
    std::size_t m_count = 0;
};

} // namespace lcdcfg

// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_PACKED_TEXT_H
#define KELTRA_FOUNDATION_PACKED_TEXT_H

// Packs texts of characters below 128, one behind the other, each with its zero, while the library is
// compiled, and unpacks them at once: six thousand characters take a third of their size, and the code 450
// bytes on ARM. A character is expected by how often it followed the same characters before, up to five of
// them, and where the text before was the same so far, by what stood there. The more it was expected, the
// more of an interval is its share.

#include <cstddef>
#include <cstdint>

namespace keltra {

constexpr int kLongestContext = 5;
constexpr unsigned int kCharacters = 128;

// An interval is at least so wide that it has a part for each unit of the shares.
constexpr std::uint32_t kLeastRange = std::uint32_t{1} << 24;

class PackedWriter {
   public:
    constexpr explicit PackedWriter(unsigned char *target) : target(target) {}

    // Puts the given one of the characters, or gets one; `sum` is that of their shares. The last ones, which
    // are most letters, come first.
    constexpr unsigned int take(const std::uint32_t *shares, std::uint32_t sum, unsigned int given) {
        fits = fits && sum <= kLeastRange;
        if (!fits) return given;
        for (; range < kLeastRange; range <<= 8) put();
        range /= sum;
        for (unsigned int c = kCharacters; --c > given;) low += std::uint64_t{range} * shares[c];
        for (std::size_t i = written; low >> 32; low &= 0xffffffff) carry(i);
        range *= shares[given];
        return given;
    }
    // The reader reads four bytes ahead. Returns the size; 0 when shares were too large for an interval,
    // since there was too much of the same.
    constexpr std::size_t finish() {
        if (!fits) return 0;
        for (int i = 0; i < 4; ++i) put();
        return written - kSilent;
    }

   private:
    // The first bytes are zeros, which the reader begins with.
    static constexpr std::size_t kSilent = 4;

    constexpr void put() {
        if (written >= kSilent) target[written - kSilent] = static_cast<unsigned char>(low >> 24);
        ++written;
        low = low << 8 & 0xffffffff;
    }
    constexpr void carry(std::size_t place) {
        do --place;
        while (++target[place - kSilent] == 0);
    }

    unsigned char *target;
    std::size_t written = 0;
    std::uint64_t low = 0;
    std::uint32_t range = 1;
    bool fits = true;
};

class PackedReader {
   public:
    explicit PackedReader(const unsigned char *packed) : packed(packed), code(0), range(1) {}

    unsigned int take(const std::uint32_t *shares, std::uint32_t sum, unsigned int = 0) {
        for (; range < kLeastRange; range <<= 8) code = code << 8 | *packed++;
        range /= sum;
        unsigned int c = kCharacters;
        for (std::uint32_t part; code >= (part = range * shares[--c]);) code -= part;
        range *= shares[c];
        return c;
    }

   private:
    const unsigned char *packed;
    std::uint32_t code, range;
};

// Texts of `kSize` characters while they are packed or unpacked. Zeros to begin with.
template <std::size_t kSize>
class PackedText {
   public:
    // The texts.
    constexpr const char *begin() const { return characters + kLongestContext; }

    // Packs character `number`, or unpacks it with a reader. They follow one another.
    template <class Coder>
    [[gnu::noinline]] constexpr void take(std::size_t number, Coder &coder, char given = 0) {
        char *const end = characters + kLongestContext + number;
        std::uint32_t sum = 0;
        for (unsigned int c = 0; c < kCharacters; ++c) sum += shares[c] = 2u + met[c];
        // Each place that the same character is before, the more of them the better.
        std::uint16_t &last = lasts[static_cast<unsigned char>(end[-1])];
        for (unsigned int place = last; place; place = previous[place]) {
            const char *const other = begin() + place;
            int length = 1;
            while (length < kLongestContext && other[-1 - length] == end[-1 - length]) ++length;
            sum += add(*other, static_cast<std::uint32_t>(length * length * length * length * 32));
        }
        if (above) sum += add(*above, sum * 2);
        const unsigned int c = coder.take(shares, sum, static_cast<unsigned char>(given));
        *end = static_cast<char>(c);
        ++met[c];
        previous[number] = last;
        last = static_cast<std::uint16_t>(number);
        above = above && *above == *end ? above + 1 : nullptr;
        if (c) return;
        above = text;
        text = end + 1;
    }

   private:
    constexpr std::uint32_t add(char character, std::uint32_t share) {
        shares[static_cast<unsigned char>(character)] += share;
        return share;
    }

    // The place in the text before while that was the same, the begin of this one.
    const char *above = nullptr, *text = nullptr;
    // Of each character its part of an interval, and how often it was met.
    std::uint32_t shares[kCharacters] = {}, met[kCharacters] = {};
    // Places with the same character before them are in one list, the last place first.
    std::uint16_t lasts[kCharacters] = {}, previous[kSize] = {};
    char characters[kLongestContext + kSize] = {};
};

}  // namespace keltra

#endif

// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FOUNDATION_PACKED_TEXT_H
#define KELTRA_FOUNDATION_PACKED_TEXT_H

// Packs texts of characters below 128, one behind the other, each with its zero, while the library is
// compiled, and unpacks them at once: six thousand characters take two fifths of their size, and the code 600
// bytes on ARM. A character is guessed from the places where up to five characters before it were the same.
// Whether a guess is right, and the bits of a character that was not guessed, go through an arithmetic coder.

#include <cstddef>
#include <cstdint>

namespace keltra {

constexpr unsigned char kLongestContext = 5;

// Of a set bit: 65,536ths above one half. It follows the bits that it was used for, less and less.
struct BitChance {
    std::int16_t above;
    std::uint16_t used;

    constexpr std::uint32_t share() const { return static_cast<std::uint32_t>(0x8000 + above); }
    constexpr void follow(unsigned int bit) {
        const int most = bit ? 0x7fff : -0x8000;
        above = static_cast<std::int16_t>(above + (most - above) / (used + 2));
        if (used < 60) ++used;
    }
};

// An interval of which each bit takes a part: the lower one when it is set.
struct CodeInterval {
    std::uint32_t low = 0, high = 0xffffffff;

    constexpr std::uint32_t split(const BitChance &chance) const {
        return low + ((high - low) >> 16) * chance.share();
    }
    constexpr void take(std::uint32_t middle, unsigned int bit) {
        if (bit)
            high = middle;
        else
            low = middle + 1;
    }
    // Whether the highest byte is known; it is left out then.
    constexpr bool shift() {
        if ((low ^ high) >> 24) return false;
        low <<= 8;
        high = high << 8 | 0xff;
        return true;
    }
};

class PackedWriter {
   public:
    constexpr explicit PackedWriter(unsigned char *target) : target(target) {}

    constexpr unsigned int bit(BitChance &chance, unsigned int bit) {
        interval.take(interval.split(chance), bit);
        chance.follow(bit);
        for (unsigned char byte = top(); interval.shift(); byte = top()) put(byte);
        return bit;
    }
    // The reader reads four bytes ahead. Returns the size.
    constexpr std::size_t finish() {
        for (int i = 0; i < 4; ++i) put(static_cast<unsigned char>(interval.high >> (24 - 8 * i)));
        return size;
    }

   private:
    constexpr unsigned char top() const { return static_cast<unsigned char>(interval.high >> 24); }
    constexpr void put(unsigned char byte) { target[size++] = byte; }

    unsigned char *target;
    std::size_t size = 0;
    CodeInterval interval;
};

// The interval to begin with is one whose four bytes are known, so the first four are read into it.
class PackedReader {
   public:
    explicit PackedReader(const unsigned char *packed) : packed(packed), code(0), interval{0, 0} {}

    unsigned int bit(BitChance &chance, unsigned int = 0) {
        while (interval.shift()) code = code << 8 | *packed++;
        const std::uint32_t middle = interval.split(chance);
        const unsigned int bit = code <= middle;
        interval.take(middle, bit);
        chance.follow(bit);
        return bit;
    }

   private:
    const unsigned char *packed;
    std::uint32_t code;
    CodeInterval interval;
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
        char *const character = characters + kLongestContext + number;
        const unsigned int before = static_cast<unsigned char>(character[-1]);
        std::uint16_t &last = lasts[before * 8 ^ static_cast<unsigned char>(character[-2])];
        unsigned int guess = kNoCharacter, isRight = 0;
        for (BitChance *chances = right; chances != right + 2 * kGuesses && !isRight; chances += kGuesses) {
            guess = guessOf(character, last, guess % 256);
            if (guess < 512) break;
            isRight = coder.bit(chances[guess / 256], static_cast<char>(guess) == given);
        }
        *character = isRight ? static_cast<char>(guess) : spelt(coder, letters[before / 32], given);
        previous[number] = last;
        last = static_cast<std::uint16_t>(number);
    }

   private:
    static constexpr unsigned int kNoCharacter = 127, kGuesses = 2 * (kLongestContext + 1);

    // What followed the longest context at the last place that has it, unless it is `wrong`. In the bits
    // above, whether something else followed at another place, then the length.
    [[gnu::noinline]] constexpr unsigned int guessOf(const char *end, unsigned int last,
                                                     unsigned int wrong) const {
        unsigned int best = 0;
        for (unsigned int place = last; place; place = previous[place]) {
            const char *const other = begin() + place;
            const unsigned int c = static_cast<unsigned char>(*other);
            if (c == wrong) continue;
            int length = 0;
            while (length > -int{kLongestContext} && other[length - 1] == end[length - 1]) --length;
            const unsigned int isOf = static_cast<unsigned int>(-length) * 512 + c;
            if (isOf / 512 > best / 512)
                best = isOf;
            else if (isOf / 512 == best / 512 && isOf % 256 != best % 256)
                best |= 256;
        }
        return best;
    }

    template <class Coder>
    constexpr char spelt(Coder &coder, BitChance *chances, char given) {
        unsigned int bits = 1, next = static_cast<unsigned int>(given);
        for (; bits < 128; next *= 2) bits = 2 * bits + coder.bit(chances[bits], next / 64 % 2);
        return static_cast<char>(bits % 128);
    }

    BitChance right[2 * kGuesses] = {}, letters[4][128] = {};
    // Places with the same two characters before them are in one list, the last place first.
    std::uint16_t lasts[1024] = {}, previous[kSize] = {};
    char characters[kLongestContext + kSize] = {};
};

}  // namespace keltra

#endif

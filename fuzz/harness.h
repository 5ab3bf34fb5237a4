// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FUZZ_HARNESS_H
#define KELTRA_FUZZ_HARNESS_H

// What all targets share: an engine on a GL that only checks arguments, files in memory, and the use that is
// made of what loaded. After each input everything is destroyed and nothing may be left.

#include <keltra/keltra.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/check.h"

namespace keltra::fuzz {

/// The numbers and texts that an input is made of; zeros behind its end.
class Bytes {
   public:
    Bytes(const std::uint8_t *data, std::size_t size) : cursor(data), end(data + size) {}

    bool isAtEnd() const { return cursor == end; }
    std::uint8_t u8() { return isAtEnd() ? std::uint8_t{0} : *cursor++; }
    bool flag() { return u8() & 1; }
    std::int32_t i32();
    /// Small and large numbers, infinities and not-a-number.
    float real();
    R3XVECTOR3D vector();
    R3XVECTOR4D color();
    /// Up to `most` characters.
    std::string text(std::size_t most);
    const std::uint8_t *rest() const { return cursor; }
    std::size_t left() const { return static_cast<std::size_t>(end - cursor); }

   private:
    const std::uint8_t *cursor, *end;
};

/// The path of a file in memory that the engine can read. The bytes stay the caller's, and the path is good
/// until the next call for the same slot.
const char *fileOf(const std::uint8_t *data, std::size_t size, unsigned slot = 0);
/// The path of a file that the engine can write.
const char *fileToWrite();

/// Names in the current folder are those of no files meanwhile.
void setExecuting(bool executing);

/// Before each input: starts the engine unless it runs.
void begin();
/// Its first part: takes the time.
void beginTime();
/// Whether an input is one of so many that something costly is done with, by a hash of its bytes. When inputs
/// are replayed, all are.
bool isChosen(unsigned oneOf, const std::uint8_t *data, std::size_t size);
/// After each: destroys everything and looks whether anything is left. `size` is the input's: work that takes
/// longer than it may for so many bytes is a failure.
void finish(std::size_t size);
/// The last part of `finish`: looks whether the work took too long.
void finishTime(std::size_t size);
/// Stops the engine and starts it again.
void restart();

/// Compares what keltra-info says of the bytes with what the engine made of them; some inputs are left out,
/// to save time.
void compareVerdict(const char *kind, const std::uint8_t *data, std::size_t size, bool accepted);

/// A frame; either may be null.
void draw(KTNODE *scene, KTNODE *interface);
/// Changes nodes of the tree as the bytes have it, draws and picks, copies them and destroys some.
void useTree(KTNODE *root, Bytes &bytes, bool isInterface);

}  // namespace keltra::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size);

#endif

// SPDX-License-Identifier: Zlib
#include "formats/tga_file.h"

#include "foundation/block.h"
#include "foundation/quiet.h"
#include "platform/platform.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <limits>

namespace keltra {

namespace {

constexpr std::size_t kPieceSize = 16384;

bool readBytes(FaultScope &scope, std::FILE *file, void *bytes, std::size_t size) {
    return std::fread(bytes, 1, size, file) == size || scope.failFile();
}

// Reads the packets piece by piece. What a piece has left of its last packet comes before the next piece.
bool readPackets(FaultScope &scope, std::FILE *file, const TgaImage &image, std::uint8_t *pixels) {
    std::uint8_t *piece = static_cast<std::uint8_t *>(newBlock(kPieceSize));
    if (!piece) return scope.fail(KT_FAULT_OUT_OF_MEMORY);
    TgaUnpacker unpacker(image, pixels);
    std::size_t kept = 0, unread = image.dataSize, taken = 0;
    bool isRead = true;
    for (bool isLast = false; isRead && !isLast && !unpacker.isFull();) {
        const std::size_t size = std::min(unread, kPieceSize - kept);
        isRead = readBytes(scope, file, piece + kept, size);
        if (!isRead) break;
        unread -= size;
        kept += size;
        isLast = unread == 0;
        const std::size_t used = unpacker.unpack(piece, kept, isLast);
        taken += used;
        kept -= used;
        std::memmove(piece, piece + used, kept);
    }
    releaseBlock(piece);
    if (!isRead) return false;
    Fault fault;
    return unpacker.finish(image, pixels, taken, image.dataSize, &fault) || refuse(scope, fault);
}

bool readPixels(FaultScope &scope, std::FILE *file, const TgaImage &image, std::uint8_t *pixels) {
    if (image.kind == TgaKind::kRunLength) return readPackets(scope, file, image, pixels);
    if (!readBytes(scope, file, pixels, image.bytes())) return false;
    decodeTgaInPlace(image, pixels);
    return true;
}

bool readPicture(FaultScope &scope, std::FILE *file, std::size_t size, TgaImage &image,
                 std::uint8_t *&pixels) {
    std::uint8_t header[kTgaHeaderSize];
    if (!readBytes(scope, file, header, std::min(size, sizeof header))) return false;
    Fault fault;
    if (!parseTga(header, size, image, &fault)) return refuse(scope, fault);
    image.data = nullptr;
    if (image.kind == TgaKind::kOther) {
        warnFault({}, toPublic(otherTgaKind()));
        return true;
    }
    pixels = static_cast<std::uint8_t *>(newBlock(image.bytes()));
    if (!pixels) return scope.fail(KT_FAULT_OUT_OF_MEMORY);
    if (readPixels(scope, file, image, pixels)) return true;
    releaseBlock(pixels);
    pixels = nullptr;
    return false;
}

}  // namespace

bool readTga(FaultScope &scope, TgaImage &image, std::uint8_t *&pixels) {
    std::int64_t size = 0;
    std::FILE *file = *scope.file ? platformOpenFile(scope.file, size) : nullptr;
    if (!file) return scope.failFile(*scope.file && errno == ENOMEM);
    const bool isSize = size > 0 && size <= std::numeric_limits<std::int32_t>::max();
    const bool isRead =
        isSize ? readPicture(scope, file, static_cast<std::size_t>(size), image, pixels) : scope.failFile();
    std::fclose(file);
    return isRead;
}

}  // namespace keltra

// SPDX-License-Identifier: Zlib
#include "formats/tga.h"
#include "tools/info/kinds.h"

#include <vector>

namespace keltra::info {

namespace {

const char *kindText(TgaKind kind) {
    if (kind == TgaKind::kUncompressed) return "uncompressed";
    return kind == TgaKind::kRunLength ? "run-length" : "other";
}

void describe(const Source &source, const TgaImage &image, Inspection &result) {
    result.fields = {{"encoding", kindText(image.kind)},
                     {"width", image.sizeX},
                     {"height", image.sizeY},
                     {"bitsPerPixel", 8 * image.bytesPerPixel},
                     {"firstRow", image.topDown ? "top" : "bottom"},
                     {"bytes", source.size},
                     {"pixelBytes", image.kind == TgaKind::kOther ? 0 : image.bytes()},
                     // The engine charges four bytes a pixel at any depth.
                     {"textureMemory", std::size_t{4} * image.sizeX * image.sizeY}};
    if (image.kind == TgaKind::kOther) {
        KTFAULT fault = toPublic(otherTgaKind());
        fault.severity = KT_FAULT_WARNING;
        addFault(result, fault);
    }
    if (image.kind == TgaKind::kUncompressed && image.dataSize > image.bytes())
        note(result, counted(image.dataSize - image.bytes(), "byte") + " after the image, not read");
}

}  // namespace

// A texture loads when its header does and the packets fill the image; one of another kind is not unpacked.
void inspectTexture(const Source &source, Inspection &result) {
    TgaImage image;
    Fault fault;
    result.good = parseTga(source.bytes, source.size, image, &fault);
    if (!result.good) return setFlaw(result, fault);
    describe(source, image, result);
    if (image.kind == TgaKind::kOther) return;
    std::vector<std::uint8_t> pixels(image.bytes());
    result.good = decodeTga(image, pixels.data(), &fault);
    if (!result.good) setFlaw(result, fault);
}

}  // namespace keltra::info

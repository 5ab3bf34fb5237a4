#include "tools/samples/paint.h"
#include "tools/samples/textures.h"

namespace keltra::samples {
namespace {

// A wall of blocks: which block a pixel is in and how far from its joints.
struct Block {
    int column = 0;
    int row = 0;
    float edge = 0.0f;   // pixels to the nearest joint
    float light = 0.0f;  // -1 at the lower right joint .. 1 at the upper left
};

Block blockAt(int x, int y, int width, int blockWidth, int blockHeight) {
    Block block;
    block.row = y / blockHeight;
    const int shift = (block.row % 2) * blockWidth / 2;
    const int across = (x + shift) % width;
    block.column = across / blockWidth;
    const float left = static_cast<float>(across % blockWidth);
    const float right = static_cast<float>(blockWidth - 1) - left;
    const float top = static_cast<float>(y % blockHeight);
    const float bottom = static_cast<float>(blockHeight - 1) - top;
    block.edge = std::min(std::min(left, right), std::min(top, bottom));
    const float rim = 5.0f;
    block.light = (std::min(left, top) < rim ? 1.0f : 0.0f) - (std::min(right, bottom) < rim ? 1.0f : 0.0f);
    return block;
}

float blockTone(const Block &block, unsigned seed) {
    return static_cast<float>(hashNoise(block.column, block.row, seed)) / 65536.0f;
}

// 0 .. 1, 1 in the middle of a crack.
float cracks(int x, int y, int size, unsigned seed) {
    const float n = cloudNoise(x, y, size, size, 64, 4, seed);
    return 1.0f - ramp(0.0f, 0.012f, std::fabs(n - 0.5f));
}

}  // namespace

Image paintPaving() {
    const int size = 256;
    return painted(size, size, [=](int x, int y) {
        const Block block = blockAt(x, y, size, 64, 64);
        const float tone = blockTone(block, 11);
        const float rough = cloudNoise(x, y, size, size, 16, 4, 21);
        const float wear = cloudNoise(x, y, size, size, 64, 3, 31);
        Vec3 color = mix(Vec3{126, 122, 138}, Vec3{186, 172, 160}, tone);
        color = color * (0.72f + 0.5f * rough) * (0.86f + 0.24f * wear);
        color = color * (1.0f + 0.13f * block.light);
        color = color * (1.0f - 0.45f * cracks(x, y, size, 41) * ramp(0.55f, 0.7f, tone));
        const float joint = 1.0f - ramp(0.6f, 3.0f, block.edge + rough * 1.6f);
        const Vec3 moss = mix(Vec3{40, 38, 48}, Vec3{58, 84, 52}, ramp(0.45f, 0.65f, wear));
        return grained(mix(color, moss, joint), x, y, 10.0f);
    });
}

Image paintMasonry() {
    const int size = 256;
    return painted(size, size, [=](int x, int y) {
        const Block block = blockAt(x, y, size, 64, 32);
        const float tone = blockTone(block, 12);
        const float rough = cloudNoise(x, y, size, size, 16, 4, 22);
        const float stain = cloudNoise(x, y, size, size, 128, 4, 32);
        Vec3 color = mix(Vec3{150, 132, 120}, Vec3{206, 186, 158}, tone);
        color = color * (0.74f + 0.46f * rough);
        color = mix(color, color * 0.72f, ramp(0.5f, 0.75f, stain));
        color = color * (1.0f + 0.12f * block.light);
        const float joint = 1.0f - ramp(0.4f, 2.2f, block.edge + rough);
        return grained(mix(color, Vec3{62, 54, 60}, joint * 0.85f), x, y, 10.0f);
    });
}

Image paintColumn() {
    const int size = 128;
    return painted(size, size, [=](int x, int y) {
        // Eight flutes per repeat, each a hollow lit from its left.
        const int flute = x % 16;
        const float hollow = 1.0f - ramp(0.0f, 6.0f, std::fabs(flute - 7.5f) - 0.5f);
        const float side = (static_cast<float>(flute) - 7.5f) * (1.0f / 8.0f);
        const float rough = cloudNoise(x, y, size, size, 16, 4, 23);
        const float stain = cloudNoise(x, y, size, size, 64, 4, 33);
        Vec3 color = mix(Vec3{168, 154, 150}, Vec3{226, 212, 194}, rough);
        color = color * (1.0f - 0.30f * hollow + 0.14f * hollow * side);
        color = mix(color, color * 0.66f, ramp(0.5f, 0.72f, stain));
        return grained(color, x, y, 9.0f);
    });
}

Image paintMosaic() {
    const int size = 128;
    return painted(size, size, [=](int x, int y) {
        const int tile = 8;
        const int cx = x / tile, cy = y / tile;
        const float tone = static_cast<float>(hashNoise(cx, cy, 14)) / 65536.0f;
        const bool gold = (cy % 8 == 0) || ((cx + cy) % 8 == 3 && cy % 8 > 2);
        const Vec3 base = gold ? Vec3{214, 170, 86} : mix(Vec3{20, 86, 112}, Vec3{60, 176, 172}, tone);
        const bool joint = x % tile == 0 || y % tile == 0;
        const float shine = 0.85f + 0.3f * tone;
        return grained(joint ? Vec3{14, 40, 56} : base * shine, x, y, 8.0f);
    });
}

}  // namespace keltra::samples

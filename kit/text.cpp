// SPDX-License-Identifier: Zlib
// Meshes of texts: glyphs as squares, and as solid letters along the outlines of their pictures.
#include <keltra/kit/shapes.h>

#include <keltra/font.h>
#include <keltra/mesh.h>
#include <keltra/texture.h>

#include "kit/fault.h"
#include "kit/mesh_builder.h"

#include <algorithm>

using keltra::kit::MeshBuilder;

namespace {

constexpr unsigned int kCells = 16;  // of a font's texture, in both directions
constexpr unsigned int kInk = 128;   // alpha from which on a pixel belongs to a letter

// The number of a character's cell; of those that show nothing 0, which is that of the blank.
unsigned int cellOf(char c) {
    const int cell = static_cast<unsigned char>(c) - 32;
    return cell > 0 && cell < 96 ? static_cast<unsigned int>(cell) : 0;
}

int advanceOf(const KTFONT &font, char c) {
    return static_cast<int>(font.getCharSizeX()) - font.getKerning(c);
}

int widthOf(const KTFONT &font, const char *line) {
    int width = 0;
    for (; *line && *line != '\n'; ++line) width += advanceOf(font, *line);
    return width;
}

// Calls visit(c, left, top) for each character that shows something, in the font's pixels, y upward; the
// block is around the origin, its lines are centered.
template <class Visit>
void layOut(const KTFONT &font, const char *text, Visit visit) {
    const float line = static_cast<float>(font.getCharSizeY());
    float top = 0.5f * line;
    for (const char *c = text; *c; ++c)
        if (*c == '\n') top += 0.5f * line;
    float left = -0.5f * static_cast<float>(widthOf(font, text));
    for (; *text; ++text) {
        if (*text == '\n') {
            left = -0.5f * static_cast<float>(widthOf(font, text + 1));
            top -= line;
            continue;
        }
        if (cellOf(*text)) visit(*text, left, top);
        left += static_cast<float>(advanceOf(font, *text));
    }
}

// Where a cell lies in the texture: its left and its top edge, v upward.
float leftOf(unsigned int cell) { return static_cast<float>(cell % kCells) / kCells; }
float topOf(unsigned int cell) { return 1.0f - static_cast<float>(cell / kCells) / kCells; }

struct Outline {
    float x, y;
};

// The alpha of a cell's pixels, 0 around them; (0, 0) is at the lower left.
class Glyph {
   public:
    Glyph(const KTTEXTURE &texture, unsigned int cell)
        : columns(static_cast<int>(texture.getSizeX() / kCells)),
          rows(static_cast<int>(texture.getSizeY() / kCells)),
          stride(texture.getSizeX()) {
        const unsigned int below = kCells - 1 - cell / kCells;
        pixels = texture.getBitmap() + 4 * (below * rows * stride + cell % kCells * columns);
    }
    unsigned int alpha(int x, int y) const {
        if (x < 0 || y < 0 || x >= columns || y >= rows) return 0;
        return pixels[4 * (static_cast<unsigned int>(y) * stride + static_cast<unsigned int>(x)) + 3];
    }
    const int columns, rows;

   private:
    unsigned int stride;
    const unsigned char *pixels;
};

// What a letter has of the square between four pixels: a convex polygon, counter-clockwise. `isRim` tells of
// each point whether the edge behind it is a part of the outline.
struct Piece {
    Outline points[8];
    bool isRim[8];
    unsigned int count = 0;

    Piece(const Glyph &glyph, int x, int y) {
        static constexpr int kX[] = {0, 1, 1, 0}, kY[] = {0, 0, 1, 1};
        for (int i = 0; i < 4; ++i) {
            const int j = (i + 1) % 4;
            const unsigned int here = glyph.alpha(x + kX[i], y + kY[i]);
            const unsigned int next = glyph.alpha(x + kX[j], y + kY[j]);
            const float left = static_cast<float>(x + kX[i]), low = static_cast<float>(y + kY[i]);
            if (here >= kInk) add(left, low, false);
            if ((here >= kInk) == (next >= kInk)) continue;
            const float part = (static_cast<float>(kInk) - 0.5f - static_cast<float>(here)) /
                               (static_cast<float>(next) - static_cast<float>(here));
            add(left + part * static_cast<float>(kX[j] - kX[i]),
                low + part * static_cast<float>(kY[j] - kY[i]), here >= kInk);
        }
    }

   private:
    void add(float x, float y, bool rim) {
        points[count] = {x, y};
        isRim[count++] = rim;
    }
};

// Counts what a text needs, and then builds it.
struct Solid {
    MeshBuilder *mesh = nullptr;  // null: only counted
    float scaleX = 1.0f, scaleY = 1.0f, unit = 1.0f, halfDepth = 0.0f, width = 1.0f, height = 1.0f;
    unsigned int vertices = 0, faces = 0;

    void addVertex(float x, float y, float z, const R3XVECTOR3D &normal) {
        mesh->vertex(R3XVECTOR3D(x, y, z) * unit, normal, 0.5f + x / width, 0.5f + y / height);
    }
    void addSide(const Piece &piece, float left, float low, float z) {
        const unsigned int first = mesh->vertexCount();
        const R3XVECTOR3D normal(0.0f, 0.0f, z > 0.0f ? 1.0f : -1.0f);
        for (unsigned int i = 0; i < piece.count; ++i)
            addVertex(left + piece.points[i].x * scaleX, low + piece.points[i].y * scaleY, z, normal);
        for (unsigned int i = 2; i < piece.count; ++i)
            z > 0.0f ? mesh->face(first, first + i - 1, first + i)
                     : mesh->face(first, first + i, first + i - 1);
    }
    void addRim(const Outline &from, const Outline &to, float left, float low) {
        const float x0 = left + from.x * scaleX, y0 = low + from.y * scaleY;
        const float x1 = left + to.x * scaleX, y1 = low + to.y * scaleY;
        R3XVECTOR3D normal(y1 - y0, x0 - x1, 0.0f);
        if (normal.squaredLength() > 0.0f) normal.normalize();
        const unsigned int first = mesh->vertexCount();
        addVertex(x0, y0, -halfDepth, normal);
        addVertex(x1, y1, -halfDepth, normal);
        addVertex(x1, y1, halfDepth, normal);
        addVertex(x0, y0, halfDepth, normal);
        mesh->square(first, first + 1, first + 2, first + 3);
    }
    void add(const Piece &piece, float left, float low) {
        if (piece.count == 0) return;
        vertices += 2 * piece.count;
        faces += 2 * (piece.count - 2);
        if (mesh) addSide(piece, left, low, halfDepth), addSide(piece, left, low, -halfDepth);
        for (unsigned int i = 0; i < piece.count; ++i) {
            if (!piece.isRim[i]) continue;
            vertices += 4;
            faces += 2;
            if (mesh) addRim(piece.points[i], piece.points[(i + 1) % piece.count], left, low);
        }
    }
    void addText(const KTFONT &font, const char *text) {
        layOut(font, text, [this, &font](char c, float left, float top) {
            const Glyph glyph(*font.getTexture(), cellOf(c));
            scaleX = static_cast<float>(font.getCharSizeX()) / static_cast<float>(glyph.columns);
            scaleY = static_cast<float>(font.getCharSizeY()) / static_cast<float>(glyph.rows);
            const float low = top - static_cast<float>(font.getCharSizeY());
            for (int y = -1; y < glyph.rows; ++y)
                for (int x = -1; x < glyph.columns; ++x)
                    add(Piece(glyph, x, y), left + 0.5f * scaleX, low + 0.5f * scaleY);
        });
    }
};

unsigned int countGlyphs(const KTFONT &font, const char *text) {
    unsigned int count = 0;
    layOut(font, text, [&count](char, float, float) { ++count; });
    return count;
}

bool isText(const char *call, const KTFONT &font, const char *text, float height) {
    if (!text) return keltra::kit::failNull(call, "text");
    if (countGlyphs(font, text) == 0)
        return keltra::kit::fail(KT_FAULT_ARGUMENT, call, {nullptr, 0, "text", "nothing to show", nullptr});
    if (height > 0.0f && font.getCharSizeX() > 0 && font.getCharSizeY() > 0) return true;
    return keltra::kit::fail(KT_FAULT_ARGUMENT, call, {nullptr, 0, "height", "0 or less", "above 0"});
}

// The width of the longest line and the height of all, in the font's pixels.
void measure(const KTFONT &font, const char *text, float *width, float *height) {
    *width = 1.0f;
    *height = static_cast<float>(font.getCharSizeY());
    for (const char *line = text;; ++line) {
        const float length = static_cast<float>(widthOf(font, line));
        if (length > *width) *width = length;
        while (*line && *line != '\n') ++line;
        if (!*line) return;
        *height += static_cast<float>(font.getCharSizeY());
    }
}

}  // namespace

KTMESH *KTSHAPES::makeText(const KTFONT &font, const char *text, float height) {
    const char *const call = "KTSHAPES::makeText";
    if (!isText(call, font, text, height)) return nullptr;
    const unsigned int glyphs = countGlyphs(font, text);
    MeshBuilder mesh(call, 4 * glyphs, 2 * glyphs);
    if (!mesh.isGood()) return nullptr;
    const float unit = height / static_cast<float>(font.getCharSizeY());
    // As wide as its advance: squares that overlapped would hide one another by their depth.
    layOut(font, text, [&mesh, &font, unit, height](char c, float left, float top) {
        const unsigned int first = mesh.vertexCount(), cell = cellOf(c);
        const int pixels = std::max(0, std::min(advanceOf(font, c), static_cast<int>(font.getCharSizeX())));
        const float across = static_cast<float>(pixels) * unit, x = left * unit, y = top * unit - height;
        const float u = leftOf(cell), v = topOf(cell), low = v - 1.0f / kCells;
        const float right = u + static_cast<float>(pixels) / static_cast<float>(font.getCharSizeX() * kCells);
        const R3XVECTOR3D normal(0.0f, 0.0f, 1.0f);
        mesh.vertex(R3XVECTOR3D(x, y, 0.0f), normal, u, low);
        mesh.vertex(R3XVECTOR3D(x + across, y, 0.0f), normal, right, low);
        mesh.vertex(R3XVECTOR3D(x + across, y + height, 0.0f), normal, right, v);
        mesh.vertex(R3XVECTOR3D(x, y + height, 0.0f), normal, u, v);
        mesh.square(first, first + 1, first + 2, first + 3);
    });
    return mesh.finish();
}

KTMESH *KTSHAPES::makeSolidText(const KTFONT &font, const char *text, float height, float depth) {
    const char *const call = "KTSHAPES::makeSolidText";
    if (!isText(call, font, text, height)) return nullptr;
    if (!(depth > 0.0f)) {
        keltra::kit::fail(KT_FAULT_ARGUMENT, call, {nullptr, 0, "depth", "0 or less", "above 0"});
        return nullptr;
    }
    const KTTEXTURE *const texture = font.getTexture();
    if (!texture || !texture->getBitmap() || texture->getBpp() != 4) {
        keltra::kit::fail(KT_FAULT_STATE, call,
                          {nullptr, 0, nullptr, nullptr, "a font whose texture holds an alpha channel"});
        return nullptr;
    }
    Solid solid;
    solid.addText(font, text);
    if (solid.faces == 0) {
        keltra::kit::fail(KT_FAULT_ARGUMENT, call, {nullptr, 0, "text", "nothing to show", nullptr});
        return nullptr;
    }
    MeshBuilder mesh(call, solid.vertices, solid.faces);
    if (!mesh.isGood()) return nullptr;
    solid.mesh = &mesh;
    solid.unit = height / static_cast<float>(font.getCharSizeY());
    solid.halfDepth = 0.5f * depth / solid.unit;
    measure(font, text, &solid.width, &solid.height);
    solid.addText(font, text);
    return mesh.finish();
}

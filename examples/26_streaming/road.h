// SPDX-License-Identifier: Zlib
#ifndef KELTRA_EXAMPLES_ROAD_H
#define KELTRA_EXAMPLES_ROAD_H

// A road without an end, of pieces that are read from files before they come into view and destroyed behind
// the walker. There are never more than kAlive of them, and nothing else stays of those that are gone.

#include <keltra/keltra.h>

#include <cstring>
#include <string>

#include "examples/support/example.h"

constexpr int kAlive = 7;        // pieces at a time; one of them behind the walker
constexpr float kLength = 8.0f;  // units of each

class Road {
   public:
    // Moves the road by so many units toward the walker, who stays where he is: far from the origin numbers
    // in 16.16 end. At most one piece is read in a frame. False when a file is missing.
    bool advance(float units) {
        way += units;
        const int first = static_cast<int>(way / kLength) - 1;
        for (Piece &piece : pieces)
            if (piece.root && piece.number < first) drop(&piece);
        for (int number = first; number < first + kAlive; ++number) {
            Piece &piece = pieces[static_cast<unsigned>(number + kAlive) % kAlive];
            if (piece.root) continue;
            if (!read(&piece, number)) return false;
            if (number > 1) break;  // the first ones are all read at once
        }
        for (const Piece &piece : pieces)
            if (piece.root)
                piece.root->setPosition(0.0f, 0.0f, way - kLength * static_cast<float>(piece.number));
        return true;
    }
    bool pass() const {
        for (const Piece &piece : pieces)
            if (piece.root && !piece.root->pass()) return false;
        return true;
    }
    int getNumberRead() const { return numberRead; }

   private:
    struct Piece {
        KTNODE *root = nullptr;
        int number = 0;
        const char *kind = nullptr;
    };
    static const char *kindOf(int number) {
        static const char *const kKinds[] = {"roadlamps", "roadlamps", "roadarch",  "roadtrees", "roadtrees",
                                             "roadtrees", "roadtrees", "roadtrees", "roadtrees", "roadtrees",
                                             "roadarch",  "roadlamps", "roadlamps", "roadlamps", "roadlamps"};
        return kKinds[static_cast<unsigned>(number + 15) % 15];
    }
    bool read(Piece *piece, int number) {
        piece->kind = kindOf(number);
        piece->number = number;
        piece->root = KELTRA::load((std::string(piece->kind) + ".kte").c_str());
        ++numberRead;
        return piece->root != nullptr;
    }
    // Nodes first. Materials belong to a list, not to the nodes: those of this kind go with its last piece,
    // and then textures that nothing counts a use of.
    void drop(Piece *piece) {
        example::destroyTree(piece->root);
        piece->root = nullptr;
        for (const Piece &other : pieces)
            if (other.root && std::strcmp(other.kind, piece->kind) == 0) return;
        const std::string prefix = std::string(piece->kind) + ".";
        for (KTMATERIAL *material = KTMATERIAL::getFirst(), *next; material; material = next) {
            next = material->getNext();
            if (std::strncmp(material->getName(), prefix.c_str(), prefix.size()) != 0) continue;
            material->setTexture(0, nullptr);  // gives back its use
            delete material;
        }
        KTTEXTURE::garbageCollect(KELTRA::getVideoMemory());
    }

    Piece pieces[kAlive];
    float way = 0.0f;
    int numberRead = 0;
};

#endif

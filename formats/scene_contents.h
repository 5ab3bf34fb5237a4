// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_SCENE_CONTENTS_H
#define KELTRA_FORMATS_SCENE_CONTENTS_H

// A scene file, read once: its records in file order. Names and arrays of the records stay in the file, which
// must outlive them.

#include "formats/scene_record.h"
#include "foundation/arena.h"

#include <cstddef>

namespace keltra {

struct SceneMaterial {
    MaterialRecord record;
    SceneMaterial *next;
};

// One of the three records is set.
struct SceneNode {
    const PlainRecord *plain;
    const LightRecord *light;
    const MeshRecord *mesh;
    SceneNode *next;
};

class SceneContents : private SceneVisitor {
   public:
    SceneContents()
        : materials(nullptr), nodes(nullptr), lastMaterial(nullptr), lastNode(nullptr), whole(true) {}

    // False for a file that `checkScene` refuses and when out of memory. To be called once. A record takes
    // less memory than the object that is built from it.
    bool read(const void *bytes, std::size_t size, SceneFault &fault);

    const SceneMaterial *firstMaterial() const { return materials; }
    // The root; after each node its descendants, depth first.
    const SceneNode *firstNode() const { return nodes; }

   private:
    void material(const MaterialRecord &record) override;
    void plain(const PlainRecord &record, unsigned int) override;
    void light(const LightRecord &record, unsigned int) override;
    void mesh(const MeshRecord &record, unsigned int) override;
    void append(const SceneNode &node);

    Arena arena;
    SceneMaterial *materials;
    SceneNode *nodes;
    SceneMaterial *lastMaterial;
    SceneNode *lastNode;
    bool whole;  // no record is missing for lack of memory
};

}  // namespace keltra

#endif

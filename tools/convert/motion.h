// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_MOTION_H
#define KELTRA_CONVERT_MOTION_H

#include "tools/convert/rig.h"

#include <assimp/anim.h>

#include <vector>

namespace keltra::convert {

// One animation of a model.
class Motion {
   public:
    Motion(const aiAnimation &animation, const Rig &rig);

    double seconds() const { return length; }
    bool movesNodes() const { return !tracks.empty(); }
    // The local matrices of all source nodes; nodes without keyframes keep their rest pose.
    void locals(double seconds, std::vector<Matrix> &locals) const;

   private:
    struct Track {
        int source;
        std::vector<aiVectorKey> positions;
        std::vector<aiQuatKey> rotations;
        std::vector<aiVectorKey> scales;
        aiQuaternion behind;  // a rotation to be applied before the keys'
    };

    void findReplaced();

    const Rig &rig;
    std::vector<Track> tracks;
    std::vector<int> replaced;  // nodes whose matrices are part of the keyframes of a node below them
    double ticksPerSecond;
    double length;
};

}  // namespace keltra::convert

#endif

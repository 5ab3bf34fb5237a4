// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_MOTION_H
#define KELTRA_CONVERT_MOTION_H

#include "tools/convert/rig.h"

#include <assimp/anim.h>

#include <set>
#include <vector>

namespace keltra::convert {

// One animation of a model, or several that run at once.
class Motion {
   public:
    Motion(const std::vector<const aiAnimation *> &animations, const Rig &rig);

    double seconds() const { return length; }
    bool movesNodes() const { return !tracks.empty(); }
    // The nodes that have keyframes, and those whose helper nodes have.
    std::set<int> movedSources() const;
    // The local matrices of all source nodes; nodes without keyframes keep their rest pose.
    void locals(double seconds, std::vector<Matrix> &locals) const;

   private:
    struct Track {
        int source;
        std::vector<aiVectorKey> positions;
        std::vector<aiQuatKey> rotations;
        std::vector<aiVectorKey> scales;
        double ticksPerSecond;
        aiQuaternion behind;  // a rotation to be applied before the keys'
    };

    void addTracks(const aiAnimation &animation);
    void findReplaced();
    void orderTracks();
    Matrix localOf(const Track &track, double seconds) const;

    const Rig &rig;
    std::vector<Track> tracks;
    std::vector<int> replaced;  // nodes whose matrices are part of the keyframes of a node below them
    double length = 0.0;
};

}  // namespace keltra::convert

#endif

// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_NODE_SETUP_H
#define KELTRA_CONVERT_NODE_SETUP_H

// What nodes and lights of a model say and scene files have no place for: calls of the application, or
// losses.

#include "tools/convert/options.h"
#include "tools/convert/properties.h"
#include "tools/convert/report.h"

#include <map>
#include <string>

struct aiLight;

namespace keltra::convert {

class NodeSetup {
   public:
    NodeSetup(const Options &options, Report &report) : options(options), report(report) {}

    // A mesh of a helper, which only gives it its volume.
    void addHelperMesh(unsigned joint, const formats::MeshData &mesh);
    // The finished node of a joint: it gets the auxiliary id, if its kind has one in the file.
    void apply(unsigned joint, const NodeProperties &properties, formats::Node &node);
    void applySkin(const NodeProperties &properties, const std::string &name) { number(properties, name); }
    // Its node's properties hold its reach.
    void applyLight(const aiLight &light, const NodeProperties *properties, const std::string &name);
    void finish();

   private:
    struct Box {
        double low[3], high[3];
    };
    void number(const NodeProperties &properties, const std::string &name);

    const Options &options;
    Report &report;
    std::map<unsigned, Box> boxes;  // of helpers with meshes, by joint
    std::uint64_t ids = 0, helpers = 0;
};

}  // namespace keltra::convert

#endif

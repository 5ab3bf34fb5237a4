// SPDX-License-Identifier: Zlib
#include "tools/convert/node_setup.h"

#include "tools/convert/losses.h"
#include "tools/convert/setup_code.h"

#include <assimp/light.h>

#include <algorithm>

namespace keltra::convert {

void NodeSetup::addHelperMesh(unsigned joint, const formats::MeshData &mesh) {
    const float low[3] = {mesh.minimum.x, mesh.minimum.y, mesh.minimum.z};
    const float high[3] = {mesh.maximum.x, mesh.maximum.y, mesh.maximum.z};
    const bool isNew = boxes.count(joint) == 0;
    Box &box = boxes[joint];
    for (int i = 0; i < 3; ++i) {
        box.low[i] = isNew ? low[i] : std::min<double>(box.low[i], low[i]);
        box.high[i] = isNew ? high[i] : std::max<double>(box.high[i], high[i]);
    }
}

void NodeSetup::apply(unsigned joint, const NodeProperties &properties, formats::Node &node) {
    if (node.kind == formats::NodeKind::kPlain)
        node.auxId = properties.auxId;
    else
        number(properties, node.name);
    if (!properties.helper) return;
    if (!options.setup) {
        ++helpers;
        return;
    }
    const double half = *properties.helper * report.scale;
    const auto known = boxes.find(joint);
    const Box box = known != boxes.end() ? known->second : Box{{-half, -half, -half}, {half, half, half}};
    report.setup.push_back(helperCall(node.name, box.low, box.high, properties.auxId));
}

void NodeSetup::number(const NodeProperties &properties, const std::string &name) {
    if (properties.auxId == 0) return;
    if (options.setup)
        report.setup.push_back(auxIdCall(name, properties.auxId));
    else
        ++ids;
}

void NodeSetup::applyLight(const aiLight &light, const NodeProperties *properties, const std::string &name) {
    if (!options.setup || light.mType == aiLightSource_DIRECTIONAL) return;
    const double scale = report.scale;
    if (properties && properties->reach)
        report.setup.push_back(reachCall(name, *properties->reach * scale));
    else if (!isUnattenuated(light) && light.mAttenuationConstant > 0.0f)
        // Without a constant part a light grows without bound near its place: formats that have none mean
        // physical units, and their importer says nothing of a reach.
        report.setup.push_back(attenuationCall(name, light.mAttenuationConstant,
                                               light.mAttenuationLinear / scale,
                                               light.mAttenuationQuadratic / (scale * scale)));
}

void NodeSetup::finish() {
    report.drop("auxiliary ids", ids,
                "scene files have them for plain nodes only: an application calls setAuxId");
    report.drop("helpers", helpers,
                "plain nodes stand in their places: an application makes a KTHELPER there");
}

}  // namespace keltra::convert

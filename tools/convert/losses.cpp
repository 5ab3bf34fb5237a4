// SPDX-License-Identifier: Zlib
#include "tools/convert/losses.h"

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace keltra::convert {
namespace {

void reportMeshes(const aiScene &scene, Report &report) {
    std::uint64_t morphs = 0, colors = 0, uvs = 0;
    for (unsigned i = 0; i < scene.mNumMeshes; ++i) {
        const aiMesh &mesh = *scene.mMeshes[i];
        morphs += mesh.mNumAnimMeshes;
        colors += mesh.GetNumColorChannels();
        uvs += std::max(mesh.GetNumUVChannels(), 1u) - 1;
    }
    report.drop("morph targets", morphs, "the engine's vertices follow bones only");
    report.drop("vertex colours", colors, "the engine's vertices have a normal instead");
    report.drop("texture coordinates", uvs, "a vertex has one pair: the base texture's");
}

void reportHiddenMeshes(const aiScene &scene, Report &report) {
    std::vector<bool> shown(scene.mNumMeshes);
    std::vector<const aiNode *> nodes = {scene.mRootNode};
    for (std::size_t n = 0; n < nodes.size(); ++n) {
        for (unsigned i = 0; i < nodes[n]->mNumMeshes; ++i)
            if (nodes[n]->mMeshes[i] < shown.size()) shown[nodes[n]->mMeshes[i]] = true;
        for (unsigned i = 0; i < nodes[n]->mNumChildren; ++i)  // an importer leaves some of them null
            if (nodes[n]->mChildren[i]) nodes.push_back(nodes[n]->mChildren[i]);
    }
    report.drop("meshes", static_cast<std::uint64_t>(std::count(shown.begin(), shown.end(), false)),
                "no node shows them");
}

void reportLights(const aiScene &scene, const Options &options, Report &report) {
    std::uint64_t reaches = 0, bright = 0, cones = 0, wrong = 0;
    for (unsigned i = 0; i < scene.mNumLights; ++i) {
        const aiLight &light = *scene.mLights[i];
        const aiColor3D &color = light.mColorDiffuse;
        const bool spot = light.mType == aiLightSource_SPOT;
        if (!spot && light.mType != aiLightSource_POINT && light.mType != aiLightSource_DIRECTIONAL) continue;
        if (light.mType != aiLightSource_DIRECTIONAL && !isUnattenuated(light)) ++reaches;
        if (!std::isfinite(color.r + color.g + color.b))
            ++wrong;
        else if (std::max({color.r, color.g, color.b}) > 1.0f)
            ++bright;
        if (spot && light.mAngleInnerCone > 0.0f && light.mAngleInnerCone < light.mAngleOuterCone) ++cones;
    }
    if (!options.setup)
        report.drop("reaches of lights", reaches,
                    "scene files have none: an application calls setAttenuation");
    report.drop("inner cones", cones, "a spot light of the engine has one cone");
    report.change("lights", bright, "they were brighter than 1");
    report.change("lights", wrong, "their colours were not finite numbers");
}

}  // namespace

// The importers' values for a light that has none.
bool isUnattenuated(const aiLight &light) {
    return light.mAttenuationQuadratic == 0.0f &&
           (light.mAttenuationConstant == 0.0f || light.mAttenuationLinear == 0.0f);
}

void reportLosses(const aiScene &scene, const Options &options, Report &report) {
    reportMeshes(scene, report);
    reportHiddenMeshes(scene, report);
    reportLights(scene, options, report);
    report.drop("cameras", scene.mNumCameras, "scene files have none; their nodes are kept");
    if (scene.mFlags & AI_SCENE_FLAGS_INCOMPLETE) report.warn("its importer could read it in part only");
}

}  // namespace keltra::convert

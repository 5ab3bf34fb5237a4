// SPDX-License-Identifier: Zlib
#include "tools/convert/iqm.h"

#include "tools/convert/iqm_file.h"
#include "tools/convert/names.h"
#include "tools/convert/options.h"
#include "tools/convert/transform.h"

#include <assimp/commonMetaData.h>
#include <assimp/scene.h>
#include <assimp/quaternion.inl>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>

namespace keltra::convert {
namespace {

constexpr char kMagic[] = "INTERQUAKEMODEL";
constexpr std::uint64_t kMostKeys = 1u << 22;  // of all animations and joints
constexpr std::size_t kMostJoints = 4096;
constexpr double kDefaultRate = 25.0;
constexpr unsigned kInfluences = 4;
enum ArrayType : std::uint32_t { kPosition, kTexCoord, kNormal, kTangent, kBlendIndices, kBlendWeights };

using Channels = std::array<float, 10>;

aiVector3D positionOf(const Channels &c) { return {c[0], c[1], c[2]}; }
aiVector3D scaleOf(const Channels &c) { return {c[7], c[8], c[9]}; }

aiQuaternion rotationOf(const Channels &c) {
    aiQuaternion rotation(c[6], c[3], c[4], c[5]);
    const float size = std::sqrt(c[3] * c[3] + c[4] * c[4] + c[5] * c[5] + c[6] * c[6]);
    return size > 0.0f && std::isfinite(size) ? rotation.Normalize() : aiQuaternion();
}

aiMatrix4x4 matrixOf(const Channels &c) { return {scaleOf(c), rotationOf(c), positionOf(c)}; }

class Reader {
   public:
    Reader(const IqmFile &file, const std::vector<std::string> &given) : file(file), scene(new aiScene) {
        nameJoints(given);
    }

    std::unique_ptr<aiScene> read();

   private:
    struct Bone {
        std::string name;
        int parent;
        Channels rest;
        aiMatrix4x4 world;
    };

    void nameJoints(const std::vector<std::string> &given);
    void makeNodes();
    void makeMaterial(unsigned index);
    void makeMeshes();
    aiMesh *makeMesh(const IqmMesh &mesh);
    void makeFaces(const IqmMesh &mesh, aiMesh &made);
    void makeBones(const IqmMesh &mesh, aiMesh &made);
    void makeAnimations();

    const IqmFile &file;
    std::unique_ptr<aiScene> scene;
    std::vector<Bone> bones;
};

// Joints, or the first frame of poses in a file of animations. Each has a parent before it, or none.
void Reader::nameJoints(const std::vector<std::string> &given) {
    const std::size_t count = file.joints.empty() ? file.poses.size() : file.joints.size();
    if (count > kMostJoints) throw Refusal("it has more than " + std::to_string(kMostJoints) + " joints");
    const std::vector<Channels> first =
        file.frames > 0 ? file.frame(0) : std::vector<Channels>(file.poses.size());
    Names names;
    for (std::size_t i = 0; i < count; ++i) {
        const bool isJoint = !file.joints.empty();
        const int parent = isJoint ? file.joints[i].parent : file.poses[i].parent;
        const std::string wanted = isJoint ? file.joints[i].name : i < given.size() ? given[i] : "";
        Bone bone{names.take(wanted, "joint " + std::to_string(i)),
                  parent >= 0 && parent < static_cast<int>(i) ? parent : -1,
                  isJoint ? file.joints[i].pose : first[i],
                  {}};
        bone.world = matrixOf(bone.rest);
        if (bone.parent >= 0) bone.world = bones[static_cast<std::size_t>(bone.parent)].world * bone.world;
        bones.push_back(bone);
    }
}

void Reader::makeNodes() {
    scene->mRootNode = new aiNode("<IQMRoot>");
    std::vector<aiNode *> nodes;
    std::map<int, std::vector<aiNode *>> children;
    for (const Bone &bone : bones) {
        nodes.push_back(new aiNode(bone.name));
        nodes.back()->mTransformation = matrixOf(bone.rest);
        children[bone.parent].push_back(nodes.back());
    }
    for (unsigned m = 0; m < scene->mNumMeshes; ++m) {
        aiNode *node =
            new aiNode(scene->mMeshes[m]->mName.length > 0 ? scene->mMeshes[m]->mName.C_Str() : "mesh");
        node->mNumMeshes = 1;
        node->mMeshes = new unsigned[1]{m};
        children[-1].push_back(node);
    }
    for (auto &[parent, list] : children)
        (parent < 0 ? scene->mRootNode : nodes[static_cast<std::size_t>(parent)])
            ->addChildren(static_cast<unsigned>(list.size()), list.data());
}

void Reader::makeMaterial(unsigned index) {
    aiMaterial *material = scene->mMaterials[index] = new aiMaterial;
    const aiString name(file.text(file.meshes[index].material));
    material->AddProperty(&name, AI_MATKEY_NAME);
    if (name.length > 0) material->AddProperty(&name, AI_MATKEY_TEXTURE_DIFFUSE(0));
}

void Reader::makeFaces(const IqmMesh &mesh, aiMesh &made) {
    std::vector<std::array<std::uint32_t, 3>> triangles;
    for (std::uint32_t t = 0; t < mesh.triangles; ++t) {
        std::array<std::uint32_t, 3> triangle = file.triangle(mesh.firstTriangle + t);
        // The front side is clockwise.
        std::swap(triangle[1], triangle[2]);
        // An index before the mesh becomes one beyond it; both are refused later.
        for (std::uint32_t &index : triangle) index -= mesh.firstVertex;
        triangles.push_back(triangle);
    }
    made.mNumFaces = static_cast<unsigned>(triangles.size());
    made.mFaces = new aiFace[triangles.size()];
    for (std::size_t t = 0; t < triangles.size(); ++t) {
        made.mFaces[t].mNumIndices = 3;
        made.mFaces[t].mIndices = new unsigned[3]{triangles[t][0], triangles[t][1], triangles[t][2]};
    }
    made.mPrimitiveTypes = aiPrimitiveType_TRIANGLE;
}

void Reader::makeBones(const IqmMesh &mesh, aiMesh &made) {
    const IqmVertexArray *indices = file.array(kBlendIndices), *weights = file.array(kBlendWeights);
    if (!indices || !weights || bones.empty()) return;
    std::map<std::size_t, std::vector<aiVertexWeight>> byBone;
    for (std::uint32_t v = 0; v < mesh.vertices; ++v) {
        float bone[kInfluences], weight[kInfluences];
        file.element(*indices, mesh.firstVertex + v, false, kInfluences, bone);
        file.element(*weights, mesh.firstVertex + v, true, kInfluences, weight);
        for (unsigned k = 0; k < kInfluences; ++k)
            if (weight[k] > 0.0f && bone[k] >= 0.0f && bone[k] < static_cast<float>(bones.size()))
                byBone[static_cast<std::size_t>(bone[k])].emplace_back(v, weight[k]);
    }
    if (byBone.empty()) return;  // a mesh without bones does not free their array
    made.mNumBones = static_cast<unsigned>(byBone.size());
    made.mBones = new aiBone *[byBone.size()];
    unsigned next = 0;
    for (const auto &[index, list] : byBone) {
        aiBone *bone = made.mBones[next++] = new aiBone;
        bone->mName = bones[index].name;
        const aiMatrix4x4 &w = bones[index].world;
        const Matrix offset = inverse(widened(w));
        bone->mOffsetMatrix = aiMatrix4x4(
            float(offset.a1), float(offset.a2), float(offset.a3), float(offset.a4), float(offset.b1),
            float(offset.b2), float(offset.b3), float(offset.b4), float(offset.c1), float(offset.c2),
            float(offset.c3), float(offset.c4), 0.0f, 0.0f, 0.0f, 1.0f);
        bone->mNumWeights = static_cast<unsigned>(list.size());
        bone->mWeights = new aiVertexWeight[list.size()];
        std::copy(list.begin(), list.end(), bone->mWeights);
    }
}

aiMesh *Reader::makeMesh(const IqmMesh &mesh) {
    const IqmVertexArray *positions = file.array(kPosition), *normals = file.array(kNormal),
                         *uvs = file.array(kTexCoord);
    if (!positions) throw Refusal("its vertices have no positions");
    if (std::uint64_t{mesh.firstVertex} + mesh.vertices > file.vertices ||
        std::uint64_t{mesh.firstTriangle} + mesh.triangles > file.triangles)
        throw Refusal("one of its meshes lies beyond its vertices or triangles");
    auto made = std::make_unique<aiMesh>();
    made->mName = file.text(mesh.name);
    made->mNumVertices = mesh.vertices;
    made->mVertices = new aiVector3D[mesh.vertices];
    if (normals) made->mNormals = new aiVector3D[mesh.vertices];
    if (uvs) made->mTextureCoords[0] = new aiVector3D[mesh.vertices];
    made->mNumUVComponents[0] = uvs ? 2 : 0;
    for (std::uint32_t v = 0; v < mesh.vertices; ++v) {
        float values[3] = {};
        file.element(*positions, mesh.firstVertex + v, false, 3, values);
        made->mVertices[v] = {values[0], values[1], values[2]};
        if (normals) {
            file.element(*normals, mesh.firstVertex + v, true, 3, values);
            made->mNormals[v] = {values[0], values[1], values[2]};
        }
        if (!uvs) continue;
        file.element(*uvs, mesh.firstVertex + v, true, 2, values);
        made->mTextureCoords[0][v] = {values[0], 1.0f - values[1], 0.0f};
    }
    makeFaces(mesh, *made);
    makeBones(mesh, *made);
    return made.release();
}

void Reader::makeMeshes() {
    const std::size_t count = file.meshes.size();
    if (count == 0) return;
    std::uint64_t vertices = 0, triangles = 0;
    for (const IqmMesh &mesh : file.meshes) vertices += mesh.vertices, triangles += mesh.triangles;
    if (vertices > file.vertices || triangles > file.triangles)
        throw Refusal("its meshes have more vertices or triangles than the file");
    scene->mMaterials = new aiMaterial *[count]();
    scene->mMeshes = new aiMesh *[count]();
    for (std::size_t m = 0; m < count; ++m) {
        // Counted one by one, so that a refusal leaves nothing behind.
        scene->mNumMaterials = static_cast<unsigned>(m + 1);
        makeMaterial(static_cast<unsigned>(m));
        scene->mMeshes[m] = makeMesh(file.meshes[m]);
        scene->mMeshes[m]->mMaterialIndex = static_cast<unsigned>(m);
        scene->mNumMeshes = static_cast<unsigned>(m + 1);
    }
}

void Reader::makeAnimations() {
    const std::size_t moved = std::min(bones.size(), file.poses.size());
    std::uint64_t keys = 0;
    for (const IqmAnimation &animation : file.animations) keys += std::uint64_t{animation.frames} * moved;
    if (keys > kMostKeys) throw Refusal("its animations have too many keyframes");
    if (moved == 0 || file.animations.empty()) return;
    scene->mAnimations = new aiAnimation *[file.animations.size()]();
    for (const IqmAnimation &source : file.animations) {
        aiAnimation *animation = scene->mAnimations[scene->mNumAnimations++] = new aiAnimation;
        animation->mName = source.name;
        animation->mTicksPerSecond =
            source.rate > 0.0f && std::isfinite(source.rate) ? double(source.rate) : kDefaultRate;
        animation->mDuration = std::max(1u, source.frames) - 1;
        animation->mChannels = new aiNodeAnim *[moved]();
        for (std::size_t b = 0; b < moved; ++b) {
            aiNodeAnim *channel = animation->mChannels[animation->mNumChannels++] = new aiNodeAnim;
            channel->mNodeName = bones[b].name;
            channel->mPositionKeys = new aiVectorKey[source.frames];
            channel->mRotationKeys = new aiQuatKey[source.frames];
            channel->mScalingKeys = new aiVectorKey[source.frames];
            channel->mNumPositionKeys = channel->mNumRotationKeys = channel->mNumScalingKeys = source.frames;
        }
        for (std::uint32_t f = 0; f < source.frames; ++f) {
            const std::vector<Channels> pose = file.frame(source.firstFrame + f);
            for (std::size_t b = 0; b < moved; ++b) {
                aiNodeAnim *channel = animation->mChannels[b];
                channel->mPositionKeys[f] = aiVectorKey(f, positionOf(pose[b]));
                channel->mRotationKeys[f] = aiQuatKey(f, rotationOf(pose[b]));
                channel->mScalingKeys[f] = aiVectorKey(f, scaleOf(pose[b]));
            }
        }
    }
}

std::unique_ptr<aiScene> Reader::read() {
    makeMeshes();
    makeNodes();
    makeAnimations();
    scene->mMetaData = aiMetadata::Alloc(1);
    scene->mMetaData->Set(0, AI_METADATA_SOURCE_FORMAT, aiString(kIqmImporter));
    return std::move(scene);
}

}  // namespace

bool isIqm(const std::string &path) {
    char start[sizeof kMagic] = {};
    std::ifstream(path, std::ios::binary).read(start, sizeof start);
    return std::equal(start, start + sizeof start, kMagic);
}

std::unique_ptr<aiScene> readIqm(const std::vector<std::uint8_t> &bytes,
                                 const std::vector<std::string> &names) {
    const IqmFile file(bytes);
    return Reader(file, names).read();
}

std::vector<std::string> iqmJointNames(const std::vector<std::uint8_t> &bytes) {
    std::vector<std::string> names;
    for (const IqmJoint &joint : IqmFile(bytes).joints) names.push_back(joint.name);
    return names;
}

}  // namespace keltra::convert

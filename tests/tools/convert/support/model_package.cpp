// SPDX-License-Identifier: Zlib
#include "tests/tools/convert/support/model_package.h"

#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <assimp/Importer.hpp>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace keltra::test {
namespace {

constexpr unsigned kLongestImport = 60;             // seconds
constexpr rlim_t kMostAddresses = rlim_t{4} << 30;  // one model of the package asks for as much as there is
constexpr int kReadable = 16, kShaped = 1, kSkinned = 2, kMoving = 4;

bool hasArea(const aiMesh &mesh) {
    for (unsigned f = 0; f < mesh.mNumFaces; ++f) {
        const aiFace &face = mesh.mFaces[f];
        if (face.mNumIndices != 3) continue;
        const aiVector3D &a = mesh.mVertices[face.mIndices[0]];
        const aiVector3D b = mesh.mVertices[face.mIndices[1]] - a, c = mesh.mVertices[face.mIndices[2]] - a;
        if ((b ^ c).SquareLength() > 0.0f) return true;
    }
    return false;
}

int importAndJudge(const std::string &path) {
    Assimp::Importer importer;
    const aiScene *scene = importer.ReadFile(path, aiProcess_Triangulate);
    if (!scene) return 0;
    int kind = kReadable;
    for (unsigned m = 0; m < scene->mNumMeshes; ++m) {
        if (hasArea(*scene->mMeshes[m])) kind |= kShaped;
        if (scene->mMeshes[m]->HasBones()) kind |= kSkinned;
    }
    for (unsigned a = 0; a < scene->mNumAnimations; ++a)
        if (scene->mAnimations[a]->mNumChannels > 0) kind |= kMoving;
    return kind;
}

}  // namespace

std::vector<std::string> packageFiles() {
    // The outcome must not depend on what else is installed.
    ::setenv("KELTRA_BLENDER", "", 1);
    const std::filesystem::path folder = KELTRA_TEST_MODELS;
    std::vector<std::string> files;
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file()) files.push_back(entry.path().lexically_relative(folder).string());
    std::sort(files.begin(), files.end());
    return files;
}

std::string packagePath(const std::string &file) { return std::string(KELTRA_TEST_MODELS) + "/" + file; }

ModelKind kindOfModel(const std::string &path) {
    const pid_t child = fork();
    if (child == 0) {
        const int nowhere = open("/dev/null", O_RDWR);
        dup2(nowhere, STDOUT_FILENO);
        dup2(nowhere, STDERR_FILENO);
        alarm(kLongestImport);
#if !defined(__SANITIZE_ADDRESS__)
        const rlimit most = {kMostAddresses, kMostAddresses};
        setrlimit(RLIMIT_AS, &most);
#endif
        _exit(importAndJudge(path));
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status)) return {};
    const int kind = WEXITSTATUS(status);
    // A sanitizer's report ends the child with a status of its own.
    if (!(kind & kReadable) || kind > (kReadable | kShaped | kSkinned | kMoving)) return {};
    return {true, (kind & kShaped) != 0, (kind & kSkinned) != 0, (kind & kMoving) != 0};
}

}  // namespace keltra::test

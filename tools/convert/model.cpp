// SPDX-License-Identifier: Zlib
#include "tools/convert/model.h"

#include "tools/convert/blender.h"
#include "tools/convert/gltf_buffers.h"
#include "tools/convert/gltf_document.h"
#include "tools/convert/gltf_extensions.h"
#include "tools/convert/gltf_instances.h"
#include "tools/convert/import_log.h"
#include "tools/convert/iqm.h"
#include "tools/convert/md3_file.h"
#include "tools/convert/model_files.h"
#include "tools/convert/names.h"
#include "tools/convert/source_format.h"

#include <assimp/config.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <assimp/IOStream.hpp>
#include <assimp/Importer.hpp>
#include <assimp/ProgressHandler.hpp>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <new>

namespace keltra::convert {
namespace {

// Assimp's other steps were measured on the 323 models of the package assimp-testmodels that are converted,
// with the version 5.2.5. The converter's own ones give better results; each has the figures beside it.
constexpr unsigned kSteps = aiProcess_Triangulate | aiProcess_GenUVCoords | aiProcess_TransformUVCoords;

constexpr char kBindBuffer[] = ".bind-matrices.bin";    // the same
constexpr char kPlainBuffer[] = ".plain-vertices.bin";  // of a glTF file, in memory only
constexpr char kUnknownFormat[] = "No suitable reader found";

// Forwards the importer's progress.
class ImportProgress : public Assimp::ProgressHandler {
   public:
    explicit ImportProgress(const Progress &progress) : progress(progress) {}
    bool Update(float done) override {
        if (progress) progress("reading", std::isfinite(done) ? std::clamp(done, 0.0f, 1.0f) : 0.0f);
        return true;
    }

   private:
    const Progress &progress;
};

// The reason in one line, without the file's name, which the caller prints.
std::string reasonFrom(const std::string &error, const std::string &path) {
    if (error.compare(0, sizeof kUnknownFormat - 1, kUnknownFormat) == 0)
        return "no importer knows its format";
    if (error == std::bad_alloc().what()) return "out of memory";
    std::string reason = error;
    for (const std::string &named : {"file \"" + path + "\"", "file " + path, path}) {
        const std::string instead = named == path ? "the file" : "file";
        for (std::size_t at = 0; (at = reason.find(named, at)) != std::string::npos; at += instead.size())
            reason.replace(at, named.size(), instead);
    }
    reason = cleanText(reason);
    while (!reason.empty() && (reason.back() == '_' || reason.back() == ' ' || reason.back() == '.'))
        reason.pop_back();
    return reason.empty() ? "it cannot be read" : reason;
}

void checkContents(const aiScene &scene) {
    if (!scene.mRootNode) throw Refusal("it has no nodes");
    std::uint64_t vertices = 0;
    for (unsigned i = 0; i < scene.mNumMeshes; ++i) vertices += scene.mMeshes[i]->mNumVertices;
    if (vertices == 0 && scene.mNumAnimations == 0) throw Refusal("it has no geometry and no animation");
}

}  // namespace

void checkFile(const std::string &path) {
    std::error_code error;
    const std::filesystem::file_status status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) throw Refusal("there is no such file");
    if (std::filesystem::is_directory(status)) throw Refusal("it is a folder");
    if (!std::filesystem::is_regular_file(status)) throw Refusal("it is not a regular file");
    if (std::filesystem::file_size(path, error) == 0 || error) throw Refusal("it is empty or cannot be read");
}

Model::Model(const Options &options, const Progress &progress, const std::vector<std::string> &jointNames)
    : log(new ImportLog),
      files(new ModelFiles(options.model, options.folders)),
      importer(new Assimp::Importer),
      read(nullptr) {
    importer->SetIOHandler(files);
    checkFile(options.model);
    if (isGltfFile(options.model)) prepareGltf(options.model);
    prepareMd3(options);
    importer->SetPropertyBool(AI_CONFIG_IMPORT_COLLADA_IGNORE_UP_DIRECTION, options.up != 0);
    importer->SetProgressHandler(new ImportProgress(progress));  // the importer deletes it
    if (isIqm(options.model)) {
        readOwn(options, jointNames);
        return;
    }
    importer->SetPropertyInteger(AI_CONFIG_IMPORT_GLOBAL_KEYFRAME, static_cast<int>(options.frame));
    if (isBlend(options.model) && readByBlender(options.model)) return;
    read = importer->ReadFile(options.model, kSteps);
    if (!read && !files->outOfReach().empty())
        throw Refusal("it needs " + cleanText(files->outOfReach()) +
                      ", which lies outside of its folder; --textures can name the folder");
    if (!read && isBlend(options.model))
        throw Refusal("only Blender itself can read it, and none exported it; without: " +
                      reasonFrom(importer->GetErrorString(), options.model));
    if (!read) throw Refusal(reasonFrom(importer->GetErrorString(), options.model));
    checkContents(*read);
}

Model::~Model() = default;

// What the importer would not say of the file.
void Model::prepareGltf(const std::string &path) {
    GltfDocument document(path);
    const std::string refusal = refusalOf(document.json);
    if (!refusal.empty()) throw Refusal(refusal);
    GltfBuffers buffers(document.json, document.behind(), files->where());
    std::string plain = buffers.makePlain(kPlainBuffer);
    const bool expanded = expandInstances(document.json, buffers, found);
    const bool separated = separateSkins(document.json);
    std::string binds = completeSkins(document.json, kBindBuffer);
    reportGltf(document.json, found);
    const bool renamed = namePictures(document.json),
               changed = renamed || expanded || separated || !plain.empty() || !binds.empty();
    if (!plain.empty()) files->addFile(kPlainBuffer, std::move(plain));
    if (!binds.empty()) files->addFile(kBindBuffer, std::move(binds));
    if (changed) files->replaceModel(document.bytes());
}

void Model::prepareMd3(const Options &options) {
    char magic[4] = {};
    std::ifstream file(options.model, std::ios::binary);
    file.read(magic, sizeof magic);
    if (std::memcmp(magic, "IDP3", sizeof magic) != 0) return;
    file.seekg(0);
    std::string whole =
        readableMd3({std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()}, options.frame);
    if (!whole.empty()) files->replaceModel(std::move(whole));
}

bool Model::readByBlender(const std::string &path) {
    const std::vector<std::uint8_t> bytes = exportedByBlender(path, found);
    if (!bytes.empty()) read = importer->ReadFileFromMemory(bytes.data(), bytes.size(), kSteps, "glb");
    if (!read) {
        reportWithoutBlender(path, found);
        return false;
    }
    found.inputs.push_back(path);
    checkContents(*read);
    return true;
}

void Model::readOwn(const Options &options, const std::vector<std::string> &names) {
    Assimp::IOStream *stream = files->Open(options.model.c_str());
    if (!stream) throw Refusal("it cannot be read");
    std::vector<std::uint8_t> bytes(stream->FileSize());
    bytes.resize(stream->Read(bytes.data(), 1, bytes.size()));
    files->Close(stream);
    own = readIqm(bytes, names);
    jointNames = iqmJointNames(bytes);
    read = own.get();
    checkContents(*read);
}

void Model::tell(Report &report) const {
    for (const Dropped &entry : found.dropped) report.drop(entry.what, entry.count, entry.why);
    for (const Dropped &entry : found.changed) report.change(entry.what, entry.count, entry.why);
    for (const std::string &text : found.warnings) report.warn(text);
    for (const std::string &text : found.source) report.tell(text);
    report.inputs.insert(report.inputs.end(), found.inputs.begin(), found.inputs.end());
    files->tell(report);
    log->tell(report);
}

}  // namespace keltra::convert

// SPDX-License-Identifier: Zlib
#include "tools/convert/convert.h"

#include "tools/convert/clips.h"
#include "tools/convert/further_clips.h"
#include "tools/convert/key_frames.h"
#include "tools/convert/losses.h"
#include "tools/convert/materials.h"
#include "tools/convert/model.h"
#include "tools/convert/names.h"
#include "tools/convert/picture.h"
#include "tools/convert/rig.h"
#include "tools/convert/scene_builder.h"
#include "tools/convert/source_format.h"
#include "tools/convert/textures.h"

#include <assimp/scene.h>

#include <algorithm>
#include <cmath>

namespace keltra::convert {
namespace {

// 16.16 coordinates reach to 32768 in steps of 1/65536: models stay well below the limit and are large
// compared with the steps.
constexpr double kFarthest = 16000.0, kSmallest = 1.0 / 16.0;

struct Box {
    Vector low{1e300, 1e300, 1e300}, high{-1e300, -1e300, -1e300};

    void add(const Vector &v) {
        if (!std::isfinite(v.x + v.y + v.z)) return;
        low = Vector(std::min(low.x, v.x), std::min(low.y, v.y), std::min(low.z, v.z));
        high = Vector(std::max(high.x, v.x), std::max(high.y, v.y), std::max(high.z, v.z));
    }
    void add(const aiMesh &mesh, const Matrix &place) {
        for (unsigned i = 0; i < mesh.mNumVertices; ++i)
            add(place * Vector(mesh.mVertices[i].x, mesh.mVertices[i].y, mesh.mVertices[i].z));
    }
    bool isEmpty() const { return low.x > high.x; }
    double diagonal() const { return isEmpty() ? 0.0 : (high - low).Length(); }
    double reach() const {
        return isEmpty() ? 0.0
                         : std::max({std::abs(low.x), std::abs(low.y), std::abs(low.z), std::abs(high.x),
                                     std::abs(high.y), std::abs(high.z)});
    }
};

Box boundsOf(const aiScene &scene, const Rig &rig) {
    Box box;
    for (const RigidMesh &rigid : rig.rigidMeshes)
        box.add(*scene.mMeshes[rigid.mesh], rig.joints[rigid.joint].frame * rigid.bake);
    for (const Skin &skin : rig.skins) box.add(*scene.mMeshes[skin.mesh], skin.bake);
    for (const Joint &joint : rig.joints)
        if (joint.isBone) box.add(translationOf(joint.frame));
    return box;
}

// 1, or a power of ten that brings the model into range.
double chooseScale(const Box &box) {
    double scale = 1.0;
    if (box.reach() > 0.0 && box.diagonal() < kSmallest)
        while (box.diagonal() * scale < 1.0 && scale < 1e30) scale *= 10.0;
    while (box.reach() * scale > kFarthest && scale > 1e-36) scale /= 10.0;
    return scale;
}

}  // namespace

Conversion convertModel(const Options &options, const Progress &progress) {
    Conversion conversion;
    Report &report = conversion.report;
    reportKeyFrames(options, report);
    const Model model(options, progress);
    const aiScene &scene = model.scene();
    model.tell(report);
    FurtherClips further(options, model, report, progress);
    const SourceSpace space = spaceOf(scene, options, report);
    const Matrix metric = space.upright * scaling(space.metres);
    // First at its own size, which decides the scale.
    Report unscaled;
    auto rig = std::make_unique<Rig>(scene, metric, unscaled, further.moved());
    const double scale = options.scale > 0.0 ? options.scale : chooseScale(boundsOf(scene, *rig));
    rig = std::make_unique<Rig>(scene, metric * scaling(scale), report, further.moved());
    report.scale = space.metres * scale;
    const Box box = boundsOf(scene, *rig);
    report.size = box.diagonal();
    if (options.scale <= 0.0 && scale != 1.0)
        report.note("all lengths were multiplied by " + std::to_string(scale) +
                    " to fit the engine's 16.16 coordinates");
    if (box.reach() > 32767.0)
        report.warn("it exceeds the engine's coordinates of 32767; choose a smaller scale");

    Materials materials = convertMaterials(scene, options, report, progress);
    const formats::Scene built = buildScene(scene, *rig, materials, options, report, progress);
    ClipSources sources = ownClips(scene, *rig, options, report);
    further.addTo(sources, *rig, scale, options, report);
    std::vector<OutputFile> clips = convertClips(scene, sources, *rig, options, report, progress);
    if (report.triangles == 0 && clips.empty()) throw Refusal("it has no triangles and no animation");
    for (const OutputFile &clip : clips) report.clipBytes += clip.bytes.size();
    reportLosses(scene, options, report);
    checkBudget(options.budget, report);

    report.sceneFile = options.name + ".kte";
    conversion.files = std::move(materials.textures);
    std::move(clips.begin(), clips.end(), std::back_inserter(conversion.files));
    conversion.files.push_back({report.sceneFile, formats::writeKte(built, formats::KteVersion::k16a)});
    return conversion;
}

Conversion convertPicture(const Options &options, const Progress &) {
    checkFile(options.model);
    Conversion conversion;
    Report &report = conversion.report;
    try {
        std::string remark;
        formats::Image image = readPictureFile(options.model, remark);
        if (!remark.empty()) report.warn("it is damaged, and read as far as it goes: " + remark);
        const unsigned most = largestSide(options.maxTexture);
        const bool alpha = hasAlpha(image);
        const unsigned width = image.width, height = image.height;
        report.inputs.push_back(options.model);
        image = resized(image, nearestPower(image.width, most), nearestPower(image.height, most), alpha);
        if (image.width != width || image.height != height) report.change("pictures", 1, kNewSize);
        if (alpha) spreadColours(image);
        const std::string file = options.name + ".tga";
        report.textures.push_back(
            {file, cleanText(options.model), image.width, image.height, alpha ? 32u : 24u});
        report.textureMemory = std::uint64_t{image.width} * image.height * 4;
        conversion.files.push_back({file, targa(image, alpha)});
    } catch (const PictureFault &fault) {
        throw Refusal(fault.what());
    }
    return conversion;
}

}  // namespace keltra::convert

#include "tools/convert/report_json.h"

namespace keltra::convert {

static void to_json(Json &json, const ClipReport &clip) {
    json = {{"name", clip.name},   {"file", clip.file},       {"frames", clip.frames},
            {"bones", clip.bones}, {"seconds", clip.seconds}, {"moves", clip.moves}};
}

static void from_json(const Json &json, ClipReport &clip) {
    json.at("name").get_to(clip.name);
    json.at("file").get_to(clip.file);
    json.at("frames").get_to(clip.frames);
    json.at("bones").get_to(clip.bones);
    json.at("seconds").get_to(clip.seconds);
    json.at("moves").get_to(clip.moves);
}

static void to_json(Json &json, const TextureReport &texture) {
    json = {{"file", texture.file},     {"source", texture.source}, {"width", texture.width},
            {"height", texture.height}, {"bits", texture.bits},     {"missing", texture.missing}};
}

static void from_json(const Json &json, TextureReport &texture) {
    json.at("file").get_to(texture.file);
    json.at("source").get_to(texture.source);
    json.at("width").get_to(texture.width);
    json.at("height").get_to(texture.height);
    json.at("bits").get_to(texture.bits);
    json.at("missing").get_to(texture.missing);
}

static void to_json(Json &json, const Dropped &dropped) {
    json = {{"what", dropped.what}, {"count", dropped.count}, {"why", dropped.why}};
}

static void from_json(const Json &json, Dropped &dropped) {
    json.at("what").get_to(dropped.what);
    json.at("count").get_to(dropped.count);
    json.at("why").get_to(dropped.why);
}

static void to_json(Json &json, const Report &report) {
    json["scene"] = {
        {"file", report.sceneFile},      {"nodes", report.nodes},       {"meshes", report.meshes},
        {"skins", report.skins},         {"bones", report.bones},       {"lights", report.lights},
        {"materials", report.materials}, {"vertices", report.vertices}, {"triangles", report.triangles},
        {"scale", report.scale},         {"size", report.size}};
    json["clips"] = report.clips;
    json["textures"] = report.textures;
    json["textureMemory"] = report.textureMemory;
    json["textureBudget"] = kTextureBudget;
    json["dropped"] = report.dropped;
    json["warnings"] = report.warnings;
    json["notes"] = report.notes;
}

static void from_json(const Json &json, Report &report) {
    const Json &scene = json.at("scene");
    scene.at("file").get_to(report.sceneFile);
    scene.at("nodes").get_to(report.nodes);
    scene.at("meshes").get_to(report.meshes);
    scene.at("skins").get_to(report.skins);
    scene.at("bones").get_to(report.bones);
    scene.at("lights").get_to(report.lights);
    scene.at("vertices").get_to(report.vertices);
    scene.at("triangles").get_to(report.triangles);
    scene.at("materials").get_to(report.materials);
    scene.at("scale").get_to(report.scale);
    scene.at("size").get_to(report.size);
    json.at("clips").get_to(report.clips);
    json.at("textures").get_to(report.textures);
    json.at("textureMemory").get_to(report.textureMemory);
    json.at("dropped").get_to(report.dropped);
    json.at("warnings").get_to(report.warnings);
    json.at("notes").get_to(report.notes);
}

Json outcomeJson(const Outcome &outcome) {
    Json json = {{"converted", outcome.converted}};
    if (!outcome.converted) {
        json["reason"] = outcome.reason;
        return json;
    }
    json["files"] = outcome.files;
    json.update(Json(outcome.report));
    return json;
}

Outcome outcomeOf(const Json &json) {
    Outcome outcome;
    json.at("converted").get_to(outcome.converted);
    if (!outcome.converted) {
        json.at("reason").get_to(outcome.reason);
        return outcome;
    }
    json.at("files").get_to(outcome.files);
    json.get_to(outcome.report);
    return outcome;
}

std::string documentOf(const std::string &model, const std::string &folder, const Outcome &outcome) {
    Json json = {{"model", model}};
    if (outcome.converted && !folder.empty()) json["folder"] = folder;
    json.update(outcomeJson(outcome));
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace keltra::convert

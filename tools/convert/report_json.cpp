// SPDX-License-Identifier: Zlib
#include "tools/convert/report_json.h"

#include <tuple>
#include <utility>

namespace keltra::convert {

// Names and members of what is written and read in the same way.
constexpr auto fieldsOf(const ClipReport &) {
    using Clip = ClipReport;
    return std::make_tuple(std::pair("name", &Clip::name), std::pair("file", &Clip::file),
                           std::pair("frames", &Clip::frames), std::pair("bones", &Clip::bones),
                           std::pair("seconds", &Clip::seconds), std::pair("moves", &Clip::moves));
}

constexpr auto fieldsOf(const TextureReport &) {
    using Texture = TextureReport;
    return std::make_tuple(std::pair("file", &Texture::file), std::pair("source", &Texture::source),
                           std::pair("width", &Texture::width), std::pair("height", &Texture::height),
                           std::pair("bits", &Texture::bits), std::pair("missing", &Texture::missing));
}

constexpr auto fieldsOf(const Dropped &) {
    return std::make_tuple(std::pair("what", &Dropped::what), std::pair("count", &Dropped::count),
                           std::pair("why", &Dropped::why));
}

constexpr auto fieldsOf(const SetupCall &) {
    return std::make_tuple(std::pair("kind", &SetupCall::kind), std::pair("name", &SetupCall::name),
                           std::pair("call", &SetupCall::call));
}

constexpr auto fieldsOf(const Over &) {
    return std::make_tuple(std::pair("what", &Over::what), std::pair("used", &Over::used),
                           std::pair("limit", &Over::limit));
}

constexpr auto fieldsOf(const Tally &) {
    return std::make_tuple(std::pair("dropped", &Tally::dropped), std::pair("changed", &Tally::changed),
                           std::pair("missing", &Tally::missing), std::pair("warnings", &Tally::warnings));
}

constexpr auto kSceneFields =
    std::make_tuple(std::pair("file", &Report::sceneFile), std::pair("nodes", &Report::nodes),
                    std::pair("meshes", &Report::meshes), std::pair("skins", &Report::skins),
                    std::pair("bones", &Report::bones), std::pair("lights", &Report::lights),
                    std::pair("materials", &Report::materials), std::pair("vertices", &Report::vertices),
                    std::pair("triangles", &Report::triangles), std::pair("scale", &Report::scale),
                    std::pair("size", &Report::size));

template <class T, class Fields>
static void write(Json &json, const T &entry, const Fields &fields) {
    std::apply([&](const auto &...field) { ((json[field.first] = entry.*field.second), ...); }, fields);
}

template <class T, class Fields>
static void read(const Json &json, T &entry, const Fields &fields) {
    std::apply([&](const auto &...field) { (json.at(field.first).get_to(entry.*field.second), ...); },
               fields);
}

template <class T>
static auto to_json(Json &json, const T &entry) -> decltype(fieldsOf(entry), void()) {
    write(json, entry, fieldsOf(entry));
}

template <class T>
static auto from_json(const Json &json, T &entry) -> decltype(fieldsOf(entry), void()) {
    read(json, entry, fieldsOf(entry));
}

static void to_json(Json &json, const Report &report) {
    if (!report.sceneFile.empty()) write(json["scene"], report, kSceneFields);
    json["clips"] = report.clips;
    json["textures"] = report.textures;
    json["textureMemory"] = report.textureMemory;
    json["textureBudget"] = kTextureBudget;
    json["meshBones"] = report.meshBones;
    json["clipBytes"] = report.clipBytes;
    json["over"] = report.over;
    json["dropped"] = report.dropped;
    json["changed"] = report.changed;
    json["apart"] = report.apart;
    json["missing"] = report.missing;
    json["warnings"] = report.warnings;
    json["notes"] = report.notes;
    json["source"] = report.source;
    json["setup"] = report.setup;
    json["inputs"] = report.inputs;
    json["total"] = report.tally();
}

static void from_json(const Json &json, Report &report) {
    if (json.contains("scene")) read(json["scene"], report, kSceneFields);
    json.at("clips").get_to(report.clips);
    json.at("textures").get_to(report.textures);
    json.at("textureMemory").get_to(report.textureMemory);
    json.at("meshBones").get_to(report.meshBones);
    json.at("clipBytes").get_to(report.clipBytes);
    json.at("over").get_to(report.over);
    json.at("dropped").get_to(report.dropped);
    json.at("changed").get_to(report.changed);
    json.at("apart").get_to(report.apart);
    json.at("missing").get_to(report.missing);
    json.at("warnings").get_to(report.warnings);
    json.at("notes").get_to(report.notes);
    json.at("source").get_to(report.source);
    json.at("setup").get_to(report.setup);
    json.at("inputs").get_to(report.inputs);
}

Json outcomeJson(const Outcome &outcome) {
    Json json = {{"converted", outcome.converted}};
    if (!outcome.converted) json["reason"] = outcome.reason;
    if (outcome.strict) json["strict"] = true;
    if (!outcome.converted && !outcome.strict) return json;
    json["files"] = outcome.files;
    json.update(Json(outcome.report));
    return json;
}

Outcome outcomeOf(const Json &json) {
    Outcome outcome;
    json.at("converted").get_to(outcome.converted);
    outcome.strict = json.contains("strict");
    if (!outcome.converted) json.at("reason").get_to(outcome.reason);
    if (!outcome.converted && !outcome.strict) return outcome;
    json.at("files").get_to(outcome.files);
    json.get_to(outcome.report);
    return outcome;
}

static Json documentJson(const std::string &model, const std::string &folder, const Outcome &outcome) {
    Json json = {{"model", model}};
    if (outcome.converted && !folder.empty()) json["folder"] = folder;
    json.update(outcomeJson(outcome));
    return json;
}

static std::string textOf(const Json &json, int indent) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

std::string documentOf(const std::string &model, const std::string &folder, const Outcome &outcome) {
    return textOf(documentJson(model, folder, outcome), 2) + "\n";
}

std::string documentLineOf(const std::string &model, const std::string &folder, const Outcome &outcome) {
    return textOf(documentJson(model, folder, outcome), -1) + "\n";
}

}  // namespace keltra::convert

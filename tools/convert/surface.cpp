#include "tools/convert/surface.h"

#include <assimp/GltfMaterial.h>
#include <assimp/material.h>

#include <algorithm>
#include <cmath>

#include "tools/convert/names.h"

namespace keltra::convert {
namespace {

using formats::Color;

constexpr Color kBlack = {0.0f, 0.0f, 0.0f, 1.0f};
constexpr Color kWhite = {1.0f, 1.0f, 1.0f, 1.0f};
constexpr Color kDefault = {0.6f, 0.6f, 0.6f, 1.0f};  // of a new material of the engine
constexpr float kDark = 0.02f;
constexpr float kGreatestShininess = 128.0f;

float clamped(float value, float most = 1.0f) {
    if (!(value > 0.0f)) return 0.0f;  // not a number, too
    return std::min(value, most);
}

bool number(const aiMaterial &material, const char *key, unsigned type, unsigned index, float &value) {
    ai_real read = 0;
    if (material.Get(key, type, index, read) != aiReturn_SUCCESS || std::isnan(read)) return false;
    value = read;
    return true;
}

// Not clamped; false when it is absent or holds something that is not a number.
bool colour(const aiMaterial &material, const char *key, unsigned type, unsigned index, Color &value) {
    aiColor4D read(0, 0, 0, 1);
    if (material.Get(key, type, index, read) != aiReturn_SUCCESS) return false;
    if (std::isnan(read.r) || std::isnan(read.g) || std::isnan(read.b)) return false;
    value = {read.r, read.g, read.b, 1.0f};
    return true;
}

Color scaled(Color c, float by) { return {clamped(c.r * by), clamped(c.g * by), clamped(c.b * by), 1.0f}; }

Color mixed(Color a, Color b, float t) {
    return {formats::mix(a.r, b.r, t), formats::mix(a.g, b.g, t), formats::mix(a.b, b.b, t), 1.0f};
}

bool dark(Color c) { return std::max({c.r, c.g, c.b}) < kDark; }

// Physically based factors are amounts of light; the engine computes in the values of the screen.
float shown(float light) {
    light = clamped(light);
    return light <= 0.0031308f ? 12.92f * light : 1.055f * std::pow(light, 1.0f / 2.4f) - 0.055f;
}

Color shown(Color c) { return {shown(c.r), shown(c.g), shown(c.b), 1.0f}; }

bool physical(const aiMaterial &material) {
    Color ignored;
    float factor;
    return colour(material, AI_MATKEY_BASE_COLOR, ignored) ||
           number(material, AI_MATKEY_METALLIC_FACTOR, factor) ||
           number(material, AI_MATKEY_GLOSSINESS_FACTOR, factor);
}

bool unlit(const aiMaterial &material) {
    int model = 0;
    return material.Get(AI_MATKEY_SHADING_MODEL, model) == aiReturn_SUCCESS &&
           model == aiShadingMode_NoShading;
}

bool bodyColour(const aiMaterial &material, Color &value) {
    float gloss;
    // Materials of specular and gloss keep their colour as diffuse, and the base colour at its default.
    const bool glossy = number(material, AI_MATKEY_GLOSSINESS_FACTOR, gloss);
    if (!glossy && colour(material, AI_MATKEY_BASE_COLOR, value)) {
        value = shown(value);
        return true;
    }
    if (!colour(material, AI_MATKEY_COLOR_DIFFUSE, value)) return false;
    value = glossy ? shown(value) : scaled(value, 1.0f);
    return true;
}

// The exponent that makes a highlight as wide as that roughness does.
float shininessOf(float roughness) {
    const float width = std::pow(std::max(roughness, 0.05f), 4.0f);
    return clamped(2.0f / width - 2.0f, kGreatestShininess);
}

void setPhysicalHighlight(const aiMaterial &material, const SurfaceUse &use, formats::Material &result) {
    float metal = 0.0f, rough = 1.0f, gloss;
    Color specular;
    if (number(material, AI_MATKEY_GLOSSINESS_FACTOR, gloss)) {
        rough = 1.0f - clamped(gloss);
        if (!colour(material, AI_MATKEY_COLOR_SPECULAR, specular)) specular = kWhite;
        result.specular = shown(specular);
    } else {
        number(material, AI_MATKEY_METALLIC_FACTOR, metal);
        number(material, AI_MATKEY_ROUGHNESS_FACTOR, rough);
        metal = clamped(metal);
        rough = clamped(rough);
        // Factors only scale such maps, mostly by 1: half of them stands for what is in the pictures.
        if (use.metalMaps) metal *= 0.5f, rough *= 0.5f;
        // Plastic reflects little straight on and much at its edges, which has no counterpart here: a
        // quarter.
        const Color plastic = {0.25f, 0.25f, 0.25f, 1.0f};
        result.specular = scaled(mixed(plastic, result.diffuse, metal), 1.0f - rough);
    }
    result.shininess = shininessOf(rough);
}

void setPlainHighlight(const aiMaterial &material, formats::Material &result) {
    float strength = 1.0f, shininess = 0.0f;
    Color specular = kBlack;
    colour(material, AI_MATKEY_COLOR_SPECULAR, specular);
    number(material, AI_MATKEY_SHININESS_STRENGTH, strength);
    number(material, AI_MATKEY_SHININESS, shininess);
    // Below 1 it is meant as a share of the greatest.
    if (shininess > 0.0f && shininess < 1.0f) shininess *= kGreatestShininess;
    result.specular = scaled(specular, clamped(strength, 1e6f));
    result.shininess = clamped(shininess, kGreatestShininess);
}

// Not in units of light: exporters multiply it by factors of their own, and 1 is all that the screen has.
Color emissionOf(const aiMaterial &material, bool isPhysical) {
    Color emission = kBlack;
    float strength = 1.0f;
    colour(material, AI_MATKEY_COLOR_EMISSIVE, emission);
    number(material, AI_MATKEY_EMISSIVE_INTENSITY, strength);
    emission = scaled(emission, isPhysical ? clamped(strength, 1e6f) : 1.0f);
    return isPhysical ? shown(emission) : emission;
}

void setUnlit(Color body, formats::Material &result) {
    result.emission = body;
    result.ambient = result.diffuse = result.specular = kBlack;
    result.shininess = 0.0f;
}

}  // namespace

AlphaMode alphaModeOf(const aiMaterial &material) {
    aiString text;
    if (material.Get(AI_MATKEY_GLTF_ALPHAMODE, text) != aiReturn_SUCCESS) return AlphaMode::kNone;
    const std::string mode = text.C_Str();
    if (mode == "MASK") return AlphaMode::kMask;
    return mode == "BLEND" ? AlphaMode::kBlend : AlphaMode::kOpaque;
}

float alphaCutOff(const aiMaterial &material) {
    float cutOff = 0.5f;
    number(material, AI_MATKEY_GLTF_ALPHACUTOFF, cutOff);
    return cutOff;
}

float opacityOf(const aiMaterial &material, const std::string &name, Report &report) {
    const AlphaMode mode = alphaModeOf(material);
    float opacity = 1.0f, transmission = 0.0f;
    number(material, AI_MATKEY_OPACITY, opacity);
    number(material, AI_MATKEY_TRANSMISSION_FACTOR, transmission);
    opacity = mode == AlphaMode::kOpaque ? 1.0f : clamped(opacity);
    // Clear glass still has to be seen: reflections, which show it elsewhere, are missing here.
    opacity *= 1.0f - 0.75f * clamped(transmission);
    // Nobody models what is never seen. Exporters write 0, or a transparency of 1, where they mean opaque;
    // only where the model says how it blends is it taken at its word.
    if (mode == AlphaMode::kNone && opacity < 0.5f / 255.0f) {
        report.note("material " + name + " is invisible in the model, and taken as opaque");
        return 1.0f;
    }
    // Blending is on for anything but exactly 1, and nobody sees the last 255th.
    return opacity > 254.5f / 255.0f ? 1.0f : opacity;
}

bool isDark(const aiMaterial &material) {
    Color body;
    return !bodyColour(material, body) || dark(body);
}

void setColours(const aiMaterial &material, const SurfaceUse &use, formats::Material &result,
                Report &report) {
    const bool isPhysical = physical(material);
    Color body;
    const bool given = bodyColour(material, body);
    if (!given) body = use.textured ? kWhite : kDefault;
    Color emission = emissionOf(material, isPhysical);
    if (use.glowTexture) {
        // The picture shines; what scales it is often left at black.
        setUnlit(dark(emission) ? kWhite : emission, result);
        return;
    }
    // The factor of a picture of lights is mostly white: without the picture, all would shine.
    if (use.glowDropped) emission = kBlack;
    // A texture is multiplied by the lit colour: black would hide it, which its exporter cannot have meant.
    if (use.textured && given && dark(body) && dark(emission)) {
        report.note("the diffuse colour of material " + use.name +
                    " is black, which hides its texture; white is used");
        body = kWhite;
    }
    result.diffuse = body;
    // Formats and exporters disagree about what ambient is, and write 0, 0.2, 1 or the diffuse colour. Lights
    // of scene files bring a fifth of their colour as ambient light, beside a fifth of global light: three
    // quarters of the diffuse colour keep unlit sides readable, and lit ones well above them.
    result.ambient = scaled(body, 0.75f);
    result.emission = emission;
    if (isPhysical)
        setPhysicalHighlight(material, use, result);
    else
        setPlainHighlight(material, result);
    // An exponent of 0 makes a "highlight" that covers all there is; no exponent, no highlight.
    if (result.shininess < 1.0f || dark(result.specular)) {
        result.specular = kBlack;
        result.shininess = 0.0f;
    }
    if (unlit(material)) setUnlit(body, result);
}

}  // namespace keltra::convert

// SPDX-License-Identifier: Zlib
#include "tools/convert/surface.h"

#include "tools/convert/names.h"

#include <assimp/GltfMaterial.h>
#include <assimp/material.h>

#include <algorithm>
#include <cmath>

namespace keltra::convert {
namespace {

using formats::Color;

constexpr Color kBlack = {0.0f, 0.0f, 0.0f, 1.0f};
constexpr Color kWhite = {1.0f, 1.0f, 1.0f, 1.0f};
constexpr Color kDefault = {0.6f, 0.6f, 0.6f, 1.0f};  // the engine's default
constexpr float kDark = 0.02f;
constexpr float kGreatestShininess = 128.0f;

float clamped(float value, float most = 1.0f) {
    if (!(value > 0.0f)) return 0.0f;  // also NaN
    return std::min(value, most);
}

bool number(const aiMaterial &material, const char *key, unsigned type, unsigned index, float &value) {
    ai_real read = 0;
    if (material.Get(key, type, index, read) != aiReturn_SUCCESS || std::isnan(read)) return false;
    value = read;
    return true;
}

// Not clamped. False if it is absent or NaN.
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

// Physically based factors are linear; the engine computes in sRGB.
float shown(float light) {
    light = clamped(light);
    if (light == 1.0f) return light;  // the formula's last bit is lost, and 16.16 would be a step below white
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
    // Specular-glossiness materials have a diffuse colour, and a base colour that is always the default.
    const bool glossy = number(material, AI_MATKEY_GLOSSINESS_FACTOR, gloss);
    if (!glossy && colour(material, AI_MATKEY_BASE_COLOR, value)) {
        value = shown(value);
        return true;
    }
    if (!colour(material, AI_MATKEY_COLOR_DIFFUSE, value)) return false;
    value = glossy ? shown(value) : scaled(value, 1.0f);
    return true;
}

// The exponent that gives a highlight of the same width as the roughness.
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
        // Factors only scale such maps, mostly by 1: half of them is an estimate of their content.
        if (use.metalMaps) metal *= 0.5f, rough *= 0.5f;
        // A compromise: plastic reflects little from the front and much at its edges.
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
    // Exporters that write values below 1 use a scale from 0 to 1.
    if (shininess > 0.0f && shininess < 1.0f) shininess *= kGreatestShininess;
    result.specular = scaled(specular, clamped(strength, 1e6f));
    result.shininess = clamped(shininess, kGreatestShininess);
}

// Limited to 1: exporters use factors of their own as intensity.
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
    // Clear glass has to stay visible without reflections.
    opacity *= 1.0f - 0.75f * clamped(transmission);
    // Many exporters write an opacity of 0, or a transparency of 1, for opaque materials. It is believed only
    // if the model also has an alpha mode.
    if (mode == AlphaMode::kNone && opacity < 0.5f / 255.0f) {
        report.note("material " + name + " is invisible in the model; it was made opaque");
        return 1.0f;
    }
    // The engine blends everything below exactly 1; half of a 255th is not visible.
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
        // The factor of the emission map is often left black.
        setUnlit(dark(emission) ? kWhite : emission, result);
        return;
    }
    // The factor of an emission map is mostly white: without the map, the whole surface would emit light.
    if (use.glowDropped) emission = kBlack;
    // The texture is multiplied by the lit colour, so black would hide it.
    if (use.textured && given && dark(body) && dark(emission)) {
        report.note("the diffuse colour of material " + use.name +
                    " is black, which hides its texture; white is used");
        body = kWhite;
    }
    result.diffuse = body;
    // Exporters disagree about ambient and write 0, 0.2, 1 or the diffuse colour. Lights of scene files have
    // a fifth of their colour as ambient light, and there is a fifth of global light: with three quarters of
    // the diffuse colour, unlit sides are visible and still darker than lit ones.
    result.ambient = scaled(body, 0.75f);
    result.emission = emission;
    if (isPhysical)
        setPhysicalHighlight(material, use, result);
    else
        setPlainHighlight(material, result);
    // An exponent of 0 would make a highlight that covers the whole surface.
    if (result.shininess < 1.0f || dark(result.specular)) {
        result.specular = kBlack;
        result.shininess = 0.0f;
    }
    if (unlit(material)) setUnlit(body, result);
}

}  // namespace keltra::convert

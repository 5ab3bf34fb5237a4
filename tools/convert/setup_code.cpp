// SPDX-License-Identifier: Zlib
#include "tools/convert/setup_code.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>

namespace keltra::convert {
namespace {

constexpr double kDimmed = 15.0;  // 1 / (1 + 15) is left at a light's reach

std::string number(double value) {
    char text[40];
    std::snprintf(text, sizeof text, "%.7g", value);
    const bool whole = std::string(text).find_first_of(".en") == std::string::npos;
    return text + std::string(whole ? ".0f" : "f");
}

std::string vector(const double (&v)[3]) {
    return "R3XVECTOR3D(" + number(v[0]) + ", " + number(v[1]) + ", " + number(v[2]) + ")";
}

// A literal of C++. Octal escapes have at most three digits, so that a digit may follow.
std::string quoted(const std::string &text) {
    std::string literal = "\"";
    for (const char c : text) {
        const unsigned char byte = static_cast<unsigned char>(c);
        const bool plain = byte >= ' ' && byte < 0x7f && c != '"' && c != '\\' && c != '?';
        char escape[8];
        std::snprintf(escape, sizeof escape, plain ? "%c" : "\\%03o", byte);
        literal += escape;
    }
    return literal + "\"";
}

std::string identifier(std::string text) {
    for (char &c : text)
        if (!std::isalnum(static_cast<unsigned char>(c))) c = '_';
    return text;
}

std::string flag(bool value) { return value ? "true" : "false"; }

std::string statementOf(const SetupCall &entry) {
    const std::string name = quoted(entry.name);
    if (entry.kind == "texture")
        return "    if (KTTEXTURE *texture = KTTEXTURE::findByFilename(" + name + ")) texture->" +
               entry.call + ";\n";
    const std::string found = "    if (KTNODE *node = root->findByNameInHierarchy(" + name + ")) ";
    if (entry.kind == "light") return found + "static_cast<KTLIGHT *>(node)->" + entry.call + ";\n";
    if (entry.kind != "helper") return found + "node->" + entry.call + ";\n";
    return found + "{\n        KTHELPER *helper = new KTHELPER;\n        helper->" + entry.call +
           ";\n        helper->link(node);\n    }\n";
}

}  // namespace

SetupCall auxIdCall(const std::string &node, std::uint32_t id) {
    return {"node", node, "setAuxId(" + std::to_string(id) + "u)"};
}

SetupCall attenuationCall(const std::string &light, double constant, double linear, double quadratic) {
    return {"light", light,
            "setAttenuation(" + number(constant) + ", " + number(linear) + ", " + number(quadratic) + ")"};
}

SetupCall reachCall(const std::string &light, double reach) {
    return attenuationCall(light, 1.0, 0.0, kDimmed / (reach * reach));
}

SetupCall filterCall(const std::string &texture, bool linear, bool mipmapped, bool clamped) {
    return {"texture", texture,
            "setFilter(" + flag(linear) + ", " + flag(mipmapped) + ", " + flag(clamped) + ")"};
}

SetupCall helperCall(const std::string &node, const double (&low)[3], const double (&high)[3],
                     std::uint32_t id) {
    double radius = 0.0;
    for (int i = 0; i < 3; ++i) {
        const double far = std::max(std::abs(low[i]), std::abs(high[i]));
        radius += far * far;
    }
    std::string call = "setMin(" + vector(low) + "), helper->setMax(" + vector(high) +
                       "), helper->radius = " + number(std::sqrt(radius));
    if (id != 0) call += ", helper->setAuxId(" + std::to_string(id) + "u)";
    return {"helper", node, call};
}

std::string setupHeader(const std::string &name, const Report &report) {
    const std::string function = "setup_" + identifier(name), guard = "KELTRA_" + function + "_H";
    std::string text =
        "// Made by keltra-convert: what scene files have no place for. To be called once, when the scene is "
        "loaded.\n"
        "#ifndef " +
        guard + "\n#define " + guard + "\n\n#include <keltra/keltra.h>\n\ninline void " + function +
        "(KTNODE *root) {\n";
    if (report.setup.empty()) text += "    (void)root;  // nothing\n";
    for (const SetupCall &entry : report.setup) text += statementOf(entry);
    const bool needsRoot = std::any_of(report.setup.begin(), report.setup.end(),
                                       [](const SetupCall &entry) { return entry.kind != "texture"; });
    if (!report.setup.empty() && !needsRoot) text += "    (void)root;\n";
    return text + "}\n\n#endif\n";
}

}  // namespace keltra::convert

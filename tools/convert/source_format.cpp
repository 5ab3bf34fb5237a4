// SPDX-License-Identifier: Zlib
#include "tools/convert/source_format.h"

#include "tools/convert/iqm.h"
#include "tools/convert/names.h"

#include <assimp/commonMetaData.h>
#include <assimp/scene.h>
#include <zip.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>

namespace keltra::convert {
namespace {

constexpr std::size_t kHeader = 65536;  // bytes of a file in which its unit is looked for
constexpr double kSmallestUnit = 1e-12, kLargestUnit = 1e12;  // metres

// Z is up in the format, and the importer keeps that.
const char *const kZUp[] = {"3D GameStudio Heightmap (HMP) Importer",
                            "Quick3D Importer",
                            "TrueSpace Object Importer",
                            "Blender 3D Importer (http://www.blender3d.org)",
                            kIqmImporter,
                            "3mf Importer",
                            "Valve SMD Importer"};
// Z is up in the format, and the importer turns the model.
const char *const kTurned[] = {"Discreet 3DS Importer",
                               "ASE Importer",
                               "Doom 3 / MD5 Mesh Importer",
                               "Drawing Interchange Format (DXF) Importer",
                               "Industry Foundation Classes (IFC) Importer",
                               "Quake II Mesh Importer",
                               "Quake III Mesh Importer",
                               "Quake Mesh / 3D GameStudio Mesh Importer",
                               "Return To Castle Wolfenstein Mesh Importer"};

template <class List>
bool holds(const List &list, const std::string &name) {
    return std::find(std::begin(list), std::end(list), name) != std::end(list);
}

// The rotation that turns this axis of the file upward.
Matrix uprightOf(char axis) {
    if (axis == 'Z') return Matrix(1, 0, 0, 0, 0, 0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1);
    if (axis == 'X') return Matrix(0, -1, 0, 0, 1, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);
    return Matrix();
}

// --- FBX

std::optional<int> integerOf(const aiScene &scene, const char *name) {
    std::int32_t value = 0;
    return scene.mMetaData && scene.mMetaData->Get(name, value) ? std::optional<int>(value) : std::nullopt;
}

// The row of a matrix that takes the axis to one of the engine's; nothing for what is no axis.
std::optional<std::array<double, 3>> axisOf(const aiScene &scene, const std::string &name) {
    const std::optional<int> axis = integerOf(scene, name.c_str());
    const std::optional<int> sign = integerOf(scene, (name + "Sign").c_str());
    if (!axis || *axis < 0 || *axis > 2) return std::nullopt;
    std::array<double, 3> row{};
    row[static_cast<std::size_t>(*axis)] = sign && *sign < 0 ? -1.0 : 1.0;
    return row;
}

// The settings name the axes that point upward, to the viewer and to the right. Where Y is up the other two
// are left alone: programs write anything there. Three that make a mirror count by the first.
Matrix fbxUpright(const aiScene &scene) {
    const auto up = axisOf(scene, "UpAxis"), front = axisOf(scene, "FrontAxis"),
               right = axisOf(scene, "CoordAxis");
    if (!up || (*up)[1] > 0.0) return Matrix();
    if (front && right) {
        const Matrix m((*right)[0], (*right)[1], (*right)[2], 0, (*up)[0], (*up)[1], (*up)[2], 0, (*front)[0],
                       (*front)[1], (*front)[2], 0, 0, 0, 0, 1);
        if (determinant3(m) > 0.5) return m;
    }
    const char axis = (*up)[0] != 0.0 ? 'X' : (*up)[2] != 0.0 ? 'Z' : 'Y';
    if ((*up)[0] + (*up)[1] + (*up)[2] > 0.0) return uprightOf(axis);
    // Half a turn about the front brings what is below to the top.
    return Matrix(-1, 0, 0, 0, 0, -1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1) * uprightOf(axis);
}

// The file has centimetres.
double fbxMetres(const aiScene &scene) {
    float centimetres = 0.0f;
    double wide = 0.0;
    if (!scene.mMetaData) return 1.0;
    if (scene.mMetaData->Get("UnitScaleFactor", centimetres)) return double(centimetres) * 0.01;
    return scene.mMetaData->Get("UnitScaleFactor", wide) ? wide * 0.01 : 1.0;
}

// --- formats of XML

// The value of an attribute in the first element of that name, without a prefix; nothing when there is none.
std::optional<std::string> attributeOf(const std::string &xml, const std::string &element,
                                       const std::string &attribute) {
    std::size_t at = xml.find("<" + element);
    while (at != std::string::npos && at + element.size() + 1 < xml.size() &&
           std::string(" \t\r\n/>").find(xml[at + element.size() + 1]) == std::string::npos)
        at = xml.find("<" + element, at + 1);
    if (at == std::string::npos) return std::nullopt;
    const std::string tag = xml.substr(at, xml.find('>', at) - at);
    for (std::size_t name = tag.find(attribute); name != std::string::npos;
         name = tag.find(attribute, name + 1)) {
        const std::size_t sign = tag.find_first_not_of(" \t\r\n", name + attribute.size());
        if (std::string(" \t\r\n").find(tag[name - 1]) == std::string::npos || sign == std::string::npos ||
            tag[sign] != '=')
            continue;
        const std::size_t open = tag.find_first_of("\"'", sign);
        if (open == std::string::npos) return std::nullopt;
        const std::size_t close = tag.find(tag[open], open + 1);
        if (close == std::string::npos) return std::nullopt;
        return tag.substr(open + 1, close - open - 1);
    }
    return std::nullopt;
}

std::string startOf(const std::string &path) {
    std::string start(kHeader, '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(start.data(), static_cast<std::streamsize>(start.size()));
    start.resize(static_cast<std::size_t>(file.gcount()));
    return start;
}

// The start of the model within the archive that a 3MF file is.
std::string startOf3mf(const std::string &path) {
    const std::unique_ptr<zip_t, int (*)(zip_t *)> archive(zip_open(path.c_str(), ZIP_RDONLY, nullptr),
                                                           zip_close);
    const zip_int64_t entries = archive ? zip_get_num_entries(archive.get(), 0) : 0;
    for (zip_int64_t i = 0; i < entries; ++i) {
        const char *name = zip_get_name(archive.get(), static_cast<zip_uint64_t>(i), 0);
        if (!name || !endsWith(name, ".model")) continue;
        const std::unique_ptr<zip_file_t, int (*)(zip_file_t *)> file(
            zip_fopen_index(archive.get(), static_cast<zip_uint64_t>(i), 0), zip_fclose);
        std::string start(kHeader, '\0');
        const zip_int64_t size = file ? zip_fread(file.get(), start.data(), start.size()) : 0;
        start.resize(size > 0 ? static_cast<std::size_t>(size) : 0);
        return start;
    }
    return "";
}

double metresOf3mf(const std::string &path) {
    const std::pair<const char *, double> units[] = {{"micron", 1e-6},     {"millimeter", 1e-3},
                                                     {"centimeter", 1e-2}, {"inch", 0.0254},
                                                     {"foot", 0.3048},     {"meter", 1.0}};
    const std::string named = attributeOf(startOf3mf(path), "model", "unit").value_or("millimeter");
    for (const auto &[name, metres] : units)
        if (named == name) return metres;
    return 1e-3;
}

// Metres of the unit that the importer has already applied.
double metresOfCollada(const std::string &path) {
    const std::optional<std::string> text = attributeOf(startOf(path), "unit", "meter");
    const double metres = text ? std::strtod(text->c_str(), nullptr) : 1.0;
    return metres > 0.0 && std::isfinite(metres) ? metres : 1.0;
}

// --- the report

std::string number(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
}

void noteUnit(double metres, Report &report) {
    if (metres != 1.0) report.tell("a unit of its file is " + number(metres) + " m; lengths are in metres");
}

double unitOf(const aiScene &scene, const Options &options, Report &report) {
    const std::string importer = importerOf(scene);
    double metres = 1.0;
    if (importer == kFbxImporter) metres = fbxMetres(scene);
    if (importer == "3mf Importer") metres = metresOf3mf(options.model);
    if (importer == "Collada Importer") {
        noteUnit(metresOfCollada(options.model), report);
        return 1.0;
    }
    if (!(metres >= kSmallestUnit && metres <= kLargestUnit)) {
        report.warn("a unit of " + number(metres) + " m is taken for a metre");
        return 1.0;
    }
    noteUnit(metres, report);
    return metres;
}

}  // namespace

std::string importerOf(const aiScene &scene) {
    aiString name;
    if (!scene.mMetaData || !scene.mMetaData->Get(AI_METADATA_SOURCE_FORMAT, name)) return "";
    return name.C_Str();
}

SourceSpace spaceOf(const aiScene &scene, const Options &options, Report &report) {
    const std::string importer = importerOf(scene);
    SourceSpace space;
    space.metres = unitOf(scene, options, report);
    // What the importer has turned is turned back before another axis counts.
    const Matrix done = uprightOf(holds(kTurned, importer) ? 'Z' : 'Y');
    if (options.up != 0)
        space.upright = uprightOf(options.up) * inverse(done);
    else if (importer == kFbxImporter)
        space.upright = fbxUpright(scene);
    else if (holds(kZUp, importer))
        space.upright = uprightOf('Z');
    if (options.up == 0 && linearDifference(space.upright, Matrix()) > 0.0)
        report.tell("Y is not up in its file: it was turned so that it is");
    return space;
}

bool isTwoSidedAc3d(const aiScene &scene, const std::string &model, Report &report) {
    if (importerOf(scene) != kAc3dImporter) return false;
    constexpr unsigned long kTwoSided = 0x20;
    std::ifstream file(model, std::ios::binary);
    std::uint64_t two = 0, one = 0;
    for (std::string line; std::getline(file, line);)
        if (line.compare(0, 5, "SURF ") == 0)
            ++((std::strtoul(line.c_str() + 5, nullptr, 0) & kTwoSided) != 0 ? two : one);
    if (one == 0) return two > 0;
    report.drop("two-sided surfaces", two,
                "their importer does not say which they are: front sides are drawn");
    return false;
}

}  // namespace keltra::convert

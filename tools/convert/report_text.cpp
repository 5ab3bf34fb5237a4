// SPDX-License-Identifier: Zlib
#include "tools/convert/report_text.h"

#include "tools/convert/plain_text.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <vector>

namespace keltra::convert {

namespace {

constexpr double kMebibyte = 1048576.0;
constexpr int kLabelWidth = 10;

std::string counted(std::uint64_t number, const char *one, const char *many) {
    return withCommas(number) + " " + (number == 1 ? one : many);
}

template <class... Values>
std::string formatted(const char *format, Values... values) {
    char text[64];
    std::snprintf(text, sizeof text, format, values...);
    return text;
}

using Row = std::vector<std::string>;

// Lines with columns as wide as their widest cell; the first and the last column are aligned to the left, the
// others to the right.
std::vector<std::string> aligned(const std::vector<Row> &rows) {
    std::vector<std::size_t> widths;
    for (const Row &row : rows) {
        widths.resize(std::max(widths.size(), row.size()));
        for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
    }
    std::vector<std::string> lines;
    for (const Row &row : rows) {
        std::string line;
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::string space(widths[i] - row[i].size(), ' ');
            if (i > 0) line += "  ";
            line += i == 0 ? row[i] + space : i + 1 == row.size() ? row[i] : space + row[i];
        }
        line.erase(line.find_last_not_of(' ') + 1);
        lines.push_back(line);
    }
    return lines;
}

// Appends the lines, with the label before the first one.
void put(std::string &text, const char *label, const std::vector<std::string> &lines) {
    for (const std::string &line : lines) {
        text += formatted("  %-*s", kLabelWidth, label) + line + "\n";
        label = "";
    }
}

std::string sceneLine(const Report &report) {
    std::string line = counted(report.nodes, "node", "nodes");
    const auto add = [&line](std::uint64_t number, const char *one, const char *many) {
        if (number > 0) line += ", " + counted(number, one, many);
    };
    add(report.meshes, "mesh", "meshes");
    add(report.skins, "skin", "skins");
    add(report.bones, "bone", "bones");
    add(report.lights, "light", "lights");
    add(report.materials, "material", "materials");
    return line;
}

std::string sizeLine(const Report &report) {
    std::string line = counted(report.vertices, "vertex", "vertices") + ", " +
                       counted(report.triangles, "triangle", "triangles") +
                       formatted("; %.6g units across", report.size);
    if (report.scale != 1.0) line += formatted(", lengths times %.6g", report.scale);
    return line;
}

std::vector<std::string> clipLines(const Report &report) {
    std::vector<Row> rows;
    for (const ClipReport &clip : report.clips) {
        rows.push_back({printable(clip.file), counted(clip.frames, "frame", "frames"),
                        counted(clip.bones, "bone", "bones"), formatted("%.2f s", clip.seconds),
                        clip.moves ? "with positions" : ""});
    }
    return aligned(rows);
}

std::vector<std::string> textureLines(const Report &report) {
    std::vector<Row> rows;
    for (const TextureReport &texture : report.textures) {
        rows.push_back({printable(texture.file), formatted("%u x %u", texture.width, texture.height),
                        formatted("%u bits", texture.bits),
                        (texture.missing ? "checkerboard for " : "from ") + printable(texture.source)});
    }
    return aligned(rows);
}

std::vector<std::string> countedLines(const std::vector<Dropped> &entries) {
    std::vector<std::string> lines;
    for (const Dropped &dropped : entries)
        lines.push_back(printable(dropped.what) + " (" + withCommas(dropped.count) +
                        "): " + printable(dropped.why));
    return lines;
}

std::vector<std::string> setupLines(const std::vector<SetupCall> &calls) {
    std::vector<std::string> lines;
    for (const SetupCall &entry : calls) {
        const std::string made = entry.kind == "helper" ? "(helper) " : "";
        lines.push_back(made + printable(entry.name) + ": " + entry.call);
    }
    return lines;
}

std::vector<std::string> printableAll(std::vector<std::string> lines) {
    for (std::string &line : lines) line = printable(line);
    return lines;
}

}  // namespace

std::string countsOf(const Tally &tally) {
    if (!tally.any()) return "nothing was dropped, changed or missing";
    return withCommas(tally.dropped) + " dropped, " + withCommas(tally.changed) + " changed, " +
           withCommas(tally.missing) + " missing, " + counted(tally.warnings, "warning", "warnings");
}

std::string textOf(const std::string &model, const std::string &folder, const Outcome &outcome) {
    const Report &report = outcome.report;
    const std::string ending = !folder.empty() && folder.back() == '/' ? "" : "/";
    std::string text = printable(model);
    if (outcome.strict)
        text += ": nothing is written";
    else
        text += folder.empty() ? ": dry run, nothing is written" : " -> " + printable(folder + ending);
    text += "\n";
    if (!report.sceneFile.empty())
        put(text, "scene", {printable(report.sceneFile), sceneLine(report), sizeLine(report)});
    put(text, "clips", clipLines(report));
    put(text, "textures", textureLines(report));
    if (!report.textures.empty())
        put(text, "memory",
            {formatted("%.2f of 8 MiB of textures", static_cast<double>(report.textureMemory) / kMebibyte)});
    put(text, "setup", setupLines(report.setup));
    put(text, "dropped", countedLines(report.dropped));
    put(text, "changed", countedLines(report.changed));
    put(text, "apart", countedLines(report.apart));
    put(text, "warnings", printableAll(report.warnings));
    put(text, "source", printableAll(report.source));
    put(text, "notes", printableAll(report.notes));
    put(text, "in all", {countsOf(report.tally())});
    return text;
}

std::string totalsOf(const ManyTotals &totals) {
    return counted(totals.converted + totals.refused + totals.lossy, "model", "models") + ": " +
           withCommas(totals.converted) + " converted, " + withCommas(totals.refused + totals.lossy) +
           " refused; " + countsOf(totals.tally);
}

}  // namespace keltra::convert

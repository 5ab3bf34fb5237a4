// SPDX-License-Identifier: Zlib
#include "tests/tools/convert/support/model_table.h"

#include <algorithm>
#include <filesystem>
#include <utility>
#include <vector>

namespace keltra::test {
namespace {

using nlohmann::json;

constexpr char kMark[] = "<!-- What follows is written by the test convert_corpus_test. -->\n";

std::string escaped(const std::string &text) {
    std::string result;
    for (char c : text) {
        if (c == '|' || c == '<' || c == '*' || c == '_') result += '\\';
        result += c;
    }
    return result;
}

// What follows the file's name in the program's message.
std::string reasonOf(const ConverterRun &run, const std::string &file) {
    const std::string name = std::filesystem::path(file).filename().string() + ": ";
    const std::size_t place = run.errors.find(name);
    std::string reason = place == std::string::npos ? run.errors : run.errors.substr(place + name.size());
    while (!reason.empty() && reason.back() == '\n') reason.pop_back();
    return reason;
}

std::string countOf(std::uint64_t count) { return count ? std::to_string(count) : "-"; }

std::string droppedOf(const json &report) {
    std::vector<std::pair<std::string, std::uint64_t>> counts;  // for whatever reasons
    for (const json &dropped : report.at("dropped")) {
        const std::string what = dropped.at("what").get<std::string>();
        const auto known =
            std::find_if(counts.begin(), counts.end(), [&](const auto &each) { return each.first == what; });
        (known != counts.end() ? *known : counts.emplace_back(what, 0)).second +=
            dropped.at("count").get<std::uint64_t>();
    }
    std::string text;
    for (const auto &[what, count] : counts)
        text += (text.empty() ? "" : ", ") + std::to_string(count) + " " + what;
    unsigned missing = 0;
    for (const json &texture : report.at("textures")) missing += texture.at("missing").get<bool>();
    if (missing)
        text += (text.empty() ? "" : ", ") + std::to_string(missing) +
                (missing > 1 ? " textures" : " texture") + " missing";
    return escaped(text);
}

std::string convertedRow(const std::string &name, const json &report) {
    const json &scene = report.at("scene");
    std::string row = "| " + escaped(name);
    for (const char *count : {"meshes", "skins", "triangles"})
        row += " | " + countOf(scene.at(count).get<std::uint64_t>());
    return row + " | " + countOf(report.at("clips").size()) + " | " + countOf(report.at("textures").size()) +
           " | " + droppedOf(report) + " |\n";
}

struct Folder {
    std::string converted;
    std::map<std::string, std::vector<std::string>> refused;  // by reason
};

std::string sectionOf(const std::string &name, const Folder &folder) {
    std::string text = "\n## " + name + "\n";
    if (!folder.converted.empty())
        text +=
            "\n| File | Meshes | Skins | Triangles | Clips | Textures | Left out "
            "|\n|---|---|---|---|---|---|---|\n" +
            folder.converted;
    if (!folder.refused.empty()) text += "\nRefused:\n\n";
    for (const auto &[reason, files] : folder.refused) {
        text += "- ";
        for (const std::string &file : files) text += (&file == &files.front() ? "" : ", ") + escaped(file);
        text += ": " + escaped(reason) + "\n";
    }
    return text;
}

}  // namespace

std::string modelPage(const std::string &page, const std::map<std::string, ConverterRun> &runs) {
    std::map<std::string, Folder> folders;
    unsigned converted = 0;
    for (const auto &[file, run] : runs) {
        const std::filesystem::path path = file;
        Folder &folder = folders[path.begin()->string()];
        const std::string name = path.lexically_relative(*path.begin()).string();
        if (run.exitCode == 0) {
            ++converted;
            folder.converted += convertedRow(name, run.document);
        } else {
            folder.refused[reasonOf(run, file)].push_back(name);
        }
    }
    const std::size_t mark = page.find(kMark);
    std::string text = (mark == std::string::npos ? page : page.substr(0, mark)) + kMark;
    text += "\nOf " + std::to_string(runs.size()) + " files " + std::to_string(converted) +
            " are converted and the others refused, pictures and texts among them.\n";
    for (const auto &[name, folder] : folders) text += sectionOf(name, folder);
    return text;
}

}  // namespace keltra::test

// SPDX-License-Identifier: Zlib
#include "tools/convert/material_scripts.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

namespace keltra::convert {
namespace {

constexpr std::uintmax_t kLargest = 1u << 20;  // bytes of a script
constexpr std::size_t kMostScripts = 4096;
constexpr std::size_t kMostEntries = 262144;  // files and folders that are looked at
constexpr int kDepth = 8;                     // levels below a folder
constexpr char kExtension[] = ".shader";

std::string lower(std::string text) {
    for (char &c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

std::string keyOf(const std::string &name) {
    std::string key = lower(name);
    std::replace(key.begin(), key.end(), '\\', '/');
    const std::size_t dot = key.rfind('.');
    const bool inName = dot != std::string::npos && key.find('/', dot) == std::string::npos;
    return inName ? key.substr(0, dot) : key;
}

std::string lastPart(const std::string &key) { return key.substr(key.rfind('/') + 1); }

// Words of a line; braces are words of their own, and a comment ends it.
std::vector<std::string> wordsOf(const std::string &line) {
    std::vector<std::string> words;
    std::string word;
    const auto finish = [&] {
        if (!word.empty()) words.push_back(word);
        word.clear();
    };
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (c == '/' && i + 1 < line.size() && line[i + 1] == '/') break;
        if (c == '{' || c == '}') {
            finish();
            words.push_back(std::string(1, c));
        } else if (c == '"' || static_cast<unsigned char>(c) <= ' ') {
            finish();
        } else {
            word += c;
        }
    }
    finish();
    return words;
}

class Parser {
   public:
    Parser(const std::string &file, std::map<std::string, ScriptedMaterial> &materials)
        : file(file), materials(materials) {}

    // Of one line: a name outside of braces, or a key with its values inside of two.
    void take(const std::vector<std::string> &words) {
        std::vector<std::string> rest;
        for (const std::string &word : words) {
            if (word != "{" && word != "}") {
                rest.push_back(word);
                continue;
            }
            takePlain(rest);
            rest.clear();
            if (word == "{") {
                if (++depth == 2) layer = ScriptedMaterial();
            } else if (depth > 0) {
                if (--depth == 1) finishLayer();
            }
        }
        takePlain(rest);
    }

   private:
    void takePlain(const std::vector<std::string> &words) {
        if (words.empty()) return;
        if (depth == 0) {
            name = keyOf(words[0]);
        } else if (depth == 2 && words.size() > 1) {
            takeKey(lower(words[0]), words);
        }
    }
    void takeKey(const std::string &key, const std::vector<std::string> &words) {
        const std::string value = lower(words[1]), second = words.size() > 2 ? lower(words[2]) : "";
        if (key == "map" || key == "clampmap") {
            if (value[0] != '$' && value[0] != '*') layer.picture = words[1];
        } else if (key == "animmap") {
            if (words.size() > 2) layer.picture = words[2];
        } else if (key == "alphafunc") {
            layer.seeThrough = true;
        } else if (key == "blendfunc") {
            layer.seeThrough = layer.seeThrough || value == "blend" || value == "gl_src_alpha";
            layer.additive = value == "add" || (value == "gl_one" && second == "gl_one");
        } else if (key == "tcgen") {
            layer.reflection = value == "environment";
        }
    }
    void finishLayer() {
        if (name.empty() || layer.picture.empty()) return;
        layer.script = file;
        materials.emplace(name, layer);  // the first layer stays
    }

    const std::string &file;
    std::map<std::string, ScriptedMaterial> &materials;
    std::string name;
    unsigned depth = 0;
    ScriptedMaterial layer;
};

}  // namespace

void readMaterialScript(const std::string &text, const std::string &file,
                        std::map<std::string, ScriptedMaterial> &materials) {
    Parser parser(file, materials);
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) parser.take(wordsOf(line));
}

void MaterialScripts::readAll() {
    namespace fs = std::filesystem;
    std::vector<std::string> files;
    std::error_code error;
    std::size_t seen = 0;
    for (const std::string &folder : folders) {
        fs::recursive_directory_iterator at(folder, fs::directory_options::skip_permission_denied, error),
            end;
        for (; !error && at != end && ++seen < kMostEntries; at.increment(error)) {
            if (at.depth() >= kDepth) at.disable_recursion_pending();
            std::error_code ignored;
            if (lower(at->path().extension().string()) == kExtension &&
                at->symlink_status(ignored).type() == fs::file_type::regular)
                files.push_back(at->path().string());
        }
    }
    std::sort(files.begin(), files.end());
    if (files.size() > kMostScripts) files.resize(kMostScripts);
    for (const std::string &file : files) {
        if (fs::file_size(file, error) > kLargest || error) continue;
        std::ifstream stream(file, std::ios::binary);
        readMaterialScript({std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()}, file,
                           materials);
    }
    for (const auto &entry : materials)
        if (!byLastPart.emplace(lastPart(entry.first), entry.first).second)
            shared.insert(lastPart(entry.first));
}

const ScriptedMaterial *MaterialScripts::find(const std::string &name) {
    if (!isRead) readAll();
    isRead = true;
    const std::string key = keyOf(name), last = lastPart(key);
    auto found = materials.find(key);
    if (found != materials.end()) return &found->second;
    const auto known = byLastPart.find(last);
    if (last.empty() || known == byLastPart.end() || shared.count(last)) return nullptr;
    return &materials.at(known->second);
}

}  // namespace keltra::convert

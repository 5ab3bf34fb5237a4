// SPDX-License-Identifier: Zlib
#include "tests/docs/document.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <stdexcept>

namespace keltra::test {

namespace {

std::string trimmed(const std::string &text) {
    const std::size_t begin = text.find_first_not_of(' '), end = text.find_last_not_of(' ');
    return begin == std::string::npos ? "" : text.substr(begin, end - begin + 1);
}

std::vector<std::string> cells(const std::string &row) {
    std::vector<std::string> result;
    for (std::size_t begin = 1, end; (end = row.find('|', begin)) != std::string::npos; begin = end + 1)
        result.push_back(trimmed(row.substr(begin, end - begin)));
    return result;
}

bool isRow(const std::string &line) { return !line.empty() && line[0] == '|'; }

}  // namespace

std::filesystem::path projectFolder() { return KELTRA_PROJECT_FOLDER; }

Document readDocument(const std::string &path) {
    std::ifstream file(projectFolder() / path);
    if (!file) throw std::runtime_error("cannot read " + path);
    Document document;
    document.path = path;
    bool inside = false;
    for (std::string line; std::getline(file, line);) {
        const bool fence = line.compare(0, 3, "```") == 0;
        document.prose.push_back(fence || inside ? "" : line);
        if (fence && !inside) document.blocks.push_back({line.substr(3), document.prose.size() + 1, {}});
        if (!fence && inside) document.blocks.back().lines.push_back(line);
        inside = inside != fence;
    }
    if (inside) throw std::runtime_error(path + " has a block that does not end");
    return document;
}

std::vector<Document> allDocuments() {
    std::vector<std::string> paths = {"README.md", "CONTRIBUTING.md", "CHANGELOG.md"};
    for (const auto &entry : std::filesystem::recursive_directory_iterator(projectFolder() / "docs"))
        if (entry.path().extension() == ".md")
            paths.push_back(entry.path().lexically_relative(projectFolder()).string());
    std::sort(paths.begin(), paths.end());
    std::vector<Document> documents;
    for (const std::string &path : paths) documents.push_back(readDocument(path));
    return documents;
}

std::string Document::text() const {
    std::string result;
    for (const std::string &line : prose) {
        for (char c : line + ' ')
            if (c != ' ' || (!result.empty() && result.back() != ' ')) result += c;
    }
    return result;
}

std::vector<std::vector<std::string>> Document::table(const std::string &heading) const {
    auto line = std::find(prose.begin(), prose.end(), heading);
    line = std::find_if(line, prose.end(), isRow);
    std::vector<std::vector<std::string>> rows;
    for (; line != prose.end() && isRow(*line); ++line) rows.push_back(cells(*line));
    if (rows.size() < 3) throw std::runtime_error(path + " has no table below " + heading);
    rows.erase(rows.begin(), rows.begin() + 2);  // the head and the rule
    return rows;
}

std::vector<std::string> Document::anchors() const {
    std::vector<std::string> result;
    for (const std::string &line : prose) {
        if (line.empty() || line[0] != '#') continue;
        std::string anchor;
        for (char c : trimmed(line.substr(line.find_first_not_of('#')))) {
            if (std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == '_')
                anchor += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            if (c == ' ') anchor += '-';
        }
        result.push_back(anchor);
    }
    return result;
}

std::vector<std::string> quoted(const std::string &text) {
    std::vector<std::string> result;
    for (std::size_t begin = text.find('`'), end; begin != std::string::npos;
         begin = text.find('`', end + 1)) {
        end = text.find('`', begin + 1);
        if (end == std::string::npos) break;
        result.push_back(text.substr(begin + 1, end - begin - 1));
    }
    return result;
}

std::string grouped(unsigned long long number) {
    std::string digits = std::to_string(number);
    for (std::size_t i = digits.size(); i > 3;) digits.insert(i -= 3, ",");
    return digits;
}

}  // namespace keltra::test

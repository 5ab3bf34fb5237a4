// SPDX-License-Identifier: Zlib
#include "tests/headers/include_graph.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <regex>
#include <set>

namespace keltra::test {
namespace {

namespace fs = std::filesystem;

constexpr char kPublicFolder[] = "include/keltra/";
constexpr char kTableHead[] = "| Room |";
constexpr const char *kQuotedLast[] = {"tests/", "examples/", "games/", "fuzz/", "benchmarks/"};

bool startsWith(const std::string &text, const std::string &start) { return text.rfind(start, 0) == 0; }

bool isSource(const fs::path &path) { return path.extension() == ".h" || path.extension() == ".cpp"; }

/// The words of a table cell that stand between backticks.
std::vector<std::string> wordsOf(const std::string &cell) {
    static const std::regex word("`([^`]+)`");
    std::vector<std::string> words;
    for (std::sregex_iterator match(cell.begin(), cell.end(), word), end; match != end; ++match)
        words.push_back((*match)[1]);
    return words;
}

std::string withoutEnding(const std::string &path) { return path.substr(0, path.rfind('.')); }

}  // namespace

IncludeGraph::IncludeGraph(const std::string &folder) {
    readTable(folder + "/CONTRIBUTING.md");
    readSources(folder);
    for (const std::string &file : sources) readIncludes(folder, file);
}

void IncludeGraph::readTable(const std::string &path) {
    std::ifstream text(path);
    std::string line;
    while (std::getline(text, line) && !startsWith(line, kTableHead)) {
    }
    std::getline(text, line);  // the rule below the head
    while (std::getline(text, line) && startsWith(line, "|")) {
        const std::size_t second = line.find('|', 1);
        const std::vector<std::string> name = wordsOf(line.substr(0, second));
        if (name.size() == 1 && name[0].back() == '/')
            table.push_back({name[0].substr(0, name[0].size() - 1), wordsOf(line.substr(second))});
    }
}

void IncludeGraph::readSources(const std::string &folder) {
    fs::recursive_directory_iterator entry(folder), end;
    for (; entry != end; ++entry) {
        const std::string name = entry->path().filename().string();
        if (entry->is_directory() && (name[0] == '.' || (entry.depth() == 0 && name == "build")))
            entry.disable_recursion_pending();
        else if (entry->is_regular_file() && isSource(entry->path()))
            sources.push_back(fs::relative(entry->path(), folder).generic_string());
    }
    std::sort(sources.begin(), sources.end());
}

void IncludeGraph::readIncludes(const std::string &folder, const std::string &file) {
    static const std::regex directive("^\\s*#\\s*(include|if|el|endif)\\w*\\s*(([\"<])([^\">]+)[\">])?.*");
    std::ifstream text(folder + "/" + file);
    std::string line, above;
    std::smatch match;
    int rankAbove = 0;
    for (int number = 1; std::getline(text, line); ++number) {
        if (line.find('#') == std::string::npos || !std::regex_match(line, match, directive)) continue;
        if (match[1] != "include") {
            rankAbove = 0;
            continue;
        }
        const std::string name = match[4];
        const bool isProjects = match[3] == "\"" || startsWith(name, "keltra/");
        const std::string target =
            !isProjects ? "" : resolve(file, match[3] == "\"" ? name : "include/" + name);
        const std::string place = file + ":" + std::to_string(number) + " includes " + name;
        if (!target.empty())
            arrows.push_back({file, target, number});
        else if (isProjects)
            unknown.push_back(place + ", which is not there");
        const int rank = rankOf(file, match[2], target, above.empty());
        if (rank < rankAbove) misplaced.push_back(place + " below " + above);
        rankAbove = std::max(rank, rankAbove);
        if (rank == rankAbove) above = name;
    }
}

/// The place of an include among those of its file, as CONTRIBUTING.md orders them.
int IncludeGraph::rankOf(const std::string &from, const std::string &name, const std::string &target,
                         bool isFirst) const {
    const bool isQuoted = name[0] == '"';
    const bool isStandard = !isQuoted && name.find('.') == std::string::npos;
    if (!target.empty() && (isFirst || unitOf(target) == unitOf(from))) return 0;
    for (const char *folder : kQuotedLast)
        if (startsWith(from, folder)) return isQuoted ? 3 : isStandard ? 2 : 1;
    return isQuoted ? 2 : !target.empty() ? 1 : isStandard ? 4 : 3;
}

// Quoted names count from the top of the checkout, or else from the file's own folder. Empty when neither is
// there.
std::string IncludeGraph::resolve(const std::string &from, const std::string &name) const {
    const std::string beside = (fs::path(from).parent_path() / name).generic_string();
    for (const std::string &path : {name, beside})
        if (std::binary_search(sources.begin(), sources.end(), path)) return path;
    return {};
}

int IncludeGraph::roomOf(const std::string &file) const {
    const bool isPublic = startsWith(file, kPublicFolder);
    const std::string header = isPublic ? file.substr(sizeof kPublicFolder - 1) : "";
    for (std::size_t i = 0; i < table.size(); ++i) {
        const std::vector<std::string> &headers = table[i].headers;
        if (isPublic ? std::count(headers.begin(), headers.end(), header) > 0
                     : startsWith(file, table[i].name + "/"))
            return static_cast<int>(i);
    }
    return -1;
}

std::string IncludeGraph::unitOf(const std::string &file) const {
    const int room = startsWith(file, kPublicFolder) ? roomOf(file) : -1;
    if (room < 0) return withoutEnding(file);
    return table[static_cast<std::size_t>(room)].name + "/" +
           withoutEnding(file.substr(sizeof kPublicFolder - 1));
}

std::vector<std::string> IncludeGraph::faultsOfTheTable() const {
    std::vector<std::string> faults;
    if (table.empty()) faults.push_back("CONTRIBUTING.md has no table of rooms");
    std::map<std::string, int> seen;
    for (const Room &room : table) {
        ++seen[room.name];
        for (const std::string &header : room.headers) {
            ++seen[header];
            if (!std::binary_search(sources.begin(), sources.end(), kPublicFolder + header))
                faults.push_back(header + " of " + room.name + " is not there");
        }
    }
    for (const auto &[name, times] : seen)
        if (times > 1) faults.push_back(name + " stands in the table " + std::to_string(times) + " times");
    return faults;
}

std::vector<std::string> IncludeGraph::filesWithoutRoom() const {
    std::vector<std::string> faults;
    for (const std::string &file : sources)
        if (roomOf(file) < 0) faults.push_back(file + " stands in no room of the table");
    return faults;
}

std::vector<std::string> IncludeGraph::upwardIncludes() const {
    std::vector<std::string> faults;
    for (const Include &include : arrows) {
        const int from = roomOf(include.from), to = roomOf(include.to);
        if (from >= 0 && to > from)
            faults.push_back(include.from + ":" + std::to_string(include.line) + " includes " + include.to +
                             ", of " + table[static_cast<std::size_t>(to)].name);
    }
    return faults;
}

/// For each unit the units that it includes, each with the file that does.
std::map<std::string, std::map<std::string, std::string>> IncludeGraph::unitArrows() const {
    std::map<std::string, std::map<std::string, std::string>> units;
    for (const Include &include : arrows) {
        const std::string from = unitOf(include.from), to = unitOf(include.to);
        if (from != to) units[from].emplace(to, include.from);
    }
    return units;
}

std::vector<std::string> IncludeGraph::circles() const {
    const auto units = unitArrows();
    const auto reachedFrom = [&units](const std::string &start) {
        std::set<std::string> reached;
        std::vector<std::string> open = {start};
        while (!open.empty()) {
            const auto next = units.find(open.back());
            open.pop_back();
            if (next == units.end()) continue;
            for (const auto &[unit, file] : next->second)
                if (reached.insert(unit).second) open.push_back(unit);
        }
        return reached;
    };
    std::map<std::string, std::set<std::string>> reached;
    for (const auto &[unit, next] : units) reached[unit] = reachedFrom(unit);

    std::vector<std::string> faults;
    std::set<std::string> told;
    for (const auto &[unit, others] : reached) {
        if (!others.count(unit) || told.count(unit)) continue;
        std::string line = unit;
        for (const std::string &other : others) {
            if (other == unit || !reached[other].count(unit)) continue;
            told.insert(other);
            line += ", " + other;
        }
        faults.push_back(line);
    }
    return faults;
}

}  // namespace keltra::test

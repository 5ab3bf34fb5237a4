// SPDX-License-Identifier: Zlib
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <regex>
#include <set>
#include <sstream>

#include "tests/docs/document.h"

namespace keltra::test {
namespace {

using ::testing::Contains;
namespace fs = std::filesystem;

std::string contentsOf(const fs::path &path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::set<std::string> matches(const std::string &text, const std::string &pattern) {
    static std::map<std::string, std::regex> patterns;  // asked of every line
    const std::regex &wanted = patterns.try_emplace(pattern, pattern).first->second;
    std::set<std::string> result;
    for (std::sregex_iterator i(text.begin(), text.end(), wanted), end; i != end; ++i) result.insert((*i)[1]);
    return result;
}

// Calls `visit(place, line)` with every line of every document, blocks included.
template <class Visit>
void forLines(Visit visit) {
    for (const Document &document : allDocuments()) {
        for (std::size_t i = 0; i < document.prose.size(); ++i) visit(document.name(i), document.prose[i]);
        for (const Block &block : document.blocks)
            for (std::size_t i = 0; i < block.lines.size(); ++i)
                visit(document.name(block.line + i - 1), block.lines[i]);
    }
}

// Names of all source files: build folders and hidden folders are left out.
const std::set<std::string> &projectFiles() {
    static const std::set<std::string> names = [] {
        std::set<std::string> found;
        for (fs::recursive_directory_iterator entry(projectFolder()), end; entry != end; ++entry) {
            const std::string name = entry->path().filename().string();
            if (entry->is_directory() && (name[0] == '.' || entry->path() == projectFolder() / "build"))
                entry.disable_recursion_pending();
            else
                found.insert(name);
        }
        return found;
    }();
    return names;
}

// A name that stands for several files, as in `figure*.cpp`.
bool anyMatches(const fs::path &pattern) {
    if (!fs::is_directory(pattern.parent_path())) return false;
    std::string expression;
    for (char c : pattern.filename().string())
        expression += c == '*' ? ".*" : c == '.' ? "\\." : std::string(1, c);
    for (const auto &entry : fs::directory_iterator(pattern.parent_path()))
        if (std::regex_match(entry.path().filename().string(), std::regex(expression))) return true;
    return false;
}

TEST(DocumentsTest, EveryBlockSaysItsLanguage) {
    const std::set<std::string> languages = {"cpp", "cmake", "xml", "settings", "kerning", "sh", "text"};
    for (const Document &document : allDocuments()) {
        for (const Block &block : document.blocks)
            EXPECT_TRUE(languages.count(block.language))
                << document.name(block.line - 2) << ": " << block.language;
        for (std::size_t i = 1; i < document.prose.size(); ++i) {
            const bool indented =
                document.prose[i].compare(0, 4, "    ") == 0 && document.prose[i - 1].empty();
            EXPECT_FALSE(indented) << document.name(i) << ": a block that is not fenced";
        }
    }
}

TEST(DocumentsTest, LinksLeadSomewhere) {
    int checked = 0;
    for (const Document &document : allDocuments()) {
        for (const std::string &link : matches(document.text(), "\\]\\(([^)]+)\\)")) {
            if (link.compare(0, 4, "http") == 0) continue;
            ++checked;
            const std::size_t mark = link.find('#');
            const fs::path folder = fs::path(document.path).parent_path();
            const fs::path file =
                mark == 0 ? fs::path(document.path) : (folder / link.substr(0, mark)).lexically_normal();
            const bool exists = fs::exists(projectFolder() / file);
            EXPECT_TRUE(exists) << document.path << ": " << link;
            if (!exists || mark == std::string::npos) continue;
            EXPECT_THAT(readDocument(file.string()).anchors(), Contains(link.substr(mark + 1)))
                << document.path << ": " << link;
        }
    }
    EXPECT_GT(checked, 30);
}

// A file or folder by its path in the project, a header as it is included or as the table of rooms has it, a
// part of tests/ in the table of folders, and a source by its name alone.
bool exists(const std::string &name) {
    if (name.find('/') == std::string::npos) return projectFiles().count(name) != 0;
    for (const char *folder : {"", "include/", "include/keltra/", "tests/"}) {
        const fs::path file = projectFolder() / (folder + name);
        if (fs::exists(file) || (name.find('*') != std::string::npos && anyMatches(file))) return true;
    }
    return false;
}

TEST(DocumentsTest, FilesAndFoldersExist) {
    // Written when the project is built, brought by a package, or the reader's own.
    const std::regex elsewhere("(build|ASE|Collada|FBX|data)/.*|court\\.cpp|.*_DEPTH.*");
    const std::regex path("[A-Za-z0-9_.*-]+(/[A-Za-z0-9_.*-]*)+|[A-Za-z0-9_]+\\.(h|cpp|cmake|sh|md)");
    int checked = 0;
    for (const Document &document : allDocuments()) {
        for (std::size_t i = 0; i < document.prose.size(); ++i) {
            for (const std::string &name : quoted(document.prose[i])) {
                if (!std::regex_match(name, path) || std::regex_match(name, elsewhere)) continue;
                EXPECT_TRUE(exists(name)) << document.name(i) << ": " << name;
                ++checked;
            }
        }
    }
    EXPECT_GT(checked, 40);
}

// The comment at the top of each lesson names the next one, in the order of the folders; each is short.
TEST(DocumentsTest, LessonsAreACourse) {
    std::set<fs::path> lessons;
    for (const fs::directory_entry &entry : fs::directory_iterator(projectFolder() / "examples"))
        if (fs::exists(entry.path() / "main.cpp")) lessons.insert(entry.path());
    ASSERT_GE(lessons.size(), 29u);
    const std::string page = contentsOf(projectFolder() / "docs/lessons.md");
    for (auto lesson = lessons.begin(); lesson != lessons.end(); ++lesson) {
        const std::string text = contentsOf(*lesson / "main.cpp"), name = lesson->filename().string();
        EXPECT_LT(std::count(text.begin(), text.end(), '\n'), 120) << name;
        EXPECT_NE(page.find('`' + name + '`'), std::string::npos) << name;
        const std::size_t next = text.find(" Next: ");
        if (std::next(lesson) == lessons.end()) continue;
        ASSERT_LT(next, text.find("#include")) << name;
        const std::string head = text.substr(next, text.find("#include") - next);
        EXPECT_EQ(matches(head, "\\b([0-9]{2}_[a-z]+)"),
                  std::set<std::string>{std::next(lesson)->filename().string()})
            << name;
    }
}

TEST(DocumentsTest, CommandsAreThoseOfRun) {
    const std::string script = contentsOf(projectFolder() / "run");
    const std::set<std::string> commands = matches(script, "\n    ([a-z]+)\\)");
    ASSERT_TRUE(commands.count("demo"));
    forLines([&](const std::string &place, const std::string &line) {
        for (const std::string &command : matches(line, "\\./run ([a-z]+)"))
            EXPECT_TRUE(commands.count(command)) << place << ": ./run " << command;
    });
    // The script's own list of commands is complete.
    EXPECT_EQ(matches(script, "\n\\./run ([a-z]+)"), commands);
}

TEST(DocumentsTest, PresetsLabelsAndSwitchesExist) {
    const std::string presets = contentsOf(projectFolder() / "CMakePresets.json");
    const std::string tests = contentsOf(projectFolder() / "tests/CMakeLists.txt");
    const std::string project = contentsOf(projectFolder() / "CMakeLists.txt");
    forLines([&](const std::string &place, const std::string &line) {
        for (const std::string &preset : matches(line, "--preset ([a-z]+)"))
            EXPECT_NE(presets.find("\"name\": \"" + preset + "\""), std::string::npos)
                << place << ": " << preset;
        for (const std::string &label : matches(line, "ctest .* -L ([a-z]+)"))
            EXPECT_NE(tests.find(" " + label), std::string::npos) << place << ": " << label;
        for (const std::string &option : matches(line, "-D(KELTRA_[A-Z]+)="))
            EXPECT_NE(project.find("option(" + option + " "), std::string::npos) << place << ": " << option;
    });
    const Document contributing = readDocument("CONTRIBUTING.md");
    for (const auto &row : contributing.table("## Build"))
        EXPECT_NE(presets.find("\"name\": \"" + quoted(row[0]).at(0) + "\""), std::string::npos) << row[0];
}

// The options that options.sh has compared with --help.
std::set<std::string> optionsOf(const std::string &program) {
    if (program == "keltra-font")
        return matches(contentsOf(projectFolder() / "docs/formats/kerning.md"), "\\| `(--[a-z-]+)`");
    std::set<std::string> options;
    const std::string page = contentsOf(projectFolder() / ("docs/man/" + program + ".1"));
    for (const std::string &name : matches(page, "Fl (?:-|Fl )([a-z][a-z-]*)")) options.insert("--" + name);
    return options;
}

TEST(DocumentsTest, OptionsAreThoseOfTheProgram) {
    const std::regex call("(keltra-(?:convert|info|view|font))((?: +[^ `#)|]+)+)");
    std::set<std::string> all;
    for (const char *program : {"keltra-convert", "keltra-info", "keltra-view", "keltra-font"})
        all.merge(optionsOf(program));
    all.merge(matches(contentsOf(projectFolder() / "games/lantern_walk/main.cpp"),
                      "add_(?:option|flag)\\(\"(--[a-z-]+)\""));
    int checked = 0;
    const auto check = [&](const std::string &place, const std::string &text,
                           const std::set<std::string> &known) {
        for (const std::string &option : matches(text, "(--[a-z][a-z-]*)")) {
            EXPECT_TRUE(known.count(option)) << place << ": " << option;
            ++checked;
        }
    };
    forLines([&](const std::string &place, const std::string &line) {
        for (std::sregex_iterator i(line.begin(), line.end(), call), end; i != end; ++i)
            check(place, (*i)[2], optionsOf((*i)[1]));
        for (const std::string &text : quoted(line))
            if (text.compare(0, 2, "--") == 0) check(place, text, all);
    });
    EXPECT_GT(checked, 15);
}

// The messages that the tutorial explains are those that the converter prints.
TEST(DocumentsTest, MessagesOfTheTutorialAreTheConvertersOwn) {
    std::string sources;
    for (const auto &entry : fs::directory_iterator(projectFolder() / "tools/convert"))
        sources += contentsOf(entry.path());
    // Numbers, names and values are between the parts of a message.
    const std::regex parts("\\.\\.\\.|16|  |;|\\bis\\b|names were");
    for (const auto &row : readDocument("docs/first_character.md").table("## Common messages and cures")) {
        for (const std::string &message : quoted(row[0])) {
            if (message.compare(0, 2, "--") == 0) continue;
            for (std::sregex_token_iterator part(message.begin(), message.end(), parts, -1), end; part != end;
                 ++part) {
                const std::string text = std::regex_replace(part->str(), std::regex("^ +| +$"), "");
                EXPECT_NE(sources.find(text), std::string::npos) << message << ": " << text;
            }
        }
    }
    // The reasons in the report that it shows.
    for (const Block &block : readDocument("docs/first_character.md").blocks) {
        for (const std::string &line : block.lines) {
            const std::size_t reason =
                line.compare(0, 9, "  dropped") == 0 ? line.find("): ") : std::string::npos;
            if (reason == std::string::npos) continue;
            EXPECT_NE(sources.find(line.substr(reason + 3)), std::string::npos) << line;
        }
    }
}

}  // namespace
}  // namespace keltra::test

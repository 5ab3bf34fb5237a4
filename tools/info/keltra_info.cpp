// SPDX-License-Identifier: Zlib
// keltra-info FILE...: describes files of the engine and their faults.

#include "tools/info/limits.h"
#include "tools/info/print.h"
#include "tools/info/read_file.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace info = keltra::info;

struct Arguments {
    std::vector<std::string> files;
    std::string kind;
    bool json = false, check = false, strict = false, limits = false;
};

constexpr char kExamples[] =
    "Examples:\n"
    "  keltra-info hero.kte                  what is in a scene\n"
    "  keltra-info --check data/*            which files the engine takes\n"
    "  keltra-info --check --strict data/*   and which of them lack something\n"
    "  keltra-info --json hero.kte hero.kta  for another program\n"
    "  keltra-info --as settings user.txt    the keys as the engine reads them\n"
    "  keltra-info --limits                  what files of the engine can hold\n";

void describe(CLI::App &app, Arguments &arguments) {
    CLI::Option *files = app.add_option(
        "FILE", arguments.files,
        "Scenes (KTE), animations (KTA), textures (TGA), kerning and settings files, interface and "
        "emitter descriptions (XML), films (MPEG-1)");
    app.add_option("--as", arguments.kind, "Takes the files for this kind, whatever is in them")
        ->check(CLI::IsMember(info::kindNames()));
    app.add_flag("--json", arguments.json, "Prints one JSON document");
    CLI::Option *check =
        app.add_flag("--check", arguments.check, "Prints one line a file: good, or where and why it is bad");
    app.add_flag("--strict", arguments.strict,
                 "With --check: a file is also bad when something in it is missing or not known")
        ->needs(check);
    app.add_flag("--limits", arguments.limits,
                 "Prints the engine's limits and the converter's default budget as JSON")
        ->excludes(files);
    app.set_version_flag("--version", "keltra-info " KELTRA_VERSION);
    app.footer(kExamples);
}

info::FileReport inspectFile(const std::string &file, const std::string &kind) {
    info::FileReport report;
    report.file = file;
    std::vector<char> bytes;
    if (!info::readWholeFile(file, bytes, report.error)) return report;
    const std::string parent = std::filesystem::path(file).parent_path().string();
    const info::FileKind taken =
        kind.empty() ? info::identify(file, bytes.data(), bytes.size()) : info::kindOfName(kind);
    report.inspection = info::inspect(taken, bytes.data(), bytes.size(), parent.empty() ? "." : parent);
    return report;
}

void print(const info::FileReport &report, const Arguments &arguments) {
    const bool verdictsOnly = arguments.check;
    const bool showsContents = report.isGood() && !verdictsOnly;
    const std::string text = showsContents      ? info::table(report)
                             : arguments.strict ? info::strictLines(report)
                                                : info::verdictLine(report);
    // With --check verdicts are the output; otherwise a bad file is an error.
    std::fputs(text.c_str(), report.isGood() || verdictsOnly ? stdout : stderr);
}

int run(const Arguments &arguments) {
    bool allGood = true;
    std::vector<info::FileReport> reports;
    for (const std::string &file : arguments.files) {
        info::FileReport report = inspectFile(file, arguments.kind);
        allGood = allGood && (arguments.strict ? report.isFaultless() : report.isGood());
        if (arguments.json)
            reports.push_back(std::move(report));
        else
            print(report, arguments);
    }
    if (arguments.limits) std::fputs(info::limitsText().c_str(), stdout);
    if (arguments.json) std::fputs(info::jsonText(reports, arguments.check).c_str(), stdout);
    if (std::fflush(stdout) == 0 && !std::ferror(stdout)) return allGood ? 0 : 1;
    std::fputs("keltra-info: cannot write the output\n", stderr);
    return 1;
}

}  // namespace

int main(int argc, char **argv) {
    CLI::App app("Says what is in files of the engine, and what is wrong with them", "keltra-info");
    Arguments arguments;
    describe(app, arguments);
    try {
        app.parse(argc, argv);
        if (arguments.files.empty() && !arguments.limits) throw CLI::RequiredError("FILE");
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : 2;
    }
    try {
        return run(arguments);
    } catch (const std::exception &error) {
        std::fprintf(stderr, "keltra-info: %s\n", error.what());
        return 1;
    }
}

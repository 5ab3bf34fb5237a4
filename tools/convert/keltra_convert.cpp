// SPDX-License-Identifier: Zlib
// keltra-convert MODEL -o DIR: converts a model into the engine's files.

#include "formats/limits.h"
#include "tools/convert/convert.h"
#include "tools/convert/isolated.h"
#include "tools/convert/names.h"
#include "tools/convert/output_folder.h"
#include "tools/convert/report_json.h"
#include "tools/convert/report_text.h"
#include "tools/formats/version.h"

#include <CLI/CLI.hpp>

#include <unistd.h>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <map>
#include <stdexcept>
#include <string>

namespace {

using namespace keltra::convert;

constexpr int kGood = 0, kRefused = 1, kUsage = 2, kLossy = 3;
constexpr double kLowestRate = 1.0, kHighestRate = 1000.0;
constexpr unsigned kLongestTimeout = 86400;
constexpr auto kProgressDelay = std::chrono::seconds(1);
constexpr char kExamples[] =
    "Examples:\n"
    "  keltra-convert hero.fbx -o data\n"
    "  keltra-convert hero.glb -o data --name hero --fps 15 --max-texture 128\n"
    "  keltra-convert hero.fbx walk.fbx run.fbx -o data\n"
    "  keltra-convert hall.obj -o data --scale 0.01\n"
    "  keltra-convert panel.png --texture -o data\n"
    "  keltra-convert hero.fbx --dry-run --json";

struct Arguments {
    Options options;
    std::string folder, budget = "default";
    unsigned seconds = 300;
    bool texture = false, dryRun = false, json = false, quiet = false;
};

bool numberOf(const std::string &text, double &value) {
    return CLI::detail::lexical_cast(text, value) && std::isfinite(value);
}

std::string checkRate(const std::string &text) {
    double rate = 0.0;
    if (numberOf(text, rate) && rate >= kLowestRate && rate <= kHighestRate) return "";
    return "must be a number from 1 to 1000";
}

std::string checkScale(const std::string &text) {
    double scale = 0.0;
    return numberOf(text, scale) && scale > 0.0 ? "" : "must be a number above 0";
}

std::string checkTexture(const std::string &text) {
    unsigned side = 0;
    if (CLI::detail::lexical_cast(text, side) && side > 0 && side <= keltra::kMaxTextureSize &&
        (side & (side - 1)) == 0)
        return "";
    return "must be a power of two from 1 to " + std::to_string(keltra::kMaxTextureSize);
}

std::string checkName(const std::string &text) {
    if (!text.empty() && fileName(text) == text) return "";
    return "must be at most 64 letters, digits, '.', '-' and '_', and not a name that a system reserves";
}

std::string checkTimeout(const std::string &text) {
    unsigned seconds = 0;
    if (CLI::detail::lexical_cast(text, seconds) && seconds > 0 && seconds <= kLongestTimeout) return "";
    return "must be a whole number from 1 to 86400";
}

std::string checkSimplify(const std::string &text) {
    double value = 0.0;
    const bool good = numberOf(text, value) && value > 0.0 && (value < 1.0 || value == std::floor(value));
    return good && value <= 1e9 ? "" : "must be a share below 1 or a whole number of triangles";
}

std::string checkBudgetText(const std::string &text) {
    try {
        budgetOf(text);
        return "";
    } catch (const std::invalid_argument &error) {
        return error.what();
    }
}

std::string checkNotEmpty(const std::string &text) { return text.empty() ? "must not be empty" : ""; }

void describe(CLI::App &app, Arguments &arguments) {
    Options &options = arguments.options;
    const auto check = [](CLI::Option *option, std::string (*rule)(const std::string &)) {
        return option->check(CLI::Validator(rule, ""));
    };
    check(app.add_option("MODEL", options.model, "Model: FBX, glTF, Collada, OBJ, X, ..."), checkNotEmpty)
        ->required();
    app.add_option("CLIPS", options.clips, "Further files, whose animations are for the model's skeleton");
    check(app.add_option("-o,--output", arguments.folder, "Output folder; created if missing"),
          checkNotEmpty);
    check(app.add_option("--name", options.name, "Prefix of the files' names; default: the model's name"),
          checkName);
    CLI::Option *texture =
        app.add_flag("--texture", arguments.texture, "MODEL is a picture; it becomes the texture NAME.tga");
    check(app.add_option("--fps", options.fps, "Frames per second of animations, 1 to 1000"), checkRate)
        ->capture_default_str()
        ->excludes(texture);
    check(app.add_option("--max-texture", options.maxTexture, "Longest side of textures, a power of two"),
          checkTexture)
        ->capture_default_str();
    app.add_option("--textures", options.folders,
                   "Folder with pictures and other files of the model; may be repeated")
        ->check(CLI::ExistingDirectory)
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    app.add_flag("--normal-maps", options.normalMaps, "Also write normal maps, for devices with shaders")
        ->excludes(texture);
    check(app.add_option("--scale", options.scale,
                         "Factor for lengths in metres; default: what the range needs"),
          checkScale)
        ->excludes(texture);
    const std::map<std::string, BackSides> sides = {
        {"open", BackSides::kOpen}, {"all", BackSides::kAll}, {"none", BackSides::kNone}};
    app.add_option("--two-sided", options.backSides,
                   "Back sides of which two-sided meshes are drawn: open, all, none")
        ->transform(CLI::CheckedTransformer(sides))
        ->default_str("open")
        ->excludes(texture);
    check(app.add_option("--simplify", options.simplify, "Share of the triangles to keep, or how many"),
          checkSimplify)
        ->excludes(texture);
    check(app.add_option("--budget", arguments.budget,
                         "default, none, or triangles=5000,vertices=5000,bones=40,textures=2M,clips=1M"),
          checkBudgetText)
        ->capture_default_str();
    app.add_flag("--fit", options.fit, "Reduce triangles and pictures to the budget");
    app.add_option("--up", options.up, "The model's axis that points upward; default: as its format says")
        ->transform(CLI::CheckedTransformer(std::map<std::string, char>{{"X", 'X'}, {"Y", 'Y'}, {"Z", 'Z'}},
                                            CLI::ignore_case))
        ->excludes(texture);
    check(app.add_option("--timeout", arguments.seconds, "Stop after that many seconds"), checkTimeout)
        ->capture_default_str();
    app.add_flag("--strict", options.strict,
                 "Fail, and write nothing, if anything is dropped, changed or missing");
    app.add_flag("--dry-run", arguments.dryRun, "Report what would be written, and write nothing");
    CLI::Option *json = app.add_flag("--json", arguments.json, "Report as one JSON document");
    app.add_flag("--quiet", arguments.quiet, "Report warnings only")->excludes(json);
    app.set_version_flag("--version", std::string("keltra-convert ") + keltra::formats::projectVersion());
    app.footer(kExamples);
}

// A line of the terminal that shows the progress of a long conversion. The destructor clears it.
class ProgressLine {
   public:
    ProgressLine() : shows(::isatty(STDERR_FILENO) == 1) {}
    ~ProgressLine() {
        if (written) std::fputs("\r\x1b[K", stderr);
    }
    ProgressLine(const ProgressLine &) = delete;
    ProgressLine &operator=(const ProgressLine &) = delete;

    void show(const char *what, double done) {
        if (!shows || std::chrono::steady_clock::now() - start < kProgressDelay) return;
        std::fprintf(stderr, "\r%s %.0f %%\x1b[K", printable(what).c_str(), 100.0 * done);
        written = true;
    }

   private:
    const bool shows;
    const std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    bool written = false;
};

Outcome convertTo(const std::string &folder, const Arguments &arguments) {
    ProgressLine line;
    const auto progress = [&line](const char *what, double done) { line.show(what, done); };
    return convertIsolated(arguments.texture ? convertPicture : convertModel, arguments.options, folder,
                           progress, arguments.seconds);
}

Outcome convert(const Arguments &arguments) {
    const HeldSignals held;  // an interrupt acts after the folder and the terminal are cleaned up
    if (arguments.dryRun) return convertTo("", arguments);
    try {
        OutputFolder folder(arguments.folder);
        Outcome outcome = convertTo(arguments.folder, arguments);
        if (outcome.converted) folder.keep();
        return outcome;
    } catch (const Refusal &refusal) {
        Outcome outcome;
        outcome.reason = refusal.what();
        return outcome;
    }
}

int refuse(const std::string &model, const std::string &reason) {
    std::fprintf(stderr, "keltra-convert: %s: %s\n", printable(model).c_str(), printable(reason).c_str());
    return kRefused;
}

// Warnings, and what the last line of the whole report counts.
std::string quietText(const Outcome &outcome) {
    const Tally tally = outcome.report.tally();
    return warningsOf(outcome) + (tally.any() ? "warning: " + countsOf(tally) + "\n" : "");
}

int report(const Arguments &arguments, const Outcome &outcome) {
    const std::string &model = arguments.options.model;
    const std::string folder = arguments.dryRun ? "" : arguments.folder;
    std::string text;
    if (arguments.json)
        text = documentOf(model, folder, outcome);
    else if (outcome.converted || outcome.strict)
        text = arguments.quiet ? quietText(outcome) : textOf(model, folder, outcome);
    std::fwrite(text.data(), 1, text.size(), stdout);
    const bool reported = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    if (!outcome.converted) {
        const int status = refuse(model, outcome.reason);
        return outcome.strict ? kLossy : status;
    }
    return reported ? kGood : refuse(model, "converted, but the report cannot be written");
}

}  // namespace

int main(int argc, char **argv) {
    CLI::App app("Converts a model into a scene file, animations and textures of the engine",
                 "keltra-convert");
    Arguments arguments;
    describe(app, arguments);
    try {
        app.parse(argc, argv);
        if (arguments.folder.empty() && !arguments.dryRun) throw CLI::RequiredError("--output");
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? kGood : kUsage;
    }
    arguments.options.budget = budgetOf(arguments.budget);
    if (arguments.options.name.empty()) arguments.options.name = fileStem(arguments.options.model);
    try {
        return report(arguments, convert(arguments));
    } catch (const std::exception &error) {
        return refuse(arguments.options.model, error.what());
    }
}

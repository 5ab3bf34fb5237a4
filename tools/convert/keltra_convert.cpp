// SPDX-License-Identifier: Zlib
// keltra-convert MODEL -o DIR: converts a model into the engine's files.

#include "formats/limits.h"
#include "tools/convert/convert.h"
#include "tools/convert/depfile.h"
#include "tools/convert/isolated.h"
#include "tools/convert/many.h"
#include "tools/convert/names.h"
#include "tools/convert/output_folder.h"
#include "tools/convert/plain_text.h"
#include "tools/convert/report_json.h"
#include "tools/convert/report_text.h"
#include "tools/convert/setup_code.h"
#include "tools/formats/version.h"

#include <CLI/CLI.hpp>

#include <unistd.h>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <map>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

using namespace keltra::convert;

constexpr int kGood = 0, kRefused = 1, kUsage = 2, kLossy = 3;
constexpr double kLowestRate = 1.0, kHighestRate = 1000.0;
constexpr unsigned kLongestTimeout = 86400, kMostJobs = 256;
constexpr unsigned kBarWidth = 30;
constexpr auto kProgressDelay = std::chrono::seconds(1);
constexpr char kExamples[] =
    "Examples:\n"
    "  keltra-convert hero.fbx -o data\n"
    "  keltra-convert hero.glb -o data --name hero --fps 15 --max-texture 128\n"
    "  keltra-convert hero.fbx walk.fbx run.fbx -o data\n"
    "  keltra-convert hall.obj -o data --scale 0.01\n"
    "  keltra-convert panel.png --texture -o data\n"
    "  keltra-convert --each models/*.glb -o data\n"
    "  keltra-convert hero.fbx --dry-run --json";

struct Arguments {
    Options options;
    std::vector<std::string> models;
    std::string folder, depfile, setup, budget = "default";
    unsigned seconds = 300, jobs = std::max(std::thread::hardware_concurrency(), 1u);
    bool each = false, texture = false, dryRun = false, json = false, quiet = false;
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

std::string checkShare(const std::string &text) {
    double value = 0.0;
    return numberOf(text, value) && value >= 0.0 && value <= 1.0 ? "" : "must be a number from 0 to 1";
}

std::string checkBudgetText(const std::string &text) {
    try {
        budgetOf(text);
        return "";
    } catch (const std::invalid_argument &error) {
        return error.what();
    }
}

std::string checkJobs(const std::string &text) {
    unsigned jobs = 0;
    if (CLI::detail::lexical_cast(text, jobs) && jobs > 0 && jobs <= kMostJobs) return "";
    return "must be a whole number from 1 to " + std::to_string(kMostJobs);
}

std::string checkNotEmpty(const std::string &text) { return text.empty() ? "must not be empty" : ""; }

CLI::Option *checked(CLI::Option *option, std::string (*rule)(const std::string &)) {
    return option->check(CLI::Validator(rule, ""));
}

void describeReductions(CLI::App &app, Arguments &arguments, CLI::Option *texture) {
    Options &options = arguments.options;
    const std::map<std::string, BackSides> sides = {
        {"open", BackSides::kOpen}, {"all", BackSides::kAll}, {"none", BackSides::kNone}};
    app.add_option("--two-sided", options.backSides,
                   "Back sides of which two-sided meshes are drawn: open, all, none")
        ->transform(CLI::CheckedTransformer(sides))
        ->default_str("open")
        ->excludes(texture);
    checked(app.add_option("--simplify", options.simplify, "Share of the triangles to keep, or how many"),
            checkSimplify)
        ->excludes(texture);
    checked(app.add_option("--budget", arguments.budget,
                           "default, none, or triangles=5000,vertices=5000,bones=40,textures=2M,clips=1M"),
            checkBudgetText)
        ->capture_default_str();
    app.add_flag("--atlas", options.atlas,
                 "Pictures share textures, and meshes that then look alike are joined")
        ->excludes(texture);
    CLI::Option *fit =
        app.add_flag("--fit", options.fit, "Reduce triangles, pictures and clips to the budget");
    checked(app.add_option("--clip-error", options.clipError,
                           "How far --fit may move a point of a clip: a share of the model's size"),
            checkShare)
        ->capture_default_str()
        ->needs(fit);
}

void describeReports(CLI::App &app, Arguments &arguments) {
    checked(
        app.add_option("--depfile", arguments.depfile, "Write the files that were read, as a rule of make"),
        checkNotEmpty);
    checked(
        app.add_option("--setup", arguments.setup,
                       "Write C++ for what scene files have no place for: ids, helpers, reaches, filters"),
        checkNotEmpty);
    app.add_flag("--strict", arguments.options.strict,
                 "Fail, and write nothing, if anything is dropped, changed or missing");
    app.add_flag("--dry-run", arguments.dryRun, "Report what would be written, and write nothing")
        ->excludes("--depfile")
        ->excludes("--setup");
    CLI::Option *json = app.add_flag("--json", arguments.json, "Report as one JSON document");
    app.add_flag("--quiet", arguments.quiet, "Report warnings only")->excludes(json);
}

void describeMany(CLI::App &app, Arguments &arguments) {
    CLI::Option *each =
        app.add_flag("--each", arguments.each, "Convert each of many MODELs on its own, into one folder");
    each->excludes("--name")->excludes("--depfile")->excludes("--setup");
    checked(app.add_option("--jobs", arguments.jobs, "How many at a time; default: as many as processors"),
            checkJobs)
        ->needs(each);
}

void describe(CLI::App &app, Arguments &arguments) {
    Options &options = arguments.options;
    checked(app.add_option(
                "MODEL", arguments.models,
                "Model: FBX, glTF, Collada, OBJ, X, ...; files after it have animations for its skeleton"),
            checkNotEmpty)
        ->required();
    checked(app.add_option("-o,--output", arguments.folder, "Output folder; created if missing"),
            checkNotEmpty);
    checked(app.add_option("--name", options.name, "Prefix of the files' names; default: the model's name"),
            checkName);
    CLI::Option *texture =
        app.add_flag("--texture", arguments.texture, "MODEL is a picture; it becomes the texture NAME.tga");
    checked(app.add_option("--fps", options.fps, "Frames per second of animations, 1 to 1000"), checkRate)
        ->capture_default_str()
        ->excludes(texture);
    checked(app.add_option("--max-texture", options.maxTexture, "Longest side of textures, a power of two"),
            checkTexture)
        ->capture_default_str();
    app.add_option("--textures", options.folders,
                   "Folder with pictures and other files of the model; may be repeated")
        ->check(CLI::ExistingDirectory)
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
    app.add_flag("--normal-maps", options.normalMaps, "Also write normal maps, for devices with shaders")
        ->excludes(texture);
    checked(app.add_option("--scale", options.scale,
                           "Factor for lengths in metres; default: what the range needs"),
            checkScale)
        ->excludes(texture);
    app.add_option("--frame", options.frame, "Key frame of an MD2 or MD3 model, from 0")
        ->check(CLI::Range(0, 65535))
        ->excludes(texture);
    app.add_option("--up", options.up, "The model's axis that points upward; default: as its format says")
        ->transform(CLI::CheckedTransformer(std::map<std::string, char>{{"X", 'X'}, {"Y", 'Y'}, {"Z", 'Z'}},
                                            CLI::ignore_case))
        ->excludes(texture);
    describeReductions(app, arguments, texture);
    checked(app.add_option("--timeout", arguments.seconds, "Stop after that many seconds"), checkTimeout)
        ->capture_default_str();
    describeReports(app, arguments);
    describeMany(app, arguments);
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

Outcome convertTo(const std::string &folder, const Arguments &arguments, const Progress &progress) {
    return convertIsolated(arguments.texture ? convertPicture : convertModel, arguments.options, folder,
                           progress, arguments.seconds);
}

Outcome convertWith(const Arguments &arguments, const Progress &progress) {
    const HeldSignals held;  // an interrupt acts after the folder and the terminal are cleaned up
    if (arguments.dryRun) return convertTo("", arguments, progress);
    try {
        OutputFolder folder(arguments.folder);
        Outcome outcome = convertTo(arguments.folder, arguments, progress);
        if (outcome.converted) folder.keep();
        return outcome;
    } catch (const Refusal &refusal) {
        Outcome outcome;
        outcome.reason = refusal.what();
        return outcome;
    }
}

Outcome convertQuietly(const Arguments &arguments) {
    return convertWith(arguments, [](const char *, double) {});
}

Outcome convert(const Arguments &arguments) {
    ProgressLine line;
    return convertWith(arguments, [&line](const char *what, double done) { line.show(what, done); });
}

int refuse(const std::string &model, const std::string &reason) {
    std::fprintf(stderr, "keltra-convert: %s: %s\n", printable(model).c_str(), printable(reason).c_str());
    return kRefused;
}

// Warnings, and what the last line of the whole report counts.
std::string quietText(const std::string &owner, const Outcome &outcome) {
    std::string text;
    for (const std::string &warning : outcome.report.warnings)
        text += "warning: " + owner + printable(warning) + "\n";
    const Tally tally = outcome.report.tally();
    return tally.any() ? text + "warning: " + owner + countsOf(tally) + "\n" : text;
}

// Prints what a model has become. False if that cannot be printed.
bool print(const Arguments &arguments, const std::string &model, const Outcome &outcome) {
    const std::string folder = arguments.dryRun ? "" : arguments.folder;
    std::string text;
    if (arguments.json)
        text = (arguments.each ? documentLineOf : documentOf)(model, folder, outcome);
    else if (outcome.converted || outcome.strict)
        text = arguments.quiet ? quietText(arguments.each ? printable(model) + ": " : "", outcome)
                               : textOf(model, folder, outcome);
    std::fwrite(text.data(), 1, text.size(), stdout);
    return std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
}

int report(const Arguments &arguments, const Outcome &outcome) {
    const std::string &model = arguments.options.model;
    const bool reported = print(arguments, model, outcome);
    if (!outcome.converted) {
        const int status = refuse(model, outcome.reason);
        return outcome.strict ? kLossy : status;
    }
    if (!arguments.depfile.empty()) writeDependencies(arguments.depfile, arguments.folder, outcome);
    if (!arguments.setup.empty())
        writeTextFile(arguments.setup, setupHeader(arguments.options.name, outcome.report));
    return reported ? kGood : refuse(model, "converted, but the report cannot be written");
}

// A bar on the terminal; nothing elsewhere. The destructor clears it.
class ProgressBar {
   public:
    explicit ProgressBar(std::size_t count) : shows(::isatty(STDERR_FILENO) == 1), count(count) {}
    ~ProgressBar() { clear(); }
    ProgressBar(const ProgressBar &) = delete;
    ProgressBar &operator=(const ProgressBar &) = delete;

    void show(std::size_t done) {
        if (shows) std::fprintf(stderr, "\r%s\x1b[K", progressBar(done, count, kBarWidth).c_str());
    }
    void clear() {
        if (shows) std::fputs("\r\x1b[K", stderr);
    }

   private:
    const bool shows;
    const std::size_t count;
};

// The model whose files would have the same names as those of one before it; empty for none.
std::string sameName(const std::vector<std::string> &models) {
    Names names(kLongestName, false);
    for (const std::string &model : models)
        if (names.take(fileStem(model), "") != fileStem(model)) return model;
    return "";
}

int convertEach(const Arguments &arguments) {
    const HeldSignals held;  // as in convertWith
    ManyTotals totals;
    ProgressBar bar(arguments.models.size());
    bool reported = true;
    const auto convertOne = [&](std::size_t index) {
        Arguments one = arguments;
        one.options.model = arguments.models[index];
        one.options.name = fileStem(one.options.model);
        return convertQuietly(one);
    };
    const auto done = [&](std::size_t index, const Outcome &outcome) {
        const std::string &model = arguments.models[index];
        bar.clear();
        reported = print(arguments, model, outcome) && reported;
        if (!outcome.converted) refuse(model, outcome.reason);
        totals.add(outcome);
    };
    const auto convertAll = [&] {
        convertMany(arguments.models.size(), arguments.jobs, convertOne, done,
                    [&bar](std::size_t finished) { bar.show(finished); });
    };
    if (arguments.dryRun) {
        convertAll();
    } else {
        OutputFolder folder(
            arguments.folder);  // before the processes, which would make and remove it in turn
        convertAll();
        if (totals.converted > 0) folder.keep();
    }
    bar.clear();
    if (!arguments.json && (!arguments.quiet || totals.tally.any()))
        reported = std::printf("%s%s\n", arguments.quiet ? "warning: " : "", totalsOf(totals).c_str()) > 0 &&
                   std::fflush(stdout) == 0 && reported;
    if (totals.refused > 0 || !reported) return kRefused;
    return totals.lossy > 0 ? kLossy : kGood;
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
        if (arguments.texture && !arguments.each && arguments.models.size() > 1)
            throw CLI::ExtrasError({arguments.models[1]});
        const std::string same = arguments.each ? sameName(arguments.models) : "";
        if (!same.empty())
            throw CLI::ValidationError(same,
                                       "another model has the same name; convert it into another folder");
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? kGood : kUsage;
    }
    arguments.options.model = arguments.models[0];
    if (!arguments.each) arguments.options.clips.assign(arguments.models.begin() + 1, arguments.models.end());
    arguments.options.budget = budgetOf(arguments.budget);
    arguments.options.setup = !arguments.setup.empty();
    if (arguments.options.name.empty()) arguments.options.name = fileStem(arguments.options.model);
    try {
        return arguments.each ? convertEach(arguments) : report(arguments, convert(arguments));
    } catch (const std::exception &error) {
        return refuse(arguments.each ? arguments.folder : arguments.options.model, error.what());
    }
}

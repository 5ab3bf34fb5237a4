// keltra-samples OUTDIR: writes the sample scene, the sample character, their textures, and those of the
// interface.

#include <CLI/CLI.hpp>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "tools/samples/figure.h"
#include "tools/samples/film.h"
#include "tools/samples/interface.h"
#include "tools/samples/particles.h"

namespace {

namespace fs = std::filesystem;

// Writes beside the target and renames, so that a reader sees the old file or
// the whole new one.
bool writeFile(const fs::path &path, const std::vector<uint8_t> &bytes) {
    fs::path aside = path;
    aside += ".part";
    {
        std::ofstream out(aside, std::ios::binary | std::ios::trunc);
        out.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        out.flush();
        if (!out) {
            return false;
        }
    }
    std::error_code error;
    fs::rename(aside, path, error);
    return !error;
}

bool writeAll(const fs::path &folder, const std::vector<keltra::samples::SampleFile> &files) {
    for (const keltra::samples::SampleFile &file : files) {
        const fs::path path = folder / file.name;
        if (!writeFile(path, file.bytes)) {
            std::fprintf(stderr, "keltra-samples: cannot write %s\n", path.c_str());
            return false;
        }
        std::printf("%s (%zu bytes)\n", path.c_str(), file.bytes.size());
    }
    return true;
}

}  // namespace

int main(int argc, char **argv) {
    CLI::App app("Writes the sample scene, the sample character, and their textures", "keltra-samples");
    std::string folder;
    app.add_option("OUTDIR", folder, "Folder to write to; made when missing")->required();
    CLI11_PARSE(app, argc, argv);

    std::error_code error;
    fs::create_directories(folder, error);
    if (error) {
        std::fprintf(stderr, "keltra-samples: cannot make %s: %s\n", folder.c_str(), error.message().c_str());
        return 1;
    }
    const bool written = writeAll(folder, keltra::samples::makeSampleFiles()) &&
                         writeAll(folder, keltra::samples::makeFigureFiles()) &&
                         writeAll(folder, keltra::samples::makeInterfaceFiles()) &&
                         writeAll(folder, keltra::samples::makeFilmFiles()) &&
                         writeAll(folder, keltra::samples::makeParticleFiles());
    return written ? 0 : 1;
}

// SPDX-License-Identifier: Zlib
// Inter-Quake Models, which the converter reads itself: what converts is a scene and animations that the
// checker and the engine accept.

#include "tools/convert/convert.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "fuzz/harness.h"
#include "tools/convert/iqm.h"

using namespace keltra::fuzz;
namespace convert = keltra::convert;

namespace {

// A folder of its own: the converter looks for pictures beside the model.
struct Folder {
    std::filesystem::path path = "/dev/shm/keltra-fuzz-" + std::to_string(getpid());

    Folder() { std::filesystem::create_directories(path); }
    ~Folder() { std::filesystem::remove_all(path); }
};

void load(const convert::OutputFile &file) {
    const char *const path = fileOf(file.bytes.data(), file.bytes.size());
    if (std::filesystem::path(file.name).extension() == ".kte") {
        KTNODE *root = KELTRA::load(path);
        require(root, "the engine loads the scene that was converted");
        draw(root, nullptr);
    } else if (std::filesystem::path(file.name).extension() == ".kta") {
        require((new KTANIM)->load(path), "the engine loads the animation that was converted");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const Folder folder;
    convert::Options options;
    options.model = folder.path / "model.iqm";
    options.name = "model";
    std::ofstream(options.model, std::ios::binary)
        .write(reinterpret_cast<const char *>(data), static_cast<std::streamsize>(size));
    if (!convert::isIqm(options.model)) return 0;  // what follows is not of this project
    if (size % 8 == 1) options.clips = {options.model};
    options.frame = size % 3;
    begin();
    try {
        for (const convert::OutputFile &file :
             convert::convertModel(options, [](const char *, double) {}).files)
            load(file);
    } catch (const convert::Refusal &refusal) {
        require(*refusal.what(), "a reason for a refusal");
    }
    finish(size);
    return 0;
}

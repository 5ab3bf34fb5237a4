// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_EXAMPLE_DATA_H
#define KELTRA_TESTS_TOOLS_EXAMPLE_DATA_H

// The files of the examples, as keltra-convert made them of examples/assets.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/temp_file.h"
#include "tools/formats/kta_reader.h"
#include "tools/formats/kte_reader.h"

namespace keltra::test {

struct ExampleFile {
    std::string name;
    std::vector<std::uint8_t> bytes;
};

/// All whose name begins and ends so, in the order of their names.
inline std::vector<ExampleFile> exampleFiles(const std::string &beginning, const std::string &ending) {
    std::vector<ExampleFile> files;
    for (const auto &entry : std::filesystem::directory_iterator(KELTRA_EXAMPLE_DATA)) {
        const std::string name = entry.path().filename().string();
        if (name.size() < ending.size() || name.compare(0, beginning.size(), beginning) != 0 ||
            name.compare(name.size() - ending.size(), ending.size(), ending) != 0)
            continue;
        files.push_back({name, readFile(entry.path().string())});
    }
    std::sort(files.begin(), files.end(),
              [](const ExampleFile &a, const ExampleFile &b) { return a.name < b.name; });
    return files;
}

inline formats::Scene exampleScene(const std::string &name) {
    const auto file = formats::readKte(readFile(KELTRA_EXAMPLE_DATA + name));
    EXPECT_TRUE(file) << name;
    return file ? file->scene : formats::Scene();
}

inline formats::Animation exampleAnimation(const std::string &name) {
    const auto animation = formats::readKta(readFile(KELTRA_EXAMPLE_DATA + name));
    EXPECT_TRUE(animation) << name;
    return animation.value_or(formats::Animation());
}

inline void visit(const formats::Node &node, const std::function<void(const formats::Node &)> &each) {
    each(node);
    for (const formats::Node &child : node.children) visit(child, each);
}

}  // namespace keltra::test

#endif

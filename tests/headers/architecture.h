// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_ARCHITECTURE_H
#define KELTRA_TESTS_ARCHITECTURE_H

// The picture of docs/architecture.md, drawn from the includes, and the walks that the page describes.

#include <string>
#include <vector>

#include "tests/headers/include_graph.h"

namespace keltra::test {

/// A numbered list of the page: the sources that each step names.
struct Walk {
    std::string title;
    std::vector<std::vector<std::string>> steps;
};

/// The walks of a page, one for each heading with a numbered list below it.
std::vector<Walk> readWalks(const std::string &page);

/// The faults of a walk, each as a line of text: a source that does not exist, a step through several rooms
/// or through none, a step that does not go down.
std::vector<std::string> faultsOf(const Walk &walk, const IncludeGraph &graph);

/// The rooms of the library as an SVG picture, the highest on top, with the sources in each, an arrow for
/// each room that another includes, and the walks down through them.
std::string drawHouse(const IncludeGraph &graph, const std::vector<Walk> &walks);

}  // namespace keltra::test

#endif

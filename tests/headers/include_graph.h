// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_INCLUDE_GRAPH_H
#define KELTRA_TESTS_INCLUDE_GRAPH_H

// The includes of a checkout, and the table of rooms in its CONTRIBUTING.md that limits them.

#include <map>
#include <string>
#include <vector>

namespace keltra::test {

/// One row of the table: a folder, and the public headers of its family.
struct Room {
    std::string name;
    std::vector<std::string> headers;
};

struct Include {
    std::string from, to;  // paths from the top of the checkout
    int line;
};

class IncludeGraph {
   public:
    /// Reads the table and all sources of the checkout at `folder`, hidden folders and build/ left out.
    explicit IncludeGraph(const std::string &folder);

    const std::vector<Room> &rooms() const { return table; }
    /// All sources, in the order of their paths.
    const std::vector<std::string> &files() const { return sources; }
    /// The includes between sources of the checkout.
    const std::vector<Include> &includes() const { return arrows; }

    /// Index of a file's room in the table, the lowest is 0; -1 for a file without one.
    int roomOf(const std::string &file) const;
    /// The unit of a file: a source, its own header and its public header are one, "scene/node".
    std::string unitOf(const std::string &file) const;

    // The faults, each as a line of text.

    std::vector<std::string> faultsOfTheTable() const;
    std::vector<std::string> filesWithoutRoom() const;
    std::vector<std::string> unknownIncludes() const { return unknown; }
    /// Includes that stand below one that belongs after them. A preprocessor condition starts a new list.
    std::vector<std::string> misplacedIncludes() const { return misplaced; }
    std::vector<std::string> upwardIncludes() const;
    /// One line for each set of units that include one another in a circle.
    std::vector<std::string> circles() const;

   private:
    void readTable(const std::string &path);
    void readSources(const std::string &folder);
    void readIncludes(const std::string &folder, const std::string &file);
    std::string resolve(const std::string &from, const std::string &name) const;
    int rankOf(const std::string &from, const std::string &name, const std::string &target,
               bool isFirst) const;
    std::map<std::string, std::map<std::string, std::string>> unitArrows() const;

    std::vector<Room> table;
    std::vector<std::string> sources;
    std::vector<Include> arrows;
    std::vector<std::string> unknown, misplaced;
};

}  // namespace keltra::test

#endif

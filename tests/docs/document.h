// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_DOCUMENT_H
#define KELTRA_TESTS_DOCUMENT_H

// The documents for the tests: lines, tables, prose. Paths are relative to the project's folder.

#include <filesystem>
#include <string>
#include <vector>

namespace keltra::test {

struct Block {
    std::string language;
    std::size_t line;  // of its first line, counted from 1
    std::vector<std::string> lines;
};

struct Document {
    std::string path;
    std::vector<std::string> prose;  // all lines, empty in the place of blocks
    std::vector<Block> blocks;

    std::string name(std::size_t index) const { return path + ":" + std::to_string(index + 1); }
    /// The prose as one line, blanks and line ends being the same.
    std::string text() const;
    /// The rows of the first table below the heading, without its head; cells without blanks around them.
    std::vector<std::vector<std::string>> table(const std::string &heading) const;
    /// The headings as links name them: "## What is refused" is "what-is-refused".
    std::vector<std::string> anchors() const;
};

std::filesystem::path projectFolder();
Document readDocument(const std::string &path);
/// README, CONTRIBUTING, CHANGELOG and all of docs/.
std::vector<Document> allDocuments();
/// The parts of a text between backquotes.
std::vector<std::string> quoted(const std::string &text);
/// 65535 is "65,535"; numbers below 10,000 need no comma.
std::string grouped(unsigned long long number);

}  // namespace keltra::test

#endif

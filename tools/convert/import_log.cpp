// SPDX-License-Identifier: Zlib
#include "tools/convert/import_log.h"

#include "tools/convert/names.h"

#include <assimp/DefaultLogger.hpp>
#include <assimp/LogStream.hpp>

#include <algorithm>

namespace keltra::convert {
namespace {

constexpr std::size_t kMostLines = 20;

// Messages about what is not lost: fields of other versions of a format, defaults, and repaired data.
const char *const kHarmless[] = {
    "BlendDNA: Did not find a field",
    "<add reason>",
    "newer format version",
    "no material assigned to mesh",
    "failed to locate material",
    "No object detected",
    "No material specified for subgroup",
    "No hierarchy information",
    "ignoring additional tangent",
    "ignoring additional binormal",
    "ThumbNailHdr",
    "Ignored file of un",  // of a 3MF archive, its own parts among them
    "shading mode not recognized",
    "ScenePreprocessor",
    "UV index mismatch",
    "mesh is empty or invalid",
    "aterial file",  // ModelFiles says which is missing
};

bool isHarmless(const std::string &text) {
    return std::any_of(std::begin(kHarmless), std::end(kHarmless),
                       [&](const char *part) { return text.find(part) != std::string::npos; });
}

// "Warn,  T0: text\n" without what is before the text.
std::string textOf(const std::string &message) {
    const std::size_t colon = message.find(": ");
    std::string text = cleanText(colon == std::string::npos ? message : message.substr(colon + 2));
    while (!text.empty() && (text.back() == '_' || text.back() == ' ' || text.back() == '.')) text.pop_back();
    return text;
}

}  // namespace

class ImportLog::Stream : public Assimp::LogStream {
   public:
    explicit Stream(ImportLog &log) : log(log) {}
    void write(const char *message) override { log.add(message); }

   private:
    ImportLog &log;
};

ImportLog::ImportLog() {
    Assimp::DefaultLogger::create("", Assimp::Logger::NORMAL, 0);
    // The logger deletes it.
    Assimp::DefaultLogger::get()->attachStream(new Stream(*this), Assimp::Logger::Warn | Assimp::Logger::Err);
}

ImportLog::~ImportLog() { Assimp::DefaultLogger::kill(); }

void ImportLog::add(const std::string &message) {
    const std::string text = textOf(message);
    if (text.empty() || isHarmless(text)) return;
    const auto known =
        std::find_if(lines.begin(), lines.end(), [&](const Line &line) { return line.text == text; });
    if (known != lines.end())
        ++known->count;
    else if (lines.size() < kMostLines)
        lines.push_back({text, 1});
    else
        ++further;
}

void ImportLog::tell(Report &report) const {
    for (const Line &line : lines) report.drop("skipped by the importer", line.count, line.text);
    report.drop("skipped by the importer", further, "further messages");
}

}  // namespace keltra::convert

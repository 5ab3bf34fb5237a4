// SPDX-License-Identifier: Zlib
#include <benchmark/benchmark.h>
#include <keltra/engine.h>
#include <keltra/font.h>
#include <keltra/node.h>
#include <tinyxml.h>

#include <string>

#include "formats/xml_document.h"
#include "tests/support/temp_file.h"

namespace {

constexpr unsigned kWidgets = 100;

std::string describe() {
    std::string text = "<root><font><name value=\"f\"/></font>";
    for (unsigned i = 0; i < kWidgets; ++i) {
        const char *kinds[] = {"button", "label", "box", "text"};
        const std::string kind = kinds[i % 4], number = std::to_string(i);
        text += "<" + kind + "><name value=\"w" + number + "\"/><title value=\"caption " + number +
                "\"/><position x=\"" + number + "\" y=\"" + number +
                "\"/><size width=\"80\" height=\"24\"/><color r=\"0.5\" g=\"0.25\" b=\"1\" a=\"0.9\"/>" +
                "<usefont ref=\"f\"/><write value=\"some text\"/></" + kind + ">";
    }
    return text + "</root>";
}

class Description {
   public:
    Description() : text(describe()), path(folder.write("gui.xml", text)) {}

    keltra::test::TempFolder folder;
    std::string text, path;
};

void report(benchmark::State &state, const Description &description) {
    state.SetItemsProcessed(state.iterations() * kWidgets);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(description.text.size()));
}

// The share of the parser in a load.
void parseInterface(benchmark::State &state) {
    const Description description;
    for (auto _ : state) {
        TiXmlDocument document;
        if (!keltra::loadXmlDocument(description.path.c_str(), document))
            return state.SkipWithError("no document");
    }
    report(state, description);
}
BENCHMARK(parseInterface);

void loadInterface(benchmark::State &state) {
    const Description description;
    KTNODE *root = KELTRA::loadXML(description.path.c_str());
    if (!root || root->getNumberOfChildren() != kWidgets) return state.SkipWithError("no interface");
    for (auto _ : state) {
        state.PauseTiming();
        KTFONT::cleanUp();
        KTNODE::cleanUp();
        state.ResumeTiming();
        benchmark::DoNotOptimize(KELTRA::loadXML(description.path.c_str()));
    }
    report(state, description);
    KTFONT::cleanUp();
    KTNODE::cleanUp();
}
BENCHMARK(loadInterface);

}  // namespace

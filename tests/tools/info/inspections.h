// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_TOOLS_INFO_INSPECTIONS_H
#define KELTRA_TESTS_TOOLS_INFO_INSPECTIONS_H

#include <cstdint>
#include <string>
#include <vector>

#include "tools/formats/kte_writer.h"
#include "tools/info/inspect.h"

namespace keltra::test {

inline info::Inspection inspectBytes(info::FileKind kind, const std::vector<std::uint8_t> &bytes,
                                     const std::string &folder = "") {
    return info::inspect(kind, bytes.data(), bytes.size(), folder);
}

inline info::Inspection inspectScene(const formats::Scene &scene, const std::string &folder = "") {
    return inspectBytes(info::FileKind::kScene, formats::writeKte(scene, formats::KteVersion::k16a), folder);
}

}  // namespace keltra::test

#endif

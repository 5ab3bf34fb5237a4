// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_LOSSES_H
#define KELTRA_CONVERT_LOSSES_H

// Reports what a model has and the engine's files have no place for.

#include "tools/convert/options.h"
#include "tools/convert/report.h"

struct aiLight;
struct aiScene;

namespace keltra::convert {

void reportLosses(const aiScene &scene, const Options &options, Report &report);

// Whether its importer gives no attenuation of its own.
bool isUnattenuated(const aiLight &light);

}  // namespace keltra::convert

#endif

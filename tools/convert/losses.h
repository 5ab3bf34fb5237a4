// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_LOSSES_H
#define KELTRA_CONVERT_LOSSES_H

// Reports what a model has and the engine's files have no place for.

#include "tools/convert/report.h"

struct aiScene;

namespace keltra::convert {

void reportLosses(const aiScene &scene, Report &report);

}  // namespace keltra::convert

#endif

// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_KEY_FRAMES_H
#define KELTRA_CONVERT_KEY_FRAMES_H

#include "tools/convert/options.h"
#include "tools/convert/report.h"

namespace keltra::convert {

// MD2 and MD3 files move by key frames that hold all vertices, which no skeleton can show: one of them is
// converted. Reports the others, with their names. Throws Refusal when the file has not the one that is asked
// for.
void reportKeyFrames(const Options &options, Report &report);

}  // namespace keltra::convert

#endif

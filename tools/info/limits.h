// SPDX-License-Identifier: Zlib
#ifndef KELTRA_INFO_LIMITS_H
#define KELTRA_INFO_LIMITS_H

#include <string>

namespace keltra::info {

// One JSON object: what the engine and its files can hold, and in "budget" what the converter lets a model
// take before it warns. Modelling programs read it.
std::string limitsText();

}  // namespace keltra::info

#endif

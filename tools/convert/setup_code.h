// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_SETUP_CODE_H
#define KELTRA_CONVERT_SETUP_CODE_H

// What a model says and scene files have no place for, as C++ that an application includes.

#include "tools/convert/report.h"

#include <string>

namespace keltra::convert {

// A call for the node, light or texture of that name; a light's and a helper's stand in the same units as the
// scene.
SetupCall auxIdCall(const std::string &node, std::uint32_t id);
SetupCall attenuationCall(const std::string &light, double constant, double linear, double quadratic);
// At that distance a sixteenth of the light is left.
SetupCall reachCall(const std::string &light, double reach);
SetupCall filterCall(const std::string &texture, bool linear, bool mipmapped, bool clamped);
SetupCall helperCall(const std::string &node, const double (&low)[3], const double (&high)[3],
                     std::uint32_t id);

// A header with one function, `setup_NAME(KTNODE *root)`, which makes all of the calls.
std::string setupHeader(const std::string &name, const Report &report);

}  // namespace keltra::convert

#endif

// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_SUPPORT_SHAPES_H
#define KELTRA_TESTS_SUPPORT_SHAPES_H

// Complete mesh nodes. Triangles are counter-clockwise seen from outside, with normals of their own.

#include <string>

#include "tools/formats/kte_writer.h"

namespace keltra::test {

/// A cube around the origin, the whole texture on each side.
formats::Node boxNode(const std::string &name, const std::string &material, float half = 1.0f);

/// An upright square around the origin that faces +z, with the whole texture.
formats::Node boardNode(const std::string &name, const std::string &material, float half);

/// A cone of five flat sides from a ring about the origin to `tip`, open below.
formats::Node spikeNode(const std::string &name, const std::string &material, formats::Vec3 tip,
                        float radius);

}  // namespace keltra::test

#endif

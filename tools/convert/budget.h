// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_BUDGET_H
#define KELTRA_CONVERT_BUDGET_H

// What a model may cost on the device.

#include <cstdint>
#include <string>

namespace keltra::convert {

struct Report;

constexpr unsigned kMaxInfluences = 4;  // of a vertex; each one more costs as much per frame as the first

// 0 is no limit. The defaults are for one model among others on a processor without a floating-point unit:
// a skinned vertex takes about 400 instructions a frame and a bone of a skin 3,000, so that 5,000 and 40 of
// them leave more than half of a frame; mipmapped textures are charged four times, which makes 2 MiB all of
// the engine's 8.
struct Budget {
    std::uint64_t triangles = 5000, vertices = 5000;
    std::uint64_t bones = 40;           // of one mesh
    std::uint64_t textures = 2u << 20;  // bytes, four per pixel
    std::uint64_t clips = 1u << 20;     // bytes of all animation files
};

// "default", "none", or limits that replace the default ones, such as "triangles=800,textures=512K". Throws
// std::invalid_argument with the reason.
Budget budgetOf(const std::string &text);

// Warns of what exceeds the budget.
void checkBudget(const Budget &budget, Report &report);

}  // namespace keltra::convert

#endif

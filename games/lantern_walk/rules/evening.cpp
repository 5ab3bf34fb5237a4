// SPDX-License-Identifier: Zlib
#include "games/lantern_walk/rules/evening.h"

#include <cmath>

namespace lantern_walk {
namespace {

constexpr Evening kEvening[kEvenings] = {
    {110.0f,
     6,
     1,
     40.0f,
     {0.0f, 8.6f},
     {{-3.4f, 4.4f}, {1.6f, 2.6f}, {-4.6f, -3.0f}, {4.4f, -6.4f}, {-2.6f, -8.6f}, {3.0f, -11.6f}}},
    {140.0f,
     8,
     2,
     30.0f,
     {0.0f, 8.6f},
     {{3.0f, 5.6f},
      {-4.4f, 2.6f},
      {7.2f, 1.6f},
      {-1.2f, -2.4f},
      {-7.0f, -5.2f},
      {4.3f, -8.6f},
      {-2.4f, -10.8f},
      {6.4f, -11.8f}}},
    {170.0f,
     10,
     3,
     24.0f,
     {0.0f, 8.6f},
     {{-4.0f, 6.0f},
      {2.4f, 4.2f},
      {7.0f, 7.8f},
      {-7.4f, 1.0f},
      {0.8f, -0.4f},
      {-3.4f, -4.4f},
      {7.6f, -4.2f},
      {-7.2f, -9.4f},
      {3.2f, -8.8f},
      {-1.9f, -12.2f}}},
};

constexpr Obstacle kObstacle[kObstacles] = {
    {kWell, kWellRadius},  {{-5.6f, 8.4f}, 1.0f},   {{6.8f, 5.2f}, 1.2f},  {{-7.6f, -2.2f}, 1.4f},
    {{8.0f, -6.4f}, 1.1f}, {{-4.4f, -11.2f}, 1.1f}, {{2.9f, -6.6f}, 0.8f},
};

}  // namespace

const Evening &getEvening(int number) {
    return kEvening[number < 0 ? 0 : number >= kEvenings ? kEvenings - 1 : number];
}

const Obstacle &getObstacle(int index) { return kObstacle[index]; }

float distance(Place one, Place other) {
    const float x = one.x - other.x, z = one.z - other.z;
    return std::sqrt(x * x + z * z);
}

}  // namespace lantern_walk

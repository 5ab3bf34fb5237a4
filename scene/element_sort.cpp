// SPDX-License-Identifier: Zlib
#include <keltra/element.h>
#include <keltra/light.h>

#include "math/fixed.h"
#include "math/float_bits.h"
#include "math/soft_arm.h"
#include "math/square_root.h"
#include "resources/transparency.h"
#include "scene/element_radius.h"
#include "scene/light_order.h"
#include "scene/node_class.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <typeinfo>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

constexpr std::int32_t kInfinityBits = 0x7f800000;

enum Rank : unsigned char { kLight, kOpaque, kTransparent, kRanks };

// By the transparency value, while KTELEMENT::append counts by KTMATERIAL::isTransparent: two separate tests.
// When they disagree, the back-to-front sort covers as many entries as were counted. Deliberate: applications
// rely on the drawing order.
Rank rankOf(const KTNODE *node) {
    if (!node) return kOpaque;
    if (node->type == KT_LIGHT) return kLight;
    if (node->type == KT_EMITTER || node->type == KT_HELPER) return kTransparent;
    const KTMESH *mesh = keltra::asTyped<KTMESH>(node);
    return mesh && keltra::isTransparent(mesh->material) ? kTransparent : kOpaque;
}

// Maps floats to integers in the same order: a total order whatever the data, and integer comparisons on a
// machine without a floating-point unit. What is not a number comes last, whatever its sign, which each
// machine's arithmetic sets in its own way.
std::int32_t orderKey(float value) {
    std::int32_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    if ((bits & 0x7fffffff) > kInfinityBits) return std::numeric_limits<std::int32_t>::max();
    return bits < 0 ? bits ^ 0x7fffffff : bits;
}

std::int32_t depthKey(const KTELEMENT *entry) {
    return orderKey(entry->matrix.m[14] - keltra::boundingRadius(entry->node));
}

bool isExclusive(const KTELEMENT *entry) {
    const KTLIGHT *light = keltra::asTyped<KTLIGHT>(entry->node);
    return light && light->exclusive;
}

// No distance is negative: below zero there is room for the exclusive lights, in the same order.
std::int32_t lightKey(const KTELEMENT *entry) {
    const std::int32_t key = orderKey(entry->distance);
    return isExclusive(entry) ? key + std::numeric_limits<std::int32_t>::min() : key;
}

struct Keyed {
    std::int32_t key;
    KTELEMENT *entry;

    bool isBefore(const Keyed &other) const {
        return key != other.key ? key < other.key : entry < other.entry;
    }
};

Keyed keyed[KTELEMENT::maxElements];
Rank ranks[KTELEMENT::maxElements];

float distanceBetween(const R3XMATRIX &matrix, const R3XVECTOR3D &position) {
#if defined(KELTRA_SOFT_ARM)
    if (const std::uint32_t bits = keltraSquaredDistance(matrix.m + 12, &position.x))
        return keltra::squareRoot(keltra::floatOf(bits));
#endif
    const float *place = matrix.m + 12;
    const float away[3] = {position.x - place[0], position.y - place[1], position.z - place[2]};
    return keltra::squareRoot(keltra::sumOfSquares(away));
}

// Each among those before it. Returns behind the last that it took: so many moves are made and no more.
Keyed *insertInOrder(Keyed *first, Keyed *last, unsigned int moves) {
    for (Keyed *next = first; next != last; ++next) {
        const Keyed inserted = *next;
        Keyed *at = next;
        for (; at != first && inserted.isBefore(at[-1]); --at) *at = at[-1];
        *at = inserted;
        const unsigned int moved = static_cast<unsigned int>(next - at);
        if (moved > moves) return next + 1;
        moves -= moved;
    }
    return last;
}

// Two runs, each in order, one behind the other.
void merge(const Keyed *first, const Keyed *middle, const Keyed *last, Keyed *target) {
    const Keyed *second = middle;
    if (second == last || !second->isBefore(middle[-1])) {
        std::copy(first, last, target);
        return;
    }
    while (first != middle && second != last) *target++ = second->isBefore(*first) ? *second++ : *first++;
    target = std::copy(first, middle, target);
    std::copy(second, last, target);
}

// Sorts `keyed`.
void mergeRuns(unsigned int count) {
    constexpr unsigned int kRun = 8;
    static Keyed others[KTELEMENT::maxElements];
    for (unsigned int i = 0; i < count; i += kRun)
        insertInOrder(keyed + i, keyed + std::min(i + kRun, count), kRun * kRun);
    Keyed *source = keyed, *target = others;
    for (unsigned int run = kRun; run < count; run *= 2, std::swap(source, target))
        for (unsigned int i = 0; i < count; i += 2 * run)
            merge(source + i, source + std::min(i + run, count), source + std::min(i + 2 * run, count),
                  target + i);
    if (source != keyed) std::copy(source, source + count, keyed);
}

// By keys that are computed once an entry; entries of one key by their place on the list. The order is often
// that of the frame or the mesh before, or close to it: then each entry is compared once.
template <class Key>
void sortByKey(KTELEMENT **entries, unsigned int count, Key key) {
    for (unsigned int i = 0; i < count; ++i) keyed[i] = {key(entries[i]), entries[i]};
    if (insertInOrder(keyed, keyed + count, count) != keyed + count) mergeRuns(count);
    for (unsigned int i = 0; i < count; ++i) entries[i] = keyed[i].entry;
}

// The lights' places in whole units, of which the largest coordinate has 4096 to 8191. Squared distances of
// such places tell most lights apart from the nearest four; the distances of those that are left are
// computed.
constexpr unsigned int kMostPlaces = 64;
constexpr std::uint32_t kSmallestPlace = 107, kLargestPlace = 167;  // exponents of 2^-20 and 2^40

struct Place {
    std::int32_t x, y, z;
    std::uint32_t farther;  // 0 for an exclusive light, which counts as near, otherwise all bits
    KTELEMENT *entry;
};

enum class Lights { kAllAtOnce, kNotPlaced, kPlaced };

Lights state = Lights::kAllAtOnce;
bool waiting = false;  // all but the nearest lights are not in order
Place places[kMostPlaces];
unsigned int placed = 0;
std::uint32_t largestExponent = 0;
R3XVECTOR3D lastPosition;

std::uint32_t exponentOf(float value) { return keltra::bitsOf(value) << 1 >> 24; }

// Toward zero.
std::int32_t inUnits(float value) {
    const std::uint32_t bits = keltra::bitsOf(value), shift = 19 + largestExponent - exponentOf(value);
    const auto magnitude = std::int32_t(keltra::shiftedRight(bits << 8 | keltra::kSignBit, shift));
    return std::int32_t(bits) < 0 ? -magnitude : magnitude;
}

#if defined(__SSE2__)
// The same places for four lights at a time: halves of which one instruction squares and adds two.
struct PackedPlaces {
    std::int16_t xy[kMostPlaces][2], z[kMostPlaces][2];
    std::uint32_t farther[kMostPlaces];
    std::int32_t beyond[kMostPlaces];  // of what fills up the last four: the largest square
};
alignas(16) PackedPlaces packed;

__m128i fourAt(const void *values) { return _mm_load_si128(static_cast<const __m128i *>(values)); }

void packPlaces() {
    for (unsigned int i = 0; i < (placed + 3) / 4 * 4; ++i) {
        const Place place = i < placed ? places[i] : Place();
        packed.xy[i][0] = static_cast<std::int16_t>(place.x);
        packed.xy[i][1] = static_cast<std::int16_t>(place.y);
        packed.z[i][0] = static_cast<std::int16_t>(place.z);
        packed.farther[i] = place.farther;
        packed.beyond[i] = i < placed ? 0 : std::numeric_limits<std::int32_t>::max();
    }
}
#else
void packPlaces() {}
#endif

// False for an entry that only the plain way knows how to order.
bool isPlainLight(const KTELEMENT *entry) {
    if (!entry->node) return false;
    const KTNODE &node = *entry->node;
    return typeid(node) == typeid(KTLIGHT) && node.type == KT_LIGHT;
}

bool placeLights() {
    state = Lights::kAllAtOnce;
    placed = std::min(KTELEMENT::numberOfLights, KTELEMENT::numberOfPassedElements);
    if (placed <= KTELEMENT::nearestLights || placed > kMostPlaces) return false;
    largestExponent = 0;
    for (unsigned int i = 0; i < placed; ++i) {
        KTELEMENT *entry = places[i].entry = KTELEMENT::elementPointer[i];
        if (!isPlainLight(entry)) return false;
        for (int k = 12; k < 15; ++k)
            largestExponent = std::max(largestExponent, exponentOf(entry->matrix.m[k]));
    }
    if (largestExponent < kSmallestPlace || largestExponent > kLargestPlace) return false;
    for (unsigned int i = 0; i < placed; ++i) {
        const float *place = places[i].entry->matrix.m + 12;
        places[i].x = inUnits(place[0]);
        places[i].y = inUnits(place[1]);
        places[i].z = inUnits(place[2]);
        places[i].farther = isExclusive(places[i].entry) ? 0 : ~0u;
    }
    packPlaces();
    state = Lights::kPlaced;
    return true;
}

// The squared distances in units, and the largest one that a light among the nearest four can have. Four
// lights are not farther than `fourth` there, and a place differs from the true one by less than a unit in
// each coordinate, so a distance by less than 3.5; the rounding of the distance is 1/16 at most. What is more
// than 8 units beyond the fourth is farther, and the 8 are here: d + d/128 + 8192 >= (sqrt(d) + 8)^2 - 64.
std::uint32_t limitFor(std::uint32_t fourth) { return fourth + (fourth >> 7) + 8300; }

struct FourLeast {
    std::uint32_t first = ~0u, second = ~0u, third = ~0u, fourth = ~0u;

    void take(std::uint32_t square) {
        if (square >= fourth) return;
        fourth = std::max(square, third);
        third = std::min(third, std::max(square, second));
        second = std::min(second, std::max(square, first));
        first = std::min(first, square);
    }
};

#if defined(__SSE2__)
// The fourth smallest is among the two smallest of every fourth light, but for rounding by 64, or the limit
// is a greater one.
std::uint32_t estimate(const R3XVECTOR3D &position, std::uint32_t *squares) {
    const auto half = [](float value) { return std::uint32_t(inUnits(value)) & 0xffff; };
    const __m128i xy = _mm_set1_epi32(std::int32_t(half(position.y) << 16 | half(position.x)));
    const __m128i z = _mm_set1_epi32(std::int32_t(half(position.z)));
    __m128 lowest = _mm_set1_ps(2147483648.0f), next = lowest;
    for (unsigned int i = 0; i < placed; i += 4) {
        const __m128i awayXY = _mm_sub_epi16(fourAt(packed.xy[i]), xy);
        const __m128i awayZ = _mm_sub_epi16(fourAt(packed.z[i]), z);
        __m128i square = _mm_add_epi32(_mm_madd_epi16(awayXY, awayXY), _mm_madd_epi16(awayZ, awayZ));
        square = _mm_and_si128(square, fourAt(packed.farther + i));
        square = _mm_or_si128(square, fourAt(packed.beyond + i));
        _mm_store_si128(reinterpret_cast<__m128i *>(squares + i), square);
        const __m128 length = _mm_cvtepi32_ps(square);
        next = _mm_min_ps(next, _mm_max_ps(lowest, length));
        lowest = _mm_min_ps(lowest, length);
    }
    alignas(16) std::uint32_t eight[8];
    _mm_store_si128(reinterpret_cast<__m128i *>(eight), _mm_cvtps_epi32(lowest));
    _mm_store_si128(reinterpret_cast<__m128i *>(eight + 4), _mm_cvtps_epi32(next));
    FourLeast least;
    for (const std::uint32_t square : eight) least.take(square);
    return limitFor(least.fourth);
}

// Calls `visit(i)` for the lights whose squares are within the limit, which no square of 31 bits exceeds.
template <class Visit>
void visitNear(const std::uint32_t *squares, std::uint32_t limit, Visit visit) {
    const __m128i most = _mm_set1_epi32(std::int32_t(limit));
    for (unsigned int i = 0; i < placed; i += 4) {
        const __m128i far = _mm_cmpgt_epi32(fourAt(squares + i), most);
        unsigned int near = ~unsigned(_mm_movemask_ps(_mm_castsi128_ps(far))) & 15;
        for (; near; near &= near - 1) visit(i + unsigned(__builtin_ctz(near)));
    }
}
#else
std::uint32_t estimate(const R3XVECTOR3D &position, std::uint32_t *squares) {
    const std::int32_t x = inUnits(position.x), y = inUnits(position.y), z = inUnits(position.z);
    FourLeast least;
    for (unsigned int i = 0; i < placed; ++i) {
        const std::int32_t dx = places[i].x - x, dy = places[i].y - y, dz = places[i].z - z;
        const std::uint32_t square = std::uint32_t(dx * dx + dy * dy + dz * dz) & places[i].farther;
        squares[i] = square;
        least.take(square);
    }
    return limitFor(least.fourth);
}

template <class Visit>
void visitNear(const std::uint32_t *squares, std::uint32_t limit, Visit visit) {
    for (unsigned int i = 0; i < placed; ++i)
        if (squares[i] <= limit) visit(i);
}
#endif

bool bringNearest(const R3XVECTOR3D &position) {
    if (state == Lights::kAllAtOnce || (state == Lights::kNotPlaced && !placeLights())) return false;
    // Two units more, so that no square exceeds 31 bits; also what is not a number.
    const std::uint32_t most = largestExponent + 1;
    if (exponentOf(position.x) > most || exponentOf(position.y) > most || exponentOf(position.z) > most)
        return false;
    alignas(16) std::uint32_t squares[kMostPlaces];
    const std::uint32_t limit = estimate(position, squares);
    unsigned int count = 0;
    visitNear(squares, limit, [&](unsigned int i) {
        KTELEMENT *entry = places[i].entry;
        entry->distance = distanceBetween(entry->matrix, position);
        const Keyed inserted = {lightKey(entry), entry};
        unsigned int at = count++;
        for (; at > 0 && inserted.isBefore(keyed[at - 1]); --at) keyed[at] = keyed[at - 1];
        keyed[at] = inserted;
    });
    for (unsigned int i = 0; i < KTELEMENT::nearestLights; ++i) KTELEMENT::elementPointer[i] = keyed[i].entry;
    lastPosition = position;
    waiting = true;
    return true;
}

}  // namespace

keltra::LightOrder::LightOrder() : wanted(KTELEMENT::numberOfLights > KTELEMENT::nearestLights) {}

keltra::LightOrder::~LightOrder() {
    settleLightOrder();
    state = Lights::kAllAtOnce;
}

// A class of an application's own may look at the lights, or change them.
void keltra::LightOrder::prepareFor(const KTNODE &node) {
    if (typeid(node) != typeid(KTMESH)) {
        settleLightOrder();
        state = Lights::kAllAtOnce;
    } else if (state == Lights::kAllAtOnce) {
        state = Lights::kNotPlaced;
    }
}

void keltra::sortNearestLights(const R3XVECTOR3D &position) {
    if (!bringNearest(position)) KTELEMENT::sortLights(position);
}

void keltra::settleLightOrder() {
    if (waiting) KTELEMENT::sortLights(lastPosition);
}

// Three ranks need no comparisons: they are counted, and each entry has its place.
bool KTELEMENT::sort3D() {
    if (numberOfPassedElements == 0) return false;
    if (numberOfLights == 0 && numberOfTransparencies == 0) return true;
    // Most are opaque.
    unsigned int counts[kRanks] = {};
    for (unsigned int i = 0; i < numberOfPassedElements; ++i)
        if ((ranks[i] = rankOf(element[i].node)) != kOpaque) ++counts[ranks[i]];
    KTELEMENT **places[kRanks] = {elementPointer, nullptr,
                                  elementPointer + numberOfPassedElements - counts[kTransparent]};
    KTELEMENT **opaque = elementPointer + counts[kLight];
    for (unsigned int i = 0; i < numberOfPassedElements; ++i)
        *(ranks[i] == kOpaque ? opaque : places[ranks[i]])++ = &element[i];
    if (numberOfTransparencies < 2) return true;
    unsigned int tail = std::min(numberOfTransparencies, numberOfPassedElements);
    KTELEMENT **end = elementPointer + numberOfPassedElements;
    sortByKey(end - tail, tail, [](const KTELEMENT *entry) { return depthKey(entry); });
    return true;
}

bool KTELEMENT::sortLights(R3XVECTOR3D position) {
    if (numberOfPassedElements == 0 || numberOfLights == 0) return false;
    const unsigned int lights = std::min(numberOfLights, numberOfPassedElements);
    if (waiting)
        for (unsigned int i = 0; i < lights; ++i) elementPointer[i] = places[i].entry;
    waiting = false;
    for (unsigned int i = 0; i < lights; ++i)
        elementPointer[i]->distance = distanceBetween(elementPointer[i]->matrix, position);
    sortByKey(elementPointer, lights, [](const KTELEMENT *entry) { return lightKey(entry); });
    return true;
}

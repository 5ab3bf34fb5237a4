// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_IQM_FILE_H
#define KELTRA_CONVERT_IQM_FILE_H

// The records of an Inter-Quake Model, checked: each list lies within the file, indices are not checked.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace keltra::convert {

struct IqmMesh {
    std::uint32_t name, material, firstVertex, vertices, firstTriangle, triangles;
};

struct IqmVertexArray {
    std::uint32_t type, flags, format, size, offset;
};

struct IqmJoint {
    std::string name;
    std::int32_t parent;
    std::array<float, 10> pose;  // position, rotation (x, y, z, w), scale
};

struct IqmPose {
    std::int32_t parent;
    std::uint32_t mask;  // the channels that frames hold
    std::array<float, 10> offset, scale;
};

struct IqmAnimation {
    std::string name;
    std::uint32_t firstFrame, frames;
    float rate;
};

class IqmFile {
   public:
    // Throws Refusal. The bytes must outlive it.
    explicit IqmFile(const std::vector<std::uint8_t> &bytes);

    std::string text(std::uint32_t offset) const;
    // `components` values of a vertex array's element, of any number type of the format; unsigned integers
    // are divided by their largest value when `isShare` is set.
    void element(const IqmVertexArray &array, std::uint32_t index, bool isShare, unsigned components,
                 float *values) const;
    std::array<std::uint32_t, 3> triangle(std::uint32_t index) const;
    // The poses of a frame, ten channels each.
    std::vector<std::array<float, 10>> frame(std::uint32_t index) const;
    const IqmVertexArray *array(std::uint32_t type) const;

    std::vector<IqmMesh> meshes;
    std::vector<IqmVertexArray> arrays;
    std::vector<IqmJoint> joints;
    std::vector<IqmPose> poses;
    std::vector<IqmAnimation> animations;
    std::uint32_t vertices = 0, triangles = 0, frames = 0;

   private:
    struct List {
        std::uint32_t count, offset;
    };

    List list(std::size_t field, std::size_t size, const char *what) const;
    void checkRange(std::uint64_t offset, std::uint64_t count, std::uint64_t size, const char *what) const;
    void readSkeleton();
    void readArrays();
    std::uint32_t word(std::size_t at) const;
    float number(std::size_t at) const;

    const std::vector<std::uint8_t> &bytes;
    std::uint32_t textSize = 0, textOffset = 0, triangleOffset = 0, frameOffset = 0, channels = 0;
};

}  // namespace keltra::convert

#endif

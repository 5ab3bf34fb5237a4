// SPDX-License-Identifier: Zlib
// Animation files: what loads is applied, changed, interpolated and saved, and its copy loads again.

#include <new>

#include "fuzz/harness.h"

using namespace keltra::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    begin();
    // In the same place each time, and the same as long as nothing loads: a megabyte takes longer to clear
    // than all the rest.
    alignas(KTANIM) static unsigned char place[sizeof(KTANIM)];
    static KTANIM *animation = nullptr;
    if (!animation) animation = ::new (place) KTANIM;
    const bool loaded = animation->load(fileOf(data, size));
    compareVerdict("kta", data, size, loaded);
    if (!loaded) {
        require(animation->getNumberOfFrames() == 0 && animation->getNumberOfBones() == 0 &&
                    *animation->getName() == '[' && KTANIM::getNumberOfAnims() == 1,
                "a file that is refused changes nothing");
        finishTime(size);
        return 0;
    }
    {
        Bytes bytes(data, size < 64 ? size : 64);
        KTNODE root, bone;
        bone.link(&root);
        if (animation->getNumberOfBones()) bone.setName(animation->getBoneName(0));
        animation->setTranslating(true);
        for (unsigned frame : {0u, 1u, animation->getNumberOfFrames(), 70000u})
            animation->apply(frame, &root);
        animation->setFrame(bytes.u8(), bytes.u8(), bytes.real(), bytes.real(), bytes.real());
        animation->unsetFrame(bytes.u8(), bytes.u8());
        animation->createKeyframes(bytes.u8() % 4, animation->getNumberOfFrames());
        require(animation->save(fileToWrite()), "KTANIM::save");
        if (bytes.u8() % 8 == 0) {  // a megabyte that has to be cleared
            KTANIM *again = new KTANIM;
            require(!again->load(fileOf(nullptr, 0, 1)), "an empty animation");
            require(
                again->load(fileToWrite()) && again->getNumberOfFrames() == animation->getNumberOfFrames(),
                "what was saved is loaded");
        }
        bone.unlink();
    }
    animation->~KTANIM();
    animation = nullptr;
    finish(size);
    return 0;
}

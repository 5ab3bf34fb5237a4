// SPDX-License-Identifier: Zlib
#include <keltra/anim.h>

#include <cstdio>
#include <cstring>
#include <memory>

#include "tests/scene/anim_fixture.h"
#include "tests/support/allocations.h"
#include "tests/support/small_stack.h"

namespace keltra::test {
namespace {

TEST_F(AnimTest, IsEmptyAtFirst) {
    KTANIM *anim = new KTANIM;
    EXPECT_GT(anim->getId(), 0u);
    EXPECT_EQ(anim->getName(), "[anim " + std::to_string(anim->getId()) + "]");
    EXPECT_FALSE(anim->getTranslating());
    EXPECT_EQ(anim->getNumberOfBones(), 0u);
    EXPECT_EQ(anim->getNumberOfFrames(), 0u);
    for (unsigned frame = 0; frame <= KTANIM::maxFrames; ++frame) {
        for (unsigned bone = 0; bone < KTANIM::maxBones; ++bone) {
            const KTBONEFRAME &keyframe = *anim->getKeyframe(frame, bone);
            ASSERT_TRUE(keyframe.rotation == kZero && keyframe.position == kZero && !keyframe.set)
                << frame << ' ' << bone;
        }
    }
    for (unsigned bone = 0; bone < KTANIM::maxBones; ++bone) ASSERT_STREQ(anim->getBoneName(bone), "");
}

TEST_F(AnimTest, StandsOnTheListInOrderOfCreation) {
    EXPECT_EQ(KTANIM::getNumberOfAnims(), 0u);
    EXPECT_EQ(KTANIM::getFirst(), nullptr);
    KTANIM *first = new KTANIM, *second = new KTANIM, *third = new KTANIM;
    EXPECT_EQ(KTANIM::getFirst(), first);
    EXPECT_EQ(first->next, second);
    EXPECT_EQ(second->previous, first);
    EXPECT_EQ(third->next, nullptr);
    EXPECT_EQ(KTANIM::getNumberOfAnims(), 3u);
    delete second;
    EXPECT_EQ(first->next, third);
    EXPECT_EQ(third->previous, first);
    EXPECT_EQ(KTANIM::getNumberOfAnims(), 2u);
}

TEST_F(AnimTest, GivesItsIdBack) {
    KTANIM *anim = new KTANIM;
    const unsigned id = anim->getId();
    delete anim;
    EXPECT_EQ((new KTANIM)->getId(), id);
}

TEST_F(AnimTest, IsFoundByIdAndName) {
    KTANIM *first = new KTANIM, *second = new KTANIM;
    EXPECT_EQ(KTANIM::findById(second->getId()), second);
    EXPECT_EQ(KTANIM::findById(0), nullptr);
    EXPECT_EQ(KTANIM::findByFilename(second->getName()), second);
    EXPECT_EQ(KTANIM::findByFilename(nullptr), nullptr);
    EXPECT_EQ(KTANIM::findByFilename("walk.kta"), nullptr);
    std::strcpy(first->name, "walk.kta");
    std::strcpy(second->name, "walk.kta");
    EXPECT_EQ(KTANIM::findByFilename("walk.kta"), first);
    EXPECT_EQ(KTANIM::findByFilename("Walk.kta"), nullptr);
}

TEST_F(AnimTest, CleanUpDestroysAllAndIsFalseWithoutAny) {
    EXPECT_FALSE(KTANIM::cleanUp());
    new KTANIM;
    new KTANIM;
    EXPECT_TRUE(KTANIM::cleanUp());
    EXPECT_EQ(KTANIM::getNumberOfAnims(), 0u);
    EXPECT_EQ(KTANIM::getFirst(), nullptr);
    EXPECT_FALSE(KTANIM::cleanUp());
}

TEST_F(AnimTest, CleanUpLeavesThePartsOfOtherObjectsAlive) {
    struct Owner {
        KTANIM anim;
    };
    const std::unique_ptr<Owner> owner(new Owner);
    EXPECT_TRUE(owner->anim.isRegistered());
    EXPECT_TRUE(KTANIM::cleanUp());
    EXPECT_FALSE(owner->anim.isRegistered());
    owner->anim.setNumberOfFrames(3);
    EXPECT_EQ(owner->anim.getNumberOfFrames(), 3u);
}

TEST_F(AnimTest, ACopyHasEverythingAndStandsOnNoList) {
    KTANIM *before = new KTANIM, *anim = newAnim(2, 3), *after = new KTANIM;
    anim->setBoneName(1, "knee");
    anim->setTranslating(true);
    anim->setFrame(3, 1, 1.0f, 2.0f, 3.0f);
    const std::unique_ptr<KTANIM> copy(new KTANIM(*anim));
    EXPECT_EQ(copy->getId(), anim->getId());
    EXPECT_STREQ(copy->getName(), anim->getName());
    EXPECT_TRUE(copy->getTranslating());
    EXPECT_EQ(copy->getNumberOfBones(), 2u);
    EXPECT_EQ(copy->getNumberOfFrames(), 3u);
    EXPECT_EQ(copy->findBoneByName("knee"), 1);
    EXPECT_EQ(copy->getFrameRotation(3, 1), R3XVECTOR3D(1.0f, 2.0f, 3.0f));
    EXPECT_TRUE(copy->getKeyframe(3, 1)->set);
    EXPECT_EQ(copy->previous, before);
    EXPECT_EQ(copy->next, after);
    EXPECT_FALSE(copy->isRegistered());
    EXPECT_EQ(KTANIM::getNumberOfAnims(), 3u);
    delete anim;
    EXPECT_EQ(before->next, after);
}

TEST_F(AnimTest, AssignmentCopiesIdAndLinksButKeepsThePlaceOnTheList) {
    KTANIM *first = new KTANIM, *second = newAnim(1, 1), *third = new KTANIM;
    const unsigned thirdId = third->getId();
    *third = *second;
    EXPECT_EQ(third->getId(), second->getId());
    EXPECT_STREQ(third->getName(), second->getName());
    EXPECT_EQ(third->previous, first);
    EXPECT_EQ(third->next, third);
    EXPECT_EQ(KTANIM::findById(second->getId()), second);
    EXPECT_EQ(KTANIM::findById(thirdId), nullptr);
    EXPECT_EQ(third->getNext(), nullptr) << "where it really stands";
    EXPECT_EQ(third->getPrevious(), second);
    *third = *third;
    EXPECT_EQ(third->getNumberOfFrames(), 1u);
    delete third;
    EXPECT_EQ(KTANIM::getNumberOfAnims(), 2u);
    EXPECT_EQ((new KTANIM)->getId(), thirdId) << "the id it drew is given back, not the copied one";
    EXPECT_EQ(KTANIM::findById(second->getId()), second);
}

TEST_F(AnimTest, ThePathIsCutAndEmptiedByNull) {
    KTANIM::setKTAPath("anims/");
    EXPECT_STREQ(KTANIM::getKTAPath(), "anims/");
    KTANIM::setKTAPath(std::string(300, 'a').c_str());
    EXPECT_EQ(KTANIM::getKTAPath(), std::string(255, 'a'));
    KTANIM::setKTAPath(nullptr);
    EXPECT_STREQ(KTANIM::getKTAPath(), "");
}

TEST_F(AnimTest, CountsBeyondTheLimitsBecomeTheLimits) {
    KTANIM *anim = newAnim(128, 1024);
    EXPECT_EQ(anim->getNumberOfBones(), 128u);
    EXPECT_EQ(anim->getNumberOfFrames(), 1024u);
    for (unsigned count : {1025u, 65535u, 65536u, 65541u, ~0u}) {
        anim->setNumberOfBones(count);
        anim->setNumberOfFrames(count);
        EXPECT_EQ(anim->getNumberOfBones(), 128u);
        EXPECT_EQ(anim->getNumberOfFrames(), 1024u);
    }
    anim->setNumberOfBones(129);
    EXPECT_EQ(anim->getNumberOfBones(), 128u);
    anim->setNumberOfBones(0);
    EXPECT_EQ(anim->getNumberOfBones(), 0u);
}

TEST_F(AnimTest, SetBoneNameIsFalseInEveryCase) {
    KTANIM *anim = new KTANIM;
    EXPECT_FALSE(anim->setBoneName(127, "last"));
    EXPECT_STREQ(anim->getBoneName(127), "last");
    EXPECT_FALSE(anim->setBoneName(127, nullptr));
    EXPECT_STREQ(anim->getBoneName(127), "last");
    EXPECT_FALSE(anim->setBoneName(128, "beyond"));
    EXPECT_EQ(anim->getBoneName(128), nullptr);
    EXPECT_EQ(anim->getBoneName(~0u), nullptr);
    EXPECT_FALSE(anim->setBoneName(0, std::string(300, 'b').c_str()));
    EXPECT_EQ(anim->getBoneName(0), std::string(255, 'b'));
    EXPECT_STREQ(anim->getBoneName(1), "");
}

TEST_F(AnimTest, FindBoneByNameSearchesTheBonesThatCount) {
    KTANIM *anim = new KTANIM;
    anim->setBoneName(0, "hip");
    anim->setBoneName(1, "knee");
    anim->setBoneName(2, "knee");
    EXPECT_EQ(anim->findBoneByName("hip"), -1) << "no bones yet";
    anim->setNumberOfBones(1);
    EXPECT_EQ(anim->findBoneByName("hip"), 0);
    EXPECT_EQ(anim->findBoneByName("knee"), -1);
    anim->setNumberOfBones(3);
    EXPECT_EQ(anim->findBoneByName("knee"), 1);
    EXPECT_EQ(anim->findBoneByName("Knee"), -1);
    EXPECT_EQ(anim->findBoneByName(nullptr), -1);
}

TEST_F(AnimTest, KeyframesAreReachedInTheWholeGrid) {
    KTANIM *anim = new KTANIM;
    anim->getKeyframe(1023, 127)->rotation.set(1.0f, 2.0f, 3.0f);
    EXPECT_EQ(anim->getFrameRotation(1023, 127), R3XVECTOR3D(1.0f, 2.0f, 3.0f)) << "the counts do not matter";
    EXPECT_EQ(anim->getKeyframe(3, 5), &anim->keyframes[3][5]);
    EXPECT_EQ(anim->getKeyframe(0, 128), nullptr);
    EXPECT_EQ(anim->getKeyframe(1025, 0), nullptr);
    EXPECT_EQ(anim->getKeyframe(~0u, ~0u), nullptr);
    EXPECT_EQ(anim->getFrameRotation(0, 128), kZero);
    EXPECT_EQ(anim->getFrameRotation(~0u, 0), kZero);
}

TEST_F(AnimTest, AcquiresTheBonesOfAMesh) {
    KTMESH *mesh = loadMesh(folder, skinNode("skin", {"hip", "knee", "foot"}));
    ASSERT_NE(mesh, nullptr);
    KTANIM *anim = newAnim(1, 2);
    anim->setFrame(0, 0, 1.0f, 2.0f, 3.0f);
    EXPECT_TRUE(anim->acquireStructure(mesh));
    EXPECT_EQ(anim->getNumberOfBones(), 3u);
    EXPECT_EQ(anim->getNumberOfFrames(), 2u);
    EXPECT_STREQ(anim->getBoneName(0), "hip");
    EXPECT_STREQ(anim->getBoneName(2), "foot");
    EXPECT_EQ(anim->getFrameRotation(0, 0), R3XVECTOR3D(1.0f, 2.0f, 3.0f));
    EXPECT_TRUE(anim->getKeyframe(0, 0)->set);
}

TEST_F(AnimTest, AcquiresNothingFromNullAndRigidMeshes) {
    KTANIM *anim = newAnim(2, 2);
    KTMESH rigid;
    EXPECT_FALSE(anim->acquireStructure(nullptr));
    EXPECT_FALSE(anim->acquireStructure(&rigid));
    rigid.numberOfBones = 3;
    EXPECT_FALSE(anim->acquireStructure(&rigid)) << "a number alone";
    rigid.numberOfBones = 0;
    EXPECT_EQ(anim->getNumberOfBones(), 2u);
}

TEST_F(AnimTest, AcquiresNoMoreBonesThanTheGridHas) {
    formats::Node skin = skinNode("skin", {"first"});
    for (int i = 1; i < 140; ++i) skin.mesh.boneNames.push_back("bone" + std::to_string(i));
    KTMESH *mesh = loadMesh(folder, skin);
    ASSERT_NE(mesh, nullptr);
    KTANIM *anim = new KTANIM;
    EXPECT_TRUE(anim->acquireStructure(mesh));
    EXPECT_EQ(anim->getNumberOfBones(), 128u);
    EXPECT_STREQ(anim->getBoneName(127), "bone127");
}

TEST_F(AnimTest, SetFrameAcceptsOneFramePastTheLast) {
    KTANIM *anim = newAnim(2, 10);
    EXPECT_TRUE(anim->setFrame(10, 0, 1.0f, 2.0f, 3.0f));
    EXPECT_EQ(anim->getFrameRotation(10, 0), R3XVECTOR3D(1.0f, 2.0f, 3.0f));
    EXPECT_TRUE(anim->getKeyframe(10, 0)->set);
    EXPECT_FALSE(anim->setFrame(11, 0, 1.0f, 2.0f, 3.0f));
    EXPECT_FALSE(anim->getKeyframe(11, 0)->set);
    EXPECT_TRUE(anim->setFrame(0, 1, 1.0f, 2.0f, 3.0f));
    EXPECT_FALSE(anim->setFrame(0, 2, 1.0f, 2.0f, 3.0f));
    EXPECT_FALSE(anim->setFrame(~0u, ~0u, 1.0f, 2.0f, 3.0f));
}

TEST_F(AnimTest, SetFrameOfAFullGridStaysInsideTheObject) {
    KTANIM *anim = newAnim(128, 1024);
    KTANIM *const next = new KTANIM;
    EXPECT_TRUE(anim->setFrame(1024, 127, 7.0f, 8.0f, 9.0f));
    EXPECT_EQ(anim->getFrameRotation(1024, 127), R3XVECTOR3D(7.0f, 8.0f, 9.0f));
    EXPECT_FALSE(anim->setFrame(1025, 0, 1.0f, 1.0f, 1.0f));
    EXPECT_EQ(anim->previous, nullptr);
    EXPECT_EQ(anim->next, next);
}

TEST_F(AnimTest, ComponentsAreSetOneByOne) {
    KTANIM *anim = newAnim(1, 1);
    anim->setFrame(0, 0, 1.0f, 2.0f, 3.0f);
    anim->unsetFrame(0, 0);
    EXPECT_TRUE(anim->setFrameRotationX(0, 0, 10.0f));
    EXPECT_TRUE(anim->getKeyframe(0, 0)->set);
    EXPECT_EQ(anim->getFrameRotation(0, 0), R3XVECTOR3D(10.0f, 2.0f, 3.0f));
    anim->unsetFrame(0, 0);
    EXPECT_TRUE(anim->setFrameRotationY(0, 0, 20.0f));
    EXPECT_TRUE(anim->getKeyframe(0, 0)->set);
    anim->unsetFrame(0, 0);
    EXPECT_TRUE(anim->setFrameRotationZ(0, 0, 30.0f));
    EXPECT_TRUE(anim->getKeyframe(0, 0)->set);
    EXPECT_EQ(anim->getFrameRotation(0, 0), R3XVECTOR3D(10.0f, 20.0f, 30.0f));
    EXPECT_EQ(anim->getKeyframe(0, 0)->position, kZero);
    EXPECT_TRUE(anim->setFrameRotationX(1, 0, 1.0f) && anim->setFrameRotationY(1, 0, 1.0f) &&
                anim->setFrameRotationZ(1, 0, 1.0f));
    EXPECT_FALSE(anim->setFrameRotationX(2, 0, 1.0f) || anim->setFrameRotationY(2, 0, 1.0f) ||
                 anim->setFrameRotationZ(2, 0, 1.0f));
    EXPECT_FALSE(anim->setFrameRotationX(0, 1, 1.0f) || anim->setFrameRotationY(0, 1, 1.0f) ||
                 anim->setFrameRotationZ(0, 1, 1.0f));
}

TEST_F(AnimTest, UnsetFrameIsFalseForWhatWasNotSet) {
    KTANIM *anim = newAnim(1, 2);
    EXPECT_FALSE(anim->unsetFrame(0, 0));
    anim->setFrame(2, 0, 5.0f, 6.0f, 7.0f);
    EXPECT_TRUE(anim->unsetFrame(2, 0));
    EXPECT_FALSE(anim->getKeyframe(2, 0)->set);
    EXPECT_EQ(anim->getFrameRotation(2, 0), R3XVECTOR3D(5.0f, 6.0f, 7.0f)) << "the rotation stays";
    EXPECT_FALSE(anim->unsetFrame(2, 0));
    anim->getKeyframe(3, 0)->set = anim->getKeyframe(0, 1)->set = true;
    EXPECT_FALSE(anim->unsetFrame(3, 0));
    EXPECT_FALSE(anim->unsetFrame(0, 1));
    EXPECT_FALSE(anim->unsetFrame(~0u, ~0u));
}

TEST_F(AnimTest, ResetZeroesWhatIsInsideTheCounts) {
    KTANIM *anim = newAnim(2, 3);
    for (unsigned frame = 0; frame < 5; ++frame)
        for (unsigned bone = 0; bone < 4; ++bone) {
            KTBONEFRAME &keyframe = *anim->getKeyframe(frame, bone);
            keyframe.rotation.set(1.0f, 1.0f, 1.0f);
            keyframe.position.set(2.0f, 2.0f, 2.0f);
            keyframe.set = true;
        }
    anim->reset();
    for (unsigned frame = 0; frame < 5; ++frame)
        for (unsigned bone = 0; bone < 4; ++bone) {
            const KTBONEFRAME &keyframe = *anim->getKeyframe(frame, bone);
            const bool inside = frame < 3 && bone < 2;
            EXPECT_EQ(keyframe.rotation == kZero, inside) << frame << ' ' << bone;
            EXPECT_EQ(keyframe.position == kZero, inside);
            EXPECT_EQ(keyframe.set, !inside);
        }
}

TEST_F(AnimTest, WhateverTheCountsHoldNothingBeyondTheGridIsTouched) {
    KTANIM *anim = new KTANIM;
    KTNODE node;
    anim->numberOfBones = anim->numberOfFrames = 65535;
    EXPECT_TRUE(anim->setFrame(1024, 127, 1.0f, 1.0f, 1.0f));
    EXPECT_FALSE(anim->setFrame(1025, 0, 1.0f, 1.0f, 1.0f));
    EXPECT_FALSE(anim->setFrame(0, 128, 1.0f, 1.0f, 1.0f));
    EXPECT_FALSE(anim->createKeyframes(0, 1025));
    EXPECT_TRUE(anim->createKeyframes(0, 1024));
    EXPECT_FALSE(anim->apply(1024, &node));
    EXPECT_TRUE(anim->apply(1023, &node));
    EXPECT_EQ(anim->findBoneByName("nobody"), -1);
    anim->reset();
    EXPECT_TRUE(anim->getKeyframe(1024, 127)->set);
}

TEST_F(AnimTest, ApplyNeedsAFrameAndARootEvenWithoutBones) {
    KTNODE root;
    KTANIM *anim = newAnim(0, 2);
    EXPECT_TRUE(anim->apply(1, &root));
    EXPECT_FALSE(anim->apply(2, &root));
    EXPECT_FALSE(anim->apply(1, nullptr));
    anim->setNumberOfFrames(0);
    EXPECT_FALSE(anim->apply(0, &root));
}

TEST_F(AnimTest, ApplyTurnsTheNodesOfTheBonesNames) {
    KTNODE *root = loadBones();
    ASSERT_NE(root, nullptr);
    KTANIM *anim = newAnim(4, 2);
    const char *names[] = {"knee", "nobody", "hip", "root"};
    for (unsigned bone = 0; bone < 4; ++bone) {
        anim->setBoneName(bone, names[bone]);
        anim->setFrame(1, bone, 10.0f + static_cast<float>(bone), 0.5f, 0.25f);
        anim->getKeyframe(1, bone)->position.set(50.0f, 60.0f, 70.0f);
    }
    anim->unsetFrame(1, 2);
    EXPECT_TRUE(anim->apply(1, root));
    EXPECT_EQ(root->getChild(0)->getChild(0)->getRotation(), R3XVECTOR3D(10.0f, 0.5f, 0.25f));
    EXPECT_EQ(root->getChild(0)->getRotation(), R3XVECTOR3D(12.0f, 0.5f, 0.25f)) << "set or not";
    EXPECT_EQ(root->getRotation(), R3XVECTOR3D(13.0f, 0.5f, 0.25f)) << "the root is searched too";
    EXPECT_EQ(root->getChild(1)->getRotation(), kZero);
    EXPECT_EQ(root->getChild(0)->getPosition(), R3XVECTOR3D(1.0f, 2.0f, 3.0f)) << "not translating";
    EXPECT_EQ(root->getChild(0)->getChild(0)->getPosition(), R3XVECTOR3D(4.0f, 5.0f, 6.0f));
}

TEST_F(AnimTest, ApplyMovesOnlyWhenTranslating) {
    KTNODE *root = loadBones();
    ASSERT_NE(root, nullptr);
    KTANIM *anim = newAnim(1, 1);
    anim->setBoneName(0, "hip");
    anim->getKeyframe(0, 0)->position.set(50.0f, 60.0f, 70.0f);
    EXPECT_TRUE(anim->apply(0, root));
    EXPECT_EQ(root->getChild(0)->getPosition(), R3XVECTOR3D(1.0f, 2.0f, 3.0f));
    anim->setTranslating(true);
    EXPECT_TRUE(anim->apply(0, root));
    EXPECT_EQ(root->getChild(0)->getPosition(), R3XVECTOR3D(50.0f, 60.0f, 70.0f));
    EXPECT_EQ(root->getChild(1)->getPosition(), R3XVECTOR3D(7.0f, 8.0f, 9.0f));
}

TEST_F(AnimTest, ApplyTakesTheFirstNodeOfAName) {
    KTNODE *root = loadNode(folder, plainNode("root", {plainNode("a", {boneNode("hip")}), boneNode("hip")}));
    ASSERT_NE(root, nullptr);
    KTANIM *anim = newAnim(1, 1);
    anim->setBoneName(0, "hip");
    anim->setFrame(0, 0, 5.0f, 0.0f, 0.0f);
    EXPECT_TRUE(anim->apply(0, root));
    EXPECT_EQ(root->getChild(0)->getChild(0)->getRotation().x, 5.0f) << "depth first";
    EXPECT_EQ(root->getChild(1)->getRotation().x, 0.0f);
}

// Names that several bones or nodes have, in any order; the bones one by one are the rule.
TEST_F(AnimTest, ApplyPosesAsBoneByBone) {
    unsigned random = 1;
    const auto below = [&random](unsigned count) {
        random = random * 1664525 + 1013904223;
        return (random >> 16) % count;
    };
    const char *const names[] = {"hip", "knee", "ankle", "head", "hand", "heel"};
    for (int times = 0; times < 300; ++times) {
        std::vector<std::unique_ptr<KTNODE>> nodes;
        for (unsigned i = 0; i < 7; ++i) {
            nodes.push_back(std::make_unique<KTNODE>());
            nodes.back()->setName(names[below(5)]);
            if (i > 0) nodes.back()->link(nodes[below(i)].get());
        }
        KTANIM *anim = newAnim(6, 1);
        for (unsigned bone = 0; bone < 6; ++bone) {
            anim->setBoneName(bone, names[below(6)]);
            anim->setFrame(0, bone, static_cast<float>(bone + 1), 0.0f, 0.0f);
        }
        std::vector<float> expected(nodes.size());
        for (unsigned bone = 0; bone < 6; ++bone) {
            const KTNODE *found = nodes[0]->findByNameInHierarchy(anim->getBoneName(bone));
            for (std::size_t i = 0; i < nodes.size(); ++i)
                if (nodes[i].get() == found) expected[i] = static_cast<float>(bone + 1);
        }
        EXPECT_TRUE(anim->apply(0, nodes[0].get()));
        for (std::size_t i = 0; i < nodes.size(); ++i)
            ASSERT_EQ(nodes[i]->getRotation().x, expected[i]) << times;
        delete anim;
        while (!nodes.empty()) nodes.pop_back();
    }
}

TEST_F(AnimTest, NothingIsAllocatedAfterConstruction) {
    KTNODE *root = loadBones();
    KTANIM *anim = newAnim(1, 20);
    anim->setBoneName(0, "hip");
    Allocations::startCounting();
    anim->setFrame(0, 0, 1.0f, 2.0f, 3.0f);
    anim->createKeyframes(0, 20);
    anim->apply(3, root);
    anim->reset();
    EXPECT_EQ(Allocations::stopCounting(), 0);
}

TEST_F(AnimTest, NeedsLittleStack) {
    KTNODE *root = loadBones();
    EXPECT_TRUE(runOnSmallStack([root] {
        KTANIM *anim = newAnim(128, 1024);
        KTANIM *copy = new KTANIM(*anim);
        *copy = *anim;
        copy->reset();
        copy->createKeyframes(0, 1024);
        copy->apply(0, root);
        delete copy;
    }));
    EXPECT_EQ(KTANIM::getNumberOfAnims(), 1u);
}

}  // namespace
}  // namespace keltra::test

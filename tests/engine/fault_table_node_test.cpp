// SPDX-License-Identifier: Zlib
// Failures of the calls of nodes and of the render list, their loaders left out.

#include "tests/engine/fault_table.h"

namespace keltra::test {
namespace {

TEST_F(FaultTableTest, Nodes) {
    static const std::string tooLong(256, 'a');
    check({
        {"KTNODE::link", [](Folder) { EXPECT_FALSE(KTNODE().link(nullptr)); }, kError, KT_FAULT_NULL,
         "KTNODE::link: `parent` is null"},
        {"KTNODE::link",
         [](Folder) {
             KTNODE node;
             EXPECT_FALSE(node.link(&node));
         },
         kError, KT_FAULT_STATE, "KTNODE::link: the node is its own parent"},
        {"KTNODE::link",
         [](Folder) {
             KTNODE parent, node;
             EXPECT_TRUE(node.link(&parent));
             EXPECT_FALSE(node.link(&parent));
         },
         kError, KT_FAULT_STATE, "KTNODE::link: the node has a parent already"},
        {"KTNODE::unlink", [](Folder) { EXPECT_FALSE(KTNODE().unlink()); }, kError, KT_FAULT_STATE,
         "KTNODE::unlink: the node has no parent"},
        {"KTNODE::unlink",
         [](Folder) {
             KTNODE parent, node;
             EXPECT_TRUE(node.link(&parent));
             KTNODE copy(node);
             EXPECT_TRUE(node.unlink());
             EXPECT_FALSE(copy.unlink());
         },
         kError, KT_FAULT_STATE, "KTNODE::unlink: the parent does not list the node"},
        {"KTNODE::unlink",
         [](Folder) {
             KTNODE parent, first, second, third;
             EXPECT_TRUE(first.link(&parent) && second.link(&parent) && third.link(&parent));
             KTNODE copy(first);
             EXPECT_TRUE(first.unlink());
             EXPECT_FALSE(copy.unlink());
         },
         kError, KT_FAULT_STATE, "KTNODE::unlink: the parent does not list the node"},
        {"KTNODE::remove", [](Folder) { EXPECT_FALSE(KTNODE().remove()); }, kError, KT_FAULT_STATE,
         "KTNODE::remove: the node has no parent"},
        {"KTNODE::remove",
         [](Folder) {
             KTNODE parent, node;
             EXPECT_TRUE(node.link(&parent));
             KTNODE copy(node);
             EXPECT_TRUE(node.unlink());
             EXPECT_FALSE(copy.remove());
         },
         kError, KT_FAULT_STATE, "KTNODE::remove: not everything could be moved"},
        {"KTNODE::setName", [](Folder) { KTNODE().setName(nullptr); }, kError, KT_FAULT_NULL,
         "KTNODE::setName: `text` is null"},
        {"KTNODE::setName", [](Folder) { KTNODE().setName(tooLong.c_str()); }, kError, KT_FAULT_ARGUMENT,
         "KTNODE::setName: `text` is longer than 255 characters"},
        {"KTNODE::displayTreeRecursive", [](Folder) { KTNODE::displayTreeRecursive(nullptr, 0); }, kError,
         KT_FAULT_NULL, "KTNODE::displayTreeRecursive: `node` is null"},
    });
}

TEST_F(FaultTableTest, RemovingANodeBelowItsOwnChildIsNoFault) {
    KTNODE parent, node, child;
    ASSERT_TRUE(node.link(&parent) && child.link(&node));
    KTFAULTS::clear();
    EXPECT_TRUE(node.remove());
    EXPECT_EQ(child.getParent(), &parent);
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 0u);
}

TEST_F(FaultTableTest, RenderList) {
    static KTELEMENT element;
    static KTMESH mesh;
    check({
        {"KTELEMENT::pass", [](Folder) { EXPECT_FALSE(KTELEMENT::pass(nullptr)); }, kError, KT_FAULT_NULL,
         "KTELEMENT::pass: `node` is null"},
        {"KTELEMENT::passSkeleton", [](Folder) { EXPECT_FALSE(KTELEMENT::passSkeleton(nullptr, &mesh)); },
         kError, KT_FAULT_NULL, "KTELEMENT::passSkeleton: `bone` is null"},
        {"KTELEMENT::setNearestLight", [](Folder) { element.setNearestLight(4, &element); }, kError,
         KT_FAULT_ARGUMENT, "KTELEMENT::setNearestLight: `i` is 4, expected 0 to 3"},
        {"KTLIGHT::activateNearest", [](Folder) { EXPECT_FALSE(KTLIGHT::activateNearest(nullptr)); }, kError,
         KT_FAULT_NULL, "KTLIGHT::activateNearest: `element` is null"},
        {"KTLIGHT::render", [](Folder) { EXPECT_FALSE(KTLIGHT().render(nullptr)); }, kError, KT_FAULT_NULL,
         "KTLIGHT::render: `data` is null"},
        {"KTLIGHT::render",
         [](Folder) {
             KTELEMENT entry;
             entry.setParam1(8);
             EXPECT_FALSE(KTLIGHT().render(&entry));
         },
         kError, KT_FAULT_ARGUMENT, "KTLIGHT::render: `param1` is 8, expected 0 to 7"},
        {"KTMESH::render", [](Folder) { EXPECT_FALSE(mesh.render(nullptr)); }, kError, KT_FAULT_NULL,
         "KTMESH::render: `data` is null"},
        {"KTMESH::resetBones", [](Folder) { EXPECT_FALSE(mesh.resetBones(nullptr)); }, kError, KT_FAULT_NULL,
         "KTMESH::resetBones: `root` is null"},
        {"KTMESH::animate",
         [](Folder) {
             KTMESH skinned;
             skinned.numberOfInfluences = 1;
             EXPECT_FALSE(skinned.animate(17));
         },
         kError, KT_FAULT_ARGUMENT, "KTMESH::animate: `slot` is 17, expected 0 to 15"},
    });
}

class ShortListTest : public FaultTableTest {
   protected:
    void prepare(KTSETTINGS &settings) override { settings.setRenderingElements(3); }
};

// Reported once, until the engine is restarted.
TEST_F(ShortListTest, AFullRenderList) {
    static KTHELPER root, children[4];
    check({
        {"KTELEMENT::pass",
         [](Folder) {
             for (KTHELPER &child : children) EXPECT_TRUE(child.link(&root));
             for (int frame = 0; frame < 3; ++frame)
                 frame3D(nullptr, [] {
                     root.pass();
                     EXPECT_FALSE(KTELEMENT::pass(&root));
                 });
         },
         kWarning, KT_FAULT_FULL, "KTELEMENT::pass: render list, 3 at most: full"},
        {"KTELEMENT::pass",
         [this](Folder) {
             EXPECT_TRUE(KELTRA::free());
             EXPECT_TRUE(KELTRA::init(&settings));
             frame3D(nullptr, [] { root.pass(); });
         },
         kWarning, KT_FAULT_FULL, "KTELEMENT::pass: render list, 3 at most: full"},
    });
    for (KTHELPER &child : children) EXPECT_TRUE(child.unlink());
}

TEST_F(FaultTableTest, MoreSkinnedMeshesThanSlots) {
    static KTMESH meshes[18];
    static KTBONE bone;
    for (KTMESH &mesh : meshes) {
        mesh.numberOfInfluences = mesh.numberOfBones = 1;
        mesh.bones = &bone;
    }
    check({
        {"KTELEMENT::pass",
         [](Folder) {
             for (int frame = 0; frame < 3; ++frame)
                 frame3D(nullptr, [] {
                     for (KTMESH &mesh : meshes) mesh.pass();
                 });
         },
         kWarning, KT_FAULT_FULL, "KTELEMENT::pass: skinned meshes of a frame, 16 at most: full"},
    });
    for (KTMESH &mesh : meshes) mesh.bones = nullptr;
}

TEST_F(FaultTableTest, Emitters) {
    check({
        {"KTEMITTER::render", [](Folder) { EXPECT_FALSE(KTEMITTER().render(nullptr)); }, kError,
         KT_FAULT_NULL, "KTEMITTER::render: `data` is null"},
        {"KTEMITTER::initialize",
         [](Folder) {
             KTEMITTER emitter;
             emitter.setNumberOfParticles(600);
             EXPECT_TRUE(emitter.initialize());
             EXPECT_TRUE(emitter.initialize());
         },
         kWarning, KT_FAULT_ARGUMENT, "KTEMITTER::initialize: `numberOfParticles` is 600, expected 0 to 512"},
        {"KTEMITTER::initialize",
         [](Folder) {
             KTEMITTER first, second, third;
             first.setNumberOfParticles(512);
             second.setNumberOfParticles(500);
             third.setNumberOfParticles(100);
             for (int frame = 0; frame < 3; ++frame)
                 frame3D(nullptr, [&] {
                     first.pass();
                     second.pass();
                     third.pass();
                 });
         },
         kWarning, KT_FAULT_FULL, "KTEMITTER::initialize: particles of all emitters, 1024 at most: full"},
    });
}

TEST_F(FaultTableTest, FramesOfAnimations) {
    static KTANIM *const anim = new KTANIM;
    anim->setNumberOfFrames(10);
    anim->setNumberOfBones(4);
    check({
        {"KTANIM::setFrame", [](Folder) { EXPECT_FALSE(anim->setFrame(11, 0, 0.0f, 0.0f, 0.0f)); }, kError,
         KT_FAULT_ARGUMENT, "KTANIM::setFrame: `frame` is 11, expected 0 to 10"},
        {"KTANIM::setFrame", [](Folder) { EXPECT_FALSE(anim->setFrame(0, 4, 0.0f, 0.0f, 0.0f)); }, kError,
         KT_FAULT_ARGUMENT, "KTANIM::setFrame: `bone` is 4, expected 0 to 3"},
        {"KTANIM::setFrame",
         [](Folder) {
             anim->setNumberOfBones(0);
             EXPECT_FALSE(anim->setFrame(0, 0, 0.0f, 0.0f, 0.0f));
             anim->setNumberOfBones(4);
         },
         kError, KT_FAULT_ARGUMENT, "KTANIM::setFrame: `bone` is 0, expected none"},
        {"KTANIM::setFrameRotationX", [](Folder) { EXPECT_FALSE(anim->setFrameRotationX(11, 0, 0.0f)); },
         kError, KT_FAULT_ARGUMENT, "KTANIM::setFrameRotationX: `frame` is 11, expected 0 to 10"},
        {"KTANIM::setFrameRotationY", [](Folder) { EXPECT_FALSE(anim->setFrameRotationY(0, 4, 0.0f)); },
         kError, KT_FAULT_ARGUMENT, "KTANIM::setFrameRotationY: `bone` is 4, expected 0 to 3"},
        {"KTANIM::setFrameRotationZ", [](Folder) { EXPECT_FALSE(anim->setFrameRotationZ(11, 0, 0.0f)); },
         kError, KT_FAULT_ARGUMENT, "KTANIM::setFrameRotationZ: `frame` is 11, expected 0 to 10"},
        {"KTANIM::unsetFrame",
         [](Folder) {
             EXPECT_FALSE(anim->unsetFrame(0, 0));
             EXPECT_FALSE(anim->unsetFrame(11, 0));
         },
         kError, KT_FAULT_ARGUMENT, "KTANIM::unsetFrame: `frame` is 11, expected 0 to 10"},
        {"KTANIM::createKeyframes", [](Folder) { EXPECT_FALSE(anim->createKeyframes(0, 11)); }, kError,
         KT_FAULT_ARGUMENT, "KTANIM::createKeyframes: `last` is 11, expected 0 to 10"},
        {"KTANIM::createKeyframes", [](Folder) { EXPECT_FALSE(anim->createKeyframes(5, 5)); }, kError,
         KT_FAULT_ARGUMENT, "KTANIM::createKeyframes: `first` is 5, expected 0 to 4"},
        {"KTANIM::createKeyframes", [](Folder) { EXPECT_FALSE(anim->createKeyframes(10, 10)); }, kError,
         KT_FAULT_ARGUMENT, "KTANIM::createKeyframes: `first` is 10, expected 0 to 9"},
        {"KTANIM::apply",
         [](Folder) {
             KTNODE root;
             EXPECT_FALSE(anim->apply(10, &root));
         },
         kError, KT_FAULT_ARGUMENT, "KTANIM::apply: `frame` is 10, expected 0 to 9"},
        {"KTANIM::apply", [](Folder) { EXPECT_FALSE(anim->apply(0, nullptr)); }, kError, KT_FAULT_NULL,
         "KTANIM::apply: `root` is null"},
    });
}

TEST_F(FaultTableTest, BonesOfAnimations) {
    static KTANIM *const anim = new KTANIM;
    static const std::string tooLong(256, 'a');
    check({
        {"KTANIM::setNumberOfFrames", [](Folder) { anim->setNumberOfFrames(1025); }, kWarning,
         KT_FAULT_ARGUMENT, "KTANIM::setNumberOfFrames: `count` is 1025, expected 0 to 1024"},
        {"KTANIM::setNumberOfBones", [](Folder) { anim->setNumberOfBones(129); }, kWarning, KT_FAULT_ARGUMENT,
         "KTANIM::setNumberOfBones: `count` is 129, expected 0 to 128"},
        {"KTANIM::setBoneName", [](Folder) { anim->setBoneName(0, nullptr); }, kError, KT_FAULT_NULL,
         "KTANIM::setBoneName: `text` is null"},
        {"KTANIM::setBoneName", [](Folder) { anim->setBoneName(128, "a"); }, kError, KT_FAULT_ARGUMENT,
         "KTANIM::setBoneName: `index` is 128, expected 0 to 127"},
        {"KTANIM::setBoneName",
         [](Folder) {
             anim->setBoneName(127, "a");
             anim->setBoneName(0, tooLong.c_str());
         },
         kWarning, KT_FAULT_ARGUMENT, "KTANIM::setBoneName: `text` is longer than 255 characters"},
        {"KTANIM::acquireStructure", [](Folder) { EXPECT_FALSE(anim->acquireStructure(nullptr)); }, kError,
         KT_FAULT_NULL, "KTANIM::acquireStructure: `mesh` is null"},
        {"KTANIM::acquireStructure",
         [](Folder) {
             KTMESH mesh;
             EXPECT_FALSE(anim->acquireStructure(&mesh));
         },
         kError, KT_FAULT_STATE, "KTANIM::acquireStructure: the mesh has no bones"},
        {"KTANIM::acquireStructure",
         [](Folder) {
             static KTBONE bones[130];
             KTMESH mesh;
             mesh.numberOfBones = 130;
             mesh.bones = bones;
             EXPECT_TRUE(anim->acquireStructure(&mesh));
             mesh.bones = nullptr;
         },
         kWarning, KT_FAULT_ARGUMENT, "KTANIM::acquireStructure: `count` is 130, expected 0 to 128"},
    });
}

TEST_F(FaultTableTest, SearchesInTheSceneWithoutResultAreNoFault) {
    KTFAULTS::clear();
    KTNODE node;
    EXPECT_FALSE(KTNODE::findByName(nullptr));
    EXPECT_FALSE(node.findByNameInHierarchy("none"));
    EXPECT_FALSE(node.getChild(0));
    EXPECT_FALSE(node.render(nullptr));
    EXPECT_FALSE(KTELEMENT::sort2D());
    EXPECT_FALSE(KTELEMENT::sortLights(R3XVECTOR3D()));
    KTELEMENT element;
    EXPECT_FALSE(KTLIGHT::activateNearest(&element));
    EXPECT_FALSE(KTELEMENT::getLight(0));
    EXPECT_EQ(KTFAULTS::getNumberOfFaults(), 0u);
}

}  // namespace
}  // namespace keltra::test

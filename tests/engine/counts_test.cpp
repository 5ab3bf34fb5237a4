// SPDX-License-Identifier: Zlib
// What a frame and a load cost, in counts that are the same on every machine: GL calls, allocations, system
// calls. A step back fails here; after a step forward the figures are lowered.

#include <gtest/gtest.h>
#include <keltra/keltra.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tests/formats/tga_bytes.h"
#include "tests/support/allocations.h"
#include "tests/support/gl_recorder.h"
#include "tests/support/temp_file.h"
#include "tools/formats/kta_writer.h"
#include "tools/formats/kte_writer.h"

namespace keltra::test {
namespace {

// The parts of the engine that frames need, without a window; the GL does nothing.
class CountsTest : public testing::Test {
   protected:
    CountsTest() {
        KTSETTINGS::windowX = 240;
        KTSETTINGS::windowY = 320;
        KTELEMENT::init(0);
        KTMESH::init();
        KTFONT::init();
        KTEMITTER::init();
        KELTRA::timer = vnfNewTimer(1.0f);
    }
    ~CountsTest() override {
        KTNODE::cleanUp();
        KTFONT::cleanUp();
        KTMATERIAL::cleanUp();
        KTTEXTURE::cleanUp();
        KTANIM::cleanUp();
        vnfFreeTimer(KELTRA::timer);
        KELTRA::timer = -1;
        KTEMITTER::free();
        KTFONT::free();
        KTMESH::free();
        KTELEMENT::free();
        KTSETTINGS::windowX = KTSETTINGS::windowY = 0;
    }

    // The GL calls of a frame that follows equal ones, in which nothing may be allocated.
    static int callsOfAFrame(const std::function<void()> &frame) {
        frame();
        frame();
        GlRecorder::setRecording(false);
        Allocations::startCounting();
        frame();
        EXPECT_EQ(Allocations::stopCounting(), 0);
        GlRecorder::setRecording(true);
        GlRecorder::clear();
        frame();
        return static_cast<int>(GlRecorder::calls().size());
    }

    const GlRecorder::Stub stub;
    TempFolder folder;
};

TEST_F(CountsTest, FrameOfAnInterface) {
    KTTEXTURE texture;
    texture.create(16, 16, 4);
    KTFONT font;
    font.setTexture(&texture);
    KTWINDOW window;
    window.setFont(&font);
    window.write("some words");
    std::vector<std::unique_ptr<KTBUTTON>> buttons;
    for (int i = 0; i < 4; ++i) {
        buttons.push_back(std::make_unique<KTBUTTON>());
        buttons.back()->setCaption("ok");
        buttons.back()->setFont(&font);
        buttons.back()->link(&window);
    }
    const int calls = callsOfAFrame([&window] {
        KELTRA::begin2D();
        window.pass();
        KELTRA::end2D();
    });
    EXPECT_GE(GlRecorder::count("glDrawElements"), 5);
    EXPECT_LE(calls, 332);
}

TEST_F(CountsTest, FrameOfLitMeshes) {
    std::vector<std::int32_t> corners(33, 65536);
    std::vector<std::uint16_t> faces(30);
    for (std::size_t i = 0; i < faces.size(); ++i) faces[i] = static_cast<std::uint16_t>(i % 11);
    KTCAMERA camera;
    KTMATERIAL stone, glass;
    glass.setTransparency(0.5f);
    KTNODE root;
    std::vector<std::unique_ptr<KTMESH>> meshes;
    std::vector<std::unique_ptr<KTLIGHT>> lights;
    for (int i = 0; i < 8; ++i) {
        meshes.push_back(std::make_unique<KTMESH>());
        KTMESH &mesh = *meshes.back();
        mesh.numberOfVertices = 11;
        mesh.vertices = mesh.vertexNormals = corners.data();
        mesh.numberOfFaces = 10;
        mesh.faces = faces.data();
        mesh.setMaterial(i < 6 ? &stone : &glass);
        mesh.setPosition(static_cast<float>(i), 0.0f, -5.0f);
        mesh.link(&root);
    }
    for (int i = 0; i < 3; ++i) {
        lights.push_back(std::make_unique<KTLIGHT>());
        lights.back()->link(&root);
    }
    const int calls = callsOfAFrame([&root, &camera] {
        KELTRA::begin3D(&camera);
        root.pass();
        KELTRA::end3D();
    });
    EXPECT_GE(GlRecorder::count("glDrawElements"), 8);
    EXPECT_LE(calls, 550);
    for (auto &mesh : meshes) mesh->vertices = mesh->vertexNormals = nullptr, mesh->faces = nullptr;
}

TEST_F(CountsTest, FrameOfParticles) {
    KTCAMERA camera;
    KTEMITTER emitter;
    emitter.setNumberOfParticles(64);
    const int calls = callsOfAFrame([&emitter, &camera] {
        KELTRA::begin3D(&camera);
        vnfAdjournTimer(KELTRA::timer);
        emitter.pass();
        KELTRA::end3D();
    });
    EXPECT_LE(calls, 37);
}

// Memory is given by the C library, which asks the system for it as it likes.
bool isForMemory(unsigned long call) {
    return call == SYS_brk || call == SYS_munmap || call == SYS_madvise || call == SYS_mprotect ||
#if defined(SYS_mmap)
           call == SYS_mmap;
#else
           call == SYS_mmap2;
#endif
}

// The system calls of a process that does it; -1 where processes cannot be watched.
int systemCalls(const std::function<bool()> &action) {
    const pid_t child = fork();
    if (child == 0) {
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) _exit(2);
        raise(SIGSTOP);
        _exit(action() ? 0 : 1);
    }
    int status = 0, calls = 0;
    waitpid(child, &status, 0);
    if (!WIFSTOPPED(status)) return -1;
    ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL);
    while (ptrace(PTRACE_SYSCALL, child, nullptr, nullptr) == 0 && waitpid(child, &status, 0) == child &&
           WIFSTOPPED(status)) {
        __ptrace_syscall_info info = {};
        if (ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info) > 0 &&
            info.op == PTRACE_SYSCALL_INFO_ENTRY)
            calls += !isForMemory(info.entry.nr);
    }
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_NE(WEXITSTATUS(status), 1) << "the load failed";
    return WEXITSTATUS(status) == 0 ? calls : -1;
}

// Without those that every process makes. Three of the limits are for the size of the system's file cache,
// which is asked for when the peak of memory may have risen.
int systemCallsOfALoad(const std::function<bool()> &load) {
    const int ofNothing = systemCalls([] { return true; });
    if (ofNothing < 0) return -1;
    // Other programs change how much memory the system has left, and with it the peak: three calls more.
    int least = systemCalls(load);
    for (int again = 0; again < 4; ++again) least = std::min(least, systemCalls(load));
    return least - ofNothing;
}

#define EXPECT_SYSTEM_CALLS(most, load)                                                \
    const int calls = systemCallsOfALoad(load);                                        \
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer makes calls of its own"; \
    if (calls < 0) GTEST_SKIP() << "no process can be watched";                        \
    EXPECT_GE(calls, 3);                                                               \
    EXPECT_LE(calls, most)

TEST_F(CountsTest, LoadOfATexture) {
    const Bytes file = uncompressedTga(128, 128, 32);
    folder.write("a.tga", file);
    KTTEXTURE::setPath(folder.prefix().c_str());
    EXPECT_SYSTEM_CALLS(13, [] { return (new KTTEXTURE)->load("a.tga"); });
}

TEST_F(CountsTest, LoadOfAScene) {
    formats::Scene scene;
    scene.materials.push_back({"stone"});
    scene.root.name = "root";
    for (int i = 0; i < 20; ++i) {
        formats::Node node;
        node.kind = formats::NodeKind::kMesh;
        node.mesh.material = "stone";
        node.mesh.vertices.resize(500);
        node.mesh.normals.resize(500);
        scene.root.children.push_back(node);
    }
    folder.write("a.kte", formats::writeKte(scene, formats::KteVersion::k16a));
    KELTRA::setKTEPath(folder.prefix().c_str());
    EXPECT_SYSTEM_CALLS(19, [] { return KELTRA::load("a.kte") != nullptr; });
}

TEST_F(CountsTest, LoadOfAnAnimation) {
    formats::Animation animation;
    animation.bones.assign(20, "bone");
    animation.frames.assign(50, std::vector<formats::Keyframe>(20));
    folder.write("a.kta", formats::writeKta(animation));
    KTANIM::setKTAPath(folder.prefix().c_str());
    EXPECT_SYSTEM_CALLS(11, [] { return (new KTANIM)->load("a.kta"); });
}

TEST_F(CountsTest, LoadOfAnInterface) {
    std::string text = "<root>";
    for (int i = 0; i < 100; ++i) text += "<button><name value=\"a\"/><position x=\"1\" y=\"2\"/></button>";
    const std::string path = folder.write("a.xml", text + "</root>");
    EXPECT_SYSTEM_CALLS(11, [path] { return KELTRA::loadXML(path.c_str()) != nullptr; });
}

}  // namespace
}  // namespace keltra::test

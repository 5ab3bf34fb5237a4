// SPDX-License-Identifier: Zlib
// Lantern Walk as a whole: the scripted player finishes it, within the means of the devices; five of its
// moments are compared with their pictures.

#include <SDL.h>
#include <keltra/keltra.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>

#include "games/lantern_walk/player.h"
#include "tests/support/engine_fixture.h"
#include "tests/support/engine_heap.h"

namespace keltra::test {
namespace {

using lantern_walk::Game;
using lantern_walk::GameOptions;
using lantern_walk::Means;
using lantern_walk::MothMood;
using lantern_walk::Player;
using lantern_walk::Screen;

constexpr float kStep = 0.1f;
constexpr int kMostFrames = 6000;
constexpr int kMostTriangles = 3000;
constexpr int kMostSkinned = 20000;  // vertices times their influences
constexpr unsigned kMostTexture = 8u << 20;
constexpr std::size_t kMostMemory = 4u << 20;  // beside them
constexpr Tolerance kTolerance = {48, 0.35};

// Of one frame: those of the scene, up to the projection of the interface, and all.
struct Triangles {
    int scene = 0, all = 0;
};

Triangles countTriangles() {
    Triangles count;
    for (const Call &call : GlRecorder::calls()) {
        if (call.name == "glOrthox") count.scene = count.all;
        if (call.name != "glDrawElements" && call.name != "glDrawArrays") continue;
        const int corners = static_cast<int>(call.arguments[call.name == "glDrawElements" ? 1 : 2]);
        if (call.arguments[0] == GL_TRIANGLES) count.all += corners / 3;
        if (call.arguments[0] == GL_TRIANGLE_STRIP) count.all += corners - 2;
    }
    return count;
}

// Counts those of the game, the kit, the engine and the standard library; the driver and the recorder have
// their own.
class OwnAllocations final : public AllocationWatch {
   public:
    OwnAllocations() { install(this); }
    ~OwnAllocations() { install(nullptr); }
    bool mustFail(const void *) override { return false; }
    void allocated(void *, const void *caller) override {
        Dl_info info;
        if (!dladdr(caller, &info) || !info.dli_fname) return;
        const char *const function = info.dli_sname ? info.dli_sname : "";
        const bool isOwn = std::strstr(info.dli_fname, "libkeltra") ||
                           std::strstr(info.dli_fname, "libstdc++") ||
                           std::strncmp(function, "_ZN12lantern_walk", 17) == 0 ||
                           std::strncmp(function, "_ZNK12lantern_walk", 18) == 0;
        if (!isOwn) return;
        ++count;
        last = function;
    }
    void released(void *) override {}

    int count = 0;
    const char *last = "";
};

class LanternWalkTest : public EngineTest {
   protected:
    void prepare(KTSETTINGS &wanted) override {
        wanted.setKTEPath(KELTRA_GAME_DATA);
        wanted.setKTAPath(KELTRA_GAME_DATA);
        wanted.setTexturePath(KELTRA_GAME_DATA);
        wanted.setFontPath(KELTRA_GAME_DATA);
    }
    void SetUp() override {
        EngineTest::SetUp();
        std::srand(1);  // emitters use `rand`
        options.data = KELTRA_GAME_DATA;
        options.step = kStep;
        options.isFilmShown = false;
        game.reset(new Game);
    }
    void TearDown() override {
        GlRecorder::setDrawing(true);
        game.reset();
        KTSETTINGS::landscape = false;
        EngineTest::TearDown();
        KELTRA::setKTEPath(nullptr);
        KTANIM::setKTAPath(nullptr);
        KTTEXTURE::setPath(nullptr);
    }

    /// One frame, in which `act` may use pen and keys. Drawn for the eye, or only counted.
    Image frame(bool isDrawn = false, const std::function<void(KTINPUT *)> &act = nullptr) {
        GlRecorder::clear();
        GlRecorder::setDrawing(isDrawn);
        // Noting the calls of a frame takes longer than making them.
        GlRecorder::setRecording(frames++ % 4 == 0);
        const bool ok = game->frame([&](const Game &shown, KTINPUT *input) {
            if (act)
                act(input);
            else if (isPlayed)
                player.play(shown, input);
        });
        EXPECT_TRUE(ok) << "a frame could not be drawn, or the GL has an error";
        // What is tapped is drawn once more, into one pixel.
        if (GlRecorder::isRecording() && GlRecorder::count("glReadPixels") == 0) {
            const Triangles count = countTriangles();
            most = {std::max(most.scene, count.scene), std::max(most.all, count.all)};
        }
        GlRecorder::setRecording(true);
        const Image picture = isDrawn ? captureFrame() : Image();
        expectNoGlError();
        EXPECT_TRUE(KELTRA::swap());
        mostTexture = std::max(mostTexture, KELTRA::getUsedVideoMemory());
        return picture;
    }
    /// Frames until it is true; false when it never is.
    bool playUntil(const std::function<bool()> &isThere) {
        for (int i = 0; i < kMostFrames; ++i) {
            if (isThere()) return true;
            frame();
        }
        return false;
    }
    void strike(int key) {
        frame(false, [key](KTINPUT *input) { input->putKey(key, 0, true); });
        frame(false, [key](KTINPUT *input) { input->putKey(key, 0, false); });
    }
    void expectMoment(const char *name) {
        EXPECT_TRUE(matchesGolden(frame(true), std::string("lantern_walk_") + name, kTolerance));
    }
    bool isWalking(int evening, float seconds) const {
        return game->getScreen() == Screen::kWalk && game->getWalk().getEveningNumber() == evening &&
               game->getScreenTime() > seconds;
    }
    /// Goes on with a walk as a saved game tells it.
    void resume(const lantern_walk::Snapshot &walk) {
        options.save =
            (std::filesystem::temp_directory_path() / ("lantern_walk_" + std::to_string(getpid()))).string();
        lantern_walk::SavedGame saved;
        saved.hasWalk = true;
        saved.walk = walk;
        ASSERT_TRUE(lantern_walk::saveGame(options.save, saved));
        ASSERT_TRUE(game->start(options));
        std::filesystem::remove(options.save);
        isPlayed = false;
        frame();
        strike(SDLK_RIGHT);
        strike(SDLK_RETURN);
        ASSERT_EQ(game->getScreen(), Screen::kWalk);
        while (game->getScreenTime() < 4.0f) frame();
    }
    /// All evenings; seconds from the beginning to the last page, those of the evenings in `evenings`.
    float finishWith(const Player &somebody, float *evenings) {
        player = somebody;
        *evenings = 0.0f;
        if (!game->start(options)) return 0.0f;
        float seconds = 0.0f;
        for (int i = 0; i < kMostFrames && game->getScreen() != Screen::kEnd; ++i) {
            frame();
            seconds += kStep;
            if (game->getScreen() == Screen::kWalk) *evenings += kStep;
        }
        int stars = 0;
        for (int each : game->getSaved().stars) stars += each;
        std::printf("%.0f seconds, %.0f of them in the garden; %d taps, %d keys, %d stars\n", double(seconds),
                    double(*evenings), player.getTaps(), player.getKeys(), stars);
        return game->getScreen() == Screen::kEnd ? seconds : 0.0f;
    }
    bool isMothCircling() const {
        for (int i = 0; i < game->getWalk().getMoths().getCount(); ++i) {
            if (game->getWalk().getMoths().get(i).mood == MothMood::kCircling) return true;
        }
        return false;
    }
    GameOptions options;
    std::unique_ptr<Game> game;
    Player player;
    bool isPlayed = true;
    Triangles most;
    int frames = 0;
    unsigned mostTexture = 0;
};

TEST_F(LanternWalkTest, ThePlayerFinishesThreeEvenings) {
    ASSERT_TRUE(game->start(options));
    frame();
    expectMoment("title");
    ASSERT_TRUE(playUntil([this] { return game->getScreen() == Screen::kWon; }));
    for (int i = 0; i < 3; ++i) frame();
    expectMoment("won");
    ASSERT_TRUE(
        playUntil([this] { return game->getScreen() == Screen::kEnd && game->getScreenTime() > 3.0f; }));
    expectMoment("end");
    for (int stars : game->getSaved().stars) EXPECT_GE(stars, 1);
    EXPECT_GT(player.getTaps(), 20);
    EXPECT_GT(player.getKeys(), 4);
    EXPECT_LE(most.scene, kMostTriangles);
    EXPECT_LE(mostTexture, kMostTexture);
    RecordProperty("triangles", most.scene);
    RecordProperty("textures", static_cast<int>(mostTexture));
    std::printf("at most %d triangles and %d of the interface, %u bytes of textures; %d taps, %d keys\n",
                most.scene, most.all - most.scene, mostTexture, player.getTaps(), player.getKeys());
}

// Whatever is in view: all that was loaded, while sparks burst from a lantern.
TEST_F(LanternWalkTest, TheWholeGardenIsWithinTheMeans) {
    ASSERT_TRUE(game->start(options));
    ASSERT_TRUE(playUntil([this] { return game->getWalk().countLit() == 1; }));
    int triangles = 0, skinned = 0, corners = 0;
    for (KTNODE *node = KTNODE::getFirstNode(); node != nullptr; node = node->getNextNode()) {
        if (node->isOfClass(KT_EMITTER))
            corners += 4 * static_cast<KTEMITTER *>(node)->getNumberOfParticles();
        if (!node->isOfClass(KT_MESH)) continue;
        const KTMESH *const mesh = static_cast<KTMESH *>(node);
        triangles += static_cast<int>(mesh->getNumberOfFaces());
        skinned += static_cast<int>(mesh->getNumberOfVertices() * mesh->numberOfInfluences);
    }
    std::printf("%d triangles of meshes, %d of particles; %d skinned vertices, times influences\n", triangles,
                corners / 3, skinned);
    EXPECT_GT(corners, 40);
    EXPECT_LE(triangles + corners / 3, kMostTriangles);
    EXPECT_GT(skinned, 0);
    EXPECT_LE(skinned, kMostSkinned);
}

TEST_F(LanternWalkTest, TheThirdEvening) {
    lantern_walk::Snapshot walk;
    walk.evening = 2;
    walk.lit = 0x2db;
    walk.left = 60.0f;
    walk.oil = 0.55f;
    walk.at = {0.2f, 8.0f};
    resume(walk);
    expectMoment("walk");
}

TEST_F(LanternWalkTest, AMothAtALantern) {
    lantern_walk::Snapshot walk;
    walk.evening = 1;
    walk.lit = 0x08;
    walk.left = 100.0f;
    walk.oil = 0.9f;
    walk.at = {0.6f, 1.6f};
    resume(walk);
    ASSERT_TRUE(playUntil([this] { return isMothCircling(); }));
    for (int i = 0; i < 15; ++i) frame();
    expectMoment("moth");
}

// These know where all is, and read nothing: others take longer.
TEST_F(LanternWalkTest, ThePenAloneFinishesIt) {
    float evenings = 0.0f;
    EXPECT_GT(finishWith(Player(Means::kPen), &evenings), 60.0f);
    EXPECT_EQ(player.getKeys(), 0);
}

TEST_F(LanternWalkTest, ANewcomerTakesFiveToTenMinutes) {
    float evenings = 0.0f;
    options.isFilmShown = true;
    const float seconds = finishWith(Player::newcomer(), &evenings);
    EXPECT_GT(seconds, 300.0f);
    EXPECT_LT(seconds, 600.0f);
}

TEST_F(LanternWalkTest, APenThatIsHeldLeadsAndTapsNothing) {
    lantern_walk::Snapshot walk;
    walk.evening = 1;
    walk.left = 100.0f;
    walk.oil = 0.9f;
    walk.at = {0.6f, 1.6f};
    resume(walk);
    const auto hold = [](KTINPUT *input) { input->putPen(120, 285, true); };
    for (int i = 0; i < 15; ++i) frame(false, hold);
    EXPECT_GT(game->getWalk().getPlace().z, 3.0f) << "toward the viewer";
    EXPECT_FALSE(game->getWalk().hasGoal());
    frame(false, [](KTINPUT *input) { input->putPen(120, 285, false); });
    for (int i = 0; i < 3; ++i) frame();
    EXPECT_FALSE(game->getWalk().hasGoal());
    const float z = game->getWalk().getPlace().z;
    for (int i = 0; i < 10; ++i) frame();
    EXPECT_NEAR(game->getWalk().getPlace().z, z, 0.01f) << "he stands";
}

TEST_F(LanternWalkTest, TheWellIsTappedFromBehindToo) {
    lantern_walk::Snapshot walk;
    walk.evening = 1;
    walk.left = 100.0f;
    walk.oil = 0.1f;
    walk.at = {5.1f, -4.5f};
    resume(walk);
    R3XVECTOR2D point;
    const R3XVECTOR3D edge(lantern_walk::kWell.x, 0.0f, lantern_walk::kWell.z - 1.5f);
    ASSERT_TRUE(game->getWorld().getView().toScreen(edge, &point));
    const auto tap = [&](bool isDown) {
        frame(false, [&](KTINPUT *input) {
            input->putPen(static_cast<int>(point.x), static_cast<int>(point.y), isDown);
        });
    };
    tap(true);
    tap(false);
    for (int i = 0; i < 20; ++i) frame();
    EXPECT_GT(game->getWalk().getOil(), 0.9f);
}

TEST_F(LanternWalkTest, TheKeysAloneFinishIt) {
    float evenings = 0.0f;
    EXPECT_GT(finishWith(Player(Means::kKeys), &evenings), 60.0f);
    EXPECT_GT(evenings, 60.0f);
    EXPECT_EQ(player.getTaps(), 0);
}

TEST_F(LanternWalkTest, InLandscapeItIsFinishedToo) {
    KTSETTINGS::landscape = true;
    float evenings = 0.0f;
    EXPECT_GT(finishWith(Player(), &evenings), 60.0f);
    EXPECT_LE(most.scene, kMostTriangles);
}

TEST_F(LanternWalkTest, IsLeftAndGoneOnWith) {
    options.save =
        (std::filesystem::temp_directory_path() / ("lantern_walk_left_" + std::to_string(getpid()))).string();
    std::filesystem::remove(options.save);
    ASSERT_TRUE(game->start(options));
    ASSERT_TRUE(playUntil([this] { return game->getWalk().countLit() == 2 && !game->getWalk().hasGoal(); }));
    isPlayed = false;
    frame();
    strike(SDLK_ESCAPE);
    ASSERT_EQ(game->getScreen(), Screen::kPause);
    const float left = game->getWalk().getTimeLeft();
    for (int i = 0; i < 10; ++i) frame();
    EXPECT_EQ(game->getWalk().getTimeLeft(), left) << "the dusk waits";
    strike(SDLK_DOWN);
    strike(SDLK_DOWN);
    strike(SDLK_RETURN);
    ASSERT_EQ(game->getScreen(), Screen::kTitle);
    EXPECT_TRUE(std::filesystem::exists(options.save));

    game.reset(new Game);
    ASSERT_TRUE(game->start(options));
    frame();
    strike(SDLK_RIGHT);
    strike(SDLK_RETURN);
    ASSERT_EQ(game->getScreen(), Screen::kWalk);
    EXPECT_EQ(game->getWalk().countLit(), 2);
    EXPECT_NEAR(game->getWalk().getTimeLeft(), left, 1.0f);
    std::filesystem::remove(options.save);
}

TEST_F(LanternWalkTest, ALostEveningIsTriedAgain) {
    options.step = 0.5f;
    ASSERT_TRUE(game->start(options));
    frame();
    strike(SDLK_RETURN);
    ASSERT_EQ(game->getScreen(), Screen::kWalk);
    isPlayed = false;
    ASSERT_TRUE(playUntil([this] { return game->getScreen() == Screen::kLost; }));
    frame();
    strike(SDLK_RETURN);
    EXPECT_EQ(game->getScreen(), Screen::kWalk);
    EXPECT_EQ(game->getWalk().getEveningNumber(), 0);
    EXPECT_GT(game->getWalk().getTimeLeft(), 100.0f);
}

TEST_F(LanternWalkTest, TheTitleTurnsThePictureAndEndsTheGame) {
    ASSERT_TRUE(game->start(options));
    isPlayed = false;
    frame();
    strike(SDLK_DOWN);  // past "Continue", which has nothing to go on with
    strike(SDLK_RETURN);
    EXPECT_TRUE(KTSETTINGS::isSDLLandscape());
    EXPECT_TRUE(game->getSaved().isLandscape);
    frame();
    strike(SDLK_UP);  // around to the last
    strike(SDLK_RETURN);
    EXPECT_TRUE(game->isOver());
}

TEST_F(LanternWalkTest, TheFilmIsSkippedByATap) {
    if (!std::filesystem::exists(std::string(KELTRA_GAME_DATA) + "intro.m1v"))
        GTEST_SKIP() << "there is no film";
    options.isFilmShown = true;
    ASSERT_TRUE(game->start(options));
    isPlayed = false;
    for (int i = 0; i < 5; ++i) frame();
    ASSERT_EQ(game->getScreen(), Screen::kFilm);
    frame(false, [](KTINPUT *input) { input->putPen(120, 160, true); });
    frame(false, [](KTINPUT *input) { input->putPen(120, 160, false); });
    frame();
    EXPECT_EQ(game->getScreen(), Screen::kTitle);
}

TEST_F(LanternWalkTest, TheFilmEndsByItself) {
    options.isFilmShown = true;
    ASSERT_TRUE(game->start(options));
    isPlayed = false;
    EXPECT_TRUE(playUntil([this] { return game->getScreen() == Screen::kTitle; }));
}

TEST_F(LanternWalkTest, TakesLittleMemory) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    ASSERT_TRUE(KELTRA::free());
    const auto heap = std::make_unique<EngineHeap>();
    ASSERT_TRUE(KELTRA::init(&settings));
    ASSERT_TRUE(game->start(options));
    std::size_t held = 0;
    for (int i = 0; i < 60; ++i) {
        frame();
        held = std::max(held, heap->held - EngineHeap::bitmaps());
    }
    std::printf("%zu KB beside textures\n", held / 1024);
    EXPECT_LE(held, kMostMemory);
    EXPECT_GT(held, kMostMemory / 16) << "too little was counted";
    game.reset();
    EXPECT_TRUE(KELTRA::free());
}

TEST_F(LanternWalkTest, AllocatesNothingInAFrame) {
    if (!Allocations::canFail()) GTEST_SKIP() << "a sanitizer owns malloc";
    lantern_walk::Snapshot walk;
    walk.evening = 2;
    walk.lit = 0x2db;
    walk.left = 60.0f;
    walk.oil = 0.55f;
    walk.at = {0.2f, 8.0f};
    OwnAllocations allocations;
    resume(walk);
    EXPECT_GT(allocations.count, 100) << "loading allocates, and is counted";
    allocations.count = 0;
    const GlRecorder::Pause pause;
    for (int i = 0; i < 30; ++i) {
        EXPECT_TRUE(game->frame([i](const Game &, KTINPUT *input) {
            if (i == 4) input->putKey(SDLK_UP, 0, true);
        }));
        EXPECT_TRUE(KELTRA::swap());
    }
    EXPECT_GT(game->getWalk().getSpeed(), 0.0f);
    EXPECT_EQ(allocations.count, 0) << allocations.last;
}

}  // namespace
}  // namespace keltra::test

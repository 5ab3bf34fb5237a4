// SPDX-License-Identifier: Zlib
// The viewer as a program: what it prints, what it leaves, how it ends.

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <set>
#include <thread>

#include "tests/support/image.h"
#include "tests/support/temp_file.h"

namespace fs = std::filesystem;
using keltra::test::Image;
using keltra::test::loadPng;
using keltra::test::readFile;
using keltra::test::TempFolder;

namespace {

const std::string kData = KELTRA_EXAMPLE_DATA;

struct Ended {
    int status = -1;
    std::string out, err;
};

class Program : public ::testing::Test {
   protected:
    void SetUp() override {
        fs::create_directory(folder.path("tmp"));
        setenv("TMPDIR", folder.path("tmp").c_str(), 1);
    }
    void TearDown() override {
        EXPECT_TRUE(fs::is_empty(folder.path("tmp"))) << "a temporary folder was left behind";
        unsetenv("TMPDIR");
    }

    pid_t launch(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), KELTRA_VIEW_PROGRAM);
        std::vector<char *> list;
        for (std::string &argument : arguments) list.push_back(&argument[0]);
        list.push_back(nullptr);
        const pid_t child = fork();
        if (child == 0) {
            if (chdir(from.c_str()) != 0) _exit(127);
            const int out = open(folder.path("out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            const int err = open(folder.path("err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
            dup2(out, 1);
            dup2(err, 2);
            execv(list[0], list.data());
            _exit(127);
        }
        return child;
    }
    Ended finish(pid_t child) {
        Ended run;
        int status = 0;
        waitpid(child, &status, 0);
        run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
        run.out = text("out");
        run.err = text("err");
        return run;
    }
    Ended view(const std::vector<std::string> &arguments) { return finish(launch(arguments)); }

    std::string text(const char *name) {
        const std::vector<std::uint8_t> bytes = readFile(folder.path(name));
        return {bytes.begin(), bytes.end()};
    }
    // Failed with one line about that file, and wrote nothing else.
    void expectRefused(const Ended &run, const std::string &about) {
        EXPECT_EQ(run.status, 1) << run.err;
        EXPECT_EQ(run.err.find("keltra-view: " + about), 0u) << run.err;
        EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
        EXPECT_EQ(run.out, "");
    }

    TempFolder folder;
    std::string from = ".";  // the folder that the program is started in
};

// The environment names no display meanwhile.
class WithoutDisplay {
   public:
    WithoutDisplay() : display(getenv("DISPLAY") ? getenv("DISPLAY") : "") { unsetenv("DISPLAY"); }
    ~WithoutDisplay() { setenv("DISPLAY", display.c_str(), 1); }
    WithoutDisplay(const WithoutDisplay &) = delete;
    WithoutDisplay &operator=(const WithoutDisplay &) = delete;

   private:
    std::string display;
};

int colorsOf(const Image &image) {
    std::set<std::array<int, 3>> colors;
    for (int y = 0; y < image.height; ++y)
        for (int x = 0; x < image.width; ++x) colors.insert(image.at(x, y));
    return static_cast<int>(colors.size());
}

}  // namespace

TEST_F(Program, SavesThePictureOfTheLastFrame) {
    for (const char *name : {"scene.kte", "figure.kte"}) {
        const std::string picture = folder.path(std::string(name) + ".png");
        const Ended run = view({kData + name, "--frames", "5", "--shot", picture});
        EXPECT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.err, "");
        const Image image = loadPng(picture);
        EXPECT_EQ(image.width, 240);
        EXPECT_EQ(image.height, 320);
        EXPECT_GT(colorsOf(image), 100) << name;
    }
}

TEST_F(Program, RepeatsExactly) {
    for (const char *name : {"one.png", "two.png"}) {
        ASSERT_EQ(view({kData + "figure.kte", "--clip", kData + "figure_walk.kta", "--frames", "7", "--shot",
                        folder.path(name)})
                      .status,
                  0);
    }
    EXPECT_FALSE(readFile(folder.path("one.png")).empty());
    EXPECT_EQ(readFile(folder.path("one.png")), readFile(folder.path("two.png")));
}

TEST_F(Program, MakesATurntable) {
    const std::string pictures = folder.path("deep/pictures");
    const Ended run =
        view({kData + "figure.kte", "--clip", kData + "figure_walk.kta", "--turntable", pictures});
    EXPECT_EQ(run.status, 0) << run.err;
    std::vector<Image> images;
    for (int i = 0; i < 12; ++i) {
        const std::string number = std::to_string(i);
        images.push_back(loadPng(pictures + (i < 10 ? "/0" : "/") + number + ".png"));
        ASSERT_EQ(images.back().width, 240) << i;
        EXPECT_GT(colorsOf(images.back()), 150) << i;
        for (int j = 0; j < i; ++j)
            EXPECT_GT(compare(images[static_cast<std::size_t>(i)], images[static_cast<std::size_t>(j)]).mean,
                      0.5)
                << i << " and " << j;
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(pictures), fs::directory_iterator()), 12);
}

TEST_F(Program, ConvertsAModel) {
    const std::string model = folder.write("tri.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    const Ended run = view({model, "--frames", "2", "--shot", folder.path("tri.png")});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(loadPng(folder.path("tri.png")).width, 240);
}

TEST_F(Program, WithoutANumberOfFramesThePictureIsTheTwentyFifth) {
    const std::string model = kData + "figure.kte", clip = kData + "figure_walk.kta";
    ASSERT_EQ(view({model, "--clip", clip, "--shot", folder.path("default.png")}).status, 0);
    ASSERT_EQ(view({model, "--clip", clip, "--frames", "25", "--shot", folder.path("25.png")}).status, 0);
    ASSERT_EQ(view({model, "--clip", clip, "--frames", "12", "--shot", folder.path("12.png")}).status, 0);
    EXPECT_EQ(readFile(folder.path("default.png")), readFile(folder.path("25.png")));
    EXPECT_NE(readFile(folder.path("default.png")), readFile(folder.path("12.png")));
}

TEST_F(Program, TakesPathsFromTheFolderThatItIsStartedIn) {
    from = folder.path("models");
    fs::create_directory(from);
    fs::copy_file(kData + "figure.kte", from + "/figure.kte");
    fs::copy_file(kData + "figure_figure_d.tga", from + "/figure_figure_d.tga");
    fs::copy_file(kData + "figure_walk.kta", folder.path("walk.kta"));
    const Ended run = view({"figure.kte", "--clip", "../walk.kta", "--frames", "3", "--shot", "a.png"});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err, "") << "the texture is found";
    EXPECT_GT(colorsOf(loadPng(from + "/a.png")), 100);
}

TEST_F(Program, PrintsWhatTheEngineGoesOnWithout) {
    const std::string model = folder.path("figure.kte");
    fs::copy_file(kData + "figure.kte", model);  // and no texture
    const Ended run = view({model, "--frames", "2", "--shot", folder.path("a.png")});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err.find("keltra-view: "), 0u) << run.err;
    EXPECT_NE(run.err.find("figure_figure_d.tga"), std::string::npos) << run.err;
    EXPECT_NE(run.err.find("the file does not exist"), std::string::npos) << run.err;
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
    EXPECT_EQ(loadPng(folder.path("a.png")).width, 240);
}

TEST_F(Program, NeedsATemporaryFolder) {
    setenv("TMPDIR", folder.path("none").c_str(), 1);
    const Ended run = view({kData + "figure.kte", "--frames", "1"});
    expectRefused(run, folder.path("none"));
}

TEST_F(Program, RefusesWhatIsNotAFile) {
    fs::create_directory(folder.path("folder.kte"));
    expectRefused(view({folder.path("folder.kte"), "--frames", "1"}),
                  folder.path("folder.kte") + ": is a folder");
    ASSERT_EQ(mkfifo(folder.path("pipe.kte").c_str(), 0600), 0);
    expectRefused(view({folder.path("pipe.kte"), "--frames", "1"}),
                  folder.path("pipe.kte") + ": is not a regular file");
    expectRefused(view({"", "--frames", "1"}), ": No such file");
}

TEST_F(Program, RefusesWhatItCannotShow) {
    expectRefused(view({folder.path("none.kte"), "--frames", "1"}),
                  folder.path("none.kte") + ": No such file");
    const std::string damaged = folder.write("bad.kte", "KTE file v1.6a damaged");
    expectRefused(view({damaged, "--frames", "1"}), damaged + ": ");
    const std::string noise = folder.write("noise.glb", "glTF nothing");
    expectRefused(view({noise, "--frames", "1"}), noise + ": ");
    const std::string clip = folder.write("bad.kta", "KTA file v1.6a");
    expectRefused(view({kData + "figure.kte", "--clip", clip, "--frames", "1"}),
                  clip + ": is not an animation");
    expectRefused(view({kData + "figure.kte", "--panel", damaged, "--frames", "1"}), damaged + ": ");
}

TEST_F(Program, SaysWhenAPictureCannotBeWritten) {
    const std::string away = folder.path("nowhere/a.png");
    expectRefused(view({kData + "figure.kte", "--frames", "1", "--shot", away}), away + ": No such file");
    const std::string file = folder.write("file", "x");
    expectRefused(view({kData + "figure.kte", "--turntable", file + "/pictures"}), file + "/pictures: ");
    EXPECT_EQ(readFile(file).size(), 1u);
}

TEST_F(Program, RefusesWhatItIsNotAskedFor) {
    const std::vector<std::vector<std::string>> kCases = {
        {},
        {"a", "b"},
        {"a", "--frames", "0"},
        {"a", "--frames", "many"},
        {"a", "--wrong"},
        {"a", "--turntable", "d", "--frames", "2"},
        {"a", "--turntable", "d", "--shot", "x.png"},
    };
    for (const std::vector<std::string> &arguments : kCases) {
        const Ended run = view(arguments);
        EXPECT_EQ(run.status, 2);
        EXPECT_NE(run.err, "");
    }
}

TEST_F(Program, TellsItsVersionAndItsOptions) {
    const Ended version = view({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out.find("keltra-view "), 0u);
    const Ended help = view({"--help"});
    EXPECT_EQ(help.status, 0);
    for (const char *word : {"--clip", "--frames", "--shot", "--turntable", "--panel", "Examples"})
        EXPECT_NE(help.out.find(word), std::string::npos) << word;
}

TEST_F(Program, NeedsADisplay) {
    const std::string display = getenv("DISPLAY") ? getenv("DISPLAY") : "";
    setenv("DISPLAY", ":987", 1);
    const Ended run = view({kData + "figure.kte", "--frames", "1"});
    setenv("DISPLAY", display.c_str(), 1);
    expectRefused(run, "no display");
}

TEST_F(Program, DrawsPicturesInMemoryWithoutADisplay) {
    const WithoutDisplay without;
    const Ended run = view({kData + "figure.kte", "--frames", "3", "--shot", folder.path("own screen.png")});
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err, "");
    const Image image = loadPng(folder.path("own screen.png"));
    EXPECT_EQ(image.width, 240);
    EXPECT_EQ(image.height, 320);
    EXPECT_GT(colorsOf(image), 100);
    expectRefused(view({folder.path("none.kte"), "--frames", "1"}),
                  folder.path("none.kte") + ": No such file");
}

TEST_F(Program, ShowsNothingWithoutADisplay) {
    const WithoutDisplay without;
    expectRefused(view({kData + "figure.kte"}), "no display: only pictures");
}

TEST_F(Program, SaysThatItsOwnScreenDoesNotStart) {
    const WithoutDisplay without;
    const std::string path = getenv("PATH");
    const std::string tools = folder.path("tools");
    fs::create_directory(tools);
    for (const char *tool : {"sh", "mktemp", "mkfifo", "rm", "cat", "env"})
        fs::create_symlink(fs::canonical(fs::path("/bin") / tool), fs::path(tools) / tool);
    setenv("PATH", tools.c_str(), 1);  // no Xvfb
    const Ended run = view({kData + "figure.kte", "--frames", "1"});
    setenv("PATH", path.c_str(), 1);
    EXPECT_EQ(run.status, 125);
    EXPECT_NE(run.err.find("keltra-screen: the screen does not start"), std::string::npos) << run.err;
}

TEST_F(Program, LeavesNothingBehindWhenItIsStopped) {
    for (int signal : {SIGINT, SIGTERM}) {
        const pid_t child = launch({kData + "figure.kte"});
        // Its temporary folder shows that it is under way.
        for (int i = 0; i < 400 && fs::is_empty(folder.path("tmp")); ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(25));
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        kill(child, signal);
        const Ended run = finish(child);
        EXPECT_EQ(run.status, 128 + signal) << run.err;
        EXPECT_EQ(run.err, "");
        EXPECT_TRUE(fs::is_empty(folder.path("tmp")));
    }
}

TEST_F(Program, LeavesNothingBehindWhenItIsStoppedOnItsOwnScreen) {
    const WithoutDisplay without;
    const pid_t child = launch({kData + "figure.kte", "--frames", "1000000"});
    // The screen's temporary folder comes first, then the viewer's.
    const auto entries = [this] {
        return std::distance(fs::directory_iterator(folder.path("tmp")), fs::directory_iterator());
    };
    for (int i = 0; i < 800 && entries() < 2; ++i) std::this_thread::sleep_for(std::chrono::milliseconds(25));
    EXPECT_EQ(entries(), 2);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    kill(child, SIGTERM);
    EXPECT_EQ(finish(child).status, 128 + SIGTERM);
    EXPECT_TRUE(fs::is_empty(folder.path("tmp")));
}

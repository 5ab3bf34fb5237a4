// SPDX-License-Identifier: Zlib
#ifndef KELTRA_EXAMPLES_SUPPORT_EXAMPLE_H
#define KELTRA_EXAMPLES_SUPPORT_EXAMPLE_H

// Shared by all examples: the command line, start and stop, and the end of a frame with a picture of the
// last.

#include <cstddef>
#include <string>

class KTCAMERA;
class KTFONT;
class KTINPUT;
class KTLIGHT;
class KTMATERIAL;
class KTMESH;
class KTNODE;
class KTTEXTURE;

namespace example {

constexpr float kFrameTime = 1.0f / 30.0f;

struct Options {
    int frames = 0;    // frames to draw; 0: until the window is closed
    float step = 0;    // seconds of a frame of a run that must repeat exactly: one with a number of frames
    std::string shot;  // where to save the last frame; empty: nowhere
    std::string data;  // folder of the sample files, with a slash at its end
};

// Reads --frames N, --shot FILE.png and --data FOLDER. A shot without a number of frames is taken after 60.
// False when the program is to end with `*exitCode`: after --help or a mistake, which has been reported.
bool parse(int argc, char **argv, const char *description, Options *options, int *exitCode);

// Starts the engine with the folder of the sample files as that of all files, and with the settings file of
// that name in it, null for none. False, with a message, when it does not start.
bool start(const Options &options, const char *settingsFile = nullptr);

// Loads a scene of the sample files and makes its node "sky" the sky box. Null without either.
KTNODE *loadWithSky(const char *file);

// The scene of 02_scene, with its sky, its lights and smooth textures. Null without its file.
KTNODE *loadScene();

// Lets all textures that exist be drawn smoothly.
void smoothTextures();

// A texture of the sample files, drawn smoothly and owned by the list of textures. Without it the program
// ends with a message, as do the next ones without memory: the lessons that call them are about something
// else.
KTTEXTURE *loadTexture(const char *file);

// A font of the sample files, NAME.tga with the kerning file NAME.txt, owned by the list of fonts.
KTFONT *loadFont(const char *name = "font");

// Puts a camera at a place, (x, y, z), and lets it look at a fixed target.
void lookAt(KTCAMERA *camera, float x, float y, float z, float targetX, float targetY, float targetZ);

// Gives a mesh its material (null for none), links it below a node, puts it at a place, and returns it.
KTMESH *place(KTMESH *mesh, KTMATERIAL *material, KTNODE *parent, float x, float y, float z);

// A new light below a node, of an RGB colour and a reach: where it has half of its strength, 0 for
// everywhere.
KTLIGHT *addLight(KTNODE *parent, float r, float g, float b, float reach);

struct PenStep {
    int frame, x, y, pressed;
    char key;  // 0 for none
};
// Passes on the pen, and the key, of the steps of that frame, for runs with a given number of frames.
void playSteps(const PenStep *steps, std::size_t count, int frame, KTINPUT *input);

// Destroys a node with all below it: destroying one alone leaves its children without a parent.
void destroyTree(KTNODE *root);

// Ends the frame just drawn: saves the picture of the last one, swaps, asks the GL for errors. False once the
// run is over; then `*ok` is whether it succeeded; a message says what failed.
bool endFrame(const Options &options, int frame, bool *ok);

// Saves the frame just drawn, before it is swapped, and prints where. False, with a message, when it cannot.
bool saveShot(const std::string &path);

// Stops the engine; the exit code of a program that was `ok`.
int stop(bool ok);

}  // namespace example

#endif

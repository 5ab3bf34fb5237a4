// SPDX-License-Identifier: Zlib
#include "tests/headers/architecture.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

namespace keltra::test {
namespace {

constexpr char kHighestRoom[] = "engine";  // of the library; those above it include what they like

// Places in the picture, in pixels.
constexpr int kWidth = 1180, kLeft = 190, kRoomWidth = 640, kTop = 190, kGap = 12;
constexpr int kNameWidth = 140, kChipHeight = 24, kChipGap = 6, kPadding = 13;
constexpr int kFirstShaft = kLeft + kRoomWidth + 52, kShaftStep = 34;
constexpr int kFirstWalk = 50, kWalkStep = 42;
constexpr int kLetter = 7;  // the width of one, in a chip

// One for each room from the ground up, and for each walk.
const char *const kRoomColors[] = {"#8d99ae", "#6c8ead", "#4f9d9a", "#6aa84f", "#c7a53c",
                                   "#d98943", "#c8644f", "#a4588c", "#6c5b9e"};
const char *const kWalkColors[] = {"#d1495b", "#2e86ab", "#3a7d44"};

struct Chip {
    std::string text;
    int x, y, width;
};

struct Floor {
    int room;  // its index in the table
    int top, height;
    std::vector<Chip> chips;
    std::set<int> uses;  // rooms
    int middle() const { return top + height / 2; }
};

const char *colorOf(int room) { return kRoomColors[room % 9]; }

int shaftOf(int room) { return kFirstShaft + room * kShaftStep; }

int highestRoom(const IncludeGraph &graph) {
    const std::vector<Room> &rooms = graph.rooms();
    for (std::size_t i = 0; i < rooms.size(); ++i)
        if (rooms[i].name == kHighestRoom) return static_cast<int>(i);
    return -1;
}

/// The names of a room's sources, a source and its headers as one.
std::vector<std::string> unitsOf(const IncludeGraph &graph, int room) {
    std::set<std::string> names;
    for (const std::string &file : graph.files())
        if (graph.roomOf(file) == room) {
            const std::string unit = graph.unitOf(file);
            names.insert(unit.substr(unit.rfind('/') + 1));
        }
    return {names.begin(), names.end()};
}

/// Lays the chips of a room out in lines; the floor gets its height.
void layOut(Floor &floor, const std::vector<std::string> &names) {
    const int left = kLeft + kNameWidth, right = kLeft + kRoomWidth - kPadding;
    int x = left, y = floor.top + kPadding;
    for (const std::string &name : names) {
        const int width = static_cast<int>(name.size()) * kLetter + 16;
        if (x + width > right && x > left) {
            x = left;
            y += kChipHeight + kChipGap;
        }
        floor.chips.push_back({name, x, y, width});
        x += width + kChipGap;
    }
    floor.height = y + kChipHeight + kPadding - floor.top;
}

std::vector<Floor> floorsOf(const IncludeGraph &graph) {
    std::vector<Floor> floors;
    int top = kTop;
    for (int room = highestRoom(graph); room >= 0; --room) {
        Floor floor = {room, top, 0, {}, {}};
        layOut(floor, unitsOf(graph, room));
        for (const Include &include : graph.includes())
            if (graph.roomOf(include.from) == room && graph.roomOf(include.to) != room)
                floor.uses.insert(graph.roomOf(include.to));
        top += floor.height + kGap;
        floors.push_back(floor);
    }
    return floors;
}

class Drawing {
   public:
    void line(const std::string &path, const char *color, double width, const char *more = "") {
        out << "<path d=\"" << path << "\" fill=\"none\" stroke=\"" << color << "\" stroke-width=\"" << width
            << "\"" << more << "/>\n";
    }
    void box(int x, int y, int width, int height, int radius, const char *color, const char *more = "") {
        out << "<rect x=\"" << x << "\" y=\"" << y << "\" width=\"" << width << "\" height=\"" << height
            << "\" rx=\"" << radius << "\" fill=\"" << color << "\"" << more << "/>\n";
    }
    void dot(int x, int y, double radius, const char *color, const char *more = "") {
        out << "<circle cx=\"" << x << "\" cy=\"" << y << "\" r=\"" << radius << "\" fill=\"" << color << "\""
            << more << "/>\n";
    }
    void text(int x, int y, const std::string &words, int size, const char *color, const char *more = "") {
        out << "<text x=\"" << x << "\" y=\"" << y << "\" font-size=\"" << size << "\" fill=\"" << color
            << "\"" << more << ">" << words << "</text>\n";
    }
    std::ostringstream out;
};

std::string moveTo(int x, int y) { return "M" + std::to_string(x) + " " + std::to_string(y); }
std::string lineTo(int x, int y) { return "L" + std::to_string(x) + " " + std::to_string(y); }

/// The applications, above all rooms.
void drawRoof(Drawing &drawing) {
    const int middle = kLeft + kRoomWidth / 2;
    drawing.out << "<path d=\"M" << kLeft - 16 << " " << kTop - 14 << " L" << middle << " 44 L"
                << kLeft + kRoomWidth + 16 << " " << kTop - 14 << " Z\" fill=\"#3d405b\" "
                << "stroke=\"#3d405b\" stroke-width=\"10\" stroke-linejoin=\"round\"/>\n";
    const char *centered = " text-anchor=\"middle\" font-weight=\"600\"";
    drawing.text(middle, 118, "applications", 22, "#ffffff", centered);
    drawing.text(middle, 146, "tools, examples, tests, benchmarks", 14, "#d8d9e6", " text-anchor=\"middle\"");
}

void drawFloor(Drawing &drawing, const Floor &floor, const std::string &name) {
    const char *color = colorOf(floor.room);
    drawing.box(kLeft, floor.top, kRoomWidth, floor.height, 9, "#ffffff", " stroke=\"#d9d4c7\"");
    drawing.box(kLeft, floor.top, 9, floor.height, 4, color);
    drawing.text(kLeft + 24, floor.middle() + 6, name, 17, "#2b2d42", " font-weight=\"600\"");
    for (const Chip &chip : floor.chips) {
        drawing.box(chip.x, chip.y, chip.width, kChipHeight, 6, color, " fill-opacity=\"0.17\"");
        drawing.text(chip.x + chip.width / 2, chip.y + 16, chip.text, 12, "#2b2d42",
                     " text-anchor=\"middle\"");
    }
}

/// A shaft for each room that others include: dots where it is used, an arrow where it leads to.
void drawShafts(Drawing &drawing, const std::vector<Floor> &floors) {
    const int wall = kLeft + kRoomWidth;
    for (const Floor &user : floors) {
        if (user.uses.empty()) continue;
        const int end = shaftOf(*user.uses.rbegin());
        drawing.line(moveTo(wall, user.middle() - 6) + lineTo(end, user.middle() - 6), "#c9c4b7", 1.5);
    }
    for (const Floor &used : floors) {
        const int x = shaftOf(used.room), bottom = used.middle() + 8;
        const char *color = colorOf(used.room);
        bool isUsed = false;
        for (const Floor &user : floors) {
            if (!user.uses.count(used.room)) continue;
            if (!isUsed)
                drawing.line(moveTo(x, user.middle() - 6) + lineTo(x, bottom - 8) + "Q" + std::to_string(x) +
                                 " " + std::to_string(bottom) + " " + std::to_string(x - 8) + " " +
                                 std::to_string(bottom) + lineTo(wall + 13, bottom),
                             color, 3, " stroke-linecap=\"round\"");
            isUsed = true;
            drawing.dot(x, user.middle() - 6, 5.5, color, " stroke=\"#faf7f0\" stroke-width=\"2\"");
        }
        if (isUsed)
            drawing.out << "<path d=\"M" << wall + 3 << " " << bottom << " l12 -6.5 v13 Z\" fill=\"" << color
                        << "\"/>\n";
    }
}

/// A line for each walk, with a stop at each of its rooms.
void drawWalks(Drawing &drawing, const std::vector<Floor> &floors, const std::vector<Walk> &walks,
               const IncludeGraph &graph) {
    for (std::size_t i = 0; i < walks.size(); ++i) {
        const int x = kFirstWalk + static_cast<int>(i) * kWalkStep;
        const char *color = kWalkColors[i % 3];
        std::vector<int> stops;
        for (const Floor &floor : floors)
            for (const std::vector<std::string> &step : walks[i].steps)
                if (!step.empty() && graph.roomOf(step[0]) == floor.room) stops.push_back(floor.middle());
        if (stops.empty()) continue;
        drawing.line(moveTo(x, kTop - 14) + lineTo(x, stops.back()), color, 4,
                     " stroke-linecap=\"round\" stroke-opacity=\"0.85\"");
        for (int y : stops) {
            drawing.line(moveTo(x, y) + lineTo(kLeft - 3, y), color, 1.5,
                         " stroke-dasharray=\"2 4\" stroke-opacity=\"0.6\"");
            drawing.dot(x, y, 8, "#faf7f0",
                        (std::string(" stroke=\"") + color + "\" stroke-width=\"4\"").c_str());
        }
        const std::string word = walks[i].title.substr(0, walks[i].title.find(','));
        drawing.out << "<text transform=\"translate(" << x + 5 << " " << kTop - 26
                    << ") rotate(-56)\" font-size=\"14\" font-weight=\"600\" fill=\"" << color << "\">"
                    << word << "</text>\n";
    }
}

}  // namespace

std::vector<Walk> readWalks(const std::string &page) {
    static const std::regex source("`([a-z_/]+/[a-z0-9_]+\\.(h|cpp))`");
    std::ifstream text(page);
    std::vector<Walk> walks;
    std::string line, title;
    bool inStep = false;
    while (std::getline(text, line)) {
        if (line.rfind("## ", 0) == 0) {
            title = line.substr(3);
            inStep = false;
        } else if (std::regex_search(line, std::regex("^[0-9]+\\. "))) {
            if (walks.empty() || walks.back().title != title) walks.push_back({title, {}});
            walks.back().steps.emplace_back();
            inStep = true;
        } else if (line.rfind("  ", 0) != 0) {
            inStep = false;
        }
        if (!inStep) continue;
        for (std::sregex_iterator match(line.begin(), line.end(), source), end; match != end; ++match)
            walks.back().steps.back().push_back((*match)[1]);
    }
    return walks;
}

std::vector<std::string> faultsOf(const Walk &walk, const IncludeGraph &graph) {
    std::vector<std::string> faults;
    int above = static_cast<int>(graph.rooms().size());
    for (std::size_t i = 0; i < walk.steps.size(); ++i) {
        const std::string name = walk.title + ", step " + std::to_string(i + 1) + ": ";
        std::set<int> rooms;
        for (const std::string &file : walk.steps[i]) {
            rooms.insert(graph.roomOf(file));
            if (!std::binary_search(graph.files().begin(), graph.files().end(), file))
                faults.push_back(name + file + " is not there");
        }
        if (rooms.size() != 1) {
            faults.push_back(name + "names sources of " + std::to_string(rooms.size()) + " rooms");
            continue;
        }
        if (*rooms.begin() >= above) faults.push_back(name + "does not go down");
        above = *rooms.begin();
    }
    return faults;
}

std::string drawHouse(const IncludeGraph &graph, const std::vector<Walk> &walks) {
    const std::vector<Floor> floors = floorsOf(graph);
    const int bottom = floors.empty() ? kTop : floors.back().top + floors.back().height;
    Drawing drawing;
    drawing.out << "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 " << kWidth << " " << bottom + 74
                << "\" font-family=\"Helvetica, Arial, 'DejaVu Sans', sans-serif\">\n"
                << "<title>The rooms of Keltra, drawn from its includes</title>\n";
    drawing.box(0, 0, kWidth, bottom + 74, 0, "#faf7f0");
    drawRoof(drawing);
    for (const Floor &floor : floors)
        drawFloor(drawing, floor, graph.rooms()[static_cast<std::size_t>(floor.room)].name);
    drawShafts(drawing, floors);
    drawWalks(drawing, floors, walks, graph);
    drawing.line(moveTo(20, bottom + 22) + lineTo(kWidth - 20, bottom + 22), "#b9b3a3", 3,
                 " stroke-linecap=\"round\"");
    drawing.text(kLeft, bottom + 50, "SDL, EGL, OpenGL ES, TinyXML, libmpeg2, the C library", 14, "#7a7565");
    drawing.text(kFirstShaft, bottom + 50, "a dot: this room includes that one", 14, "#7a7565");
    drawing.out << "</svg>\n";
    return drawing.out.str();
}

}  // namespace keltra::test

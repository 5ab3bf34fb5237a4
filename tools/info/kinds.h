// SPDX-License-Identifier: Zlib
#ifndef KELTRA_INFO_KINDS_H
#define KELTRA_INFO_KINDS_H

// The inspectors for the kinds of files, and their shared functions.

#include "formats/fault.h"
#include "tools/info/inspection.h"

#include <string>

namespace keltra::info {

struct Source {
    const char *bytes;  // never null
    std::size_t size;
    std::string folder;
};

void inspectScene(const Source &source, Inspection &result);
void inspectAnimation(const Source &source, Inspection &result);
void inspectTexture(const Source &source, Inspection &result);
void inspectKerning(const Source &source, Inspection &result);
void inspectSettings(const Source &source, Inspection &result);
void inspectInterface(const Source &source, Inspection &result);
void inspectEmitter(const Source &source, Inspection &result);
void inspectVideo(const Source &source, Inspection &result);

// A float as the shortest number that reads back as it; "nan", "inf" or "-inf" as text.
Fields number(float value);
template <std::size_t kCount>
Fields numbers(const float (&values)[kCount]) {
    Fields list = Fields::array();
    for (float value : values) list.push_back(number(value));
    return list;
}

// Adds a note; beyond a hundred they are dropped, and the last says so.
void note(Inspection &result, const std::string &text);
// "1 byte", "7 bytes".
std::string counted(std::size_t count, const std::string &noun);
// A name in quotes, for a note.
std::string quoted(const std::string &name);
// Beyond a hundred they are dropped, and a note says so.
void addFault(Inspection &result, const KTFAULT &fault);
// Adds a fault for a file that is named, in that line, but is not there.
void addMissing(Inspection &result, const Source &source, const std::string &name, unsigned int line = 0);
// While one exists, the parsers' warnings are added.
class Faults {
   public:
    explicit Faults(Inspection &result);
    ~Faults();
    Faults(const Faults &) = delete;
    Faults &operator=(const Faults &) = delete;
};
void setFlaw(Inspection &result, const Fault &fault, const std::string &prefix = "");
// The same of what no parser reports.
void setFlaw(Inspection &result, const std::string &field, const std::string &reason, std::size_t offset = 0);
// Gives the flaw its line and column.
void setFlawPlace(Inspection &result, const Source &source);
// A flaw with line and column.
void setTextFlaw(Inspection &result, const Source &source, const Fault &fault);

}  // namespace keltra::info

#endif

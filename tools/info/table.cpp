// SPDX-License-Identifier: Zlib
#include "tools/info/print.h"

#include <algorithm>
#include <cstdio>
#include <map>
#include <set>

namespace keltra::info {

namespace {

constexpr std::size_t kWidestCell = 48;  // characters
constexpr char kLevel[] = "level";

// Left out, since rows would be too wide; JSON has them.
const std::set<std::string> kHidden = {kLevel,    "children", "origin",    "auxId",     "radius",
                                       "minimum", "maximum",  "direction", "cutOff",    "textureCoordinates",
                                       "hidden",  "specular", "emission",  "boneNames", "keyframesSet"};

std::string numberText(const Fields &value) {
    if (value.is_string()) return value.get<std::string>();
    if (value.is_number_integer()) return value.dump();
    char text[40];
    std::snprintf(text, sizeof text, "%.6g", value.get<double>());
    return text;
}

// 0, 1, 2, 3, 7 as "0-3, 7".
std::string rangesText(const Fields &values) {
    std::string text;
    for (std::size_t first = 0; first < values.size();) {
        std::size_t last = first;
        while (last + 1 < values.size() && values[last + 1].get<long>() == values[last].get<long>() + 1)
            ++last;
        text += (text.empty() ? "" : ", ") + values[first].dump() +
                (last > first ? "-" + values[last].dump() : "");
        first = last + 1;
    }
    return text.empty() ? "none" : text;
}

std::string listText(const Fields &values) {
    const bool areCounts =
        std::all_of(values.begin(), values.end(), [](const Fields &v) { return v.is_number_unsigned(); });
    if (areCounts) return rangesText(values);
    std::string text;
    for (const Fields &value : values)
        text += (text.empty() ? "" : " ") + (value.is_null() ? "-" : numberText(value));
    return text;
}

std::string attributesText(const Fields &values) {
    std::string text;
    for (const auto &value : values.items())
        text += (text.empty() ? "" : " ") + value.key() + "=\"" + value.value().get<std::string>() + '"';
    return text;
}

std::string valueText(const Fields &value) {
    if (value.is_null()) return "-";
    if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
    if (value.is_string()) return printable(value.get<std::string>());
    if (value.is_array()) return listText(value);
    if (value.is_object()) return printable(attributesText(value));
    return numberText(value);
}

std::size_t characters(const std::string &text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

std::string cut(const std::string &text) {
    if (characters(text) <= kWidestCell) return text;
    std::size_t end = 0;
    for (std::size_t kept = 0; end < text.size(); ++end)
        if ((text[end] & 0xC0) != 0x80 && kept++ == kWidestCell - 3) break;
    return text.substr(0, end) + "...";
}

// "textureMemory" as "texture memory".
std::string spaced(const std::string &name) {
    std::string text;
    for (char c : name) {
        const bool isUpper = c >= 'A' && c <= 'Z';
        if (isUpper) text += ' ';
        text += isUpper ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return text;
}

// The columns are those of any row, in the order in which they are met.
class Rows {
   public:
    explicit Rows(const Fields &list) {
        for (const Fields &row : list)
            for (const auto &cell : row.items())
                if (!kHidden.count(cell.key()) && indices.emplace(cell.key(), names.size()).second)
                    names.push_back(cell.key());
        lines.push_back({});
        for (const std::string &name : names) lines.back().push_back(spaced(name));
        for (const Fields &row : list) addLine(row);
    }

    std::string text() const {
        std::vector<std::size_t> widths(names.size());
        for (const auto &line : lines)
            for (std::size_t i = 0; i < line.size(); ++i)
                widths[i] = std::max(widths[i], characters(line[i]));
        std::string result;
        for (const auto &line : lines) {
            std::string padded;
            for (std::size_t i = 0; i < line.size(); ++i)
                padded += "  " + line[i] + std::string(widths[i] - characters(line[i]), ' ');
            padded.erase(padded.find_last_not_of(' ') + 1);
            result += "  " + padded + "\n";
        }
        return result;
    }

   private:
    void addLine(const Fields &row) {
        std::vector<std::string> line(names.size());
        for (const auto &cell : row.items()) {
            const auto found = indices.find(cell.key());
            if (found != indices.end()) line[found->second] = cut(valueText(cell.value()));
        }
        if (row.contains(kLevel)) line[0].insert(0, 2 * row[kLevel].get<std::size_t>(), ' ');
        lines.push_back(std::move(line));
    }

    std::map<std::string, std::size_t> indices;
    std::vector<std::string> names;
    std::vector<std::vector<std::string>> lines;
};

bool isTable(const Fields &value) { return value.is_array() && !value.empty() && value[0].is_object(); }

std::string fieldText(const std::string &name, const Fields &value) {
    if (isTable(value)) return "  " + spaced(name) + "\n" + Rows(value).text();
    if (value.is_array() && value.empty()) return "  " + spaced(name) + ": none\n";
    if (!value.is_object()) return "  " + spaced(name) + ": " + valueText(value) + "\n";
    std::string line;
    for (const auto &part : value.items())
        line += (line.empty() ? "" : ", ") + spaced(part.key()) + " " + valueText(part.value());
    return "  " + spaced(name) + ": " + line + "\n";
}

}  // namespace

std::string table(const FileReport &report) {
    const Inspection &inspection = report.inspection;
    std::string text = printable(report.file) + ": " + kindName(inspection.kind) + "\n";
    for (const auto &field : inspection.fields.items()) text += fieldText(field.key(), field.value());
    for (const KTFAULT &fault : inspection.faults)
        text += "  warning: " + printable(sentenceOf(fault, report.file)) + "\n";
    for (const std::string &note : inspection.notes) text += "  note: " + printable(note) + "\n";
    return text;
}

}  // namespace keltra::info

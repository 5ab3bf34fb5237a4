// SPDX-License-Identifier: Zlib
#include "tools/info/print.h"

#include "formats/fault.h"

#include <cstdio>

namespace keltra::info {

namespace {

// Length of the UTF-8 character at the beginning of the text; 0 when there is none that is well formed.
std::size_t characterLength(const unsigned char *text, std::size_t left) {
    if (text[0] < 0x80) return 1;
    if (text[0] < 0xC2 || text[0] > 0xF4) return 0;
    const std::size_t length = text[0] < 0xE0 ? 2 : text[0] < 0xF0 ? 3 : 4;
    if (length > left) return 0;
    for (std::size_t i = 1; i < length; ++i)
        if (text[i] < 0x80 || text[i] > 0xBF) return 0;
    // Overlong forms, surrogates, and what is beyond Unicode.
    const bool isWrong = (text[0] == 0xE0 && text[1] < 0xA0) || (text[0] == 0xED && text[1] > 0x9F) ||
                         (text[0] == 0xF0 && text[1] < 0x90) || (text[0] == 0xF4 && text[1] > 0x8F);
    return isWrong ? 0 : length;
}

// C0, delete and C1; line and paragraph separators; marks that turn the direction of writing.
bool isControl(const unsigned char *text, std::size_t length) {
    if (length == 1) return text[0] < 0x20 || text[0] == 0x7F;
    if (length == 2) return text[0] == 0xC2 && text[1] < 0xA0;
    if (length != 3 || text[0] != 0xE2) return false;
    const bool isSeparatorOrMark =
        text[1] == 0x80 && (text[2] == 0x8E || text[2] == 0x8F || (text[2] >= 0xA8 && text[2] <= 0xAE));
    return isSeparatorOrMark || (text[1] == 0x81 && text[2] >= 0xA6 && text[2] <= 0xA9);
}

std::string place(const Flaw &flaw) {
    char text[96];
    if (flaw.line)
        std::snprintf(text, sizeof text, "0x%zx (line %zu, column %zu)", flaw.offset, flaw.line, flaw.column);
    else
        std::snprintf(text, sizeof text, "0x%zx", flaw.offset);
    return text;
}

Fields faultFields(const KTFAULT &fault, const std::string &file) {
    Fields fields = {{"severity", fault.severity == KT_FAULT_ERROR ? "error" : "warning"},
                     {"code", fault.code},
                     {"sentence", sentenceOf(fault, file)}};
    if (fault.line) fields["line"] = fault.line;
    if (fault.byte >= 0) fields["byte"] = fault.byte;
    const std::pair<const char *, const char *> texts[] = {{"missing", fault.file},
                                                           {"field", fault.field},
                                                           {"found", fault.found},
                                                           {"expected", fault.expected}};
    for (const auto &[name, text] : texts)
        if (*text) fields[name] = text;
    return fields;
}

Fields jsonOf(const FileReport &report, bool verdictsOnly) {
    const Inspection &inspection = report.inspection;
    Fields file = {{"file", report.file}, {"good", report.isGood()}};
    if (!report.error.empty()) {
        file["error"] = report.error;
        return file;
    }
    file["kind"] = kindName(inspection.kind);
    if (!inspection.good) {
        const Flaw &flaw = inspection.flaw;
        file["fault"] = {{"offset", flaw.offset}, {"field", flaw.field}, {"reason", flaw.reason}};
        if (flaw.line) file["fault"].update({{"line", flaw.line}, {"column", flaw.column}});
    }
    Fields faults = Fields::array();
    for (const KTFAULT &fault : inspection.faults) faults.push_back(faultFields(fault, report.file));
    if (!faults.empty()) file["faults"] = std::move(faults);
    if (verdictsOnly) return file;
    file["contents"] = inspection.fields;
    file["notes"] = inspection.notes;
    return file;
}

}  // namespace

std::string printable(const std::string &text) {
    std::string result;
    for (std::size_t i = 0; i < text.size();) {
        const unsigned char *at = reinterpret_cast<const unsigned char *>(text.data()) + i;
        std::size_t length = characterLength(at, text.size() - i);
        if (length && !isControl(at, length)) {
            result.append(text, i, length);
        } else {
            if (!length) length = 1;
            char escape[8];
            for (std::size_t k = 0; k < length; ++k) {
                std::snprintf(escape, sizeof escape, "\\x%02x", unsigned{at[k]});
                result += escape;
            }
        }
        i += length;
    }
    return result;
}

std::string sentenceOf(const KTFAULT &fault, const std::string &file) {
    KTFAULT whole = fault;
    setFaultPath(*whole.file ? whole.neededBy : whole.file, file.c_str());
    std::string text(faultSentence(whole, nullptr, 0), '\0');
    faultSentence(whole, text.data(), text.size() + 1);
    return text;
}

std::string strictLines(const FileReport &report) {
    if (!report.error.empty() || (report.inspection.good && report.inspection.faults.empty()))
        return verdictLine(report);
    std::string lines;
    for (const KTFAULT &fault : report.inspection.faults)
        lines += printable(sentenceOf(fault, report.file)) + "\n";
    return lines;
}

std::string verdictLine(const FileReport &report) {
    const std::string file = printable(report.file) + ": ";
    if (!report.error.empty()) return file + printable(report.error) + "\n";
    const Flaw &flaw = report.inspection.flaw;
    if (report.inspection.good) return file + "good\n";
    return file + place(flaw) + ": " + printable(flaw.field) + ": " + printable(flaw.reason) + "\n";
}

std::string jsonText(const std::vector<FileReport> &reports, bool verdictsOnly) {
    Fields files = Fields::array();
    for (const FileReport &report : reports) files.push_back(jsonOf(report, verdictsOnly));
    const Fields document = {{"files", std::move(files)}};
    return document.dump(2, ' ', true, Fields::error_handler_t::replace) + "\n";
}

}  // namespace keltra::info

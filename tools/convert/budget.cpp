// SPDX-License-Identifier: Zlib
#include "tools/convert/budget.h"

#include "tools/convert/plain_text.h"
#include "tools/convert/report.h"

#include <cstdlib>
#include <stdexcept>

namespace keltra::convert {
namespace {

struct Limit {
    const char *name;
    std::uint64_t Budget::*most;
    std::uint64_t Report::*used;
    const char *what;
    bool bytes;
};

constexpr Limit kLimits[] = {
    {"triangles", &Budget::triangles, &Report::triangles, "triangles", false},
    {"vertices", &Budget::vertices, &Report::vertices, "vertices", false},
    {"bones", &Budget::bones, &Report::meshBones, "bones of one mesh", false},
    {"textures", &Budget::textures, &Report::textureMemory, "of textures", true},
    {"clips", &Budget::clips, &Report::clipBytes, "of clips", true},
};

std::uint64_t amountOf(const std::string &text, bool bytes) {
    const std::size_t digits = text.find_first_not_of("0123456789");
    const std::string unit = digits == std::string::npos ? "" : text.substr(digits);
    std::uint64_t factor = 1;
    if (bytes && (unit == "K" || unit == "KiB")) factor = 1u << 10;
    if (bytes && (unit == "M" || unit == "MiB")) factor = 1u << 20;
    if (digits == 0 || text.empty() || text.size() > 12 || (!unit.empty() && factor == 1))
        throw std::invalid_argument("\"" + text + "\" is not a number" +
                                    (bytes ? ", with K or M for bytes" : ""));
    return std::strtoull(text.c_str(), nullptr, 10) * factor;
}

void setLimit(Budget &budget, const std::string &text) {
    const std::size_t sign = text.find('=');
    for (const Limit &limit : kLimits) {
        if (sign == std::string::npos || text.substr(0, sign) != limit.name) continue;
        budget.*limit.most = amountOf(text.substr(sign + 1), limit.bytes);
        return;
    }
    throw std::invalid_argument(
        "must be default, none, or a list of triangles=, vertices=, bones=, textures=, clips=");
}

std::string amount(std::uint64_t number, bool bytes) {
    return bytes ? withCommas((number + 1023) / 1024) + " KiB" : withCommas(number);
}

}  // namespace

Budget budgetOf(const std::string &text) {
    if (text == "default") return {};
    if (text == "none") return {0, 0, 0, 0, 0};
    Budget budget;
    for (std::size_t at = 0; at <= text.size();) {
        const std::size_t end = std::min(text.find(',', at), text.size());
        setLimit(budget, text.substr(at, end - at));
        at = end + 1;
    }
    return budget;
}

void checkBudget(const Budget &budget, Report &report) {
    for (const Limit &limit : kLimits) {
        const std::uint64_t used = report.*limit.used, most = budget.*limit.most;
        if (most == 0 || used <= most) continue;
        report.over.push_back({limit.name, used, most});
        report.warn("over the budget: " + amount(used, limit.bytes) + " " + limit.what + ", the limit is " +
                    amount(most, limit.bytes));
    }
}

}  // namespace keltra::convert

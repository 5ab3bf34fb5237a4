// SPDX-License-Identifier: Zlib
#include "tests/support/call_log.h"

#include <algorithm>

namespace keltra::test {

int CallLog::count(std::string_view name) const { return count(name, {}); }

int CallLog::count(std::string_view name, std::initializer_list<std::int64_t> first) const {
    return static_cast<int>(std::count_if(entries.begin(), entries.end(), [&](const Call &call) {
        return call.name == name && call.arguments.size() >= first.size() &&
               std::equal(first.begin(), first.end(), call.arguments.begin());
    }));
}

std::vector<std::string> CallLog::names() const {
    std::vector<std::string> result;
    for (const Call &call : entries) result.push_back(call.name);
    return result;
}

std::vector<Call> CallLog::all(std::string_view name) const {
    std::vector<Call> result;
    for (const Call &call : entries) {
        if (call.name == name) result.push_back(call);
    }
    return result;
}

const Call &CallLog::last(std::string_view name) const {
    static const Call none;
    for (auto call = entries.rbegin(); call != entries.rend(); ++call) {
        if (call->name == name) return *call;
    }
    return none;
}

}  // namespace keltra::test

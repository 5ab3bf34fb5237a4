// SPDX-License-Identifier: Zlib
#ifndef KELTRA_TESTS_CALL_LOG_H
#define KELTRA_TESTS_CALL_LOG_H

// A log of calls seen at a C interface: name, arguments, and what a pointer argument pointed to where that is
// known.

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace keltra::test {

struct Call {
    std::string name;
    /// Integers and enumerations as they are, pointers as addresses, floats as 16.16.
    std::vector<std::int64_t> arguments;
    /// The values behind a pointer argument, when their number is known; otherwise empty.
    std::vector<std::int64_t> contents;
    /// The texels handed to a texture upload, row by row with their padding; otherwise empty.
    std::vector<std::uint8_t> bytes;
};

class CallLog {
   public:
    void clear() { entries.clear(); }
    void add(Call call) { entries.push_back(std::move(call)); }

    const std::vector<Call> &calls() const { return entries; }
    Call *newest() { return entries.empty() ? nullptr : &entries.back(); }

    /// How often `name` was called; with `first`, only calls whose leading arguments equal these.
    int count(std::string_view name) const;
    int count(std::string_view name, std::initializer_list<std::int64_t> first) const;

    /// The names in the order of the calls.
    std::vector<std::string> names() const;

    /// All calls of `name`, in order.
    std::vector<Call> all(std::string_view name) const;

    /// The newest call of `name`; a call without name and arguments when there was none.
    const Call &last(std::string_view name) const;

   private:
    std::vector<Call> entries;
};

}  // namespace keltra::test

#endif

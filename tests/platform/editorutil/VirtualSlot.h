#pragma once

#include <cstdint>
#include <cstring>

namespace EditorService::Testing {

// The index of a virtual operation in its class's table, read from a pointer to the member as
// the Itanium C++ ABI lays it out (the table's byte offset plus one). A virtual destructor
// declared first takes slots 0 and 1, so the operation declared after it sits in slot 2.
// Returns -1 for an operation that is not virtual, and where the ABI is another one.
template <class Member> long virtualSlot(Member member) {
#if defined(__GNUC__) && !defined(_WIN32) && !defined(__arm__) && !defined(__aarch64__)
    static_assert(sizeof(Member) == 2 * sizeof(std::uintptr_t), "an Itanium member pointer");
    std::uintptr_t raw[2];
    std::memcpy(raw, &member, sizeof raw);
    if ((raw[0] & 1) == 0)
        return -1;
    return static_cast<long>((raw[0] - 1) / sizeof(void*));
#else
    (void)member;
    return -1;
#endif
}

constexpr bool virtualSlotsAreReadable() {
#if defined(__GNUC__) && !defined(_WIN32) && !defined(__arm__) && !defined(__aarch64__)
    return true;
#else
    return false;
#endif
}

} // namespace EditorService::Testing

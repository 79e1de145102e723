#pragma once

namespace EditorService::Testing {

// Load tests run at full size in an ordinary build and a fifth of it under a sanitizer, which
// makes every step several times slower; what they check holds at either size.
constexpr bool underSanitizer() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
    return true;
#else
    return false;
#endif
#else
    return false;
#endif
}

constexpr int scaledForSanitizers(int size) {
    return underSanitizer() ? size / 5 : size;
}

} // namespace EditorService::Testing

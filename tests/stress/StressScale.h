#pragma once

#include <cstdlib>

#if defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define EDITORSERVICE_STRESS_SANITIZED 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define EDITORSERVICE_STRESS_SANITIZED 1
#endif

namespace EditorService::Testing {

// The size of the big runs: a million lines in an optimised build, a tenth of that under a
// sanitizer. STRESS_LINES overrides both, for a quick look or a longer soak.
inline int stressLines() {
    if (const char* lines = std::getenv("STRESS_LINES"))
        return std::atoi(lines);
#if defined(EDITORSERVICE_STRESS_SANITIZED)
    return 100000;
#else
    return 1000000;
#endif
}

} // namespace EditorService::Testing

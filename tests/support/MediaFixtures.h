#pragma once

#include <string>

#ifndef MEDIA_FIXTURES_DIR
#error "Give the test target its fixtures with editorservice_use_media_fixtures"
#endif

namespace EditorService::Testing {

// The path of a media file the build made for the tests (tests/fixtures/make-media-fixtures).
inline std::string mediaFixture(const std::string& name) {
    return std::string(MEDIA_FIXTURES_DIR) + "/" + name;
}

} // namespace EditorService::Testing

#include "service/api/Error.h"
#include "service/requests/ResizeFillMode.h"
#include "service/requests/ValueForms.h"

#include <QString>
#include <cstdint>
#include <cstdlib>

using namespace EditorService::CLI::extension;
using Velmor::Proc::SettingsResizer;

namespace {

void require(bool condition) {
    if (!condition)
        std::abort();
}

// A text that reads must be written in a form that reads back to the same value, and that
// written form must be stable.
void checkRange(const QString& text) {
    Types::Range range;
    try {
        range = parseRange(text);
    } catch (const EditorService::Error&) {
        return;
    }
    const QString written = dumpRange(range);
    require(parseRange(written) == range);
    require(dumpRange(parseRange(written)) == written);
    require(EditorService::CLI::parseValue<Types::Range>(QString(written)) == range);
}

void checkFrameSize(const QString& text) {
    PresetFrameSize size;
    try {
        size = parseFrameSize(text);
    } catch (const EditorService::Error&) {
        return;
    }
    require(size.width >= 0 || size.isOriginal());
    const QString written = dumpFrameSize(size);
    require(parseFrameSize(written) == size);
    require(dumpFrameSize(parseFrameSize(written)) == written);
    require(EditorService::CLI::parseValue<PresetFrameSize>(QString(written)) == size);
}

void checkResizeMode(const QString& text) {
    auto mode = static_cast<SettingsResizer::CustomModes>(text.size() % 6);
    const auto before = mode;
    try {
        mode << text;
    } catch (const EditorService::Error&) {
        require(mode == before);
        return;
    }
    QString written;
    mode >> written;
    require(written == text);
    require(EditorService::CLI::parseValue<SettingsResizer::CustomModes>(QString(written)) == mode);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const QString text =
        QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<int>(size));
    checkRange(text);
    checkFrameSize(text);
    checkResizeMode(text);
    return 0;
}

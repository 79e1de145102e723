#pragma once

namespace EditorCollection {

// How persistent collection items are loaded.
enum class AsyncLoadPolicy {
    LoadAtOnce = 0,
    LoadOnDemand = 1,
};

} // namespace EditorCollection

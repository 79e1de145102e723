#pragma once

#include "platform/project/Edit.h"
#include "platform/project/JsonNode.h"

#include <QDir>

namespace Project {

// The parts of a project file below its tracks, read from their JSON with the defaults of a
// project file; names of media are resolved against `folder`. Each throws ProjectError for a
// wrong type, an unknown key or name, or a value out of range (JsonNode's messages), and for a
// clip that is neither or both of its kinds:
//     "<project>: <place>: a clip needs \"source\" or \"color\""
//     "<project>: <place>: a clip has \"source\" or \"color\", not both"
//     "<project>: <place>: an overlay needs \"text\" or \"source\""
//     "<project>: <place>: an overlay has \"text\" or \"source\", not both"
//     "<project>: <place>: [x, y, w, h] leaves the picture; x + w and y + h are at most 1"
//     "<project>: <clip>.fit: a clip with pan_zoom fills the frame with its rectangle; leave
//      fit out"
VideoClip readVideoClip(const JsonNode& node, const QDir& folder);
OverlayClip readOverlayClip(const JsonNode& node, const QDir& folder);
AudioClip readAudioClip(const JsonNode& node, const QDir& folder);
Duck readDuck(const JsonNode& node);
TransitionSpec readTransition(const JsonNode& node);
Effects::PanZoomPath readPanZoom(const JsonNode& node);
// A title style, with its fades.
struct TitleLook {
    Effects::TitleStyle style;
    std::int64_t fadeInMs = 0;
    std::int64_t fadeOutMs = 0;
};
TitleLook readTitleStyle(const JsonNode& node);

} // namespace Project

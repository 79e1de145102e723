#include "platform/compositor/Compositor.h"

#include "platform/compositor/ClipPainter.h"
#include "platform/compositor/OverlayPainter.h"
#include "platform/effects/Canvas.h"
#include "platform/effects/TransitionCatalog.h"
#include "platform/project/FrameTimes.h"

#include <cmath>
#include <map>
#include <set>
#include <stdexcept>

namespace Composition {
namespace {

// Frames [first, end) of a part of the project.
struct FrameSpan {
    std::int64_t first = 0;
    std::int64_t end = 0;

    bool holds(std::int64_t frame) const { return frame >= first && frame < end; }
};

// A reader per clip: video clips by index, overlay clips after them.
using ReaderKey = std::size_t;

} // namespace

class Compositor::Private {
public:
    Private(Project::Edit edit, std::shared_ptr<IFrameReaders> readers)
        : edit(std::move(edit))
        , readers(std::move(readers))
        , times(this->edit.frameRate)
        , clips(this->edit.size, this->edit.output.background)
        , overlays(this->edit.size) {
        for (const Project::VideoClip& clip : this->edit.video)
            videoSpans.push_back(span(clip.startMs, clip.lengthMs));
        for (const Project::OverlayTrack& track : this->edit.overlays)
            for (const Project::OverlayClip& clip : track.clips)
                overlaySpans.push_back(span(clip.startMs, clip.lengthMs));
        frameCount = times.frameAt(this->edit.lengthMs);
    }

    FrameSpan span(std::int64_t startMs, std::int64_t lengthMs) const {
        return {times.frameAt(startMs), times.frameAt(startMs + lengthMs)};
    }

    // Milliseconds from `startMs` to the frame's start, up to the next whole one, so that a
    // source frame that starts within the millisecond shows.
    std::int64_t millisecondsInto(std::int64_t frame, std::int64_t startMs) const {
        return static_cast<std::int64_t>(std::ceil(times.startOf(frame) - startMs - 1e-6));
    }

    IFrameReader& reader(ReaderKey key, const QString& file) {
        auto& open = opened[key];
        if (!open)
            open = readers->open(file);
        return *open;
    }

    Velmor::AV::Frame videoClip(std::size_t index, std::int64_t frame) {
        const Project::VideoClip& clip = edit.video[index];
        SourcePicture source;
        if (clip.kind != Project::VideoClip::Kind::Colour) {
            const std::int64_t at = clip.kind == Project::VideoClip::Kind::Still
                                        ? 0
                                        : clip.inMs + millisecondsInto(frame, clip.startMs);
            source = [this, index, at, &clip]() -> const Velmor::AV::Frame& {
                return reader(index, clip.file).frameAt(at);
            };
        }
        return clips.paint(clip, index, source, times.progress(frame, clip.startMs, clip.lengthMs));
    }

    Velmor::AV::Frame videoTrack(std::int64_t frame, std::set<ReaderKey>& used) {
        std::vector<std::size_t> showing;
        for (std::size_t index = 0; index < videoSpans.size(); ++index) {
            if (videoSpans[index].holds(frame))
                showing.push_back(index);
        }
        if (showing.empty())
            return Effects::canvas(edit.size, Effects::toYuv(edit.output.background));
        used.insert(showing.begin(), showing.end());
        Velmor::AV::Frame incoming = videoClip(showing.back(), frame);
        if (showing.size() == 1)
            return incoming;
        const Project::VideoClip& clip = edit.video[showing.back()];
        const Velmor::AV::Frame outgoing = videoClip(showing.front(), frame);
        Velmor::AV::Frame target = Velmor::AV::Frame::picture(edit.size.width, edit.size.height,
                                                              Effects::composingFormat());
        transition(clip.transition->type)
            .draw(outgoing, incoming,
                  times.progress(frame, clip.startMs, clip.transition->durationMs), target);
        return target;
    }

    const Effects::Transition& transition(const std::string& type) {
        auto& made = transitions[type];
        if (!made)
            made = Effects::makeTransition(type);
        return *made;
    }

    void overlayTracks(std::int64_t frame, Velmor::AV::Frame& target, std::set<ReaderKey>& used) {
        std::size_t index = 0;
        for (const Project::OverlayTrack& track : edit.overlays) {
            for (const Project::OverlayClip& clip : track.clips) {
                const ReaderKey key = edit.video.size() + index;
                if (overlaySpans[index++].holds(frame)) {
                    used.insert(key);
                    overlay(clip, key, frame, target);
                }
            }
        }
    }

    void overlay(const Project::OverlayClip& clip, ReaderKey key, std::int64_t frame,
                 Velmor::AV::Frame& target) {
        SourcePicture source;
        if (clip.kind != Project::OverlayClip::Kind::Text) {
            const std::int64_t at = clip.kind == Project::OverlayClip::Kind::Picture
                                        ? 0
                                        : clip.inMs + millisecondsInto(frame, clip.startMs);
            source = [this, key, at, &clip]() -> const Velmor::AV::Frame& {
                return reader(key, clip.file).frameAt(at);
            };
        }
        overlays.paint(clip, key, source, times.startOf(frame) - clip.startMs, target);
    }

    // Readers of clips that no longer show go, so memory stays flat over a long project.
    void letGoExcept(const std::set<ReaderKey>& used) {
        for (auto open = opened.begin(); open != opened.end();) {
            if (used.count(open->first))
                ++open;
            else
                open = opened.erase(open);
        }
    }

    const Project::Edit edit;
    const std::shared_ptr<IFrameReaders> readers;
    const Project::FrameTimes times;
    ClipPainter clips;
    OverlayPainter overlays;
    std::vector<FrameSpan> videoSpans;
    std::vector<FrameSpan> overlaySpans;
    std::int64_t frameCount = 0;
    std::map<ReaderKey, std::unique_ptr<IFrameReader>> opened;
    std::map<std::string, std::unique_ptr<Effects::Transition>> transitions;
};

Compositor::Compositor(Project::Edit edit, std::shared_ptr<IFrameReaders> readers)
    : d(std::make_unique<Private>(std::move(edit), std::move(readers))) {}

Compositor::~Compositor() = default;

const Project::Edit& Compositor::edit() const {
    return d->edit;
}

Velmor::AV::Size Compositor::size() const {
    return d->edit.size;
}

Velmor::AV::Rational Compositor::frameRate() const {
    return d->edit.frameRate;
}

std::int64_t Compositor::frameCount() const {
    return d->frameCount;
}

Velmor::AV::Frame Compositor::frame(std::int64_t index) {
    if (index < 0 || index >= d->frameCount)
        throw std::out_of_range("Frame " + std::to_string(index) + " is not in the project ("
                                + std::to_string(d->frameCount) + " frames)");
    std::set<ReaderKey> used;
    Velmor::AV::Frame picture = d->videoTrack(index, used);
    d->overlayTracks(index, picture, used);
    d->letGoExcept(used);
    picture.setTimestamp(index);
    return picture;
}

int Compositor::openReaders() const {
    return static_cast<int>(d->opened.size());
}

} // namespace Composition

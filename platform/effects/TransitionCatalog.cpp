#include "platform/effects/TransitionCatalog.h"

#include "platform/effects/Circle.h"
#include "platform/effects/CrossFade.h"
#include "platform/effects/Dissolve.h"
#include "platform/effects/FadeThrough.h"
#include "platform/effects/Slide.h"
#include "platform/effects/Wipe.h"

#include <functional>
#include <stdexcept>

namespace Effects {
namespace {

struct Entry {
    TransitionKind kind;
    std::function<std::unique_ptr<Transition>()> make;
};

template <class T, class... Arguments> auto maker(Arguments... arguments) {
    return [=]() -> std::unique_ptr<Transition> { return std::make_unique<T>(arguments...); };
}

const std::vector<Entry>& entries() {
    static const std::vector<Entry> table{
        {{"fade", "The outgoing clip fades into the incoming one"}, maker<CrossFade>()},
        {{"fade-black", "Fades to black, then out of it"}, maker<FadeThrough>(Colour{0, 0, 0})},
        {{"fade-white", "Fades to white, then out of it"},
         maker<FadeThrough>(Colour{255, 255, 255})},
        {{"dissolve", "The incoming clip replaces the outgoing one in scattered specks"},
         maker<Dissolve>()},
        {{"wipe-left", "An edge moves left, uncovering the incoming clip"},
         maker<Wipe>(Wipe::Direction::Left)},
        {{"wipe-right", "An edge moves right, uncovering the incoming clip"},
         maker<Wipe>(Wipe::Direction::Right)},
        {{"wipe-up", "An edge moves up, uncovering the incoming clip"},
         maker<Wipe>(Wipe::Direction::Up)},
        {{"wipe-down", "An edge moves down, uncovering the incoming clip"},
         maker<Wipe>(Wipe::Direction::Down)},
        {{"slide-left", "The incoming clip pushes the outgoing one out to the left"},
         maker<Slide>(Slide::Direction::Left)},
        {{"slide-right", "The incoming clip pushes the outgoing one out to the right"},
         maker<Slide>(Slide::Direction::Right)},
        {{"slide-up", "The incoming clip pushes the outgoing one out at the top"},
         maker<Slide>(Slide::Direction::Up)},
        {{"slide-down", "The incoming clip pushes the outgoing one out at the bottom"},
         maker<Slide>(Slide::Direction::Down)},
        {{"circle-open", "The incoming clip shows in a circle growing from the centre"},
         maker<Circle>(Circle::Motion::Open)},
        {{"circle-close", "The outgoing clip shows in a circle shrinking to the centre"},
         maker<Circle>(Circle::Motion::Close)},
    };
    return table;
}

const Entry* find(const std::string& name) {
    for (const Entry& entry : entries()) {
        if (entry.kind.name == name)
            return &entry;
    }
    return nullptr;
}

} // namespace

const std::vector<TransitionKind>& transitionKinds() {
    static const std::vector<TransitionKind> kinds = [] {
        std::vector<TransitionKind> made;
        for (const Entry& entry : entries())
            made.push_back(entry.kind);
        return made;
    }();
    return kinds;
}

bool isTransition(const std::string& name) {
    return find(name) != nullptr;
}

std::string transitionNameList() {
    std::string list;
    for (const TransitionKind& kind : transitionKinds())
        list += (list.empty() ? "" : ", ") + kind.name;
    return list;
}

std::unique_ptr<Transition> makeTransition(const std::string& name) {
    const Entry* entry = find(name);
    if (!entry)
        throw std::invalid_argument("Unknown transition \"" + name + "\"");
    return entry->make();
}

} // namespace Effects

#include "jpeg2000/progression.h"

#include <algorithm>
#include <tuple>

namespace vekpix::jpeg2000 {

namespace {

// A precinct, and how many of its layers have had their turn.
struct Place {
    int component;
    int resolution;
    int precinct;
    int64_t x;
    int64_t y;
    int nextLayer = 0;
};

std::vector<Place> allPlaces(const TileLayout& layout)
{
    std::vector<Place> places;
    for (size_t c = 0; c < layout.components.size(); ++c) {
        const TileComponent& component = layout.components[c];
        for (size_t r = 0; r < component.resolutions.size(); ++r) {
            const std::vector<Precinct>& precincts = component.resolutions[r].precincts;
            for (size_t k = 0; k < precincts.size(); ++k)
                places.push_back(
                    {static_cast<int>(c), static_cast<int>(r), static_cast<int>(k), precincts[k].x, precincts[k].y});
        }
    }
    return places;
}

// Sorts precincts as the order has them; layers come within them, or around them.
void sortPlaces(std::vector<Place*>& places, Progression order)
{
    const auto sortBy = [&](const auto& key) {
        std::stable_sort(places.begin(), places.end(),
                         [&](const Place* a, const Place* b) { return key(*a) < key(*b); });
    };
    switch (order) {
        case Progression::Lrcp:
        case Progression::Rlcp:
            sortBy([](const Place& p) { return std::tuple(p.resolution, p.component, p.precinct); });
            break;
        case Progression::Rpcl:
            sortBy([](const Place& p) { return std::tuple(p.resolution, p.y, p.x, p.component, p.precinct); });
            break;
        case Progression::Pcrl:
            sortBy([](const Place& p) { return std::tuple(p.y, p.x, p.component, p.resolution, p.precinct); });
            break;
        case Progression::Cprl:
            sortBy([](const Place& p) { return std::tuple(p.component, p.y, p.x, p.resolution, p.precinct); });
            break;
    }
}

class Walk {
public:
    Walk(const TileParameters& parameters, const std::function<bool(const Packet&)>& visit)
        : layers_(parameters.layers), visit_(visit)
    {
    }

    // False when `visit` has had enough.
    bool range(std::vector<Place>& all, const ProgressionRange& range)
    {
        const int end = std::min(layers_, range.endLayer);
        std::vector<Place*> places;
        for (Place& place : all)
            if (place.nextLayer < end && place.component >= range.firstComponent &&
                place.component < range.endComponent && place.resolution >= range.firstResolution &&
                place.resolution < range.endResolution)
                places.push_back(&place);
        sortPlaces(places, range.order);
        if (range.order == Progression::Lrcp)
            return layersAround(places.begin(), places.end(), end);
        if (range.order != Progression::Rlcp) {
            for (Place* place : places)
                while (place->nextLayer < end)
                    if (!take(*place))
                        return false;
            return true;
        }
        for (auto first = places.begin(); first != places.end();) {
            const auto last = std::find_if(first, places.end(),
                                           [&](const Place* p) { return p->resolution != (*first)->resolution; });
            if (!layersAround(first, last, end))
                return false;
            first = last;
        }
        return true;
    }

private:
    using Iterator = std::vector<Place*>::iterator;

    bool layersAround(Iterator first, Iterator last, int end)
    {
        int layer = end;
        for (auto place = first; place != last; ++place) layer = std::min(layer, (*place)->nextLayer);
        for (; layer < end; ++layer)
            for (auto place = first; place != last; ++place)
                if ((*place)->nextLayer == layer && !take(**place))
                    return false;
        return true;
    }

    bool take(Place& place) { return visit_({place.component, place.resolution, place.precinct, place.nextLayer++}); }

    int layers_;
    const std::function<bool(const Packet&)>& visit_;
};

}  // namespace

void forEachPacket(const TileLayout& layout, const TileParameters& parameters,
                   const std::function<bool(const Packet&)>& visit)
{
    std::vector<Place> places = allPlaces(layout);
    Walk walk(parameters, visit);
    if (parameters.changes.empty()) {
        ProgressionRange whole;
        whole.order = parameters.progression;
        walk.range(places, whole);
        return;
    }
    for (const ProgressionRange& range : parameters.changes)
        if (!walk.range(places, range))
            return;
}

}  // namespace vekpix::jpeg2000

#include "Hosts/MacOS/Rules/ScrollTranslation.h"

namespace quorvel {

namespace {

ScrollPhase phaseOf(std::uint64_t bits)
{
    if (bits & scroll::kBegan)
        return ScrollPhase::began;
    if (bits & (scroll::kEnded | scroll::kCancelled))
        return ScrollPhase::ended;
    return bits & scroll::kChanged ? ScrollPhase::changed : ScrollPhase::none;
}

double signOf(double delta)
{
    return (delta > 0) - (delta < 0);
}

}

ScrollEvent scrollEventOf(const SystemScroll& scroll)
{
    const bool isPrecise = scroll.hasPreciseDeltas;
    return {.location = scroll.location,
        .deltaX = isPrecise ? scroll.deltaX : signOf(scroll.deltaX),
        .deltaY = isPrecise ? scroll.deltaY : signOf(scroll.deltaY),
        .isDirectionInverted = scroll.isDirectionInverted,
        .unit = isPrecise ? ScrollUnit::points : ScrollUnit::notches,
        .phase = phaseOf(scroll.phase),
        .isMomentum = scroll.momentumPhase != 0};
}

}

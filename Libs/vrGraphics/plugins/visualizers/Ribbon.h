#pragma once

/// The way from a row of particles to the quads of a ribbon through them, one a link. A ribbon is made of sections:
/// where two neighbours are too far from each other, in space or in age, there's no link.

#include "vrGraphics/plugins/visualizers/vrMKPSimpleVisualizerData.h"

#include <span>

class vrMKPBuffer;
class vrMKPQuadDraw;

/// How ribbons lie and what their texture and colour do along the way; world units and seconds.
struct vrMKPRibbonStyle
{
    enum WrapAnchor
    {
        WRAP_OFF,
        WRAP_FROM_DISTANCE, ///< the texture begins at the distance of a section's start from the anchor
        WRAP_FROM_START,
        WRAP_FROM_END ///< at that distance and the length of the section
    };

    Vector3 ViewAxis{0.0f};  ///< the width of a link is across it and across the link
    Vector3 FirstSide{0.0f}; ///< where the width points as long as there was no link with a length
    Vector3 Normal{0.0f};
    float BreakDistance = 0.0f; ///< from there on neighbours aren't linked
    float GreatestGap = 0.0f;   ///< of age, up to which they are
    float FadeInDistance = 0.0f;
    float FadeOutDistance = 0.0f;
    WrapAnchor Wrap = WRAP_OFF;
    float WrapLength = 1.0f;
    Vector3 AnchorPosition{0.0f};
};

/// One unbroken run of a ribbon.
struct vrMKPChainSection
{
    int Links = 0;
    float Length = 0.0f;
};

/// The sections of a draw's ribbons in their order, as many as fit: what else there is gets measured again.
class vrMKPChainSections
{
public:
    static constexpr int CAPACITY = 64;

    void Add(const vrMKPChainSection &section)
    {
        if (Count < CAPACITY) Sections[Count++] = section;
    }
    /// Takes the next one; null when it isn't kept.
    const vrMKPChainSection *Take() { return Taken < Count ? &Sections[Taken++] : nullptr; }

private:
    vrMKPChainSection Sections[CAPACITY];
    int Count = 0;
    int Taken = 0;
};

/// A ribbon's particles, oldest first.
using vrMKPRibbonPoints = std::span<const vrMKPSortEntry>;

namespace Ribbon
{

/// Adds the ribbon's sections, and answers how many links they have.
int Measure(const vrMKPBuffer &buffer, vrMKPRibbonPoints points, const vrMKPRibbonStyle &style,
            vrMKPChainSections &sections);
/// Writes the quads of all sections, one a link, from quad `first` of the draw on, and answers the next one. Expects
/// the ribbons in the order in which they were measured.
int Write(const vrMKPQuadDraw &draw, vrMKPRibbonPoints points, const vrMKPRibbonStyle &style,
          vrMKPChainSections &sections, int first);

} // namespace Ribbon

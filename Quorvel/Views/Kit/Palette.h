#pragma once

#include <optional>
#include <vector>

#include "Quorvel/Platform/Application.h"
#include "Quorvel/Platform/Geometry.h"

namespace quorvel {

/// The colours of everything the views draw, made for one appearance. Text and marks stand out by
/// at least `leastContrast` from whatever they lie on, with the system's accent colour too, which
/// is made lighter or darker as far as that takes. Only where the desktop shows through is
/// the ground not known.
struct Palette {
    /// What lies below everything else on a bar.
    struct Ground {
        Color color; ///< opaque
        std::vector<Color> shine; ///< what of a gradient text may meet over it
    };
    /// On a plain ground, if none is given.
    static Palette of(const Appearance&, const std::optional<Ground>& = {});

    double leastContrast = 4.5; ///< as WCAG 2 counts it, from 1 to 21
    bool hasEdges = false; ///< everything that can be clicked has an edge, for more contrast

    // On the bar, whose ground is opaque; fills lie over it.
    Color ground;
    Color text;
    Color quietText; ///< of what is empty or minimised
    Color line; ///< between the parts of the bar
    Color edge;
    Color fill;
    Color hoveredFill;
    Color pressedFill;
    Color focusedFill;
    Color focusedHoveredFill;
    Color buttonHoveredFill;
    Color buttonPressedFill;
    Color countFill;
    Color shadow; ///< one of the layers that make one

    Color accent; ///< of marks and of the ring around what has the keyboard
    Color progress; ///< over a fill, below the text
    Color attention; ///< over a fill, below the text
    Color attentionMark;
    Color badge;
    Color badgePressed;
    Color badgeText;

    // On popups and menus.
    Color popupGround;
    Color popupEdge;
    Color cardFill;
    Color menuGround;
    Color menuEdge;
    Color menuSeparator;
    Color disabledText;
    Color highlight;
    Color highlightHovered;
    Color highlightPressed;
    Color highlightedText;

    // On windows, whose ground is opaque; cards lie on it, controls on either.
    Color windowGround;
    Color windowCard;
    Color windowEdge; ///< of cards, and between their parts
    Color controlFill;
    Color controlHoveredFill;
    Color controlPressedFill;
    Color controlEdge;
    Color accentFill; ///< under a symbol in the accent colour
    Color granted; ///< of text
    Color grantedFill;
    Color wanting; ///< of text
    Color wantingFill;
};

/// What is seen of a colour that lies over an opaque one.
Color over(const Color&, const Color& ground);
/// Of two opaque colours.
double contrast(const Color&, const Color&);

}

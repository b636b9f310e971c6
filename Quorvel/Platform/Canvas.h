#pragma once

#include <string_view>
#include <vector>

#include "Quorvel/Platform/Geometry.h"
#include "Quorvel/Platform/Image.h"

namespace quorvel {

enum class Elide { none, tail };
enum class TextAlignment { leading, centre, trailing };
enum class FontWeight { regular, medium, semibold };

/// The interface font of the system at `size` points.
struct TextStyle {
    double size = 12;
    FontWeight weight = FontWeight::regular;
    Color color;
    TextAlignment alignment = TextAlignment::leading;
    Elide elide = Elide::tail;

    friend bool operator==(const TextStyle&, const TextStyle&) = default;
};

/// The system's symbols on the Mac; vector paths with the same meaning elsewhere.
enum class Symbol {
    menuGrid,
    close,
    chevronLeft,
    chevronRight,
    chevronUp,
    showDesktop,
    checkmark,
    magnifyingGlass,
    clear, ///< a cross in a filled circle
    appDashed, ///< an application that is not known yet
    lockShield,
    figureStand, ///< a person
    display,
    checkmarkCircle, ///< a mark left out of a disc
};

enum class GradientDirection { topToBottom, leadingToTrailing };

struct GradientStop {
    double position = 0; ///< 0 to 1
    Color color;
};

/// Draws on a surface in points, origin at its top left, y downwards. Main thread, inside paint
/// only. Text runs in its own direction, but `leading` and `trailing` are those of the interface: a
/// title stands beside its icon in any language.
class Canvas {
public:
    virtual ~Canvas() = default;

    virtual double scale() const = 0;

    virtual void save() = 0;
    virtual void restore() = 0;
    virtual void translate(double dx, double dy) = 0;
    /// Around this point; changes only the size of what is drawn until `restore`.
    virtual void magnify(double factor, Point about) = 0;
    virtual void clip(const Rect&) = 0;
    virtual void clipRounded(const Rect&, double radius) = 0;
    /// Everything drawn until the matching `endOpacity` is composed as one, at this opacity.
    virtual void beginOpacity(double opacity) = 0;
    virtual void endOpacity() = 0;

    virtual void fill(const Rect&, const Color&) = 0;
    virtual void fillRounded(const Rect&, double radius, const Color&) = 0;
    /// A line of `width` just inside the edge.
    virtual void strokeRounded(const Rect&, double radius, double width, const Color&) = 0;
    /// The corners in order; edges are antialiased.
    virtual void fillPolygon(const std::vector<Point>&, const Color&) = 0;
    virtual void fillGradient(const Rect&, GradientDirection, const std::vector<GradientStop>&) = 0;
    virtual void drawImage(const Image&, const Rect&) = 0;
    /// One line, centred vertically in the rectangle; line breaks and controls become spaces.
    virtual void drawText(std::string_view utf8, const Rect&, const TextStyle&) = 0;
    virtual void drawSymbol(Symbol, const Rect&, const Color&) = 0;
};

}

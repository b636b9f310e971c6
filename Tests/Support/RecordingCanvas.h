#pragma once

#include <string>
#include <variant>
#include <vector>

#include "Quorvel/Platform/Canvas.h"

namespace quorvel::test {

/// What was drawn, as values in the surface's own coordinates.
struct Drawn {
    Rect rect{}; ///< of a polygon: around its corners
    Rect visible{}; ///< what the clips leave
    double opacity = 1;
};
struct DrawnFill : Drawn {
    double radius = 0;
    Color color;
};
struct DrawnStroke : Drawn {
    double radius = 0;
    double width = 0;
    Color color;
};
struct DrawnGradient : Drawn {
    GradientDirection direction{};
    std::vector<GradientStop> stops;
};
struct DrawnPolygon : Drawn {
    Color color;
};
struct DrawnImage : Drawn {
    Image image;
};
struct DrawnText : Drawn {
    std::string text;
    TextStyle style;
};
struct DrawnSymbol : Drawn {
    Symbol symbol{};
    Color color;
};

using DrawOperation = std::variant<DrawnFill, DrawnStroke, DrawnGradient, DrawnPolygon, DrawnImage,
    DrawnText, DrawnSymbol>;

/// A canvas that remembers instead of drawing. Rounded rectangles without a radius are plain fills.
class RecordingCanvas final : public Canvas {
public:
    explicit RecordingCanvas(const Rect& clip, double scale = 1);

    double scale() const override { return m_scale; }
    void save() override;
    void restore() override;
    void translate(double dx, double dy) override;
    void magnify(double factor, Point about) override;
    void clip(const Rect&) override;
    void clipRounded(const Rect& rect, double) override { clip(rect); }
    void beginOpacity(double opacity) override;
    void endOpacity() override;
    void fill(const Rect&, const Color&) override;
    void fillRounded(const Rect&, double radius, const Color&) override;
    void strokeRounded(const Rect&, double radius, double width, const Color&) override;
    void fillPolygon(const std::vector<Point>&, const Color&) override;
    void fillGradient(const Rect&, GradientDirection, const std::vector<GradientStop>&) override;
    void drawImage(const Image&, const Rect&) override;
    void drawText(std::string_view utf8, const Rect&, const TextStyle&) override;
    void drawSymbol(Symbol, const Rect&, const Color&) override;

    const std::vector<DrawOperation>& operations() const { return m_operations; }

    /// The operations of one kind of which something is visible, in the order drawn.
    template <typename Kind> std::vector<Kind> drawn() const
    {
        std::vector<Kind> found;
        for (auto& operation : m_operations) {
            if (auto* drawn = std::get_if<Kind>(&operation); drawn && !drawn->visible.isEmpty())
                found.push_back(*drawn);
        }
        return found;
    }
    std::vector<std::string> texts() const;
    /// Null if no visible text reads so.
    const DrawnText* text(std::string_view utf8) const;

    /// Every `save` and `beginOpacity` was closed again, in the right order.
    bool isBalanced() const { return m_states.size() == 1 && !m_isMisnested; }

private:
    struct State {
        double dx = 0;
        double dy = 0;
        double factor = 1;
        Rect clip;
        double opacity = 1;
        bool isOpacityGroup = false;
    };

    State& state() { return m_states.back(); }
    void pop(bool isOpacityGroup);
    Rect toSurface(const Rect&) const;
    template <typename Kind> void record(const Rect& rect, Kind drawn);

    double m_scale;
    std::vector<State> m_states;
    bool m_isMisnested = false;
    std::vector<DrawOperation> m_operations;
};

}

#pragma once

#include <string>
#include <variant>
#include <vector>

#include "Quorvel/Platform/Canvas.h"

namespace quorvel::test {

/// What was drawn, as values in the surface's own coordinates. `visible` is what the clips leave.
struct DrawnFill {
    Rect rect;
    Rect visible;
    double radius = 0;
    Color color;
    double opacity = 1;
};
struct DrawnStroke {
    Rect rect;
    Rect visible;
    double radius = 0;
    double width = 0;
    Color color;
    double opacity = 1;
};
struct DrawnGradient {
    Rect rect;
    Rect visible;
    GradientDirection direction{};
    std::vector<GradientStop> stops;
    double opacity = 1;
};
struct DrawnPolygon {
    Rect rect; ///< around its corners
    Rect visible;
    Color color;
    double opacity = 1;
};
struct DrawnImage {
    Rect rect;
    Rect visible;
    Image image;
    double opacity = 1;
};
struct DrawnText {
    Rect rect;
    Rect visible;
    std::string text;
    TextStyle style;
    double opacity = 1;
};
struct DrawnSymbol {
    Rect rect;
    Rect visible;
    Symbol symbol{};
    Color color;
    double opacity = 1;
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
    template <typename Drawn> std::vector<Drawn> drawn() const
    {
        std::vector<Drawn> found;
        for (auto& operation : m_operations) {
            if (auto* drawn = std::get_if<Drawn>(&operation); drawn && !drawn->visible.isEmpty())
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
    template <typename Drawn> void record(const Rect& rect, Drawn drawn);

    double m_scale;
    std::vector<State> m_states;
    bool m_isMisnested = false;
    std::vector<DrawOperation> m_operations;
};

}

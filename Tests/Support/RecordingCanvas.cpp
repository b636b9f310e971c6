#include "Tests/Support/RecordingCanvas.h"

namespace quorvel::test {

RecordingCanvas::RecordingCanvas(const Rect& clip, double scale) : m_scale(scale)
{
    m_states.push_back({.clip = clip});
}

void RecordingCanvas::save()
{
    State copy = state();
    copy.isOpacityGroup = false;
    m_states.push_back(copy);
}

void RecordingCanvas::restore()
{
    pop(false);
}

void RecordingCanvas::translate(double dx, double dy)
{
    state().dx += dx * state().factor;
    state().dy += dy * state().factor;
}

void RecordingCanvas::magnify(double factor, Point about)
{
    translate(about.x * (1 - factor), about.y * (1 - factor));
    m_states.back().factor *= factor;
}

Rect RecordingCanvas::toSurface(const Rect& rect) const
{
    auto& state = m_states.back();
    return {rect.x * state.factor + state.dx, rect.y * state.factor + state.dy,
        rect.width * state.factor, rect.height * state.factor};
}

void RecordingCanvas::clip(const Rect& rect)
{
    state().clip = state().clip.intersected(toSurface(rect));
}

void RecordingCanvas::beginOpacity(double opacity)
{
    State copy = state();
    copy.opacity *= opacity;
    copy.isOpacityGroup = true;
    m_states.push_back(copy);
}

void RecordingCanvas::endOpacity()
{
    pop(true);
}

void RecordingCanvas::pop(bool isOpacityGroup)
{
    if (m_states.size() == 1 || state().isOpacityGroup != isOpacityGroup) {
        m_isMisnested = true;
        return;
    }
    m_states.pop_back();
}

template <typename Kind> void RecordingCanvas::record(const Rect& rect, Kind drawn)
{
    drawn.rect = toSurface(rect);
    drawn.visible = drawn.rect.intersected(state().clip);
    drawn.opacity = state().opacity;
    m_operations.push_back(std::move(drawn));
}

void RecordingCanvas::fill(const Rect& rect, const Color& color)
{
    fillRounded(rect, 0, color);
}

void RecordingCanvas::fillRounded(const Rect& rect, double radius, const Color& color)
{
    record(rect, DrawnFill{{}, radius, color});
}

void RecordingCanvas::strokeRounded(
    const Rect& rect, double radius, double width, const Color& color)
{
    record(rect, DrawnStroke{{}, radius, width, color});
}

void RecordingCanvas::fillPolygon(const std::vector<Point>& corners, const Color& color)
{
    Rect around;
    for (auto& corner : corners) {
        Rect point{corner.x, corner.y, 0, 0};
        around = &corner == &corners.front() ? point : around.united(point);
    }
    record(around, DrawnPolygon{{}, color});
}

void RecordingCanvas::fillGradient(
    const Rect& rect, GradientDirection direction, const std::vector<GradientStop>& stops)
{
    record(rect, DrawnGradient{{}, direction, stops});
}

void RecordingCanvas::drawImage(const Image& image, const Rect& rect)
{
    record(rect, DrawnImage{{}, image});
}

void RecordingCanvas::drawText(std::string_view utf8, const Rect& rect, const TextStyle& style)
{
    record(rect, DrawnText{{}, std::string{utf8}, style});
}

void RecordingCanvas::drawSymbol(Symbol symbol, const Rect& rect, const Color& color)
{
    record(rect, DrawnSymbol{{}, symbol, color});
}

std::vector<std::string> RecordingCanvas::texts() const
{
    std::vector<std::string> texts;
    for (auto& drawn : drawn<DrawnText>())
        texts.push_back(drawn.text);
    return texts;
}

const DrawnText* RecordingCanvas::text(std::string_view utf8) const
{
    for (auto& operation : m_operations) {
        auto* drawn = std::get_if<DrawnText>(&operation);
        if (drawn && drawn->text == utf8 && !drawn->visible.isEmpty())
            return drawn;
    }
    return nullptr;
}

}

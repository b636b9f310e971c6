#pragma once

#include "Quorvel/Views/Kit/Mirrored.h"
#include "Quorvel/Views/Kit/View.h"

namespace quorvel {

/// A view whose height follows from its width, as that of text does.
class MeasuredView : public View {
public:
    /// In points.
    virtual double heightFor(double width) const = 0;
    /// The font changed, or the direction of the interface.
    virtual void appearanceDidChange(bool /*isRightToLeft*/) { layout(); }
};

}

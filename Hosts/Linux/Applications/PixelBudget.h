#pragma once

#include <cstddef>
#include <list>
#include <memory>

#include "Hosts/Linux/Applications/SharedSurfaces.h"

namespace quorvel::xdg {

/// Keeps pictures that can be made again up to a total number of bytes; the least recently used go
/// first. Main thread.
class PixelBudget {
public:
    /// The pixels of one picture.
    class Piece {
    public:
        Piece(const Piece&) = delete;
        Piece& operator=(const Piece&) = delete;
        virtual ~Piece() { leave(); }

        PixelBudget& budget() const { return *m_budget; }

    protected:
        explicit Piece(std::shared_ptr<PixelBudget> budget) : m_budget(std::move(budget)) { }

        /// It has just been made or used, and has this size. Others may be dropped for it.
        void use(std::size_t bytes);
        /// Frees the pixels.
        virtual void drop() = 0;

    private:
        friend class PixelBudget;
        void leave();

        const std::shared_ptr<PixelBudget> m_budget;
        std::size_t m_bytes = 0; ///< 0: not kept
        std::list<Piece*>::iterator m_place;
    };

    explicit PixelBudget(std::size_t limit) : m_limit(limit) { }

    /// The total of all that is kept.
    std::size_t bytes() const { return m_bytes; }
    /// Those that look the same take their memory once, though each counts.
    SharedSurfaces& surfaces() { return m_surfaces; }

private:
    const std::size_t m_limit;
    std::size_t m_bytes = 0;
    std::list<Piece*> m_pieces; ///< the most recently used comes first
    SharedSurfaces m_surfaces;
};

}

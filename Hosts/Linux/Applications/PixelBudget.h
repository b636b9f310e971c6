#pragma once

#include <cstddef>
#include <list>
#include <memory>

namespace quorvel::xdg {

/// Pictures that can be made again are kept up to so many bytes of pixels; those whose last use is
/// longest ago go first. Main thread.
class PixelBudget {
public:
    /// The pixels of one picture.
    class Piece {
    public:
        Piece(const Piece&) = delete;
        Piece& operator=(const Piece&) = delete;
        virtual ~Piece() { leave(); }

    protected:
        explicit Piece(std::shared_ptr<PixelBudget> budget) : m_budget(std::move(budget)) { }

        /// It has just been made or used, and is this large. Others may be dropped for it.
        void use(std::size_t bytes);
        /// Gives the pixels back.
        virtual void drop() = 0;

    private:
        friend class PixelBudget;
        void leave();

        const std::shared_ptr<PixelBudget> m_budget;
        std::size_t m_bytes = 0; ///< 0: not among those that are kept
        std::list<Piece*>::iterator m_place;
    };

    explicit PixelBudget(std::size_t limit) : m_limit(limit) { }

    /// Of all that is kept.
    std::size_t bytes() const { return m_bytes; }

private:
    const std::size_t m_limit;
    std::size_t m_bytes = 0;
    std::list<Piece*> m_pieces; ///< the last used comes first
};

}

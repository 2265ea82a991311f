#pragma once

#include <QPainter>

namespace tul
{

/// Saves the state of a painter, and restores it at the end of the block, whichever way it is left.
class PainterGuard
{
public:
    explicit PainterGuard(QPainter &painter)
        : m_painter(painter)
    {
        m_painter.save();
    }
    ~PainterGuard() { m_painter.restore(); }
    PainterGuard(const PainterGuard &) = delete;
    PainterGuard &operator=(const PainterGuard &) = delete;
    PainterGuard(PainterGuard &&) = delete;
    PainterGuard &operator=(PainterGuard &&) = delete;

private:
    QPainter &m_painter;
};

} // namespace tul

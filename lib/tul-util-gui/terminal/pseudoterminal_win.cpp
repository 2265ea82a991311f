#include <tul-util-gui/terminal/pseudoterminal_p.h>

PseudoTerminal::PseudoTerminal() = default;

PseudoTerminal::~PseudoTerminal() = default;

bool PseudoTerminal::isSupported()
{
    return false;
}

bool PseudoTerminal::open()
{
    m_error = tr("This platform has no pseudo-terminals");
    return false;
}

qint64 PseudoTerminal::write(const char *, qint64)
{
    return -1;
}

void PseudoTerminal::setSize(int, int) { }

void PseudoTerminal::resume() { }

void PseudoTerminal::forgetInput() { }

void PseudoTerminal::drain() { }

void PseudoTerminal::attachChild() const { }

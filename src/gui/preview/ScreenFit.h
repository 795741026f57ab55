#pragma once

#include <QScreen>
#include <QWidget>

// A window's first size: what it wants, but never more than the screen shows.
inline QSize ScreenFitted(const QWidget& window, QSize wanted)
{
    const QScreen* screen = window.screen();
    return screen ? wanted.boundedTo(screen->availableSize() * 0.95) : wanted;
}

#pragma once

#include <QString>

/// "text"_s is a string: tests are full of them.
inline QString operator""_s(const char *text, std::size_t size)
{
    return QString::fromUtf8(text, static_cast<int>(size));
}

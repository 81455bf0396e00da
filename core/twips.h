#pragma once

#include <QtGlobal>

// Lengths of the window layouts are given in twips: 1/1440 inch, 15 to a pixel at 96 dpi.
namespace twips {

constexpr double PerInch = 1440.0;

inline int toPixels(double twips, double logicalDpi)
{
    return qRound(twips * logicalDpi / PerInch);
}

inline double fromPixels(double pixels, double logicalDpi)
{
    return pixels * PerInch / logicalDpi;
}

} // namespace twips

#pragma once

#include <QColor>
#include <QPalette>

#include <cstdint>
#include <optional>

// Colour values as the settings keep them: 0x00BBGGRR, red in the low byte. A value with the top
// bit set is no colour but a reference to a system colour of the desktop (its index in the low
// byte), resolved through a palette when painting: 0x80000018 is the tool-tip background.
namespace colorvalue {

bool isSystemColor(int32_t value);

// Where a classic system colour index (0..30) lives in a palette; none for an index without a colour.
struct PaletteEntry {
    QPalette::ColorGroup group;
    QPalette::ColorRole role;
};
std::optional<PaletteEntry> systemColorEntry(int index);

// An index the platform does not know resolves to black, as the platform answers 0 for it.
QColor toColor(int32_t value, const QPalette &palette);

// The 0x00BBGGRR value of a chosen colour.
int32_t fromColor(const QColor &color);

} // namespace colorvalue

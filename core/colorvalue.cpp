#include "core/colorvalue.h"

#include <array>

namespace colorvalue {
namespace {

constexpr uint32_t systemBit = 0x80000000u;

using G = QPalette::ColorGroup;
using R = QPalette::ColorRole;

// The classic system colours by index, each on the palette role that plays its part on this desktop.
constexpr std::array<PaletteEntry, 31> systemColors{{
    {G::Active, R::Button},            // 0 scroll bar
    {G::Active, R::Dark},              // 1 desktop
    {G::Active, R::Highlight},         // 2 active caption
    {G::Inactive, R::Highlight},       // 3 inactive caption
    {G::Active, R::Window},            // 4 menu
    {G::Active, R::Base},              // 5 window
    {G::Active, R::Shadow},            // 6 window frame
    {G::Active, R::WindowText},        // 7 menu text
    {G::Active, R::Text},              // 8 window text
    {G::Active, R::HighlightedText},   // 9 caption text
    {G::Active, R::Window},            // 10 active border
    {G::Inactive, R::Window},          // 11 inactive border
    {G::Active, R::Dark},              // 12 application workspace
    {G::Active, R::Highlight},         // 13 highlight
    {G::Active, R::HighlightedText},   // 14 highlight text
    {G::Active, R::Button},            // 15 button face
    {G::Active, R::Dark},              // 16 button shadow
    {G::Disabled, R::Text},            // 17 grey text
    {G::Active, R::ButtonText},        // 18 button text
    {G::Inactive, R::HighlightedText}, // 19 inactive caption text
    {G::Active, R::Light},             // 20 button highlight
    {G::Active, R::Shadow},            // 21 3-D dark shadow
    {G::Active, R::Midlight},          // 22 3-D light
    {G::Active, R::ToolTipText},       // 23 info text
    {G::Active, R::ToolTipBase},       // 24 info background
    {G::Active, R::NoRole},            // 25 has no colour on the platform
    {G::Active, R::Link},              // 26 hot-tracked item
    {G::Active, R::Highlight},         // 27 active caption gradient
    {G::Inactive, R::Highlight},       // 28 inactive caption gradient
    {G::Active, R::Highlight},         // 29 menu highlight
    {G::Active, R::Window},            // 30 menu bar
}};

} // namespace

bool isSystemColor(int32_t value)
{
    return (uint32_t(value) & systemBit) != 0;
}

std::optional<PaletteEntry> systemColorEntry(int index)
{
    if (index < 0 || index >= int(systemColors.size()) || systemColors[size_t(index)].role == R::NoRole)
        return std::nullopt;
    return systemColors[size_t(index)];
}

QColor toColor(int32_t value, const QPalette &palette)
{
    const uint32_t bits = uint32_t(value);
    if (isSystemColor(value)) {
        const auto entry = systemColorEntry(int(bits & 0xFFu));
        return entry ? palette.color(entry->group, entry->role) : QColor(Qt::black);
    }
    return QColor(int(bits & 0xFFu), int((bits >> 8) & 0xFFu), int((bits >> 16) & 0xFFu));
}

int32_t fromColor(const QColor &color)
{
    const QColor rgb = color.toRgb();
    return int32_t(uint32_t(rgb.red()) | uint32_t(rgb.green()) << 8 | uint32_t(rgb.blue()) << 16);
}

} // namespace colorvalue

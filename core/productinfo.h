#pragma once

#include <QString>

// The program's version record: the texts the captions and the about box show.
namespace productinfo {

inline QString productName() { return QStringLiteral("Sondar"); }
inline QString legalNotice() { return QStringLiteral("(c) 2026 The Sondar developers"); }
inline QString version() { return QStringLiteral(SONDAR_VERSION); }
// The resting window caption: product name, a blank, the legal notice.
inline QString caption() { return productName() + QLatin1Char(' ') + legalNotice(); }

} // namespace productinfo

#pragma once

#include <QString>

namespace kalo {

// The runtime's Trim: surrounding spaces only, never tabs or line breaks.
inline QString Recorta(const QString& s) {
    qsizetype i = 0, f = s.size();
    while (i < f && s[i] == u' ') ++i;
    while (f > i && s[f - 1] == u' ') --f;
    return s.mid(i, f - i);
}

}  // namespace kalo

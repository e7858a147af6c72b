#pragma once

#include "kaloimpresora/variant.h"

namespace kalo::interno {

// Serial dates run from 1 Jan 100 up to, not including, 1 Jan 10000.
inline constexpr double kFechaMinima = -657434.0;
inline constexpr double kFechaLimite = 2958466.0;

// Follows an object's default member until a plain value comes back; Nothing
// raises 91. Anything that is not an object is returned unchanged.
Variant ValorPorDefecto(const Variant& v);

// The runtime's `/` on two Doubles: 0/0 raises 6, x/0 raises 11, a result
// beyond Double raises 6.
double Cociente(double dividendo, double divisor);

}  // namespace kalo::interno

#pragma once

// The runtime's units of length for printers and picture boxes.

#include <cstdint>

namespace kalo {

// ScaleMode values.
namespace escala {
inline constexpr int16_t kUsuario = 0;
inline constexpr int16_t kTwips = 1;
inline constexpr int16_t kPuntos = 2;
inline constexpr int16_t kPixeles = 3;
inline constexpr int16_t kCaracteres = 4;  // 120 twips across, 240 down
inline constexpr int16_t kPulgadas = 5;
inline constexpr int16_t kMilimetros = 6;
inline constexpr int16_t kCentimetros = 7;
}  // namespace escala

inline constexpr double kTwipsPorPulgada = 1440;

}  // namespace kalo

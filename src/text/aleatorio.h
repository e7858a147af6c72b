#pragma once

#include <cstdint>

namespace kalo {

// The runtime's pseudo-random sequence, one per process: every process that
// never resets it draws the same numbers, which hosts' reports rely on.
// Values in [0, 1).
float SiguienteAleatorio();

// Puts the sequence back at its start (tests).
void ReiniciaAleatorio();

// An RGB colour (0x00BBGGRR) from three consecutive draws: red, green, blue.
int32_t ColorAleatorio();

}  // namespace kalo

// The runtime's 24-bit linear congruential generator, reproduced bit for bit.

#include "text/aleatorio.h"

#include <mutex>

namespace kalo {

namespace {

constexpr uint32_t kSemillaInicial = 0x50000;
constexpr uint32_t kMultiplicador = 0x43FD43FD;
constexpr uint32_t kIncremento = 0xC39EC3;
constexpr uint32_t kMascara = 0xFFFFFF;
constexpr float kEscala = 16777216.0f;

std::mutex candado;
uint32_t estado = kSemillaInicial;

// Caller holds the lock. 24 bits fit a float's mantissa, so the quotient is exact.
float Avanza() {
    estado = (estado * kMultiplicador + kIncremento) & kMascara;
    return static_cast<float>(estado) / kEscala;
}

int32_t Componente(float r) { return static_cast<int32_t>(r * 256.0f); }

}  // namespace

float SiguienteAleatorio() {
    std::lock_guard bloqueo(candado);
    return Avanza();
}

void ReiniciaAleatorio() {
    std::lock_guard bloqueo(candado);
    estado = kSemillaInicial;
}

int32_t ColorAleatorio() {
    // One lock for the three draws keeps them consecutive even with other threads drawing.
    std::lock_guard bloqueo(candado);
    const int32_t rojo = Componente(Avanza());
    const int32_t verde = Componente(Avanza());
    const int32_t azul = Componente(Avanza());
    return rojo + verde * 256 + azul * 65536;
}

}  // namespace kalo

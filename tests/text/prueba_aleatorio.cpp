#include <gtest/gtest.h>

#include <QString>

#include "text/aleatorio.h"

using namespace kalo;

namespace {

// The first draws of a process that never reseeds, exact to the last bit.
constexpr float kPrimeros[] = {0.705547512f, 0.53342402f, 0.579518616f};

TEST(Aleatorio, PrimerosValoresYReinicio) {
    ReiniciaAleatorio();
    for (float esperado : kPrimeros) EXPECT_EQ(SiguienteAleatorio(), esperado);
    ReiniciaAleatorio();
    const float primero = SiguienteAleatorio();
    EXPECT_EQ(primero, kPrimeros[0]);
    // The runtime shows a single with 7 significant digits.
    EXPECT_EQ(QString::number(primero, 'g', 7), QStringLiteral("0.7055475"));
}

TEST(Aleatorio, ColorDeTresSacadasConsecutivas) {
    ReiniciaAleatorio();
    // 0.7055475 * 256 = 180.6, 0.533424 * 256 = 136.6, 0.5795186 * 256 = 148.4.
    EXPECT_EQ(ColorAleatorio(), 0x9488B4);
    // The colour used up exactly three draws.
    ReiniciaAleatorio();
    for (int i = 0; i < 3; ++i) SiguienteAleatorio();
    const float cuarto = SiguienteAleatorio();
    ReiniciaAleatorio();
    ColorAleatorio();
    EXPECT_EQ(SiguienteAleatorio(), cuarto);
}

TEST(Aleatorio, ValoresEnIntervalo) {
    ReiniciaAleatorio();
    for (int i = 0; i < 100000; ++i) {
        const float r = SiguienteAleatorio();
        ASSERT_TRUE(r >= 0.0f && r < 1.0f) << i << ": " << r;
    }
    ReiniciaAleatorio();
}

}  // namespace

#include <gtest/gtest.h>

#include "kaloimpresora/impresora.h"
#include "text/aleatorio.h"

using namespace kalo;
using namespace Qt::StringLiterals;

namespace {

// The first draws of a process that never reseeds, exact to the last bit,
// reached by name as the host reaches them.
TEST(Aleatorio, RandomYRandomColorSiguenLaSecuenciaDelRuntime) {
    Impresora imp;
    ReiniciaAleatorio();
    EXPECT_TRUE(imp.Llama(u"Random"_s).identico(Variant(static_cast<double>(0.705547512f))));
    EXPECT_EQ(SiguienteAleatorio(), 0.53342402f);
    EXPECT_EQ(SiguienteAleatorio(), 0.579518616f);
    const float cuarto = SiguienteAleatorio();
    ReiniciaAleatorio();
    // 0.7055475 * 256 = 180.6, 0.533424 * 256 = 136.6, 0.5795186 * 256 = 148.4.
    EXPECT_TRUE(imp.Llama(u"RandomColor"_s).identico(Variant(int32_t{0x9488B4})));
    // The colour used up exactly three draws.
    EXPECT_EQ(SiguienteAleatorio(), cuarto);
}

}  // namespace

#include <gtest/gtest.h>

#include <limits>

#include "comun/utilerias_de_prueba.h"
#include "text/importe_en_letra.h"

using namespace kalo;
using kalo::prueba::NumeroDeError;

namespace {

// Integer part alone: no legends, no cents.
TEST(Letra, Palabras) {
    const std::pair<double, const char*> casos[] = {
        {0, "CERO"}, {1, "UN"}, {9, "NUEVE"}, {10, "DIEZ"}, {15, "QUINCE"}, {16, "DIECISÉIS"}, {19, "DIECINUEVE"},
        {20, "VEINTE"}, {21, "VEINTIÚN"}, {22, "VEINTIDÓS"}, {23, "VEINTITRÉS"}, {26, "VEINTISÉIS"},
        {29, "VEINTINUEVE"}, {30, "TREINTA"}, {31, "TREINTA Y UN"}, {99, "NOVENTA Y NUEVE"},
        {100, "CIEN"}, {101, "CIENTO UN"}, {121, "CIENTO VEINTIÚN"}, {199, "CIENTO NOVENTA Y NUEVE"},
        {200, "DOSCIENTOS"}, {500, "QUINIENTOS"}, {700, "SETECIENTOS"}, {900, "NOVECIENTOS"},
        {999, "NOVECIENTOS NOVENTA Y NUEVE"},
        {1000, "MIL"}, {1001, "MIL UN"}, {2000, "DOS MIL"}, {21000, "VEINTIÚN MIL"}, {31000, "TREINTA Y UN MIL"},
        {100000, "CIEN MIL"}, {101000, "CIENTO UN MIL"},
        {999999, "NOVECIENTOS NOVENTA Y NUEVE MIL NOVECIENTOS NOVENTA Y NUEVE"},
        {1e6, "UN MILLÓN"}, {1001000, "UN MILLÓN MIL"}, {2e6, "DOS MILLONES"}, {21e6, "VEINTIÚN MILLONES"},
        {31e6, "TREINTA Y UN MILLONES"}, {100e6, "CIEN MILLONES"}, {1e9, "MIL MILLONES"}, {1001e6, "MIL UN MILLONES"},
        {21e9, "VEINTIÚN MIL MILLONES"},
        {1e12, "UN BILLÓN"}, {1001e9, "UN BILLÓN MIL MILLONES"}, {2e12, "DOS BILLONES"},
        {121e12, "CIENTO VEINTIÚN BILLONES"},
        {999999999999999.0,
         "NOVECIENTOS NOVENTA Y NUEVE BILLONES NOVECIENTOS NOVENTA Y NUEVE MIL NOVECIENTOS NOVENTA Y NUEVE "
         "MILLONES NOVECIENTOS NOVENTA Y NUEVE MIL NOVECIENTOS NOVENTA Y NUEVE"},
    };
    for (const auto& [numero, esperado] : casos)
        EXPECT_EQ(ImporteEnLetra(numero, {}, false, {}), QString::fromUtf8(esperado)) << numero;
}

TEST(Letra, LeyendasYCentavos) {
    const std::tuple<double, const char*, bool, const char*, const char*> casos[] = {
        {1, "PESO", true, "M.N.", "UN PESO 00/100 M.N."},
        {7.05, "PESOS", true, "", "SIETE PESOS 05/100"},
        {7.05, "", true, "M.N.", "SIETE 05/100 M.N."},
        {7.05, "", true, "", "SIETE 05/100"},
        {7.05, "PESOS", false, "M.N.", "SIETE PESOS M.N."},
        {0.5, "PESOS", true, "M.N.", "CERO PESOS 50/100 M.N."},
        // Legends go in as given, spaces and case included.
        {2, " pesos ", true, "(m.n.)", "DOS  pesos  00/100 (m.n.)"},
    };
    for (const auto& [numero, leyenda, decimales, leyenda2, esperado] : casos)
        EXPECT_EQ(ImporteEnLetra(numero, QString::fromUtf8(leyenda), decimales, QString::fromUtf8(leyenda2)),
                  QString::fromUtf8(esperado));
}

TEST(Letra, NegativosRedondeoYLimites) {
    const std::pair<double, const char*> casos[] = {
        {-1, "MENOS UN PESOS 00/100"},
        {-1234.5, "MENOS MIL DOSCIENTOS TREINTA Y CUATRO PESOS 50/100"},
        {-0.25, "MENOS CERO PESOS 25/100"},
        {-0.004, "CERO PESOS 00/100"},  // rounds to nothing: no sign left
        {0.125, "CERO PESOS 13/100"}, {0.124, "CERO PESOS 12/100"},
        {2.675, "DOS PESOS 68/100"},  // the double sits just below 2.675
        {1.005, "UN PESOS 01/100"},   // likewise
        {-2.675, "MENOS DOS PESOS 68/100"}, {0.999, "UN PESOS 00/100"}, {20.995, "VEINTIÚN PESOS 00/100"},
        {999999.999, "UN MILLÓN PESOS 00/100"}, {0.1 + 0.2, "CERO PESOS 30/100"}, {1e-300, "CERO PESOS 00/100"},
    };
    for (const auto& [numero, esperado] : casos)
        EXPECT_EQ(ImporteEnLetra(numero, QStringLiteral("PESOS"), true, {}), QString::fromUtf8(esperado)) << numero;

    constexpr double kInfinito = std::numeric_limits<double>::infinity();
    for (double numero : {1e15, -1e15, 1e300, kInfinito, -kInfinito, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(NumeroDeError([&] { ImporteEnLetra(numero, QStringLiteral("PESOS"), true, {}); }), 6) << numero;
    // The largest amounts below the limit still go into words.
    EXPECT_TRUE(ImporteEnLetra(-999999999999999.9, {}, true, {}).endsWith(u"NOVENTA Y NUEVE 90/100"));
}

}  // namespace

#include "comun/prueba.h"

#include "text/aleatorio.h"
#include "text/importe_en_letra.h"

namespace {

TEST(Ayudas, RellenoYRepeticion) {
    Impresora imp;
    // PadL pads on the left just as PadR does: hosts rely on the sameness.
    const std::tuple<Variant, Variant, const char*> rellenos[] = {
        {"ab", 5, "   ab"}, {"abcdef", 3, "abcdef"}, {12, 4, "  12"}, {"", 0, ""}, {"x", -3, "x"},
        {"ab", 4.5, "  ab"},    // 2.5 halves to 2
        {"ab", 5.5, "    ab"},  // 3.5 halves to 4
    };
    for (const auto& [texto, ancho, esperado] : rellenos) {
        EXPECT_EQ(imp.PadR(texto, ancho), QString::fromLatin1(esperado)) << esperado;
        EXPECT_EQ(imp.PadL(texto, ancho), QString::fromLatin1(esperado)) << esperado;
    }
    const std::tuple<Variant, Variant, const char*> repeticiones[] = {
        {"-", 0, ""}, {"-", -2, ""}, {"ab", 3, "ababab"}, {"ab", 2.5, "abab"}, {"=", "3", "==="}, {7, 2, "77"},
        {Variant::Nulo(), 4, ""},
    };
    for (const auto& [pieza, veces, esperado] : repeticiones)
        EXPECT_EQ(imp.Replicate(pieza, veces), QString::fromLatin1(esperado)) << esperado;
    EXPECT_EQ(NumeroDeError([&] { imp.PadR(Variant::Nulo(), 3); }), 94);
    EXPECT_EQ(NumeroDeError([&] { imp.Replicate("-", "muchas"); }), 13);
    EXPECT_EQ(NumeroDeError([&] { imp.Replicate("-", Variant::Nulo()); }), 94);
}

TEST(Ayudas, ComillasInsercionYReemplazo) {
    Impresora imp;
    EXPECT_EQ(imp.Block(u"a b"_s), u"\"a b\""_s);
    EXPECT_EQ(imp.Quote(u"a b"_s), u"'a b'"_s);
    // What to insert, what to find, where: once, and every time.
    const std::tuple<QString, QString, QString, QString, QString> casos[] = {
        {u"X"_s, u"b"_s, u"abcabc"_s, u"aXcabc"_s, u"aXcaXc"_s}, {u""_s, u"ab"_s, u"abcabc"_s, u"cabc"_s, u"cc"_s},
        {u"X"_s, u"z"_s, u"abc"_s, u"abc"_s, u"abc"_s},          {u"X"_s, u""_s, u"abc"_s, u"abc"_s, u"abc"_s},
        {u"aa"_s, u"aaa"_s, u"aaaaaa"_s, u"aaaaa"_s, u"aa"_s},   {u"cd"_s, u"abc"_s, u"abc"_s, u"cd"_s, u"cd"_s},
    };
    for (const auto& [inserta, busca, destino, unaVez, todas] : casos) {
        QString variable = destino;
        EXPECT_EQ(imp.Inserta(inserta, busca, destino), unaVez) << destino.toStdString();
        EXPECT_EQ(imp.Cambia(inserta, busca, variable), todas) << destino.toStdString();
        EXPECT_EQ(variable, todas) << destino.toStdString();
    }
}

TEST(Ayudas, LineasDeUnTexto) {
    Impresora imp;
    const Variant texto(u"uno\r\ndos\nt\rres"_s);
    const std::pair<Variant, const char*> lineas[] = {
        {1, "uno"}, {2, "dos"}, {3, "tres"}, {4, ""}, {0, ""}, {-1, ""}, {"2", "dos"}, {1.5, ""}, {"dos", ""},
    };
    for (const auto& [linea, esperado] : lineas) EXPECT_EQ(imp.strLinea(texto, linea), QString::fromLatin1(esperado));
    EXPECT_EQ(imp.strLinea(u"uno\r\ndos"_s, 3), u""_s);
    EXPECT_EQ(imp.strLinea(u"solo"_s, 1), u"solo"_s);
    const std::pair<Variant, int32_t> cuentas[] = {
        {u""_s, 0},  {u"sin salto"_s, 1}, {u"a\nb"_s, 2},       {u"a\nb\n"_s, 3},
        {u"\n\n"_s, 3}, {Variant(), 0},       {Variant::Nulo(), 0}, {12345, 1},
    };
    for (const auto& [valor, cuantas] : cuentas) EXPECT_EQ(imp.CuantasLineas(valor), cuantas) << cuantas;
}

// Counts how often the decimal separator is asked for.
class SeparadorContado : public UtileriasPredeterminadas {
public:
    QString SeparadorDecimal() override {
        ++veces;
        return u","_s;
    }
    int veces = 0;
};

TEST(Ayudas, FnLeeElPuntoDecimalEnCualquierLocalPidiendoElSeparadorEnCadaPunto) {
    Impresora imp;
    for (const char* local : {"en_US", "es_ES", "de_DE", "es_MX"}) {
        ConLocal l(local);
        SCOPED_TRACE(local);
        EXPECT_EQ(imp.Fn(u"1234.5"_s), 1234.5);
        EXPECT_EQ(imp.Fn(u"-0.0001"_s), -0.0001);
        EXPECT_EQ(imp.Fn(u"7"_s), 7);
        EXPECT_EQ(NumeroDeError([&] { imp.Fn(u""_s); }), 13);
        EXPECT_EQ(NumeroDeError([&] { imp.Fn(u"abc"_s); }), 13);
    }
    ConLocal l("es_ES");
    auto util = std::make_shared<SeparadorContado>();
    SustituyeUtilerias(util);
    EXPECT_EQ(imp.Fn(u"12.5"_s), 12.5);
    EXPECT_EQ(util->veces, 1);
    // Two points become two decimal separators: not a number.
    EXPECT_EQ(NumeroDeError([&] { imp.Fn(u"1.2.3"_s); }), 13);
    EXPECT_EQ(util->veces, 3);
}

TEST(Ayudas, LetraYFormatoPorNombre) {
    ConLocal l("es_ES");
    Impresora imp;
    EXPECT_EQ(imp.Llama(u"Letra"_s, {1234.56, u"PESOS"_s, true, u"M.N."_s}).texto(),
              u"MIL DOSCIENTOS TREINTA Y CUATRO PESOS 56/100 M.N."_s);
    EXPECT_EQ(imp.Llama(u"Letra"_s, {u"21"_s, u"DÓLARES"_s, 0}).texto(), u"VEINTIÚN DÓLARES"_s);
    // strLeyenda2, Decimales, Leyenda, nNumero: the first failure in that order wins.
    EXPECT_EQ(NumeroDeError([&] { imp.Letra(u"mucho"_s, Variant::Nulo(), true); }), 94);
    EXPECT_EQ(NumeroDeError([&] { imp.Letra(Variant::Nulo(), u"X"_s, u"quizá"_s); }), 13);
    EXPECT_EQ(NumeroDeError([&] { imp.Letra(u"mucho"_s, u"X"_s, true); }), 13);
    EXPECT_EQ(NumeroDeError([&] { imp.Letra(1e15, u"X"_s, true); }), 6);
    EXPECT_TRUE(imp.Llama(u"Formato"_s, {1234.5, u"#,##0.00"_s}).identico(Variant(u"1.234,50"_s)));
}

// The first draws of a process that never reseeds, exact to the last bit,
// reached by name as the host reaches them.
TEST(Ayudas, RandomYRandomColorSiguenLaSecuenciaDelRuntime) {
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
        {1, "PESO", true, "M.N.", "UN PESO 00/100 M.N."}, {7.05, "PESOS", true, "", "SIETE PESOS 05/100"},
        {7.05, "", true, "M.N.", "SIETE 05/100 M.N."}, {7.05, "", true, "", "SIETE 05/100"},
        {7.05, "PESOS", false, "M.N.", "SIETE PESOS M.N."}, {0.5, "PESOS", true, "M.N.", "CERO PESOS 50/100 M.N."},
        // Legends go in as given, spaces and case included.
        {2, " pesos ", true, "(m.n.)", "DOS  pesos  00/100 (m.n.)"},
    };
    for (const auto& [numero, leyenda, decimales, leyenda2, esperado] : casos)
        EXPECT_EQ(ImporteEnLetra(numero, QString::fromUtf8(leyenda), decimales, QString::fromUtf8(leyenda2)),
                  QString::fromUtf8(esperado));
}

TEST(Letra, NegativosRedondeoYLimites) {
    const std::pair<double, const char*> casos[] = {
        {-1, "MENOS UN PESOS 00/100"}, {-1234.5, "MENOS MIL DOSCIENTOS TREINTA Y CUATRO PESOS 50/100"},
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

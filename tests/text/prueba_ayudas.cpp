#include <gtest/gtest.h>

#include "comun/utilerias_de_prueba.h"
#include "kaloimpresora/impresora.h"
#include "text/aleatorio.h"

using namespace kalo;
using namespace Qt::StringLiterals;
using kalo::prueba::ConLocal;
using kalo::prueba::NumeroDeError;

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

}  // namespace

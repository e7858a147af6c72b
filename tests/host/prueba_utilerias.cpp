#include "comun/prueba.h"

#include <thread>

namespace {

TEST(Utilerias, TextoDeNumeroUsaPuntoSinAgruparNiExponente) {
    UtileriasPredeterminadas u;
    const std::pair<double, const char*> casos[] = {
        {2, "2"},         {2.5, "2.5"},           {-0.0001, "-0.0001"},       {0, "0"},
        {-0.0, "0"},      {1234567.8912, "1234567.8912"}, {1e20, "100000000000000000000"},
        {0.1 + 0.2, "0.3"}, {1.0 / 3, "0.333333333333333"}, {1e-7, "0.0000001"},
    };
    for (const char* local : {"en_US", "es_ES"}) {
        ConLocal l(local);
        for (const auto& [numero, texto] : casos)
            EXPECT_EQ(u.TextoDeNumero(numero), QString::fromLatin1(texto)) << local;
    }
}

TEST(Utilerias, EsVacioYValorNumerico) {
    UtileriasPredeterminadas u;
    const std::tuple<Variant, bool, double> casos[] = {
        {Variant(), true, 0},        {Variant::Nulo(), true, 0}, {Variant::Falta(), true, 0},
        {u""_s, true, 0},           {u"   "_s, true, 0},       {u"x"_s, false, 0},
        {u"12"_s, false, 12},       {true, false, -1},          {false, false, 0},
        {int32_t{0}, false, 0},      {2.5, false, 2.5},          {Variant::Nada(), true, 0},
    };
    for (const auto& [valor, vacio, numero] : casos) {
        EXPECT_EQ(u.EsVacio(valor), vacio) << static_cast<int>(valor.tipo());
        EXPECT_EQ(u.ValorNumerico(valor), numero) << static_cast<int>(valor.tipo());
    }
}

TEST(Utilerias, TextoDeValorBuscaTextoSeparadorYLoQueAunNoEsta) {
    UtileriasPredeterminadas u;
    ConLocal l("es_ES");
    EXPECT_EQ(u.TextoDeValor(u"a\"b"_s), u"a\"b"_s);
    EXPECT_EQ(u.TextoDeValor(2.5), u"2,5"_s);
    EXPECT_EQ(u.TextoDeValor(Variant::Nulo()), u""_s);
    EXPECT_EQ(u.SeparadorDecimal(), u","_s);
    EXPECT_EQ(u.BuscaTexto(u"c"_s, u"abcabc"_s), 3);
    EXPECT_EQ(u.BuscaTexto(u"C"_s, u"abcabc"_s), 0);
    EXPECT_EQ(u.BuscaTexto(2, u"a2"_s), 2);
    EXPECT_LT(u.BuscaTexto(u""_s, u"abc"_s), 1);
    EXPECT_LT(u.BuscaTexto(Variant::Nulo(), u"abc"_s), 1);
    ConLocal en("en_US");
    EXPECT_EQ(u.SeparadorDecimal(), u"."_s);
    EXPECT_EQ(NumeroDeError([&] { u.FechaDePeriodo(1, 2); }), 445);
    EXPECT_EQ(NumeroDeError([&] { u.AbreConsulta(u"SELECT 1"_s, nullptr, true); }), 445);
}

class Marcada : public UtileriasPredeterminadas {
public:
    QString SeparadorDecimal() override { return u"#"_s; }
};

TEST(Utilerias, LaInstanciaCompartidaEsPorHiloYSustituible) {
    SustituyeUtilerias(std::make_shared<Marcada>());
    EXPECT_EQ(UtileriasCompartidas().SeparadorDecimal(), u"#"_s);
    QString enOtroHilo;
    std::thread([&] { enOtroHilo = UtileriasCompartidas().SeparadorDecimal(); }).join();
    EXPECT_NE(enOtroHilo, u"#"_s);
}

}  // namespace

#include "comun/prueba.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <QVBoxLayout>
#include <thread>

namespace {

TEST(Utilerias, TextoDeNumeroUsaPuntoSinAgruparNiExponente) {
    UtileriasPredeterminadas u;
    const std::pair<double, const char*> casos[] = {
        {-0.0001, "-0.0001"},
        {1234567.8912, "1234567.8912"},
        {1e20, "100000000000000000000"},
        {1.0 / 3, "0.333333333333333"},
        {1e-7, "0.0000001"},
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
        {Variant(), true, 0},
        {Variant::Nulo(), true, 0},
        {Variant::Falta(), true, 0},
        {u""_s, true, 0},
        {u"   "_s, true, 0},
        {u"x"_s, false, 0},
        {u"12"_s, false, 12},
        {true, false, -1},
        {int32_t{0}, false, 0},
        {2.5, false, 2.5},
        {Variant::Nada(), true, 0},
    };
    for (const auto& [valor, vacio, numero] : casos) {
        EXPECT_EQ(u.EsVacio(valor), vacio) << static_cast<int>(valor.tipo());
        EXPECT_EQ(u.ValorNumerico(valor), numero) << static_cast<int>(valor.tipo());
    }
}

TEST(Utilerias, TextoDeValorBuscaTextoYSeparador) {
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
}

TEST(Utilerias, FechaDePeriodoYTextoDeMensaje) {
    UtileriasPredeterminadas u;
    const std::tuple<Variant, Variant, QDate> casos[] = {
        {2024, 2, QDate(2024, 2, 29)},
        {1900, 2, QDate(1900, 2, 28)},
        {u"2024"_s, 12, QDate(2024, 12, 31)},
    };
    for (const auto& [anio, mes, dia] : casos) EXPECT_EQ(u.FechaDePeriodo(anio, mes), QDate(1899, 12, 30).daysTo(dia));
    for (auto [anio, mes] : {
             std::pair{2024, 0},
             {2024, 13},
             {99, 1},
             {10000, 1},
         })
        EXPECT_EQ(NumeroDeError([&] { u.FechaDePeriodo(anio, mes); }), err::kLlamadaNoValida) << anio << "/" << mes;
    EXPECT_EQ(u.TextoDeMensaje(823, nullptr), u"No se pudo abrir la base de datos de la sucursal."_s);
    EXPECT_TRUE(u.TextoDeMensaje(77, nullptr).contains(u"77"_s));
}

// Keys reach the widget with the focus; without waiting they arrive when the
// event loop runs. The window is centred over the active one.
TEST(Utilerias, EnviaTeclasYPreparaFormulario) {
    AseguraAplicacion();
    UtileriasPredeterminadas u;
    QWidget ventana;
    ventana.setGeometry(100, 80, 600, 400);
    auto* capa = new QVBoxLayout(&ventana);
    auto* uno = new QLineEdit;
    auto* dos = new QLineEdit;
    capa->addWidget(uno);
    capa->addWidget(dos);
    ventana.show();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&ventana));
    uno->setFocus();
    u.EnviaTeclas(u"ab+c{+}1 {TAB}xy{BS}"_s, true);
    EXPECT_EQ(uno->text() + u'|' + dos->text(), u"abC+1 |x"_s);
    u.EnviaTeclas(u"{TAB}"_s, false);
    EXPECT_TRUE(dos->hasFocus());
    QCoreApplication::processEvents();
    EXPECT_TRUE(uno->hasFocus());
    int intros = 0;
    QObject::connect(uno, &QLineEdit::returnPressed, [&] { ++intros; });
    u.EnviaTeclas(u"{ENTER}~"_s, true);
    EXPECT_EQ(intros, 2);
    for (const char16_t* malas : {u"{NOEXISTE}", u"{TAB"})
        EXPECT_EQ(NumeroDeError([&] { u.EnviaTeclas(QString::fromUtf16(malas), true); }), err::kLlamadaNoValida);

    QWidget dialogo;
    dialogo.resize(200, 100);
    u.PreparaFormulario(&dialogo, nullptr, {});
    EXPECT_EQ(dialogo.geometry().center(), ventana.frameGeometry().center());
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

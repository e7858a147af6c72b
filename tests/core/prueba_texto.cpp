// Text and font methods: what they record and what they ask of the target.

#include <gtest/gtest.h>

#include "comun/impresora_con_grabadores.h"
#include "comun/lectura_de_reporte.h"
#include "comun/utilerias_de_prueba.h"

using namespace kalo;
using namespace Qt::StringLiterals;
using kalo::prueba::ConLocal;
using kalo::prueba::NumeroDeError;
using kalo::prueba::Renglones;

namespace {

using Texto = prueba::ConImpresoraYVistaGrabadoras<>;

TEST_F(Texto, SayRegistraLaRejillaYEscribeElTextoSinCambiar) {
    imp.IniciaDocumento();
    imp.Say(1, 2, u"a\"b"_s);
    const auto r = Renglones(imp.DB);
    ASSERT_EQ(r.size(), 2u);
    EXPECT_EQ(r[1].source, u"Say Fn(\"1\"),Fn(\"2\"),\"a''b\"\r\n"_s);
    EXPECT_DOUBLE_EQ(r[1].nrow, 6);
    EXPECT_DOUBLE_EQ(r[1].ncol, 2 / (8.5 / 80));
    EXPECT_EQ(r[1].contenido, u"a\"b"_s);
    EXPECT_EQ(vista->Registro().mid(vista->Registro().size() - 3),
              (QStringList{u"Asigna currentx=2"_s, u"Asigna currenty=1"_s, u"Llama print(a\"b)"_s}));
}

TEST_F(Texto, SayEnLaImpresoraRestaLosMargenes) {
    imp.Pantalla = false;
    imp.IniciaDocumento();
    imp.Say(1, 2, 1234.5);
    EXPECT_TRUE(impresora->Valor(u"CurrentX"_s).identico(Variant(1.75f)));
    EXPECT_TRUE(impresora->Valor(u"CurrentY"_s).identico(Variant(0.75f)));
    // The argument itself is printed, not its text.
    EXPECT_TRUE(impresora->De(u"Print"_s).back().argumentos[0].identico(Variant(1234.5)));
    EXPECT_TRUE(imp.DB.isEmpty());
}

TEST_F(Texto, ComandosDeFuenteComoSeRegistran) {
    ConLocal local("en_US");
    imp.IniciaDocumento();
    imp.EstableceFuente(u"Courier New"_s, u"10.5"_s);
    imp.FontBold(1);
    imp.FontBold(true);
    imp.FontITalic(-1);
    imp.FuenteTransparente(true);
    imp.ColorDeFuente(255);
    imp.CurrentX(0.25);
    imp.CurrentY(u"3"_s);
    const auto r = Renglones(imp.DB);
    ASSERT_EQ(r.size(), 9u);
    const QStringList esperados = {
        u"EstableceFuente \"Courier New\",Fn(\"10.5\")\r\n"_s, u"FontBold False\r\n"_s, u"FontBold True\r\n"_s,
        u"FontItalic True\r\n"_s, u"FuenteTransparente False\r\n"_s, u"ColorDeFuente 255\r\n"_s,
        u"CurrentX Fn(\"0.25\")\r\n"_s, u"CurrentY Fn(\"3\")\r\n"_s};
    for (int i = 0; i < esperados.size(); ++i) EXPECT_EQ(r[i + 1].source, esperados[i]);
    EXPECT_EQ(r[1].fuente, u"Courier New"_s);
    EXPECT_DOUBLE_EQ(r[1].fsize, 10.5);
    EXPECT_NE(r[2].bold, 0);
    EXPECT_NE(r[4].italic, 0);
    EXPECT_EQ(r[4].bold, 0);
    // The preview gets the values as given, the size scaled to it (here 1:1).
    EXPECT_TRUE(vista->Valor(u"FontBold"_s).identico(Variant(true)));
    EXPECT_TRUE(vista->Valor(u"FontTransparent"_s).identico(Variant(true)));
    EXPECT_TRUE(vista->Valor(u"ForeColor"_s).identico(Variant(int32_t{255})));
    EXPECT_EQ(CDbl(vista->Valor(u"FontSize"_s)), 10.5);
    EXPECT_TRUE(vista->Valor(u"CurrentY"_s).identico(Variant(u"3"_s)));
}

TEST_F(Texto, RenglonYColumnaDeLaRejilla) {
    struct Caso {
        Variant valor;
        double renglon, columna;
    } casos[] = {{Variant(), 0, 0}, {6, 1, 0.6375}, {80, 80.0 / 6, 8.5}, {0.5, 0.5 / 6, 0.053125}, {u"12"_s, 2, 1.275}};
    for (const auto& c : casos) {
        EXPECT_DOUBLE_EQ(CDbl(imp.Row(c.valor)), c.renglon);
        EXPECT_DOUBLE_EQ(CDbl(imp.Col(c.valor)), c.columna);
    }
    EXPECT_EQ(NumeroDeError([&] { imp.Row(u"x"_s); }), 13);
    EXPECT_EQ(imp.nLinea, 0);
}

TEST_F(Texto, LosErroresDeConversionLleganAntesDeRegistrar) {
    imp.IniciaDocumento();
    imp.nRow = 0;
    EXPECT_EQ(NumeroDeError([&] { imp.Say(1, 1, u"x"_s); }), 11);
    EXPECT_EQ(NumeroDeError([&] { imp.Row(1); }), 11);
    EXPECT_EQ(NumeroDeError([&] { imp.EstableceFuente(u"Arial"_s, u"grande"_s); }), 13);
    EXPECT_EQ(NumeroDeError([&] { imp.Say(u"arriba"_s, 1, u"x"_s); }), 13);
    EXPECT_EQ(NumeroDeError([&] { imp.ColorDeFuente(Variant::Nulo()); }), 94);
    EXPECT_EQ(imp.nLinea, 1);
    imp.CurrentY(2);
    EXPECT_EQ(imp.nLinea, 2);
    EXPECT_EQ(Renglones(imp.DB).size(), 2u);
}

TEST_F(Texto, SinDocumentoCursivaYTransparenciaFallanDespuesDeRegistrar) {
    Impresora nueva;
    nueva.Pantalla = true;
    EXPECT_NO_THROW(nueva.FontBold(true));
    EXPECT_EQ(NumeroDeError([&] { nueva.FontITalic(true); }), 91);
    EXPECT_EQ(NumeroDeError([&] { nueva.FuenteTransparente(true); }), 91);
    EXPECT_EQ(nueva.nLinea, 3);
}

TEST_F(Texto, PorNombreComoLoLlamaElAnfitrion) {
    imp.IniciaDocumento();
    imp.Llama(u"say"_s, {imp.Llama(u"Row"_s, {3}), imp.Llama(u"Col"_s, {10}), u"Total"_s});
    EXPECT_TRUE(vista->Valor(u"CurrentY"_s).identico(Variant(0.5)));
    EXPECT_TRUE(vista->Valor(u"CurrentX"_s).identico(Variant(1.0625)));
    EXPECT_EQ(Renglones(imp.DB).back().source, u"Say Fn(\"0.5\"),Fn(\"1.0625\"),\"Total\"\r\n"_s);
}

}  // namespace

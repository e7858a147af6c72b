// The drawing-target layer, watched through recording targets: the calls it
// makes on the preview target and on the printer, and their values.

#include <gtest/gtest.h>

#include "comun/objeto_grabador.h"
#include "comun/utilerias_de_prueba.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/impresoras.h"
#include "target/modulo4.h"

using namespace kalo;
using namespace Qt::StringLiterals;
using kalo::prueba::NumeroDeError;
using kalo::prueba::ObjetoGrabador;

namespace {

class Modulo4 : public ::testing::Test {
protected:
    void SetUp() override {
        modulo4::Estado() = {};
        impresora = std::make_shared<ObjetoGrabador>();
        impresora->Pon(u"ScaleMode"_s, int16_t{1});
        impresora->Pon(u"FontName"_s, u"Arial"_s);
        impresora->Pon(u"FontSize"_s, 10.0f);
        impresora->Pon(u"ForeColor"_s, int32_t{255});
        EstableceImpresoraActual(impresora);
        contenedor = std::make_shared<ObjetoGrabador>();
        contenedor->Pon(u"ScaleMode"_s, int16_t{1});
        vista = std::make_shared<ObjetoGrabador>();
        vista->Pon(u"ScaleMode"_s, int16_t{3});
        vista->Pon(u"Parent"_s, Variant(std::shared_ptr<Objeto>(contenedor)));
    }
    void TearDown() override {
        EstableceImpresoraActual(nullptr);
        modulo4::Estado() = {};
    }

    // The preview target measures ancho x alto inches once in inches.
    void Mide(double ancho, double alto) {
        vista->Pon(u"ScaleWidth"_s, ancho);
        vista->Pon(u"ScaleHeight"_s, alto);
    }

    std::shared_ptr<ObjetoGrabador> impresora, contenedor, vista;
};

TEST_F(Modulo4, LaVistaSeAjustaALaPaginaYSeEscalaEnPulgadas) {
    Mide(6, 4);
    Impresora imp;
    imp.Pantalla = true;
    imp.Imagen2 = vista;
    imp.IniciaDocumento();

    // 4/11 < 6/8.5: the target keeps its height and becomes narrower.
    const double escala = 4.0 / 11.0;
    ASSERT_EQ(vista->De(u"Width"_s).size(), 1u);
    EXPECT_NEAR(CDbl(vista->Valor(u"Width"_s)), escala * 8.5, 1e-12);
    EXPECT_TRUE(vista->De(u"Height"_s).empty());
    // The width is given in inches of the container, whose mode is put back.
    const QStringList delContenedor = contenedor->Registro();
    EXPECT_EQ(delContenedor, (QStringList{u"Lee scalemode"_s, u"Asigna scalemode=5"_s, u"Asigna scalemode=1"_s}));

    const auto escala_ = vista->De(u"Scale"_s);
    ASSERT_EQ(escala_.size(), 1u);
    ASSERT_EQ(escala_[0].argumentos.size(), 4u);
    EXPECT_EQ(CDbl(escala_[0].argumentos[2]), 8.5);
    EXPECT_EQ(CDbl(escala_[0].argumentos[3]), 11);
    EXPECT_EQ(vista->Valor(u"FontName"_s), Variant(u"Arial"_s));
    EXPECT_NEAR(CDbl(vista->Valor(u"FontSize"_s)), 10 * escala, 1e-6);  // about 3.64 points
    EXPECT_EQ(CLng(vista->Valor(u"ForeColor"_s)), 255);
    // Inches before fitting, and the picture cleared last.
    EXPECT_EQ(vista->Registro().first(), u"Lee scalemode"_s);
    EXPECT_EQ(vista->Registro()[1], u"Asigna scalemode=5"_s);
    EXPECT_EQ(vista->Registro().last(), u"Llama cls()"_s);
    // The printer's own mode was only borrowed.
    EXPECT_EQ(CInt(impresora->Valor(u"ScaleMode"_s)), 1);
    EXPECT_TRUE(impresora->De(u"Print"_s).empty());
}

TEST_F(Modulo4, UnaVistaConLasProporcionesDeLaPaginaAjustaLaAltura) {
    Mide(8.5 / 2, 11.0 / 2);
    Impresora imp;
    imp.Pantalla = true;
    imp.Imagen2 = vista;
    imp.IniciaDocumento();
    EXPECT_TRUE(vista->De(u"Width"_s).empty());
    ASSERT_EQ(vista->De(u"Height"_s).size(), 1u);
    EXPECT_NEAR(CDbl(vista->Valor(u"Height"_s)), 5.5, 1e-12);
}

TEST_F(Modulo4, EnLaImpresoraLasPosicionesSeDesplazanAlAreaImprimible) {
    impresora->Pon(u"ScaleWidth"_s, 8.0f);
    impresora->Pon(u"ScaleHeight"_s, 10.5f);
    Impresora imp;
    imp.IniciaDocumento();
    // The job opens at once with an empty text, in inches.
    ASSERT_EQ(impresora->De(u"Print"_s).size(), 1u);
    EXPECT_EQ(CStr(impresora->De(u"Print"_s)[0].argumentos[0]), u""_s);
    EXPECT_EQ(CInt(impresora->Valor(u"ScaleMode"_s)), 5);

    modulo4::PosicionaX(1);
    modulo4::PosicionaY(2);
    EXPECT_TRUE(impresora->Valor(u"CurrentX"_s).identico(Variant(0.75f)));
    EXPECT_TRUE(impresora->Valor(u"CurrentY"_s).identico(Variant(1.75f)));

    modulo4::AsignaTamano(9.5);
    EXPECT_TRUE(impresora->Valor(u"FontSize"_s).identico(Variant(9.5f)));
    modulo4::AsignaColor(u"65280"_s);
    EXPECT_TRUE(impresora->Valor(u"ForeColor"_s).identico(Variant(int32_t{65280})));
    modulo4::AsignaNegrita(1);
    EXPECT_TRUE(impresora->Valor(u"FontBold"_s).identico(Variant(true)));
    modulo4::AsignaTransparencia(0);
    EXPECT_TRUE(impresora->Valor(u"ModoDeFondo"_s).identico(Variant(int16_t{2})));
    EXPECT_EQ(NumeroDeError([] { modulo4::AsignaTransparencia(Variant::Nulo()); }), 94);
    modulo4::AsignaTransparencia(true);
    EXPECT_TRUE(impresora->Valor(u"FontTransparent"_s).identico(Variant(true)));
    EXPECT_TRUE(impresora->Valor(u"ModoDeFondo"_s).identico(Variant(int16_t{1})));

    imp.PaginaNueva();
    imp.FinDocumento();
    const QStringList registro = impresora->Registro();
    EXPECT_TRUE(registro.contains(u"Llama newpage()"_s));
    EXPECT_EQ(registro[registro.size() - 2], u"Llama enddoc()"_s);
    EXPECT_EQ(registro.last(), u"Asigna scalemode=1"_s);
}

TEST_F(Modulo4, EnLaVistaLosValoresPasanSinConvertir) {
    Mide(8.5, 11);
    Impresora imp;
    imp.Pantalla = true;
    imp.Imagen2 = vista;
    imp.IniciaDocumento();
    modulo4::PosicionaX(u"1,5"_s);
    EXPECT_TRUE(vista->Valor(u"CurrentX"_s).identico(Variant(u"1,5"_s)));
    modulo4::AsignaTamano(10);
    EXPECT_NEAR(CDbl(vista->Valor(u"FontSize"_s)), 10, 1e-12);
    modulo4::AsignaCursiva(int32_t{1});
    EXPECT_TRUE(vista->Valor(u"FontItalic"_s).identico(Variant(int32_t{1})));
    EXPECT_EQ(vista->De(u"FontITalic"_s).back().miembro, u"fontitalic"_s);
    modulo4::ImprimeTexto(u"hola"_s);
    EXPECT_EQ(vista->De(u"Print"_s).size(), 1u);
    EXPECT_TRUE(impresora->De(u"Print"_s).empty());
}

TEST_F(Modulo4, CopiasSoloConLaImpresoraYSiempreEnLaImpresora) {
    Mide(8.5, 11);
    Impresora imp;
    imp.Pantalla = true;
    imp.Imagen2 = vista;
    imp.IniciaDocumento();
    int32_t tres = 3;
    imp.Copias(tres);
    EXPECT_TRUE(impresora->De(u"Copies"_s).empty());
    // The layer routine itself goes to the printer even during a preview.
    modulo4::AsignaCopias(2);
    EXPECT_TRUE(impresora->Valor(u"Copies"_s).identico(Variant(int16_t{2})));
    imp.Pantalla = false;
    imp.Copias(tres);
    EXPECT_TRUE(impresora->Valor(u"Copies"_s).identico(Variant(int16_t{3})));
    EXPECT_EQ(imp.nLinea, 1);  // Copias records nothing
}

TEST_F(Modulo4, DespuesDeFinDocumentoLaVistaSigueSiendoElDestino) {
    Mide(8.5, 11);
    Impresora imp;
    imp.Pantalla = true;
    imp.Imagen2 = vista;
    imp.IniciaDocumento();
    imp.FinDocumento();
    EXPECT_EQ(CInt(vista->Valor(u"ScaleMode"_s)), 3);
    const size_t antes = vista->De(u"Cls"_s).size();
    imp.PaginaNueva();
    EXPECT_EQ(vista->De(u"Cls"_s).size(), antes + 1);
    // A second object on the thread draws on the same target.
    Impresora otra;
    otra.PaginaNueva();
    EXPECT_EQ(vista->De(u"Cls"_s).size(), antes + 2);
}

TEST_F(Modulo4, SinVistaSoloCursivaYTransparenciaFallan) {
    Impresora imp;
    imp.Pantalla = true;
    imp.IniciaDocumento();
    EXPECT_NO_THROW({
        modulo4::PosicionaX(1);
        modulo4::ImprimeTexto(u"x"_s);
        modulo4::AsignaNegrita(true);
        imp.PaginaNueva();
        imp.FinDocumento();
    });
    EXPECT_EQ(NumeroDeError([] { modulo4::AsignaCursiva(true); }), 91);
    EXPECT_EQ(NumeroDeError([] { modulo4::AsignaTransparencia(true); }), 91);
    // A target lacking the member: 438 reaches the host for italics only.
    auto parcial = std::make_shared<ObjetoGrabador>(QStringList{u"ScaleMode"_s, u"Cls"_s});
    imp.Imagen2 = parcial;
    imp.IniciaDocumento();
    EXPECT_NO_THROW(modulo4::AsignaNegrita(true));
    EXPECT_EQ(NumeroDeError([] { modulo4::AsignaCursiva(true); }), 438);
    EXPECT_EQ(parcial->De(u"Cls"_s).size(), 1u);
}

TEST_F(Modulo4, Imagen1PasaAPulgadasDuranteElDocumento) {
    Impresora imp;
    auto imagen1 = std::make_shared<ObjetoGrabador>();
    imagen1->Pon(u"ScaleMode"_s, int16_t{1});
    imp.Imagen1 = imagen1;
    imp.IniciaDocumento();
    EXPECT_EQ(CInt(imagen1->Valor(u"ScaleMode"_s)), 5);
    imp.IniciaDocumento();  // saves the changed mode: the first one is lost
    imp.FinDocumento();
    EXPECT_EQ(CInt(imagen1->Valor(u"ScaleMode"_s)), 5);

    // Without ScaleMode the failure reaches the host.
    imp.Imagen1 = std::make_shared<ObjetoGrabador>(QStringList{u"Cls"_s});
    EXPECT_EQ(NumeroDeError([&] { imp.IniciaDocumento(); }), 438);
}

TEST_F(Modulo4, PaginasSoloCuentaMientrasSeGraba) {
    Impresora imp;
    imp.Paginas = 7;
    imp.IniciaDocumento();
    EXPECT_EQ(imp.Paginas, 7);
    imp.PaginaNueva();
    EXPECT_EQ(imp.Paginas, 7);
    EXPECT_EQ(impresora->De(u"NewPage"_s).size(), 1u);
    imp.Archivo = true;  // but Pantalla false: counted, not written
    imp.IniciaDocumento();
    EXPECT_EQ(imp.Paginas, 1);
    imp.PaginaNueva();
    EXPECT_EQ(imp.Paginas, 2);
    EXPECT_TRUE(imp.DB.isEmpty());
    EXPECT_EQ(imp.nLinea, 4);
    imp.Paginas = INT32_MAX;
    EXPECT_EQ(NumeroDeError([&] { imp.PaginaNueva(); }), 6);
}

}  // namespace

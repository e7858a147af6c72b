// The drawing-target layer, watched through recording targets: the calls it
// makes on the preview target and on the printer, and their values.

#include "comun/prueba.h"

#include "target/modulo4.h"

namespace {

class Modulo4 : public ::testing::Test {
protected:
    void SetUp() override {
        impresora->Pon(u"ScaleMode"_s, int16_t{1});
        impresora->Pon(u"FontName"_s, u"Arial"_s);
        impresora->Pon(u"FontSize"_s, 10.0f);
        impresora->Pon(u"ForeColor"_s, int32_t{255});
        EstableceImpresoraActual(impresora);
        contenedor->Pon(u"ScaleMode"_s, int16_t{1});
        vista->Pon(u"ScaleMode"_s, int16_t{3});
        vista->Pon(u"Parent"_s, Variant(std::shared_ptr<Objeto>(contenedor)));
    }

    // A document on a preview that measures ancho x alto inches once in inches.
    void EnVista(double ancho, double alto) {
        vista->Pon(u"ScaleWidth"_s, ancho);
        vista->Pon(u"ScaleHeight"_s, alto);
        imp.Pantalla = true;
        imp.Imagen2 = vista;
        imp.IniciaDocumento();
    }

    std::shared_ptr<ObjetoGrabador> impresora = std::make_shared<ObjetoGrabador>(),
                                    contenedor = std::make_shared<ObjetoGrabador>(),
                                    vista = std::make_shared<ObjetoGrabador>();
    Impresora imp;
};

TEST_F(Modulo4, LaVistaSeAjustaALaPaginaYRecibeLosValoresSinConvertir) {
    EnVista(6, 4);
    // 4/11 < 6/8.5: the target keeps its height and becomes narrower.
    const double escala = 4.0 / 11.0;
    ASSERT_EQ(vista->De(u"Width"_s).size(), 1u);
    EXPECT_NEAR(CDbl(vista->Valor(u"Width"_s)), escala * 8.5, 1e-12);
    EXPECT_TRUE(vista->De(u"Height"_s).empty());
    // The width is given in inches of the container, whose mode is put back.
    EXPECT_EQ(contenedor->Registro(),
              (QStringList{u"Lee scalemode"_s, u"Asigna scalemode=5"_s, u"Asigna scalemode=1"_s}));
    EXPECT_EQ(vista->Registro().filter(u"Llama scale("_s), QStringList{u"Llama scale(0,0,8.5,11)"_s});
    EXPECT_EQ(vista->Valor(u"FontName"_s), Variant(u"Arial"_s));
    EXPECT_NEAR(CDbl(vista->Valor(u"FontSize"_s)), 10 * escala, 1e-6);  // about 3.64 points
    EXPECT_EQ(CLng(vista->Valor(u"ForeColor"_s)), 255);
    // Inches before fitting, and the picture cleared last.
    EXPECT_EQ(vista->Registro().mid(0, 2), (QStringList{u"Lee scalemode"_s, u"Asigna scalemode=5"_s}));
    EXPECT_EQ(vista->Registro().last(), u"Llama cls()"_s);
    // The printer's own mode was only borrowed.
    EXPECT_EQ(CInt(impresora->Valor(u"ScaleMode"_s)), 1);

    modulo4::PosicionaX(u"1,5"_s);
    EXPECT_TRUE(vista->Valor(u"CurrentX"_s).identico(Variant(u"1,5"_s)));
    modulo4::AsignaTamano(10);
    EXPECT_NEAR(CDbl(vista->Valor(u"FontSize"_s)), 10 * escala, 1e-12);
    modulo4::AsignaCursiva(int32_t{1});
    EXPECT_TRUE(vista->Valor(u"FontItalic"_s).identico(Variant(int32_t{1})));
    modulo4::ImprimeTexto(u"hola"_s);
    EXPECT_EQ(vista->De(u"Print"_s).size(), 1u);
    EXPECT_TRUE(impresora->De(u"Print"_s).empty());

    // After FinDocumento the preview gets its mode back and stays the target,
    // for every object on the thread.
    imp.FinDocumento();
    EXPECT_EQ(CInt(vista->Valor(u"ScaleMode"_s)), 3);
    imp.PaginaNueva();
    Impresora otra;
    otra.PaginaNueva();
    EXPECT_EQ(vista->De(u"Cls"_s).size(), 3u);
}

TEST_F(Modulo4, EnLaImpresoraLasPosicionesSeDesplazanAlAreaImprimible) {
    impresora->Pon(u"ScaleWidth"_s, 8.0f);
    impresora->Pon(u"ScaleHeight"_s, 10.5f);
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
    EXPECT_EQ(registro.mid(registro.size() - 2), (QStringList{u"Llama enddoc()"_s, u"Asigna scalemode=1"_s}));
}

TEST_F(Modulo4, CopiasSoloConLaImpresoraYSiempreEnLaImpresora) {
    // A preview with the page's proportions keeps its width and is given its height.
    EnVista(8.5, 11);
    EXPECT_TRUE(vista->De(u"Width"_s).empty());
    EXPECT_TRUE(vista->Valor(u"Height"_s).identico(Variant(11.0)));
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

// With no preview, or one lacking the member, only italics and transparency
// fail to the host, and only once the command is recorded.
TEST_F(Modulo4, SinVistaSoloCursivaYTransparenciaFallan) {
    imp.Pantalla = true;
    EXPECT_NO_THROW(imp.FontBold(true));
    EXPECT_EQ(NumeroDeError([&] { imp.FontITalic(true); }), 91);
    EXPECT_EQ(NumeroDeError([&] { imp.FuenteTransparente(true); }), 91);
    EXPECT_EQ(imp.nLinea, 3);
    imp.IniciaDocumento();
    EXPECT_NO_THROW({
        imp.Say(1, 1, u"x"_s);
        imp.PaginaNueva();
        imp.FinDocumento();
    });
    auto parcial = std::make_shared<ObjetoGrabador>(QStringList{u"ScaleMode"_s, u"Cls"_s});
    imp.Imagen2 = parcial;
    imp.IniciaDocumento();
    EXPECT_NO_THROW(imp.FontBold(true));
    EXPECT_EQ(NumeroDeError([&] { imp.FontITalic(true); }), 438);
    EXPECT_EQ(parcial->De(u"Cls"_s).size(), 1u);
}

TEST_F(Modulo4, Imagen1PasaAPulgadasDuranteElDocumento) {
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

}  // namespace

// The printer object over its PDF engine (the embedded default printer),
// read back with the poppler tools; suppressed output (the same state moves,
// nothing reaches the paper, an open job is left alone), and the PDF printer
// that writes every job to one named file. A page printed alone after
// suppressed ones is proven in replay; the print-server side is in
// tests/cups/prueba_impresora_cups.cpp.

#include "comun/prueba.h"

#if defined(__x86_64__)
#include <cpuid.h>
#endif

#include "comun/herramientas_pdf.h"
#include "target/impresora_sistema.h"

namespace {

class ImpresoraPdf : public ::testing::Test {
protected:
    double Num(const QString& miembro) { return CDbl(o.Lee(miembro)); }
    QString Salida() { return o.Lee(u"ArchivoDeSalida"_s).texto(); }

    QTemporaryDir carpeta;
    std::shared_ptr<ImpresoraDelSistema> impresora = ImpresoraDelSistema::EnPdf(carpeta.path());
    Objeto& o = *impresora;
};

// A file has no unprintable border: the drawable area is the whole sheet, in
// the file's 1200 dots per inch, laid out by the engine in whole points.
TEST_F(ImpresoraPdf, HojaPorCodigoOrientacionYMedidas) {
    EXPECT_EQ(CInt(o.Lee(u"ScaleMode"_s)), 1);
    o.Asigna(u"ScaleMode"_s, int16_t{3});
    EXPECT_NEAR(Num(u"ScaleWidth"_s), 10200, 1e-2);
    EXPECT_NEAR(Num(u"ScaleHeight"_s), 13200, 1e-2);
    // Assignments, then the code, orientation and sides in twips they leave.
    const std::tuple<std::vector<std::pair<QString, int32_t>>, int16_t, int16_t, int32_t, int32_t> casos[] = {
        {{}, 1, 1, 12240, 15840},
        {{{u"PaperSize"_s, 9}}, 9, 1, 11906, 16838},
        {{{u"PaperSize"_s, 5}}, 5, 1, 12240, 20160},
        {{{u"PaperSize"_s, 11}}, 11, 1, 8391, 11906},
        // 256 only names a user-defined sheet; Width and Height make one.
        {{{u"PaperSize"_s, 9}, {u"PaperSize"_s, 256}}, 9, 1, 11906, 16838},
        {{{u"Orientation"_s, 2}}, 1, 2, 15840, 12240},
        {{{u"Orientation"_s, 2}, {u"Orientation"_s, 1}}, 1, 1, 12240, 15840},
        {{{u"Width"_s, 5760}, {u"Height"_s, 8640}}, 256, 1, 5760, 8640},
        // In landscape Width is the long side as the sheet lies.
        {{{u"Width"_s, 5760}, {u"Height"_s, 8640}, {u"Orientation"_s, 2}, {u"Width"_s, 10080}}, 256, 2, 10080, 5760},
    };
    for (const auto& caso : casos) {
        const auto& [asigna, papel, orientacion, ancho, alto] = caso;
        SCOPED_TRACE(&caso - casos);
        auto nueva = ImpresoraDelSistema::EnPdf(carpeta.path());
        Objeto& h = *nueva;
        for (const auto& [miembro, valor] : asigna) h.Asigna(miembro, valor);
        EXPECT_EQ(CInt(h.Lee(u"PaperSize"_s)), papel);
        EXPECT_EQ(CInt(h.Lee(u"Orientation"_s)), orientacion);
        EXPECT_EQ(CLng(h.Lee(u"Width"_s)), ancho);
        EXPECT_EQ(CLng(h.Lee(u"Height"_s)), alto);
        const double tolerancia = ancho % 20 || alto % 20 ? 10 : 1e-3;  // half a point, or exact
        EXPECT_NEAR(CDbl(h.Lee(u"ScaleWidth"_s)), ancho, tolerancia);
        EXPECT_NEAR(CDbl(h.Lee(u"ScaleHeight"_s)), alto, tolerancia);
    }
}

TEST_F(ImpresoraPdf, ValoresQueSeRechazan) {
    EXPECT_EQ(o.Lee(u"DeviceName"_s).texto(), u"PDF (KaloImpresora)"_s);
    const std::tuple<QString, int32_t, int32_t> casos[] = {
        {u"DeviceName"_s, 1, err::kNoAdmitePropiedadOMetodo},
        {u"hDC"_s, 1, err::kNoAdmitePropiedadOMetodo},
        {u"Page"_s, 1, err::kNoAdmitePropiedadOMetodo},
        {u"ArchivoDeSalida"_s, 1, err::kNoAdmitePropiedadOMetodo},
        {u"PaperSize"_s, 0, err::kValorDePropiedadNoValido},
        {u"PaperSize"_s, 9999, err::kValorDePropiedadNoValido},
        {u"Orientation"_s, 0, err::kValorDePropiedadNoValido},
        {u"Orientation"_s, 3, err::kValorDePropiedadNoValido},
        {u"Width"_s, 0, err::kValorDePropiedadNoValido},
        {u"Height"_s, 0, err::kValorDePropiedadNoValido},
        {u"Copies"_s, 0, err::kValorDePropiedadNoValido},
        {u"Copies"_s, 40000, err::kDesbordamiento},
        {u"ModoDeFondo"_s, 0, err::kValorDePropiedadNoValido},
    };
    for (const auto& [miembro, valor, error] : casos)
        EXPECT_EQ(NumeroDeError([&] { o.Asigna(miembro, valor); }), error) << miembro.toStdString();
    EXPECT_EQ(NumeroDeError([&] { o.Llama(u"ScaleX"_s, {1, int16_t{9}, int16_t{1}}); }), err::kLlamadaNoValida);
}

TEST_F(ImpresoraPdf, CopiasModoDeFondoYFuente) {
    EXPECT_EQ(CInt(o.Lee(u"Copies"_s)), 1);
    o.Asigna(u"Copies"_s, 3);
    EXPECT_EQ(CInt(o.Lee(u"Copies"_s)), 3);
    // The background mode and FontTransparent are one setting seen two ways.
    o.Asigna(u"ModoDeFondo"_s, int16_t{2});
    EXPECT_FALSE(CBool(o.Lee(u"FontTransparent"_s)));
    o.Asigna(u"FontTransparent"_s, true);
    EXPECT_EQ(CInt(o.Lee(u"ModoDeFondo"_s)), 1);
    // Set Font = another font copies its attributes.
    o.Asigna(u"FontBold"_s, true);
    auto otra = ImpresoraDelSistema::EnPdf(carpeta.path());
    otra->Asigna(u"FontName"_s, u"Times New Roman"_s);
    otra->Asigna(u"FontSize"_s, 9);
    otra->Asigna(u"FontItalic"_s, true);
    o.AsignaObjeto(u"Font"_s, otra->Lee(u"Font"_s).objeto());
    EXPECT_EQ(o.Lee(u"FontName"_s).texto(), u"Times New Roman"_s);
    EXPECT_DOUBLE_EQ(Num(u"FontSize"_s), 9);
    EXPECT_FALSE(CBool(o.Lee(u"FontBold"_s)));
    EXPECT_TRUE(CBool(o.Lee(u"FontItalic"_s)));
}

TEST_F(ImpresoraPdf, ScaleXYConviertenEntreUnidades) {
    o.Asigna(u"ScaleMode"_s, int16_t{5});
    const Variant falta = Variant::Falta();
    const std::tuple<double, Variant, Variant, double> casos[] = {
        {1, int16_t{5}, int16_t{1}, 1440},     // inches to twips
        {2540, int16_t{8}, int16_t{6}, 25.4},  // HIMETRIC to mm
        {1440, int16_t{1}, int16_t{3}, 1200},  // the file's 1200 dots per inch
        {2540, falta, falta, 1},               // HIMETRIC to the current scale (inches)
    };
    for (const auto& [valor, de, a, esperado] : casos) {
        EXPECT_NEAR(CDbl(o.Llama(u"ScaleX"_s, {valor, de, a})), esperado, 1e-9 * esperado) << valor;
        EXPECT_NEAR(CDbl(o.Llama(u"ScaleY"_s, {valor, de, a})), esperado, 1e-9 * esperado) << valor;
    }
    // User mode is the scale in force: 100 units across 8.5 inches.
    o.Llama(u"Scale"_s, {0, 0, 100, 200});
    EXPECT_NEAR(CDbl(o.Llama(u"ScaleX"_s, {8.5, int16_t{5}, int16_t{0}})), 100, 1e-9);
    EXPECT_NEAR(CDbl(o.Llama(u"ScaleY"_s, {200, int16_t{0}, int16_t{5}})), 11, 1e-9);
}

// The job opens with the first output and each one becomes a file of its own,
// even two in the same second; a new sheet starts with the next page.
TEST_F(ImpresoraPdf, CadaTrabajoEsUnArchivoConSusPaginas) {
    EXPECT_EQ(CLng(o.Lee(u"hDC"_s)), 0);
    EXPECT_EQ(CLng(o.Lee(u"Page"_s)), 0);
    o.Llama(u"Print"_s, {u"carta"_s});
    EXPECT_NE(CLng(o.Lee(u"hDC"_s)), 0);
    EXPECT_EQ(CLng(o.Lee(u"Page"_s)), 1);
    o.Asigna(u"PaperSize"_s, int16_t{9});
    o.Llama(u"NewPage"_s);
    EXPECT_EQ(CLng(o.Lee(u"Page"_s)), 2);
    o.Llama(u"Print"_s, {u"A4"_s});
    o.Llama(u"EndDoc"_s);
    EXPECT_EQ(CLng(o.Lee(u"hDC"_s)), 0);
    const QString primero = Salida();
    EXPECT_EQ(QFileInfo(primero).absolutePath(), QDir(carpeta.path()).absolutePath());
    EXPECT_EQ(LeePdf(primero).tamanos, (std::vector<QSizeF>{
                                           {612, 792},
                                           {595, 842},
                                       }));

    o.Llama(u"NewPage"_s);
    o.Llama(u"NewPage"_s);
    o.Llama(u"EndDoc"_s);
    o.Llama(u"EndDoc"_s);  // no job open: writes nothing
    EXPECT_EQ(LeePdf(Salida()).paginas, 3);
    const QStringList archivos = QDir(carpeta.path()).entryList({u"*.pdf"_s}, QDir::Files);
    ASSERT_EQ(archivos.size(), 2);
    for (const QString& a : archivos)
        EXPECT_TRUE(QRegularExpression(u"^documento-\\d{8}-\\d{6}(-\\d+)?\\.pdf$"_s).match(a).hasMatch())
            << a.toStdString();
}

TEST_F(ImpresoraPdf, ElDibujoLlegaAlPapel) {
    o.Asigna(u"ScaleMode"_s, int16_t{5});
    o.Llama(u"Line"_s, {int16_t{4}, 1.0, 1.0, 3.0, 1.0, 0});
    o.Llama(u"Line"_s, {int16_t{38}, 5.0, 5.0, 6.0, 6.0, int32_t{0}});
    o.Llama(u"Circle"_s, {int16_t{0}, 2.0, 8.0, 0.5});
    QImage negro(4, 4, QImage::Format_RGB32);
    negro.fill(Qt::black);
    o.Llama(u"PaintPicture"_s, {std::make_shared<Imagen>(negro), 6.5, 1.0, 1.0, 1.0});
    o.Asigna(u"FontSize"_s, 36);
    o.Asigna(u"CurrentX"_s, 1.0);
    o.Asigna(u"CurrentY"_s, 9.5);
    o.Llama(u"Print"_s, {u"MMMM"_s});
    const double ancho = CDbl(o.Llama(u"TextWidth"_s, {u"MMMM"_s}));
    o.Llama(u"EndDoc"_s);

    const QImage pagina = PaginaComoImagen(Salida(), 1, 72);
    ASSERT_EQ(pagina.size(), QSize(612, 792));
    const std::tuple<const char*, int, int, bool> puntos[] = {
        {"linea", 144, 72, true},
        {"bajo la linea", 144, 90, false},
        {"caja llena", 396, 396, true},
        {"fuera de la caja", 450, 450, false},
        {"borde del circulo", 180, 576, true},
        {"centro del circulo", 144, 576, false},
        {"imagen", 504, 108, true},
        {"esquina en blanco", 20, 20, false},
    };
    for (const auto& [que, x, y, tinta] : puntos) EXPECT_EQ(HayTinta(pagina, x, y), tinta) << que;
    // The text lies on its line and is as wide as TextWidth said.
    int derecha = 0;
    for (int x = 60; x < 612; ++x)
        for (int y = 684; y < 684 + 36; ++y)
            if (HayTinta(pagina, x, y, 0)) derecha = x;
    EXPECT_NEAR(derecha, 72 + ancho * 72, 6);
}

// Left in use by a host (or by Qt's hash of a short string), the upper vector registers slow all
// of Qt's SSE code, deflate included; drawing clears them.
TEST_F(ImpresoraPdf, DibujarLimpiaLosRegistrosVectoriales) {
#if defined(__x86_64__)
    unsigned a, b, c, d;  // xgetbv 1 tells what is in use: leaf 0xD, subleaf 1, bit 2
    if (!__builtin_cpu_supports("avx") || !__get_cpuid_count(0xD, 1, &a, &b, &c, &d) || !(a & 4)) GTEST_SKIP();
    o.Llama(u"Print"_s, {u"Total"_s});  // opening the job happens to clear them
    asm volatile("vpcmpeqd %%ymm0, %%ymm0, %%ymm0" ::: "xmm0");
    o.Llama(u"Print"_s, {u"Total"_s});
    asm volatile("xgetbv" : "=a"(a), "=d"(d) : "c"(1));
    EXPECT_FALSE(a & 4);
#endif
}

TEST(CarpetaDeImpresos, VariableDeEntornoODatosDelUsuario) {
    const QByteArray propia = qgetenv("KALO_CARPETA_DE_IMPRESOS"), datos = qgetenv("XDG_DATA_HOME");
    qputenv("KALO_CARPETA_DE_IMPRESOS", "/var/tmp/impresos-de-prueba/");
    EXPECT_EQ(CarpetaDeImpresos(), u"/var/tmp/impresos-de-prueba"_s);
    qunsetenv("KALO_CARPETA_DE_IMPRESOS");
    qputenv("XDG_DATA_HOME", "/var/tmp/datos-de-prueba");
    EXPECT_EQ(CarpetaDeImpresos(), u"/var/tmp/datos-de-prueba/kaloimpresora/impresos"_s);
    for (auto [nombre, valor] : {
             std::pair{"KALO_CARPETA_DE_IMPRESOS", propia},
             std::pair{"XDG_DATA_HOME", datos},
         })
        valor.isNull() ? qunsetenv(nombre) : qputenv(nombre, valor);
}

double X(Objeto& o) { return CDbl(o.Lee(u"CurrentX"_s)); }
double Y(Objeto& o) { return CDbl(o.Lee(u"CurrentY"_s)); }

// Each step run on a printer that draws and on one that only measures: the
// print position ends the same after every one. One step per kind of output,
// each starting where it would not leave the position.
TEST(Suprime, LaPosicionSeMueveIgualSinDibujar) {
    QTemporaryDir carpeta;
    auto dibuja = ImpresoraDelSistema::EnArchivoPdf(carpeta.filePath(u"dibujado.pdf"_s));
    auto mide = ImpresoraDelSistema::EnArchivoPdf(carpeta.filePath(u"medido.pdf"_s));
    mide->Asigna(u"Suprime"_s, true);
    const std::vector<Paso> pasos = {
        {u"=ScaleMode"_s, {int16_t{5}}},
        {u"Print"_s, {u"uno\r\ndos"_s, true}},
        {u"=FontSize"_s, {20}},
        {u"Print"_s, {u"Grande"_s, true}},
        {u"Cls"_s, {}},
        {u"Line"_s, {int16_t{4}, 1.0, 1.0, 3.0, 2.0}},
        {u"Circle"_s, {int16_t{1}, 0.5, 0.5, 0.25}},  // centre relative to the position
        {u"Scale"_s, {10, 20, 110, 220}},
        {u"NewPage"_s, {}},
        {u"Print"_s, {u"z"_s}},
    };
    for (const Paso& p : pasos) {
        SCOPED_TRACE(p.miembro.toStdString());
        for (ImpresoraDelSistema* i : {dibuja.get(), mide.get()})
            p.miembro == u"Cls"_s ? i->lienzo().Cls() : void(Aplica(*i, p));
        EXPECT_DOUBLE_EQ(X(*mide), X(*dibuja));
        EXPECT_DOUBLE_EQ(Y(*mide), Y(*dibuja));
        EXPECT_EQ(CLng(mide->Lee(u"hDC"_s)), 0);
        EXPECT_EQ(CLng(mide->Lee(u"Page"_s)), 0);
    }
    EXPECT_DOUBLE_EQ(X(*dibuja), 10) << "NewPage goes to the user scale's origin";
    dibuja->Llama(u"EndDoc"_s);
    mide->Llama(u"EndDoc"_s);
    EXPECT_EQ(LeePdf(carpeta.filePath(u"dibujado.pdf"_s)).paginas, 2);
    EXPECT_EQ(QDir(carpeta.path()).entryList(QDir::Files), QStringList{u"dibujado.pdf"_s});

    // Back to drawing, an empty Print with no line feed opens the job without
    // moving the position.
    const double x = X(*mide), y = Y(*mide);
    mide->Asigna(u"Suprime"_s, false);
    mide->Llama(u"Print"_s, {u""_s, true});
    EXPECT_NE(CLng(mide->Lee(u"hDC"_s)), 0);
    EXPECT_EQ(CLng(mide->Lee(u"Page"_s)), 1);
    EXPECT_DOUBLE_EQ(X(*mide), x);
    EXPECT_DOUBLE_EQ(Y(*mide), y);
    mide->Llama(u"EndDoc"_s);
    EXPECT_EQ(LeePdf(carpeta.filePath(u"medido.pdf"_s)).paginas, 1);
}

TEST(Suprime, UnTrabajoAbiertoQuedaComoEstaba) {
    QTemporaryDir carpeta;
    const QString ruta = carpeta.filePath(u"trabajo.pdf"_s);
    auto pdf = ImpresoraDelSistema::EnArchivoPdf(ruta);
    Objeto& o = *pdf;
    o.Llama(u"Print"_s, {u"antes"_s});
    const int32_t hdc = CLng(o.Lee(u"hDC"_s));
    o.Asigna(u"Suprime"_s, true);
    EXPECT_TRUE(CBool(o.Lee(u"Suprime"_s)));
    o.Llama(u"Scale"_s, {5, 7, 105, 207});
    o.Asigna(u"CurrentX"_s, 50);
    o.Asigna(u"CurrentY"_s, 60);
    // EndDoc and KillDoc do nothing at all, not even to the position.
    o.Llama(u"EndDoc"_s);
    o.Llama(u"KillDoc"_s);
    EXPECT_DOUBLE_EQ(X(o), 50);
    EXPECT_DOUBLE_EQ(Y(o), 60);
    EXPECT_EQ(CLng(o.Lee(u"hDC"_s)), hdc);
    // NewPage makes no page; it only sends the position to the scale's origin.
    o.Llama(u"NewPage"_s);
    o.Llama(u"NewPage"_s);
    EXPECT_EQ(CLng(o.Lee(u"Page"_s)), 1);
    EXPECT_DOUBLE_EQ(X(o), 5);
    EXPECT_DOUBLE_EQ(Y(o), 7);
    EXPECT_FALSE(QFileInfo::exists(ruta));
    o.Asigna(u"Suprime"_s, false);
    o.Llama(u"EndDoc"_s);
    EXPECT_EQ(CLng(o.Lee(u"hDC"_s)), 0);
    EXPECT_EQ(LeePdf(ruta).paginas, 1);
}

// Each ended job replaces the file whole; a killed one leaves it as it was.
TEST(Suprime, ArchivoPdfFijoReemplazadoPorCadaTrabajo) {
    QTemporaryDir carpeta;
    const QString ruta = carpeta.filePath(u"sub/carpeta/salida.pdf"_s);
    auto pdf = ImpresoraDelSistema::EnArchivoPdf(ruta);
    Objeto& o = *pdf;
    EXPECT_EQ(o.Lee(u"DeviceName"_s).texto(), u"PDF (KaloImpresora)"_s);
    for (int paginas : {2, 1}) {
        o.Llama(u"Print"_s, {u"x"_s});
        if (paginas == 2) o.Llama(u"NewPage"_s);
        o.Llama(u"EndDoc"_s);
        EXPECT_EQ(LeePdf(ruta).paginas, paginas);
    }
    o.Llama(u"Print"_s, {u"descartado"_s});
    o.Llama(u"NewPage"_s);
    o.Llama(u"KillDoc"_s);
    EXPECT_EQ(CLng(o.Lee(u"hDC"_s)), 0);
    EXPECT_EQ(o.Lee(u"ArchivoDeSalida"_s).texto(), ruta);
    EXPECT_EQ(LeePdf(ruta).paginas, 1);
    EXPECT_EQ(QDir(QFileInfo(ruta).path()).entryList(QDir::Files), QStringList{u"salida.pdf"_s});
}

}  // namespace

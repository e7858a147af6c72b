// The printer object over its PDF engine (the embedded default printer):
// sheet and scale members, the job lifecycle and what reaches the paper,
// read back with the poppler tools. The print-server side is in
// tests/cups/prueba_impresora_cups.cpp.

#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "comun/utilerias_de_prueba.h"
#include "cups/herramientas_pdf.h"
#include "target/imagen.h"
#include "target/impresora_sistema.h"

using namespace kalo;
using namespace Qt::StringLiterals;
using namespace kalo::prueba;

namespace {

class ImpresoraPdf : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(carpeta.isValid());
        impresora = ImpresoraDelSistema::EnPdf(carpeta.path());
    }

    Objeto& o() { return *impresora; }
    double Num(const QString& miembro) { return CDbl(o().Lee(miembro)); }
    QStringList Archivos() const { return QDir(carpeta.path()).entryList({u"*.pdf"_s}, QDir::Files, QDir::Name); }

    QTemporaryDir carpeta;
    std::shared_ptr<ImpresoraDelSistema> impresora;
};

TEST_F(ImpresoraPdf, MiembrosDeSoloLecturaRechazanLaAsignacion) {
    EXPECT_EQ(o().Lee(u"DeviceName"_s).texto(), u"PDF (KaloImpresora)"_s);
    for (const QString& miembro : {u"DeviceName"_s, u"hDC"_s, u"Page"_s, u"ArchivoDeSalida"_s}) {
        SCOPED_TRACE(miembro.toStdString());
        EXPECT_EQ(NumeroDeError([&] { o().Asigna(miembro, 1); }), err::kNoAdmitePropiedadOMetodo);
    }
}

TEST_F(ImpresoraPdf, CartaSinMargenesEnCadaUnidad) {
    EXPECT_EQ(CInt(o().Lee(u"ScaleMode"_s)), 1);
    EXPECT_EQ(CLng(o().Lee(u"Width"_s)), 12240);
    EXPECT_EQ(CLng(o().Lee(u"Height"_s)), 15840);
    struct Caso {
        int16_t modo;
        double ancho, alto;
    };
    // A file has no unprintable border: the drawable area is the whole sheet,
    // in twips and in the file's 1200 dots per inch; the other units are the
    // drawing layer's own, proven on the preview surfaces.
    for (const Caso& c : {Caso{1, 12240, 15840}, Caso{3, 10200, 13200}}) {
        SCOPED_TRACE(c.modo);
        o().Asigna(u"ScaleMode"_s, c.modo);
        EXPECT_NEAR(Num(u"ScaleWidth"_s), c.ancho, 1e-6 * c.ancho);
        EXPECT_NEAR(Num(u"ScaleHeight"_s), c.alto, 1e-6 * c.alto);
    }
}

TEST_F(ImpresoraPdf, PapelPorCodigoDeLaPlataforma) {
    struct Caso {
        int16_t codigo;
        int32_t ancho, alto;  // twips
    };
    o().Asigna(u"ScaleMode"_s, int16_t{5});
    for (const Caso& c : {Caso{9, 11906, 16838}, Caso{5, 12240, 20160}, Caso{11, 8391, 11906}}) {
        SCOPED_TRACE(c.codigo);
        o().Asigna(u"PaperSize"_s, c.codigo);
        EXPECT_EQ(CInt(o().Lee(u"PaperSize"_s)), c.codigo);
        EXPECT_EQ(CLng(o().Lee(u"Width"_s)), c.ancho);
        EXPECT_EQ(CLng(o().Lee(u"Height"_s)), c.alto);
        // The PDF engine lays pages out in whole points.
        EXPECT_NEAR(Num(u"ScaleWidth"_s), c.ancho / 1440.0, 0.5 / 72);
        EXPECT_NEAR(Num(u"ScaleHeight"_s), c.alto / 1440.0, 0.5 / 72);
    }
}

TEST_F(ImpresoraPdf, CodigosDePapelDesconocidosSonValoresNoValidos) {
    o().Asigna(u"PaperSize"_s, int16_t{9});
    for (int16_t codigo : {int16_t{0}, int16_t{9999}}) {
        SCOPED_TRACE(codigo);
        EXPECT_EQ(NumeroDeError([&] { o().Asigna(u"PaperSize"_s, codigo); }), err::kValorDePropiedadNoValido);
    }
    // 256 only names a user-defined sheet; the sheet itself comes from Width and Height.
    o().Asigna(u"PaperSize"_s, int16_t{256});
    EXPECT_EQ(CLng(o().Lee(u"Width"_s)), 11906);
    EXPECT_EQ(CInt(o().Lee(u"PaperSize"_s)), 9);
}

TEST_F(ImpresoraPdf, OrientacionApaisadaGiraLaHoja) {
    o().Asigna(u"ScaleMode"_s, int16_t{5});
    o().Asigna(u"Orientation"_s, int16_t{2});
    EXPECT_EQ(CInt(o().Lee(u"Orientation"_s)), 2);
    EXPECT_EQ(CLng(o().Lee(u"Width"_s)), 15840);
    EXPECT_EQ(CLng(o().Lee(u"Height"_s)), 12240);
    EXPECT_NEAR(Num(u"ScaleWidth"_s), 11, 1e-6);
    EXPECT_NEAR(Num(u"ScaleHeight"_s), 8.5, 1e-6);
    EXPECT_EQ(CInt(o().Lee(u"PaperSize"_s)), 1);
    for (int16_t v : {int16_t{0}, int16_t{3}})
        EXPECT_EQ(NumeroDeError([&] { o().Asigna(u"Orientation"_s, v); }), err::kValorDePropiedadNoValido);
    o().Asigna(u"Orientation"_s, int16_t{1});
    EXPECT_NEAR(Num(u"ScaleWidth"_s), 8.5, 1e-6);
}

TEST_F(ImpresoraPdf, AnchoYAltoDefinenUnaHojaDeUsuario) {
    o().Asigna(u"Width"_s, 4 * 1440);
    o().Asigna(u"Height"_s, 6 * 1440);
    EXPECT_EQ(CInt(o().Lee(u"PaperSize"_s)), 256);
    EXPECT_EQ(CLng(o().Lee(u"Width"_s)), 5760);
    EXPECT_EQ(CLng(o().Lee(u"Height"_s)), 8640);
    // In landscape Width is the long side as the sheet lies.
    o().Asigna(u"Orientation"_s, int16_t{2});
    o().Asigna(u"Width"_s, 7 * 1440);
    EXPECT_EQ(CLng(o().Lee(u"Width"_s)), 10080);
    EXPECT_EQ(CLng(o().Lee(u"Height"_s)), 5760);
    for (const QString& miembro : {u"Width"_s, u"Height"_s})
        EXPECT_EQ(NumeroDeError([&] { o().Asigna(miembro, 0); }), err::kValorDePropiedadNoValido);
}

TEST_F(ImpresoraPdf, CopiasYModoDeFondo) {
    EXPECT_EQ(CInt(o().Lee(u"Copies"_s)), 1);
    o().Asigna(u"Copies"_s, 3);
    EXPECT_EQ(CInt(o().Lee(u"Copies"_s)), 3);
    EXPECT_EQ(NumeroDeError([&] { o().Asigna(u"Copies"_s, 0); }), err::kValorDePropiedadNoValido);
    EXPECT_EQ(NumeroDeError([&] { o().Asigna(u"Copies"_s, 40000); }), err::kDesbordamiento);

    // The background mode and FontTransparent are one setting seen two ways.
    o().Asigna(u"ModoDeFondo"_s, int16_t{2});
    EXPECT_FALSE(CBool(o().Lee(u"FontTransparent"_s)));
    o().Asigna(u"FontTransparent"_s, true);
    EXPECT_EQ(CInt(o().Lee(u"ModoDeFondo"_s)), 1);
    EXPECT_EQ(NumeroDeError([&] { o().Asigna(u"ModoDeFondo"_s, int16_t{0}); }), err::kValorDePropiedadNoValido);
}

// Font as a live view is the drawing layer's, proven on the preview surfaces.
TEST_F(ImpresoraPdf, FuenteComoObjeto) {
    o().Asigna(u"FontBold"_s, true);
    // Set Font = another font copies its attributes.
    auto otra = ImpresoraDelSistema::EnPdf(carpeta.path());
    otra->Asigna(u"FontName"_s, u"Times New Roman"_s);
    otra->Asigna(u"FontSize"_s, 9);
    otra->Asigna(u"FontItalic"_s, true);
    o().AsignaObjeto(u"Font"_s, otra->Lee(u"Font"_s).objeto());
    EXPECT_EQ(o().Lee(u"FontName"_s).texto(), u"Times New Roman"_s);
    EXPECT_DOUBLE_EQ(Num(u"FontSize"_s), 9);
    EXPECT_FALSE(CBool(o().Lee(u"FontBold"_s)));
    EXPECT_TRUE(CBool(o().Lee(u"FontItalic"_s)));
}

TEST_F(ImpresoraPdf, ScaleXYConviertenEntreUnidades) {
    struct Caso {
        double valor;
        Variant de, a;
        double esperado;
    };
    o().Asigna(u"ScaleMode"_s, int16_t{5});
    const Variant falta = Variant::Falta();
    const std::vector<Caso> casos = {
        {1, int16_t{5}, int16_t{1}, 1440},      // inches to twips
        {2540, int16_t{8}, int16_t{6}, 25.4},   // HIMETRIC to mm
        {1440, int16_t{1}, int16_t{3}, 1200},   // the file's 1200 dots per inch
        {2540, falta, falta, 1},                // HIMETRIC to the current scale (inches)
    };
    for (const Caso& c : casos) {
        SCOPED_TRACE(c.valor);
        EXPECT_NEAR(CDbl(o().Llama(u"ScaleX"_s, {c.valor, c.de, c.a})), c.esperado, 1e-9 * c.esperado);
        EXPECT_NEAR(CDbl(o().Llama(u"ScaleY"_s, {c.valor, c.de, c.a})), c.esperado, 1e-9 * c.esperado);
    }
    // User mode is the scale in force: 100 units across 8.5 inches.
    o().Llama(u"Scale"_s, {0, 0, 100, 200});
    EXPECT_NEAR(CDbl(o().Llama(u"ScaleX"_s, {8.5, int16_t{5}, int16_t{0}})), 100, 1e-9);
    EXPECT_NEAR(CDbl(o().Llama(u"ScaleY"_s, {200, int16_t{0}, int16_t{5}})), 11, 1e-9);
    EXPECT_EQ(NumeroDeError([&] { o().Llama(u"ScaleX"_s, {1, int16_t{9}, int16_t{1}}); }), err::kLlamadaNoValida);
}

TEST_F(ImpresoraPdf, ElTrabajoSeAbreConLaPrimeraSalidaYSeCierraConEndDoc) {
    EXPECT_EQ(CLng(o().Lee(u"hDC"_s)), 0);
    EXPECT_EQ(CLng(o().Lee(u"Page"_s)), 0);
    o().Llama(u"Print"_s, {u""_s});
    EXPECT_NE(CLng(o().Lee(u"hDC"_s)), 0);
    EXPECT_EQ(CLng(o().Lee(u"Page"_s)), 1);
    EXPECT_TRUE(Archivos().size() <= 1);
    o().Llama(u"EndDoc"_s);
    EXPECT_EQ(CLng(o().Lee(u"hDC"_s)), 0);

    const QString archivo = o().Lee(u"ArchivoDeSalida"_s).texto();
    const QFileInfo info(archivo);
    EXPECT_EQ(info.absolutePath(), QDir(carpeta.path()).absolutePath());
    EXPECT_TRUE(QRegularExpression(u"^documento-\\d{8}-\\d{6}(-\\d+)?\\.pdf$"_s).match(info.fileName()).hasMatch())
        << info.fileName().toStdString();
    const auto pdf = LeePdf(archivo);
    ASSERT_TRUE(pdf.legible);
    EXPECT_EQ(pdf.paginas, 1);
    ASSERT_EQ(pdf.tamanos.size(), 1u);
    EXPECT_EQ(pdf.tamanos[0], QSizeF(612, 792));
    // An EndDoc with no job open is harmless and writes nothing.
    o().Llama(u"EndDoc"_s);
    EXPECT_EQ(Archivos().size(), 1);
}

TEST_F(ImpresoraPdf, PaginasDelDocumento) {
    struct Caso {
        const char* nombre;
        std::vector<QString> pasos;  // "P" prints, "N" starts a page
        int paginas;
    };
    const std::vector<Caso> casos = {
        {"texto y dos paginas nuevas", {u"P"_s, u"N"_s, u"P"_s, u"N"_s, u"P"_s}, 3},
        {"solo paginas nuevas", {u"N"_s, u"N"_s}, 3},
    };
    for (const Caso& c : casos) {
        SCOPED_TRACE(c.nombre);
        int pagina = 1;
        for (const QString& paso : c.pasos) {
            if (paso == u"P"_s) {
                o().Llama(u"Print"_s, {u""_s});
            } else {
                o().Llama(u"NewPage"_s);
                ++pagina;
            }
            EXPECT_EQ(CLng(o().Lee(u"Page"_s)), pagina);
        }
        o().Llama(u"EndDoc"_s);
        const auto pdf = LeePdf(o().Lee(u"ArchivoDeSalida"_s).texto());
        EXPECT_EQ(pdf.paginas, c.paginas);
    }
    // Every job became a file of its own.
    EXPECT_EQ(Archivos().size(), static_cast<qsizetype>(casos.size()));
}

TEST_F(ImpresoraPdf, KillDocDescartaElTrabajo) {
    o().Llama(u"Print"_s, {u"descartado"_s});
    o().Llama(u"KillDoc"_s);
    EXPECT_EQ(CLng(o().Lee(u"hDC"_s)), 0);
    EXPECT_TRUE(Archivos().isEmpty());
    EXPECT_TRUE(o().Lee(u"ArchivoDeSalida"_s).texto().isEmpty());

    // The next output opens a new job.
    o().Llama(u"Print"_s, {u"impreso"_s});
    o().Llama(u"EndDoc"_s);
    EXPECT_EQ(Archivos().size(), 1);
    EXPECT_EQ(LeePdf(o().Lee(u"ArchivoDeSalida"_s).texto()).paginas, 1);
}

TEST_F(ImpresoraPdf, NuevaHojaValeDesdeLaPaginaSiguiente) {
    o().Llama(u"Print"_s, {u"carta"_s});
    o().Asigna(u"PaperSize"_s, int16_t{9});
    o().Llama(u"NewPage"_s);
    o().Llama(u"Print"_s, {u"A4"_s});
    o().Llama(u"EndDoc"_s);
    const auto pdf = LeePdf(o().Lee(u"ArchivoDeSalida"_s).texto());
    ASSERT_EQ(pdf.tamanos.size(), 2u);
    EXPECT_EQ(pdf.tamanos[0], QSizeF(612, 792));
    EXPECT_EQ(pdf.tamanos[1], QSizeF(595, 842));  // A4 in the engine's whole points
}

TEST_F(ImpresoraPdf, ElDibujoLlegaAlPapel) {
    o().Asigna(u"ScaleMode"_s, int16_t{5});
    o().Llama(u"Line"_s, {int16_t{4}, 1.0, 1.0, 3.0, 1.0, 0});                   // line across at 1 inch
    o().Llama(u"Line"_s, {int16_t{38}, 5.0, 5.0, 6.0, 6.0, int32_t{0x000000}});  // filled box
    o().Llama(u"Circle"_s, {int16_t{0}, 2.0, 8.0, 0.5});
    QImage negro(4, 4, QImage::Format_RGB32);
    negro.fill(Qt::black);
    o().Llama(u"PaintPicture"_s, {std::make_shared<Imagen>(negro), 6.5, 1.0, 1.0, 1.0});
    o().Asigna(u"FontSize"_s, 36);
    o().Asigna(u"CurrentX"_s, 1.0);
    o().Asigna(u"CurrentY"_s, 9.5);
    o().Llama(u"Print"_s, {u"MMMM"_s});
    // After Print the position goes to the start of the next line.
    EXPECT_DOUBLE_EQ(Num(u"CurrentX"_s), 0);
    EXPECT_NEAR(Num(u"CurrentY"_s), 9.5 + CDbl(o().Llama(u"TextHeight"_s, {u"M"_s})), 1e-9);
    const double ancho = CDbl(o().Llama(u"TextWidth"_s, {u"MMMM"_s}));
    o().Llama(u"EndDoc"_s);

    const QImage pagina = PaginaComoImagen(o().Lee(u"ArchivoDeSalida"_s).texto(), 1, 72);
    ASSERT_FALSE(pagina.isNull());
    ASSERT_EQ(pagina.size(), QSize(612, 792));
    struct Punto {
        const char* que;
        int x, y;
        bool tinta;
    };
    for (const Punto& p : {Punto{"linea", 144, 72, true}, Punto{"bajo la linea", 144, 90, false},
                           Punto{"caja llena", 396, 396, true}, Punto{"fuera de la caja", 450, 450, false},
                           Punto{"borde del circulo", 144 + 36, 576, true}, Punto{"centro del circulo", 144, 576, false},
                           Punto{"imagen", 504, 108, true}, Punto{"esquina en blanco", 20, 20, false}}) {
        SCOPED_TRACE(p.que);
        EXPECT_EQ(HayTinta(pagina, p.x, p.y), p.tinta);
    }
    // The text lies on its line and is as wide as TextWidth said.
    bool hayTexto = false;
    int derecha = 0;
    for (int x = 60; x < 612; ++x)
        for (int y = 684; y < 684 + 36; ++y)
            if (HayTinta(pagina, x, y, 0)) {
                hayTexto = true;
                derecha = x;
            }
    EXPECT_TRUE(hayTexto);
    EXPECT_NEAR(derecha, 72 + ancho * 72, 6);
}

TEST(CarpetaDeImpresos, VariableDeEntornoODatosDelUsuario) {
    const QByteArray antesPropia = qgetenv("KALO_CARPETA_DE_IMPRESOS");
    const QByteArray antesDatos = qgetenv("XDG_DATA_HOME");
    qputenv("KALO_CARPETA_DE_IMPRESOS", "/var/tmp/impresos-de-prueba/");
    EXPECT_EQ(CarpetaDeImpresos(), u"/var/tmp/impresos-de-prueba"_s);
    qunsetenv("KALO_CARPETA_DE_IMPRESOS");
    qputenv("XDG_DATA_HOME", "/var/tmp/datos-de-prueba");
    EXPECT_EQ(CarpetaDeImpresos(), u"/var/tmp/datos-de-prueba/kaloimpresora/impresos"_s);
    auto restaura = [](const char* nombre, const QByteArray& valor) {
        if (valor.isNull()) qunsetenv(nombre); else qputenv(nombre, valor);
    };
    restaura("KALO_CARPETA_DE_IMPRESOS", antesPropia);
    restaura("XDG_DATA_HOME", antesDatos);
}

}  // namespace

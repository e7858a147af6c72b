// Suppressed output on both printers (the same state moves, nothing reaches
// the paper, the job is left alone), and the PDF printer that writes every
// job to one named file. Files are read back with the poppler tools.

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>

#include "comun/utilerias_de_prueba.h"
#include "cups/herramientas_pdf.h"
#include "target/imagen.h"
#include "target/impresora_de_imagenes.h"
#include "target/impresora_sistema.h"

using namespace kalo;
using namespace Qt::StringLiterals;
using namespace kalo::prueba;

namespace {

using Paso = std::function<void(Objeto&)>;

Paso LlamaA(const QString& metodo, std::initializer_list<Variant> argumentos = {}) {
    std::vector<Variant> a(argumentos);
    return [metodo, a](Objeto& o) {
        std::vector<Variant> copia = a;
        o.Invoca(o.IdDeNombre(metodo), Llamada::Metodo, copia);
    };
}

Paso Asigna(const QString& propiedad, Variant valor) {
    return [propiedad, valor](Objeto& o) { o.Asigna(propiedad, valor); };
}

std::shared_ptr<Imagen> Cuadro() {
    QImage negro(4, 4, QImage::Format_RGB32);
    negro.fill(Qt::black);
    return std::make_shared<Imagen>(negro);
}

class Suprime : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(carpeta.isValid()); }

    QString Ruta(const QString& nombre) const { return carpeta.filePath(nombre); }
    QStringList Archivos() const { return QDir(carpeta.path()).entryList(QDir::Files, QDir::Name); }

    QTemporaryDir carpeta;
};

// Each step run on a printer that draws and on one that only measures: the
// print position and the font end the same after every one.
TEST_F(Suprime, LaPosicionSeMueveIgualSinDibujar) {
    auto dibuja = ImpresoraDelSistema::EnArchivoPdf(Ruta(u"dibujado.pdf"_s));
    auto mide = ImpresoraDelSistema::EnArchivoPdf(Ruta(u"medido.pdf"_s));
    mide->Asigna(u"Suprime"_s, true);
    const Variant falta = Variant::Falta();
    const std::vector<std::pair<const char*, Paso>> pasos = {
        {"pulgadas", Asigna(u"ScaleMode"_s, int16_t{5})},
        {"print", LlamaA(u"Print"_s, {u"Hola"_s})},
        {"print de dos lineas sin salto", LlamaA(u"Print"_s, {u"uno\r\ndos"_s, true})},
        {"print seguido", LlamaA(u"Print"_s, {u"tres"_s, true})},
        {"fuente mayor", Asigna(u"FontSize"_s, 20)},
        {"print en la fuente mayor sin salto", LlamaA(u"Print"_s, {u"Grande"_s, true})},
        {"linea", LlamaA(u"Line"_s, {int16_t{4}, 1.0, 1.0, 3.0, 2.0})},
        {"linea desde la posicion", LlamaA(u"Line"_s, {int16_t{8}, falta, falta, 1.0, 0.25})},
        {"caja relativa", LlamaA(u"Line"_s, {int16_t{29}, 0.5, 0.5, 1.0, 1.0})},
        {"circulo relativo", LlamaA(u"Circle"_s, {int16_t{1}, 0.5, 0.5, 0.25})},
        {"imagen", LlamaA(u"PaintPicture"_s, {Cuadro(), 2.0, 3.0, 1.0, 1.0})},
        {"escala de usuario", LlamaA(u"Scale"_s, {10, 20, 110, 220})},
        {"print en escala de usuario", LlamaA(u"Print"_s, {u"y"_s, true})},
        {"cls", [](Objeto& o) { dynamic_cast<ImpresoraComun&>(o).lienzo().Cls(); }},
        {"print tras cls", LlamaA(u"Print"_s, {u"w"_s, true})},
        {"pagina nueva", LlamaA(u"NewPage"_s)},
        {"print en la pagina nueva", LlamaA(u"Print"_s, {u"z"_s})},
    };
    for (const auto& [nombre, paso] : pasos) {
        SCOPED_TRACE(nombre);
        paso(*dibuja);
        paso(*mide);
        EXPECT_DOUBLE_EQ(CDbl(mide->Lee(u"CurrentX"_s)), CDbl(dibuja->Lee(u"CurrentX"_s)));
        EXPECT_DOUBLE_EQ(CDbl(mide->Lee(u"CurrentY"_s)), CDbl(dibuja->Lee(u"CurrentY"_s)));
        EXPECT_DOUBLE_EQ(CDbl(mide->Lee(u"FontSize"_s)), CDbl(dibuja->Lee(u"FontSize"_s)));
        EXPECT_EQ(CLng(mide->Lee(u"hDC"_s)), 0);
        EXPECT_EQ(CLng(mide->Lee(u"Page"_s)), 0);
    }
    // The user scale's origin, where NewPage left the position.
    EXPECT_DOUBLE_EQ(CDbl(dibuja->Lee(u"CurrentX"_s)), 10);
    dibuja->Llama(u"EndDoc"_s);
    mide->Llama(u"EndDoc"_s);
    EXPECT_EQ(LeePdf(Ruta(u"dibujado.pdf"_s)).paginas, 2);
    EXPECT_EQ(Archivos(), QStringList{u"dibujado.pdf"_s});

    // Back to drawing, an empty Print with no line feed opens the job
    // without moving the position.
    const double x = CDbl(mide->Lee(u"CurrentX"_s)), y = CDbl(mide->Lee(u"CurrentY"_s));
    mide->Asigna(u"Suprime"_s, false);
    mide->Llama(u"Print"_s, {u""_s, true});
    EXPECT_NE(CLng(mide->Lee(u"hDC"_s)), 0);
    EXPECT_EQ(CLng(mide->Lee(u"Page"_s)), 1);
    EXPECT_DOUBLE_EQ(CDbl(mide->Lee(u"CurrentX"_s)), x);
    EXPECT_DOUBLE_EQ(CDbl(mide->Lee(u"CurrentY"_s)), y);
    mide->Llama(u"EndDoc"_s);
    EXPECT_EQ(LeePdf(Ruta(u"medido.pdf"_s)).paginas, 1);
}

TEST_F(Suprime, UnTrabajoAbiertoQuedaComoEstaba) {
    auto pdf = ImpresoraDelSistema::EnArchivoPdf(Ruta(u"trabajo.pdf"_s));
    Objeto& o = *pdf;
    EXPECT_FALSE(CBool(o.Lee(u"Suprime"_s)));
    o.Llama(u"Print"_s, {u"antes"_s});
    const int32_t hdc = CLng(o.Lee(u"hDC"_s));
    ASSERT_NE(hdc, 0);

    o.Asigna(u"Suprime"_s, true);
    EXPECT_TRUE(CBool(o.Lee(u"Suprime"_s)));
    o.Llama(u"Scale"_s, {5, 7, 105, 207});
    o.Asigna(u"CurrentX"_s, 50);
    o.Asigna(u"CurrentY"_s, 60);
    // EndDoc and KillDoc do nothing at all, not even to the position.
    o.Llama(u"EndDoc"_s);
    o.Llama(u"KillDoc"_s);
    EXPECT_DOUBLE_EQ(CDbl(o.Lee(u"CurrentX"_s)), 50);
    EXPECT_DOUBLE_EQ(CDbl(o.Lee(u"CurrentY"_s)), 60);
    EXPECT_EQ(CLng(o.Lee(u"hDC"_s)), hdc);
    // NewPage makes no page; it only sends the position to the scale's origin.
    o.Llama(u"NewPage"_s);
    o.Llama(u"NewPage"_s);
    EXPECT_EQ(CLng(o.Lee(u"Page"_s)), 1);
    EXPECT_DOUBLE_EQ(CDbl(o.Lee(u"CurrentX"_s)), 5);
    EXPECT_DOUBLE_EQ(CDbl(o.Lee(u"CurrentY"_s)), 7);
    EXPECT_FALSE(QFileInfo::exists(Ruta(u"trabajo.pdf"_s)));

    o.Asigna(u"Suprime"_s, false);
    o.Llama(u"Print"_s, {u"despues"_s});
    o.Llama(u"EndDoc"_s);
    EXPECT_EQ(CLng(o.Lee(u"hDC"_s)), 0);
    EXPECT_EQ(LeePdf(Ruta(u"trabajo.pdf"_s)).paginas, 1);
}

// A three-page document, then only its last page with the first two
// suppressed: that page comes out exactly as it did in the whole document.
TEST_F(Suprime, UnaPaginaSolaConElEstadoDeLasAnteriores) {
    const std::vector<Paso> primeras = {
        Asigna(u"ScaleMode"_s, int16_t{5}),
        Asigna(u"FontName"_s, u"DejaVu Sans"_s),
        Asigna(u"FontSize"_s, 14),
        LlamaA(u"Print"_s, {u"Primera pagina"_s}),
        Asigna(u"ForeColor"_s, int32_t{0x0000C0}),
        LlamaA(u"Line"_s, {int16_t{4}, 1.0, 3.0, 5.0, 3.0}),
        LlamaA(u"NewPage"_s),
        Asigna(u"FontBold"_s, true),
        Asigna(u"FontSize"_s, 20),
        Asigna(u"Orientation"_s, int16_t{2}),
        LlamaA(u"Scale"_s, {0, 0, 100, 50}),
        Asigna(u"ModoDeFondo"_s, int16_t{2}),
        LlamaA(u"Print"_s, {u"Segunda"_s}),
        LlamaA(u"NewPage"_s),
    };
    const std::vector<Paso> tercera = {
        LlamaA(u"Print"_s, {u"Tercera"_s, true}),
        LlamaA(u"Print"_s, {u" pagina"_s}),
        LlamaA(u"Circle"_s, {int16_t{1}, 20.0, 10.0, 8.0}),
        LlamaA(u"Line"_s, {int16_t{20}, 60.0, 30.0, 90.0, 45.0}),
        LlamaA(u"EndDoc"_s),
    };
    std::vector<QImage> entero, solo;
    std::vector<int> numerosSolo;
    auto completa = ImpresoraDeImagenes::Crea(60, [&](const QImage& p, int) { entero.push_back(p); });
    auto ultima = ImpresoraDeImagenes::Crea(60, [&](const QImage& p, int n) {
        solo.push_back(p);
        numerosSolo.push_back(n);
    });
    ultima->Asigna(u"Suprime"_s, true);
    for (const auto* pasos : {&primeras, &tercera}) {
        if (pasos == &tercera) ultima->Asigna(u"Suprime"_s, false);
        for (const Paso& paso : *pasos) {
            paso(*completa);
            paso(*ultima);
        }
    }
    ASSERT_EQ(entero.size(), 3u);
    ASSERT_EQ(solo.size(), 1u);
    EXPECT_EQ(numerosSolo, std::vector<int>{1});
    EXPECT_EQ(solo[0].size(), QSize(660, 510));
    EXPECT_TRUE(solo[0] == entero[2]);
    // Not a blank page that would match any other.
    QImage blanca(solo[0].size(), solo[0].format());
    blanca.fill(Qt::white);
    EXPECT_FALSE(solo[0] == blanca);
}

TEST_F(Suprime, ArchivoPdfFijoReemplazadoPorCadaTrabajo) {
    const QString ruta = Ruta(u"sub/carpeta/salida.pdf"_s);
    auto pdf = ImpresoraDelSistema::EnArchivoPdf(ruta);
    Objeto& o = *pdf;
    EXPECT_EQ(o.Lee(u"DeviceName"_s).texto(), u"PDF (KaloImpresora)"_s);
    o.Llama(u"Print"_s, {u"uno"_s});
    o.Llama(u"NewPage"_s);
    o.Llama(u"Print"_s, {u"dos"_s});
    o.Llama(u"EndDoc"_s);
    EXPECT_EQ(o.Lee(u"ArchivoDeSalida"_s).texto(), ruta);
    EXPECT_EQ(LeePdf(ruta).paginas, 2);

    o.Asigna(u"PaperSize"_s, int16_t{5});
    o.Llama(u"Print"_s, {u"otro trabajo"_s});
    o.Llama(u"EndDoc"_s);
    auto datos = LeePdf(ruta);
    EXPECT_EQ(datos.paginas, 1);
    ASSERT_EQ(datos.tamanos.size(), 1u);
    EXPECT_EQ(datos.tamanos[0], QSizeF(612, 1008));

    // A killed job leaves the last one's file whole, and nothing beside it.
    o.Llama(u"Print"_s, {u"descartado"_s});
    o.Llama(u"NewPage"_s);
    o.Llama(u"KillDoc"_s);
    EXPECT_EQ(LeePdf(ruta).paginas, 1);
    EXPECT_EQ(QDir(QFileInfo(ruta).path()).entryList(QDir::Files), QStringList{u"salida.pdf"_s});
}

}  // namespace

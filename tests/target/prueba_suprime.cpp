// Suppressed output (the same state moves, nothing reaches the paper, an open
// job is left alone), and the PDF printer that writes every job to one named
// file. Files are read back with the poppler tools. A page printed alone after
// suppressed ones is proven where users meet it, in replay.

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <functional>
#include <gtest/gtest.h>

#include "comun/utilerias_de_prueba.h"
#include "cups/herramientas_pdf.h"
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

class Suprime : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(carpeta.isValid()); }

    QString Ruta(const QString& nombre) const { return carpeta.filePath(nombre); }
    QStringList Archivos() const { return QDir(carpeta.path()).entryList(QDir::Files, QDir::Name); }

    QTemporaryDir carpeta;
};

// Each step run on a printer that draws and on one that only measures: the
// print position ends the same after every one. One step per kind of output,
// each starting where it would not leave the position.
TEST_F(Suprime, LaPosicionSeMueveIgualSinDibujar) {
    auto dibuja = ImpresoraDelSistema::EnArchivoPdf(Ruta(u"dibujado.pdf"_s));
    auto mide = ImpresoraDelSistema::EnArchivoPdf(Ruta(u"medido.pdf"_s));
    mide->Asigna(u"Suprime"_s, true);
    const std::vector<std::pair<const char*, Paso>> pasos = {
        {"pulgadas", Asigna(u"ScaleMode"_s, int16_t{5})},
        {"print de dos lineas sin salto", LlamaA(u"Print"_s, {u"uno\r\ndos"_s, true})},
        {"fuente mayor", Asigna(u"FontSize"_s, 20)},
        {"print en la fuente mayor sin salto", LlamaA(u"Print"_s, {u"Grande"_s, true})},
        {"cls", [](Objeto& o) { dynamic_cast<ImpresoraComun&>(o).lienzo().Cls(); }},
        {"linea", LlamaA(u"Line"_s, {int16_t{4}, 1.0, 1.0, 3.0, 2.0})},
        {"circulo relativo", LlamaA(u"Circle"_s, {int16_t{1}, 0.5, 0.5, 0.25})},
        {"escala de usuario", LlamaA(u"Scale"_s, {10, 20, 110, 220})},
        {"pagina nueva", LlamaA(u"NewPage"_s)},
        {"print en la pagina nueva", LlamaA(u"Print"_s, {u"z"_s})},
    };
    for (const auto& [nombre, paso] : pasos) {
        SCOPED_TRACE(nombre);
        paso(*dibuja);
        paso(*mide);
        EXPECT_DOUBLE_EQ(CDbl(mide->Lee(u"CurrentX"_s)), CDbl(dibuja->Lee(u"CurrentX"_s)));
        EXPECT_DOUBLE_EQ(CDbl(mide->Lee(u"CurrentY"_s)), CDbl(dibuja->Lee(u"CurrentY"_s)));
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

TEST_F(Suprime, ArchivoPdfFijoReemplazadoPorCadaTrabajo) {
    const QString ruta = Ruta(u"sub/carpeta/salida.pdf"_s);
    auto pdf = ImpresoraDelSistema::EnArchivoPdf(ruta);
    Objeto& o = *pdf;
    EXPECT_EQ(o.Lee(u"DeviceName"_s).texto(), u"PDF (KaloImpresora)"_s);
    o.Llama(u"Print"_s, {u"uno"_s});
    o.Llama(u"NewPage"_s);
    o.Llama(u"EndDoc"_s);
    EXPECT_EQ(o.Lee(u"ArchivoDeSalida"_s).texto(), ruta);
    EXPECT_EQ(LeePdf(ruta).paginas, 2);
    o.Llama(u"Print"_s, {u"otro trabajo"_s});
    o.Llama(u"EndDoc"_s);
    EXPECT_EQ(LeePdf(ruta).paginas, 1);

    // A killed job leaves the last one's file whole, and nothing beside it.
    o.Llama(u"Print"_s, {u"descartado"_s});
    o.Llama(u"NewPage"_s);
    o.Llama(u"KillDoc"_s);
    EXPECT_EQ(LeePdf(ruta).paginas, 1);
    EXPECT_EQ(QDir(QFileInfo(ruta).path()).entryList(QDir::Files), QStringList{u"salida.pdf"_s});
}

}  // namespace

// Suppressed output (the same state moves, nothing reaches the paper, an open
// job is left alone), and the PDF printer that writes every job to one named
// file. A page printed alone after suppressed ones is proven in replay.

#include "comun/prueba.h"

#include "comun/herramientas_pdf.h"
#include "target/impresora_sistema.h"

namespace {

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
        {u"=ScaleMode"_s, {int16_t{5}}}, {u"Print"_s, {u"uno\r\ndos"_s, true}}, {u"=FontSize"_s, {20}},
        {u"Print"_s, {u"Grande"_s, true}}, {u"Cls"_s, {}}, {u"Line"_s, {int16_t{4}, 1.0, 1.0, 3.0, 2.0}},
        {u"Circle"_s, {int16_t{1}, 0.5, 0.5, 0.25}},  // centre relative to the position
        {u"Scale"_s, {10, 20, 110, 220}}, {u"NewPage"_s, {}}, {u"Print"_s, {u"z"_s}},
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

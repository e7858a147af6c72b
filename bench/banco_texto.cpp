// Say through the whole component against the least the same work can cost:
// on the image preview with recording, and on the PDF printer without.

#include <benchmark/benchmark.h>

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QPrinter>
#include <QTemporaryDir>

#include "kaloimpresora/impresora.h"
#include "kaloimpresora/impresoras.h"
#include "kaloimpresora/superficies.h"
#include "runtime/aplicacion.h"
#include "target/impresora_sistema.h"
#include "target/modulo4.h"
#include "insert_desnudo.h"

namespace {

using namespace Qt::StringLiterals;
using kalo::Variant;

constexpr int kRenglonesPorPagina = 60;

void SayGrabadoEnVista(benchmark::State& estado) {
    kalo::AseguraAplicacion();
    kalo::modulo4::Estado() = {};
    auto vista = kalo::CreaSuperficieDeImagen(850, 1100, 100);
    kalo::Impresora imp;
    imp.Pantalla = true;
    imp.Archivo = true;
    imp.Imagen2 = vista;
    imp.IniciaDocumento();
    imp.EstableceFuente(u"DejaVu Sans"_s, 10);
    int i = 0;
    for (auto _ : estado) {
        imp.Say(imp.Row(i % kRenglonesPorPagina), imp.Col(10), u"Total a pagar"_s);
        ++i;
    }
    estado.SetItemsProcessed(estado.iterations());
    imp.FinDocumento();
    const QString db = imp.DB;
    imp.sq = nullptr;
    kalo::banco::BorraReporte(db);
}
BENCHMARK(SayGrabadoEnVista);

// A prepared INSERT with bound values plus drawText on an image of the same
// size, in the font size the preview uses.
void InsertYDrawTextDesnudos(benchmark::State& estado) {
    kalo::AseguraAplicacion();
    kalo::banco::InsertDesnudo desnudo(QDir::tempPath() + u"/banco-texto-desnudo.rep"_s);
    QImage imagen(850, 1100, QImage::Format_ARGB32_Premultiplied);
    imagen.fill(Qt::white);
    QPainter pintor(&imagen);
    QFont fuente(u"DejaVu Sans"_s);
    fuente.setPixelSize(14);
    pintor.setFont(fuente);
    const QString texto = u"Total a pagar"_s;
    int i = 0;
    for (auto _ : estado) {
        ++i;
        desnudo.Inserta(i, "Say Fn(\"1.5\"),Fn(\"1.0625\"),\"Total a pagar\"\r\n", i % kRenglonesPorPagina, 10,
                        "Total a pagar");
        pintor.drawText(QPointF(106, 17 * (i % kRenglonesPorPagina) + 14), texto);
    }
    estado.SetItemsProcessed(estado.iterations());
}
BENCHMARK(InsertYDrawTextDesnudos);

void SayEnImpresoraPdf(benchmark::State& estado) {
    kalo::AseguraAplicacion();
    kalo::modulo4::Estado() = {};
    QTemporaryDir carpeta;
    kalo::EstableceImpresoraActual(kalo::ImpresoraDelSistema::EnPdf(carpeta.path()));
    kalo::Impresora imp;
    imp.IniciaDocumento();
    imp.EstableceFuente(u"DejaVu Sans"_s, 10);
    int i = 0;
    for (auto _ : estado) {
        imp.Say(imp.Row(i % kRenglonesPorPagina), imp.Col(10), u"Total a pagar"_s);
        if (++i % kRenglonesPorPagina == 0) imp.PaginaNueva();
    }
    imp.FinDocumento();
    estado.SetItemsProcessed(estado.iterations());
    kalo::EstableceImpresoraActual(nullptr);
}
BENCHMARK(SayEnImpresoraPdf);

// The same PDF device the component's printer uses, painted on directly.
void DrawTextEnPdfDesnudo(benchmark::State& estado) {
    kalo::AseguraAplicacion();
    QTemporaryDir carpeta;
    auto impresora = kalo::ImpresoraDelSistema::EnPdf(carpeta.path());
    QPrinter& pdf = impresora->Dispositivo();
    pdf.setOutputFileName(carpeta.filePath(u"desnudo.pdf"_s));
    QPainter pintor(&pdf);
    QFont fuente(u"DejaVu Sans"_s);
    fuente.setPointSizeF(10);
    pintor.setFont(fuente);
    const double ppp = pdf.resolution();
    const QString texto = u"Total a pagar"_s;
    int i = 0;
    for (auto _ : estado) {
        pintor.drawText(QPointF(1.0625 * ppp, (i % kRenglonesPorPagina) * ppp / 6 + ppp / 6), texto);
        if (++i % kRenglonesPorPagina == 0) pdf.newPage();
    }
    pintor.end();
    estado.SetItemsProcessed(estado.iterations());
}
BENCHMARK(DrawTextEnPdfDesnudo);

}  // namespace

#include "target/impresora_sistema.h"

#include <algorithm>

#include <cups/cups.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPrinter>
#include <QPrinterInfo>
#include <QTemporaryFile>
#include <utility>

#include "runtime/aplicacion.h"

namespace kalo {

using namespace Qt::StringLiterals;

namespace {

// "documento-20250131-154500.pdf", then "-2", "-3"... within the same second.
QString NombreDeDocumento(const QString& carpeta) {
    const QString base = u"documento-"_s + QDateTime::currentDateTime().toString(u"yyyyMMdd-HHmmss"_s);
    QDir dir(carpeta);
    QString nombre = base + u".pdf"_s;
    for (int n = 2; dir.exists(nombre); ++n) nombre = base + u'-' + QString::number(n) + u".pdf"_s;
    return dir.filePath(nombre);
}

// A new empty file named after the template, left in place for the job.
QString ArchivoTemporal(const QString& plantilla) {
    QTemporaryFile temporal(plantilla);
    temporal.setAutoRemove(false);
    if (!temporal.open()) Lanza(err::kErrorDeImpresora);
    return temporal.fileName();
}

}  // namespace

// ---- Construction ------------------------------------------------------------

ImpresoraDelSistema::ImpresoraDelSistema(QString nombre, const QPrinterInfo* destino, QString carpetaPdf,
                                         QString archivoPdf)
    : ImpresoraComun(std::move(nombre)),
      carpetaPdf_(std::move(carpetaPdf)),
      archivoPdf_(std::move(archivoPdf)),
      impresora_(destino ? std::make_unique<QPrinter>(*destino, QPrinter::HighResolution)
                         : std::make_unique<QPrinter>(QPrinter::HighResolution)) {
    if (destino) {
        // Qt keeps the locale's sheet when the destination also has it; the
        // runtime's printer starts on the destination's own default.
        const QPageSize propia = destino->defaultPageSize();
        if (propia.isValid()) impresora_->setPageSize(propia);
    } else {
        // A file has no unprintable border and no driver to ask for a sheet.
        impresora_->setOutputFormat(QPrinter::PdfFormat);
        impresora_->setPageSize(QPageSize(QPageSize::Letter));
        impresora_->setPageMargins(QMarginsF(0, 0, 0, 0), QPageLayout::Point);
    }
    PreparaLienzo();
}

std::shared_ptr<ImpresoraDelSistema> ImpresoraDelSistema::DeDestino(const QPrinterInfo& destino) {
    AseguraAplicacion();
    return std::shared_ptr<ImpresoraDelSistema>(new ImpresoraDelSistema(destino.printerName(), &destino, {}));
}

std::shared_ptr<ImpresoraDelSistema> ImpresoraDelSistema::EnPdf(const QString& carpeta) {
    AseguraAplicacion();
    return std::shared_ptr<ImpresoraDelSistema>(
        new ImpresoraDelSistema(u"PDF (KaloImpresora)"_s, nullptr, carpeta.isEmpty() ? u"."_s : carpeta));
}

std::shared_ptr<ImpresoraDelSistema> ImpresoraDelSistema::EnArchivoPdf(const QString& archivo) {
    AseguraAplicacion();
    if (archivo.isEmpty()) Lanza(err::kLlamadaNoValida);
    return std::shared_ptr<ImpresoraDelSistema>(
        new ImpresoraDelSistema(u"PDF (KaloImpresora)"_s, nullptr, {}, QFileInfo(archivo).absoluteFilePath()));
}

ImpresoraDelSistema::~ImpresoraDelSistema() { TerminaAlDestruir(); }

// ---- Device --------------------------------------------------------------------

QPageLayout ImpresoraDelSistema::Hoja() const { return impresora_->pageLayout(); }

void ImpresoraDelSistema::CambiaHoja(const QPageSize& hoja, QPageLayout::Orientation orientacion) {
    if (!impresora_->setPageSize(hoja)) Lanza(err::kValorDePropiedadNoValido);
    impresora_->setPageOrientation(orientacion);
    if (EsPdf()) impresora_->setPageMargins(QMarginsF(0, 0, 0, 0), QPageLayout::Point);
}

QSize ImpresoraDelSistema::AreaDibujable() const {
    const QRectF area = impresora_->pageRect(QPrinter::DevicePixel);
    auto lado = [](double px) { return qRound(std::clamp(px, 1.0, double(1 << 30))); };
    return {lado(area.width()), lado(area.height())};
}

double ImpresoraDelSistema::Resolucion() const { return impresora_->resolution(); }

// ---- Job lifecycle -------------------------------------------------------------

void ImpresoraDelSistema::IniciaTrabajo() {
    QString archivo;
    if (!archivoPdf_.isEmpty()) {
        // Painted beside the file and put in its place only when it ends.
        const QFileInfo destino(archivoPdf_);
        QDir().mkpath(destino.absolutePath());
        archivo = ArchivoTemporal(archivoPdf_ + u".XXXXXX"_s);
    } else if (EsPdf()) {
        QDir().mkpath(carpetaPdf_);
        archivo = NombreDeDocumento(carpetaPdf_);
    } else {
        // Without a ".pdf" suffix the printer keeps its native engine (the
        // destination's sheets and margins) and only writes to the file.
        archivo = ArchivoTemporal(QDir::temp().filePath(u"kaloimpresora-XXXXXX.trabajo"_s));
    }
    impresora_->setOutputFileName(archivo);
    impresora_->setDocName(u"KaloImpresora"_s);
    if (!pintor().begin(impresora_.get())) {
        QFile::remove(archivo);
        Lanza(err::kErrorDeImpresora);
    }
    archivoDelTrabajo_ = archivo;
}

void ImpresoraDelSistema::PasaPagina() {
    if (!impresora_->newPage()) Lanza(err::kErrorDeImpresora);
}

void ImpresoraDelSistema::CierraTrabajo(bool entrega, int32_t) {
    pintor().end();
    // A native printer left pointing at the job's file would keep writing
    // there; the PDF one must keep a file name to stay a PDF printer.
    if (!EsPdf()) impresora_->setOutputFileName({});
    const QString archivo = std::exchange(archivoDelTrabajo_, QString());
    if (!entrega) {
        QFile::remove(archivo);
        return;
    }
    if (!archivoPdf_.isEmpty()) {
        QFile::remove(archivoPdf_);
        if (!QFile::rename(archivo, archivoPdf_)) {
            QFile::remove(archivo);
            Lanza(err::kErrorDeImpresora);
        }
        archivoDeSalida_ = archivoPdf_;
        return;
    }
    if (EsPdf()) {
        archivoDeSalida_ = archivo;
        return;
    }
    Entrega(archivo);
}

// What the print system's own client does with a file: the destination's
// saved options, then this job's copies and sheet.
void ImpresoraDelSistema::Entrega(const QString& archivo) {
    const QByteArray completo = DeviceName().toLocal8Bit();
    const qsizetype barra = completo.indexOf('/');
    const QByteArray cola = barra < 0 ? completo : completo.left(barra);
    const QByteArray instancia = barra < 0 ? QByteArray() : completo.mid(barra + 1);

    cups_option_t* opciones = nullptr;
    int n = 0;
    if (cups_dest_t* d = cupsGetNamedDest(CUPS_HTTP_DEFAULT, cola.constData(),
                                          instancia.isEmpty() ? nullptr : instancia.constData())) {
        for (int i = 0; i < d->num_options; ++i)
            n = cupsAddOption(d->options[i].name, d->options[i].value, n, &opciones);
        cupsFreeDests(1, d);
    }
    n = cupsAddOption("copies", QByteArray::number(Copies()).constData(), n, &opciones);
    const QPageSize hoja = impresora_->pageLayout().pageSize();
    const QByteArray medio = hoja.id() == QPageSize::Custom
                                 ? "Custom." + QByteArray::number(hoja.size(QPageSize::Point).width()) + "x" +
                                       QByteArray::number(hoja.size(QPageSize::Point).height())
                                 : hoja.key().toLatin1();
    n = cupsAddOption("media", medio.constData(), n, &opciones);

    const QByteArray ruta = QFile::encodeName(archivo);
    const int trabajo = cupsPrintFile(cola.constData(), ruta.constData(), "KaloImpresora", n, opciones);
    cupsFreeOptions(n, opciones);
    QFile::remove(archivo);
    if (trabajo == 0) Lanza(err::kErrorDeImpresora);
    ultimoTrabajo_ = trabajo;
}

}  // namespace kalo

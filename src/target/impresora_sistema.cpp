#include "target/impresora_sistema.h"

#include <algorithm>

#include <cups/cups.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPrinter>
#include <QPrinterInfo>
#include <QRegularExpression>
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

// The destination behind a device name "cola" or "cola/instancia", with the
// options saved for it; none when the print server does not know it.
using Destino = std::unique_ptr<cups_dest_t, void (*)(cups_dest_t*)>;
Destino DestinoDe(const QString& nombre) {
    const QByteArray completo = nombre.toLocal8Bit();
    const qsizetype barra = completo.indexOf('/');
    const QByteArray cola = barra < 0 ? completo : completo.left(barra);
    const QByteArray instancia = barra < 0 ? QByteArray() : completo.mid(barra + 1);
    return Destino(cupsGetNamedDest(CUPS_HTTP_DEFAULT, cola.constData(),
                                    instancia.isEmpty() ? nullptr : instancia.constData()),
                   [](cups_dest_t* d) { cupsFreeDests(1, d); });
}

QByteArray Decimal(double v) {
    QByteArray t = QByteArray::number(v, 'f', 3);
    while (t.endsWith('0')) t.chop(1);
    if (t.endsWith('.')) t.chop(1);
    return t;
}

}  // namespace

QByteArray MedioPersonalizado(QSizeF milimetros) {
    return "Custom." + Decimal(milimetros.width()) + 'x' + Decimal(milimetros.height()) + "mm";
}

std::optional<QSizeF> MilimetrosDeMedio(const QByteArray& medio) {
    static const QRegularExpression kPersonalizado(uR"(^Custom\.(\d+(?:\.\d*)?)x(\d+(?:\.\d*)?)(mm|cm|in|ft|m)?$)"_s);
    const auto m = kPersonalizado.match(QString::fromLatin1(medio));
    if (!m.hasMatch()) return std::nullopt;
    const QString unidad = m.captured(3);
    // Without a unit the numbers are points.
    const double factor = unidad == u"mm"_s ? 1 : unidad == u"cm"_s ? 10 : unidad == u"in"_s ? 25.4
                        : unidad == u"ft"_s ? 304.8 : unidad == u"m"_s ? 1000 : 25.4 / 72;
    const QSizeF mm(m.captured(1).toDouble() * factor, m.captured(2).toDouble() * factor);
    if (mm.isEmpty()) return std::nullopt;
    return mm;
}

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
        // A custom sheet saved for the destination (a form's instance) is its default too.
        if (const Destino d = DestinoDe(destino->printerName())) {
            if (const auto mm = MilimetrosDeMedio(cupsGetOption("media", d->num_options, d->options)))
                impresora_->setPageSize(QPageSize(*mm, QPageSize::Millimeter));
        }
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
    const QByteArray cola = DeviceName().section(u'/', 0, 0).toLocal8Bit();

    cups_option_t* opciones = nullptr;
    int n = 0;
    if (const Destino d = DestinoDe(DeviceName())) {
        for (int i = 0; i < d->num_options; ++i)
            n = cupsAddOption(d->options[i].name, d->options[i].value, n, &opciones);
    }
    n = cupsAddOption("copies", QByteArray::number(Copies()).constData(), n, &opciones);
    const QPageSize hoja = impresora_->pageLayout().pageSize();
    const QByteArray medio = hoja.id() == QPageSize::Custom ? MedioPersonalizado(hoja.size(QPageSize::Millimeter))
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

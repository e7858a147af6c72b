#include "target/impresora_sistema.h"

#include <cups/cups.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPrinterInfo>
#include <QTemporaryFile>
#include <atomic>
#include <utility>
#include <cmath>

#include "automation/interfaz.h"
#include "target/aplicacion.h"
#include "target/miembros_lienzo.h"

namespace kalo {

using namespace Qt::StringLiterals;
using T = TipoDato;

namespace {

constexpr double kTwipsPorPulgada = 1440;
constexpr int16_t kHimetrico = 8;
constexpr int16_t kCodigoDeUsuario = 256;  // the platform's code of a user-defined sheet

// Device contexts are only told apart, never dereferenced: any non-zero
// number unique in the process will do.
int32_t NuevoHdc() {
    static std::atomic<int32_t> serie{0};
    return 0x4B490000 + (++serie & 0xFFFF);
}

// The sheet as its definition gives it, in twips, before orientation.
QSizeF DefinicionEnTwips(const QPageSize& hoja) {
    const QSizeF d = hoja.definitionSize();
    switch (hoja.definitionUnits()) {
    case QPageSize::Millimeter: return d * (kTwipsPorPulgada / 25.4);
    case QPageSize::Inch: return d * kTwipsPorPulgada;
    case QPageSize::Point: return d * 20.0;
    default: return hoja.size(QPageSize::Millimeter) * (kTwipsPorPulgada / 25.4);
    }
}

// "documento-20250131-154500.pdf", then "-2", "-3"... within the same second.
QString NombreDeDocumento(const QString& carpeta) {
    const QString base = u"documento-"_s + QDateTime::currentDateTime().toString(u"yyyyMMdd-HHmmss"_s);
    QDir dir(carpeta);
    QString nombre = base + u".pdf"_s;
    for (int n = 2; dir.exists(nombre); ++n) nombre = base + u'-' + QString::number(n) + u".pdf"_s;
    return dir.filePath(nombre);
}

}  // namespace

// ---- Construction ------------------------------------------------------------

ImpresoraDelSistema::ImpresoraDelSistema(QString nombre, const QPrinterInfo* destino, QString carpetaPdf)
    : nombre_(std::move(nombre)),
      carpetaPdf_(std::move(carpetaPdf)),
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
    const QRectF area = impresora_->pageRect(QPrinter::DevicePixel);
    const double ppp = impresora_->resolution();
    lienzo_ = std::make_unique<Lienzo>(QSize(qRound(area.width()), qRound(area.height())), ppp, ppp,
                                       [this] { return AbreTrabajo(); });
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

ImpresoraDelSistema::~ImpresoraDelSistema() {
    try {
        EndDoc();
    } catch (...) {
        // Nowhere left to report it.
    }
}

// ---- Job lifecycle -------------------------------------------------------------

QPainter* ImpresoraDelSistema::AbreTrabajo() {
    if (pintor_.isActive()) return &pintor_;
    QString archivo;
    if (EsPdf()) {
        QDir().mkpath(carpetaPdf_);
        archivo = NombreDeDocumento(carpetaPdf_);
    } else {
        // Without a ".pdf" suffix the printer keeps its native engine (the
        // destination's sheets and margins) and only writes to the file.
        QTemporaryFile temporal(QDir::temp().filePath(u"kaloimpresora-XXXXXX.trabajo"_s));
        temporal.setAutoRemove(false);
        if (!temporal.open()) Lanza(err::kErrorDeImpresora);
        archivo = temporal.fileName();
    }
    impresora_->setOutputFileName(archivo);
    impresora_->setDocName(u"KaloImpresora"_s);
    if (!pintor_.begin(impresora_.get())) {
        QFile::remove(archivo);
        Lanza(err::kErrorDeImpresora);
    }
    archivoDelTrabajo_ = archivo;
    hdc_ = NuevoHdc();
    pagina_ = 1;
    return &pintor_;
}

void ImpresoraDelSistema::TerminaTrabajo(bool entrega) {
    lienzo_->CurrentX(lienzo_->ScaleLeft());
    lienzo_->CurrentY(lienzo_->ScaleTop());
    if (!pintor_.isActive()) return;
    pintor_.end();
    // A native printer left pointing at the job's file would keep writing
    // there; the PDF one must keep a file name to stay a PDF printer.
    if (!EsPdf()) impresora_->setOutputFileName({});
    hdc_ = 0;
    pagina_ = 0;
    const QString archivo = std::exchange(archivoDelTrabajo_, QString());
    if (!entrega) {
        QFile::remove(archivo);
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
    const QByteArray completo = nombre_.toLocal8Bit();
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
    n = cupsAddOption("copies", QByteArray::number(copias_).constData(), n, &opciones);
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

void ImpresoraDelSistema::Print(const QString& texto, bool saltoDeLinea) {
    AbreTrabajo();
    lienzo_->Print(texto, saltoDeLinea);
}

void ImpresoraDelSistema::NewPage() {
    AbreTrabajo();
    if (!impresora_->newPage()) Lanza(err::kErrorDeImpresora);
    ++pagina_;
    lienzo_->CurrentX(lienzo_->ScaleLeft());
    lienzo_->CurrentY(lienzo_->ScaleTop());
}

void ImpresoraDelSistema::EndDoc() { TerminaTrabajo(true); }

void ImpresoraDelSistema::KillDoc() { TerminaTrabajo(false); }

// ---- Sheet -----------------------------------------------------------------------

void ImpresoraDelSistema::Copies(int16_t copias) {
    if (copias < 1) Lanza(err::kValorDePropiedadNoValido);
    copias_ = copias;
}

int16_t ImpresoraDelSistema::PaperSize() const {
    const QPageSize hoja = impresora_->pageLayout().pageSize();
    const int codigo = hoja.id() == QPageSize::Custom ? 0 : hoja.windowsId();
    return static_cast<int16_t>(codigo > 0 && codigo < kCodigoDeUsuario ? codigo : kCodigoDeUsuario);
}

void ImpresoraDelSistema::PaperSize(int16_t codigo) {
    // A user-defined sheet is set through Width and Height; the code alone
    // leaves the sheet as it is.
    if (codigo == kCodigoDeUsuario) return;
    const QPageSize::PageSizeId id = QPageSize::id(static_cast<int>(codigo));
    if (codigo <= 0 || id == QPageSize::Custom) Lanza(err::kValorDePropiedadNoValido);
    AplicaHoja(QPageSize(id));
}

int16_t ImpresoraDelSistema::Orientation() const {
    return impresora_->pageLayout().orientation() == QPageLayout::Landscape ? 2 : 1;
}

void ImpresoraDelSistema::Orientation(int16_t orientacion) {
    if (orientacion != 1 && orientacion != 2) Lanza(err::kValorDePropiedadNoValido);
    AplicaHoja(impresora_->pageLayout().pageSize(),
               orientacion == 2 ? QPageLayout::Landscape : QPageLayout::Portrait);
}

int32_t ImpresoraDelSistema::Width() const {
    const QSizeF t = DefinicionEnTwips(impresora_->pageLayout().pageSize());
    return static_cast<int32_t>(std::lround(Orientation() == 2 ? t.height() : t.width()));
}

int32_t ImpresoraDelSistema::Height() const {
    const QSizeF t = DefinicionEnTwips(impresora_->pageLayout().pageSize());
    return static_cast<int32_t>(std::lround(Orientation() == 2 ? t.width() : t.height()));
}

void ImpresoraDelSistema::Width(int32_t twips) {
    if (twips <= 0) Lanza(err::kValorDePropiedadNoValido);
    QSizeF t = DefinicionEnTwips(impresora_->pageLayout().pageSize());
    (Orientation() == 2 ? t.rheight() : t.rwidth()) = twips;
    AplicaHoja(QPageSize(t / kTwipsPorPulgada, QPageSize::Inch));
}

void ImpresoraDelSistema::Height(int32_t twips) {
    if (twips <= 0) Lanza(err::kValorDePropiedadNoValido);
    QSizeF t = DefinicionEnTwips(impresora_->pageLayout().pageSize());
    (Orientation() == 2 ? t.rwidth() : t.rheight()) = twips;
    AplicaHoja(QPageSize(t / kTwipsPorPulgada, QPageSize::Inch));
}

// Inside an open job a new sheet takes effect from the next page, as the
// print engine allows; the scale follows at once.
void ImpresoraDelSistema::AplicaHoja(const QPageSize& hoja, std::optional<QPageLayout::Orientation> orientacion) {
    if (!hoja.isValid()) Lanza(err::kValorDePropiedadNoValido);
    if (!impresora_->setPageSize(hoja)) Lanza(err::kValorDePropiedadNoValido);
    if (orientacion) impresora_->setPageOrientation(*orientacion);
    if (EsPdf()) impresora_->setPageMargins(QMarginsF(0, 0, 0, 0), QPageLayout::Point);
    const QRectF area = impresora_->pageRect(QPrinter::DevicePixel);
    lienzo_->CambiaDispositivo(QSize(qRound(area.width()), qRound(area.height())), impresora_->resolution(),
                               impresora_->resolution());
}

void ImpresoraDelSistema::ModoDeFondo(int16_t modo) {
    if (modo != 1 && modo != 2) Lanza(err::kValorDePropiedadNoValido);
    lienzo_->FontTransparent(modo == 1);
}

// ---- Unit conversion -------------------------------------------------------------

double ImpresoraDelSistema::TwipsPorUnidad(int16_t modo, bool horizontal) const {
    const Lienzo& l = *lienzo_;
    switch (modo) {
    case escala::kUsuario:
        // The current scale, whatever mode defined it.
        return horizontal ? l.AnchoEnPixeles(1) * kTwipsPorPulgada / l.PppX()
                          : l.AltoEnPixeles(1) * kTwipsPorPulgada / l.PppY();
    case kHimetrico: return kTwipsPorPulgada / 2540;
    default:
        if (modo < escala::kTwips || modo > escala::kCentimetros) Lanza(err::kLlamadaNoValida);
        return horizontal ? l.TwipsPorUnidadX(modo) : l.TwipsPorUnidadY(modo);
    }
}

double ImpresoraDelSistema::ScaleX(double valor, int16_t de, int16_t a) const {
    return valor * TwipsPorUnidad(de, true) / TwipsPorUnidad(a, true);
}

double ImpresoraDelSistema::ScaleY(double valor, int16_t de, int16_t a) const {
    return valor * TwipsPorUnidad(de, false) / TwipsPorUnidad(a, false);
}

// ---- Automation ------------------------------------------------------------------

namespace {

using I = ImpresoraDelSistema;
using namespace miembros_lienzo;

std::vector<Miembro<I>> MiembrosDeImpresora() {
    std::vector<Miembro<I>> m;
    Agrega(m);
    m.push_back(Prop<I>(u"Width", 20, T::Largo, [](I& i) { return Variant(i.Width()); },
                        [](I& i, const Variant& v) { i.Width(v.largo()); }));
    m.push_back(Prop<I>(u"Height", 21, T::Largo, [](I& i) { return Variant(i.Height()); },
                        [](I& i, const Variant& v) { i.Height(v.largo()); }));
    m.push_back(Prop<I>(u"DeviceName", 60, T::Texto, [](I& i) { return Variant(i.DeviceName()); }, SoloLectura<I>));
    m.push_back(Prop<I>(u"Copies", 61, T::Entero, [](I& i) { return Variant(i.Copies()); },
                        [](I& i, const Variant& v) { i.Copies(v.entero()); }));
    m.push_back(Prop<I>(u"PaperSize", 62, T::Entero, [](I& i) { return Variant(i.PaperSize()); },
                        [](I& i, const Variant& v) { i.PaperSize(v.entero()); }));
    m.push_back(Prop<I>(u"Orientation", 63, T::Entero, [](I& i) { return Variant(i.Orientation()); },
                        [](I& i, const Variant& v) { i.Orientation(v.entero()); }));
    m.push_back(Prop<I>(u"ModoDeFondo", 64, T::Entero, [](I& i) { return Variant(i.ModoDeFondo()); },
                        [](I& i, const Variant& v) { i.ModoDeFondo(v.entero()); }));
    m.push_back(Prop<I>(u"hDC", 65, T::Largo, [](I& i) { return Variant(i.hDC()); }, SoloLectura<I>));
    m.push_back(Prop<I>(u"Page", 66, T::Largo, [](I& i) { return Variant(i.Page()); }, SoloLectura<I>));
    m.push_back(Prop<I>(u"ArchivoDeSalida", 67, T::Texto, [](I& i) { return Variant(i.ArchivoDeSalida()); },
                        SoloLectura<I>));

    // Through the printer's own Print, which opens the job even for nothing
    // to print. The second argument stands for the statement's trailing ";".
    m.push_back(Metodo<I>(u"Print"_s, 42, T::Ninguno, {Opcional(u"Texto"), Opcional(u"SinSalto", T::Booleano)},
                          [](I& i, std::span<Variant> a) {
                              i.Print(TextoAImprimir(a[0]), !a[1].booleano());
                              return Variant();
                          }));
    m.push_back(Metodo<I>(u"NewPage"_s, 70, T::Ninguno, {}, [](I& i, std::span<Variant>) {
        i.NewPage();
        return Variant();
    }));
    m.push_back(Metodo<I>(u"EndDoc"_s, 71, T::Ninguno, {}, [](I& i, std::span<Variant>) {
        i.EndDoc();
        return Variant();
    }));
    m.push_back(Metodo<I>(u"KillDoc"_s, 72, T::Ninguno, {}, [](I& i, std::span<Variant>) {
        i.KillDoc();
        return Variant();
    }));
    // From HIMETRIC to the current scale unless the units are given.
    auto escala = [](bool horizontal) {
        return [horizontal](I& i, std::span<Variant> a) {
            const int16_t de = Omitido(a[1]) ? kHimetrico : CInt(a[1]);
            const int16_t hacia = Omitido(a[2]) ? i.lienzo().ScaleMode() : CInt(a[2]);
            return Variant(horizontal ? i.ScaleX(a[0].doble(), de, hacia) : i.ScaleY(a[0].doble(), de, hacia));
        };
    };
    m.push_back(Metodo<I>(u"ScaleX"_s, 73, T::Doble,
                          {Requerido(u"Width", T::Doble), Opcional(u"FromScale"), Opcional(u"ToScale")}, escala(true)));
    m.push_back(Metodo<I>(u"ScaleY"_s, 74, T::Doble,
                          {Requerido(u"Height", T::Doble), Opcional(u"FromScale"), Opcional(u"ToScale")}, escala(false)));
    return m;
}

const Interfaz<I>& InterfazImpresora() {
    static const Interfaz<I> interfaz(u"Printer"_s, MiembrosDeImpresora());
    return interfaz;
}

}  // namespace

int32_t ImpresoraDelSistema::IdDeNombre(const QString& nombre) const {
    return InterfazImpresora().IdDeNombre(nombre);
}

Variant ImpresoraDelSistema::Invoca(int32_t dispid, Llamada tipo, std::span<Variant> argumentos) {
    return InterfazImpresora().Invoca(*this, dispid, tipo, argumentos);
}

}  // namespace kalo

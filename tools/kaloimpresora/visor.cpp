#include "visor.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeySequence>
#include <QLabel>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>
#include <QPrinterInfo>
#include <QScrollArea>
#include <QSpinBox>
#include <QStatusBar>
#include <QToolBar>
#include <algorithm>

#include "runtime/aplicacion.h"
#include "target/impresora_de_imagenes.h"
#include "target/impresora_sistema.h"

namespace kalo::herramienta {

using namespace Qt::StringLiterals;

namespace {
constexpr double kPppPorZoom = 96;
constexpr double kZoomMinimo = 0.25;
constexpr double kZoomMaximo = 4;
}  // namespace

VisorDeReporte::VisorDeReporte(const QString& archivo, QWidget* padre) : QMainWindow(padre), archivo_(archivo) {
    const ResumenDeGuion resumen = Resume(*AbreGuion(archivo));
    for (size_t d = 0; d < resumen.paginasPorDocumento.size(); ++d)
        for (int p = 1; p <= resumen.paginasPorDocumento[d]; ++p) paginas_.emplace_back(static_cast<int>(d) + 1, p);

    setWindowTitle(u"%1 — KaloImpresora"_s.arg(QFileInfo(archivo).fileName()));
    auto* barra = addToolBar(u"Páginas"_s);
    barra->setMovable(false);
    barra->addAction(u"Anterior"_s, QKeySequence(QKeySequence::MoveToPreviousPage), this, [this] { Anterior(); });
    barra->addAction(u"Siguiente"_s, QKeySequence(QKeySequence::MoveToNextPage), this, [this] { Siguiente(); });
    selector_ = new QSpinBox(barra);
    selector_->setRange(paginas_.empty() ? 0 : 1, TotalDePaginas());
    barra->addWidget(selector_);
    total_ = new QLabel(u" de %1 "_s.arg(TotalDePaginas()), barra);
    barra->addWidget(total_);
    connect(selector_, &QSpinBox::valueChanged, this, [this](int n) { IrAPagina(n); });
    barra->addSeparator();
    barra->addAction(u"Alejar"_s, QKeySequence(QKeySequence::ZoomOut), this, [this] { CambiaZoom(zoom_ / 1.25); });
    barra->addAction(u"Acercar"_s, QKeySequence(QKeySequence::ZoomIn), this, [this] { CambiaZoom(zoom_ * 1.25); });
    barra->addSeparator();
    barra->addAction(u"Imprimir…"_s, QKeySequence(QKeySequence::Print), this, [this] { PideImpresion(); });
    barra->addAction(u"Exportar a PDF…"_s, QKeySequence(u"Ctrl+E"_s), this, [this] { PideExportacion(); });

    lamina_ = new QLabel;
    lamina_->setAlignment(Qt::AlignCenter);
    desplazamiento_ = new QScrollArea;
    desplazamiento_->setWidget(lamina_);
    desplazamiento_->setWidgetResizable(true);
    desplazamiento_->setBackgroundRole(QPalette::Dark);
    setCentralWidget(desplazamiento_);
    resize(900, 1000);

    IrAPagina(1);
    if (paginas_.empty()) statusBar()->showMessage(u"El archivo no tiene páginas"_s);
}

void VisorDeReporte::IrAPagina(int n) {
    if (paginas_.empty()) return;
    n = std::clamp(n, 1, TotalDePaginas());
    if (n == actual_ && !imagen_.isNull()) return;
    actual_ = n;
    const QSignalBlocker bloqueo(selector_);
    selector_->setValue(n);
    Pinta();
}

void VisorDeReporte::CambiaZoom(double zoom) {
    zoom = std::clamp(zoom, kZoomMinimo, kZoomMaximo);
    if (zoom == zoom_) return;
    zoom_ = zoom;
    Pinta();
}

void VisorDeReporte::Pinta() {
    if (actual_ == 0) return;
    const auto [documento, pagina] = paginas_[actual_ - 1];
    SeleccionDePaginas s;
    s.documento = documento;
    s.rangos = {{pagina, pagina}};
    QImage imagen;
    const double ppp = kPppPorZoom * zoom_ * devicePixelRatioF();
    auto impresora = ImpresoraDeImagenes::Crea(qRound(ppp), [&](const QImage& i, int) { imagen = i; });
    avisos_ = 0;
    QString error;
    Reproducir(impresora, s, &error);
    imagen_ = imagen;
    imagen.setDevicePixelRatio(devicePixelRatioF());
    lamina_->setPixmap(QPixmap::fromImage(imagen));
    statusBar()->showMessage(error.isEmpty() ? Estado() : error);
}

QString VisorDeReporte::Estado() const {
    if (actual_ == 0) return u"El archivo no tiene páginas"_s;
    const auto [documento, pagina] = paginas_[actual_ - 1];
    QString t = u"Documento %1, página %2 · %3 %"_s.arg(documento).arg(pagina).arg(qRound(zoom_ * 100));
    if (avisos_ > 0) t += u" · %1 aviso(s) en esta página"_s.arg(avisos_);
    return t;
}

bool VisorDeReporte::Reproducir(const std::shared_ptr<Objeto>& impresora, const SeleccionDePaginas& seleccion,
                                QString* error) {
    try {
        OpcionesDeReproduccion o;
        o.seleccion = seleccion;
        o.alIncidir = [this](const Incidencia&) { ++avisos_; };
        auto fuente = AbreGuion(archivo_);
        const ResultadoDeReproduccion r = Reproduce(*fuente, impresora, o);
        if (r.paginasEmitidas == 0) {
            if (error) *error = u"No hay páginas que mostrar"_s;
            return false;
        }
        return true;
    } catch (const ErrorDeAutomatizacion& e) {
        if (error) *error = e.descripcion();
        return false;
    }
}

bool VisorDeReporte::ExportaPdf(const QString& archivo, QString* error) {
    return Reproducir(ImpresoraDelSistema::EnArchivoPdf(archivo), {}, error);
}

bool VisorDeReporte::ImprimeEn(const QString& impresora, QString* error) {
    const QPrinterInfo info = QPrinterInfo::printerInfo(impresora);
    if (info.isNull()) {
        if (error) *error = u"No existe la impresora «%1»"_s.arg(impresora);
        return false;
    }
    return Reproducir(ImpresoraDelSistema::DeDestino(info), {}, error);
}

void VisorDeReporte::PideImpresion() {
    QPrinter eleccion;
    QPrintDialog dialogo(&eleccion, this);
    dialogo.setWindowTitle(u"Imprimir"_s);
    dialogo.setOption(QAbstractPrintDialog::PrintPageRange, false);
    if (dialogo.exec() != QDialog::Accepted) return;
    QString error;
    const bool bien = eleccion.outputFileName().isEmpty() ? ImprimeEn(eleccion.printerName(), &error)
                                                          : ExportaPdf(eleccion.outputFileName(), &error);
    if (!bien) QMessageBox::warning(this, u"Imprimir"_s, error);
    else statusBar()->showMessage(u"Enviado a %1"_s.arg(eleccion.printerName()), 5000);
}

void VisorDeReporte::PideExportacion() {
    const QString sugerido = QFileInfo(archivo_).completeBaseName() + u".pdf"_s;
    const QString destino = QFileDialog::getSaveFileName(this, u"Exportar a PDF"_s, sugerido, u"PDF (*.pdf)"_s);
    if (destino.isEmpty()) return;
    QString error;
    if (!ExportaPdf(destino, &error)) QMessageBox::warning(this, u"Exportar a PDF"_s, error);
    else statusBar()->showMessage(u"Guardado en %1"_s.arg(destino), 5000);
}

int MuestraVisor(const QString& archivo) {
    AseguraAplicacion();
    VisorDeReporte visor(archivo);
    visor.show();
    return QApplication::exec();
}

}  // namespace kalo::herramienta

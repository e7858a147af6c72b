#include "target/impresora_de_imagenes.h"
#include "runtime/unidades.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "runtime/aplicacion.h"

namespace kalo {

using namespace Qt::StringLiterals;

namespace {
// A page image's longest side and its most pixels (1 GiB at 4 bytes each):
// a Letter page at 1200 dpi fits, a sheet asked for by a hostile script does
// not, and memory is refused before it is touched.
constexpr double kLadoMaximo = 1 << 16;
constexpr double kPixelesMaximos = 1 << 28;
}  // namespace

ImpresoraDeImagenes::ImpresoraDeImagenes(int puntosPorPulgada, EntregaDePagina entrega)
    : ImpresoraComun(u"Imágenes (KaloImpresora)"_s),
      ppp_(puntosPorPulgada),
      entrega_(std::move(entrega)),
      hoja_(QPageSize(QPageSize::Letter), QPageLayout::Portrait, QMarginsF()) {
    PreparaLienzo();
}

std::shared_ptr<ImpresoraDeImagenes> ImpresoraDeImagenes::Crea(int puntosPorPulgada, EntregaDePagina entrega) {
    if (puntosPorPulgada < 1 || puntosPorPulgada > 2400) Lanza(err::kLlamadaNoValida);
    AseguraAplicacion();
    return std::shared_ptr<ImpresoraDeImagenes>(new ImpresoraDeImagenes(puntosPorPulgada, std::move(entrega)));
}

ImpresoraDeImagenes::~ImpresoraDeImagenes() { TerminaAlDestruir(); }

void ImpresoraDeImagenes::CambiaHoja(const QPageSize& hoja, QPageLayout::Orientation orientacion) {
    hoja_.setPageSize(hoja);
    hoja_.setOrientation(orientacion);
}

// The whole sheet as it lies, from its size in twips so that a sheet
// defined in millimetres is not first rounded to whole points.
QSize ImpresoraDeImagenes::AreaDibujable() const {
    auto lado = [&](int32_t twips) {
        return static_cast<int>(std::lround(std::clamp(twips * ppp_ / kTwipsPorPulgada, 1.0, kLadoMaximo)));
    };
    return {lado(Width()), lado(Height())};
}

void ImpresoraDeImagenes::ComienzaPagina() {
    const QSize area = AreaDibujable();
    if (static_cast<double>(area.width()) * area.height() > kPixelesMaximos) Lanza(err::kErrorDeImpresora);
    QImage pagina(area, QImage::Format_RGB32);
    if (pagina.isNull()) Lanza(err::kErrorDeImpresora);  // more than memory allows
    // The image's own resolution is the one QPainter sizes fonts with.
    const int puntosPorMetro = static_cast<int>(std::lround(ppp_ / 0.0254));
    pagina.setDotsPerMeterX(puntosPorMetro);
    pagina.setDotsPerMeterY(puntosPorMetro);
    pagina.fill(Qt::white);
    enCurso_ = std::move(pagina);
    if (!pintor().begin(&enCurso_)) Lanza(err::kErrorDeImpresora);
}

QImage ImpresoraDeImagenes::TerminaPagina() {
    if (pintor().isActive()) pintor().end();
    return std::exchange(enCurso_, QImage());
}

void ImpresoraDeImagenes::IniciaTrabajo() { ComienzaPagina(); }

// The finished page goes out before the next one is made, so no more than
// one lives here at a time; the next is made even if the receiver fails.
void ImpresoraDeImagenes::PasaPagina() {
    const QImage hecha = TerminaPagina();
    try {
        if (entrega_) entrega_(hecha, Page());
    } catch (...) {
        ComienzaPagina();
        throw;
    }
    ComienzaPagina();
}

void ImpresoraDeImagenes::CierraTrabajo(bool entrega, int32_t paginas) {
    const QImage hecha = TerminaPagina();
    if (entrega && entrega_) entrega_(hecha, paginas);
}

}  // namespace kalo

#include "target/impresora_comun.h"
#include "runtime/unidades.h"

#include <atomic>
#include <cmath>
#include <utility>
#include <vector>

#include "automation/interfaz.h"
#include "runtime/aplicacion.h"
#include "target/miembros_lienzo.h"

namespace kalo {

using namespace Qt::StringLiterals;
using T = TipoDato;

namespace {

constexpr int16_t kHimetrico = 8;
constexpr int16_t kCodigoDeUsuario = 256;  // the platform's code of a user-defined sheet

// Device contexts are only told apart, never dereferenced: any non-zero
// number unique in the process will do.
int32_t NuevoHdc() {
    static std::atomic<int32_t> serie{0};
    return 0x4B490000 + (++serie & 0xFFFF);
}

// Qt's painting and the deflate that compresses each page run legacy SSE code,
// which pays on every instruction while the upper halves of the AVX registers
// are in use; a host (or Qt's own hash of a short string) can leave them so.
// Clearing them before painting costs one instruction.
void LimpiaRegistrosVectoriales() {
#if defined(__x86_64__)
    static const bool avx = __builtin_cpu_supports("avx");
    if (avx) asm volatile("vzeroupper");
#endif
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

bool EsApaisada(const QPageLayout& hoja) { return hoja.orientation() == QPageLayout::Landscape; }

}  // namespace

ImpresoraComun::ImpresoraComun(QString nombre) : nombre_(std::move(nombre)) { AseguraAplicacion(); }

ImpresoraComun::~ImpresoraComun() = default;

void ImpresoraComun::PreparaLienzo() {
    const double ppp = Resolucion();
    // Suppressed output asks for no painter, so nothing opens and nothing is drawn.
    lienzo_ = std::make_unique<Lienzo>(AreaDibujable(), ppp, ppp,
                                       [this] { return suprime_ ? nullptr : AbreTrabajo(); });
}

void ImpresoraComun::TerminaAlDestruir() noexcept {
    try {
        TerminaTrabajo(true);
    } catch (...) {
        // Nowhere left to report it.
    }
    // The device goes before this base does: a painter still on it must stop now.
    if (pintor_.isActive()) pintor_.end();
}

// ---- Job lifecycle -------------------------------------------------------------

QPainter* ImpresoraComun::AbreTrabajo() {
    LimpiaRegistrosVectoriales();
    if (!TrabajoAbierto()) {
        IniciaTrabajo();
        hdc_ = NuevoHdc();
        pagina_ = 1;
    }
    return &pintor_;
}

void ImpresoraComun::TerminaTrabajo(bool entrega) {
    lienzo_->CurrentX(lienzo_->ScaleLeft());
    lienzo_->CurrentY(lienzo_->ScaleTop());
    if (!TrabajoAbierto()) return;
    // Closed before it goes out, so a failure to send leaves no job behind.
    hdc_ = 0;
    LimpiaRegistrosVectoriales();
    CierraTrabajo(entrega, std::exchange(pagina_, 0));
}

void ImpresoraComun::Print(const QString& texto, bool saltoDeLinea) {
    if (!suprime_) AbreTrabajo();
    lienzo_->Print(texto, saltoDeLinea);
}

void ImpresoraComun::NewPage() {
    if (!suprime_) {
        AbreTrabajo();
        PasaPagina();
        ++pagina_;
    }
    lienzo_->CurrentX(lienzo_->ScaleLeft());
    lienzo_->CurrentY(lienzo_->ScaleTop());
}

void ImpresoraComun::EndDoc() {
    if (!suprime_) TerminaTrabajo(true);
}

void ImpresoraComun::KillDoc() {
    if (!suprime_) TerminaTrabajo(false);
}

// ---- Sheet -----------------------------------------------------------------------

void ImpresoraComun::Copies(int16_t copias) {
    if (copias < 1) Lanza(err::kValorDePropiedadNoValido);
    copias_ = copias;
}

int16_t ImpresoraComun::PaperSize() const {
    const QPageSize hoja = Hoja().pageSize();
    const int codigo = hoja.id() == QPageSize::Custom ? 0 : hoja.windowsId();
    return static_cast<int16_t>(codigo > 0 && codigo < kCodigoDeUsuario ? codigo : kCodigoDeUsuario);
}

void ImpresoraComun::PaperSize(int16_t codigo) {
    // A user-defined sheet is set through Width and Height; the code alone
    // leaves the sheet as it is.
    if (codigo == kCodigoDeUsuario) return;
    const QPageSize::PageSizeId id = QPageSize::id(static_cast<int>(codigo));
    if (codigo <= 0 || id == QPageSize::Custom) Lanza(err::kValorDePropiedadNoValido);
    AplicaHoja(QPageSize(id), Hoja().orientation());
}

int16_t ImpresoraComun::Orientation() const { return EsApaisada(Hoja()) ? 2 : 1; }

void ImpresoraComun::Orientation(int16_t orientacion) {
    if (orientacion != 1 && orientacion != 2) Lanza(err::kValorDePropiedadNoValido);
    AplicaHoja(Hoja().pageSize(), orientacion == 2 ? QPageLayout::Landscape : QPageLayout::Portrait);
}

int32_t ImpresoraComun::Width() const { return Lado(true); }
int32_t ImpresoraComun::Height() const { return Lado(false); }
void ImpresoraComun::Width(int32_t twips) { Lado(true, twips); }
void ImpresoraComun::Height(int32_t twips) { Lado(false, twips); }

// A side of the sheet as it lies: in landscape the definition's width is the height.
int32_t ImpresoraComun::Lado(bool ancho) const {
    const QPageLayout hoja = Hoja();
    const QSizeF t = DefinicionEnTwips(hoja.pageSize());
    return static_cast<int32_t>(std::lround(ancho != EsApaisada(hoja) ? t.width() : t.height()));
}

void ImpresoraComun::Lado(bool ancho, int32_t twips) {
    if (twips <= 0) Lanza(err::kValorDePropiedadNoValido);
    const QPageLayout hoja = Hoja();
    QSizeF t = DefinicionEnTwips(hoja.pageSize());
    (ancho != EsApaisada(hoja) ? t.rwidth() : t.rheight()) = twips;
    AplicaHoja(QPageSize(t / kTwipsPorPulgada, QPageSize::Inch), hoja.orientation());
}

void ImpresoraComun::AplicaHoja(const QPageSize& hoja, QPageLayout::Orientation orientacion) {
    if (!hoja.isValid()) Lanza(err::kValorDePropiedadNoValido);
    CambiaHoja(hoja, orientacion);
    const double ppp = Resolucion();
    lienzo_->CambiaDispositivo(AreaDibujable(), ppp, ppp);
}

void ImpresoraComun::ModoDeFondo(int16_t modo) {
    if (modo != 1 && modo != 2) Lanza(err::kValorDePropiedadNoValido);
    lienzo_->FontTransparent(modo == 1);
}

// ---- Unit conversion -------------------------------------------------------------

double ImpresoraComun::TwipsPorUnidad(int16_t modo, bool horizontal) const {
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

double ImpresoraComun::ScaleX(double valor, int16_t de, int16_t a) const {
    return valor * TwipsPorUnidad(de, true) / TwipsPorUnidad(a, true);
}

double ImpresoraComun::ScaleY(double valor, int16_t de, int16_t a) const {
    return valor * TwipsPorUnidad(de, false) / TwipsPorUnidad(a, false);
}

// ---- Automation ------------------------------------------------------------------

namespace {

using I = ImpresoraComun;
using namespace miembros_lienzo;

std::vector<Miembro<I>> MiembrosDeImpresora() {
    std::vector<Miembro<I>> m;
    Agrega(m);
    m.push_back(Prop<I>(u"Width", 20, T::Largo, [](I& i) { return Variant(i.Width()); },
                        [](I& i, const Variant& v) { i.Width(v.largo()); }));
    m.push_back(Prop<I>(u"Height", 21, T::Largo, [](I& i) { return Variant(i.Height()); },
                        [](I& i, const Variant& v) { i.Height(v.largo()); }));
    m.push_back(Prop<I>(u"DeviceName", 60, T::Texto, [](I& i) { return Variant(i.DeviceName()); }, nullptr));
    m.push_back(Prop<I>(u"Copies", 61, T::Entero, [](I& i) { return Variant(i.Copies()); },
                        [](I& i, const Variant& v) { i.Copies(v.entero()); }));
    m.push_back(Prop<I>(u"PaperSize", 62, T::Entero, [](I& i) { return Variant(i.PaperSize()); },
                        [](I& i, const Variant& v) { i.PaperSize(v.entero()); }));
    m.push_back(Prop<I>(u"Orientation", 63, T::Entero, [](I& i) { return Variant(i.Orientation()); },
                        [](I& i, const Variant& v) { i.Orientation(v.entero()); }));
    m.push_back(Prop<I>(u"ModoDeFondo", 64, T::Entero, [](I& i) { return Variant(i.ModoDeFondo()); },
                        [](I& i, const Variant& v) { i.ModoDeFondo(v.entero()); }));
    m.push_back(Prop<I>(u"hDC", 65, T::Largo, [](I& i) { return Variant(i.hDC()); }, nullptr));
    m.push_back(Prop<I>(u"Page", 66, T::Largo, [](I& i) { return Variant(i.Page()); }, nullptr));
    m.push_back(Prop<I>(u"ArchivoDeSalida", 67, T::Texto, [](I& i) { return Variant(i.ArchivoDeSalida()); },
                        nullptr));
    m.push_back(Prop<I>(u"Suprime", 68, T::Booleano, [](I& i) { return Variant(i.Suprime()); },
                        [](I& i, const Variant& v) { i.Suprime(v.booleano()); }));

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

const TablaDeMiembros& ImpresoraComun::Tabla() { return InterfazImpresora(); }

}  // namespace kalo

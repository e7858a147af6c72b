// Paper size, orientation and the printer's form: recorded first, then
// carried out on the current printer. Failures after recording are swallowed.

#include "core/privado.h"
#include "runtime/unidades.h"
#include "runtime/ignora.h"
#include "kaloimpresora/impresoras.h"
#include "paper/impresion_nt.h"
#include "paper/plataforma.h"
#include "paper/seleccion.h"
#include "runtime/recorta.h"

namespace kalo {

using namespace Qt::StringLiterals;

namespace {

constexpr int16_t kVertical = 1;
constexpr int16_t kApaisada = 2;

}  // namespace

void Impresora::Portrait() {
    Ignora([&] { RegistraComando(*this, u"Portrait"_s); });
    if (!Pantalla) impresion_nt::EstableceOrientacion(kVertical);
    // The page size and the grid stay as LandScape left them.
    PaperOrientation = kVertical;
    Horizontal = false;
}

void Impresora::LandScape() {
    if (FormaAncho() < FormaAlto()) {
        const double ancho = FormaAncho();
        FormaAncho(FormaAlto());
        FormaAlto(ancho);
    }
    nRow = 40;
    nCol = 130;
    Ignora([&] { RegistraComando(*this, u"LandScape"_s); });
    if (!Pantalla) impresion_nt::EstableceOrientacion(kApaisada);
    PaperOrientation = kApaisada;
    Horizontal = true;
}

void Impresora::PaperSize(int16_t nTipo, double nW, double nH, const QString& strestilo) {
    RegistraComando(*this, u"PaperSize "_s + TextoFn(Variant(nTipo)) + u',' + TextoFn(Variant(nW)) + u',' +
                    TextoFn(Variant(nH)));
    try {
        const auto impresora = ImpresoraActual();
        PapelTipo = CLng(impresora->Lee(u"PaperSize"_s));
        PapelAncho = CLng(impresora->Lee(u"Width"_s));
        PapelLargo = CLng(impresora->Lee(u"Height"_s));
        impresora->Lee(u"ScaleMode"_s);
        impresora->Asigna(u"ScaleMode"_s, escala::kPulgadas);
        // Deliberately shifted: nW rounded goes as the owner window, nH as the
        // width and 0 as the height, always with the default style. The form
        // step below is what leaves the intended sheet.
        impresion_nt::AjustaPapel(nTipo, CLng(Variant(nW)), nH, 0, QString::fromUtf16(kEstiloPredeterminado));
        const bool apaisada = impresora->Lee(u"Orientation"_s) == Variant(kApaisada);
        if (impresora->Lee(u"PaperSize"_s) == Variant(impresion_nt::kPapelDeUsuario)) {
            FormaAlto(apaisada ? nW : nH);
            FormaAncho(apaisada ? nH : nW);
        } else {
            FormaAlto(CDbl(impresora->Lee(u"ScaleHeight"_s)));
            FormaAncho(CDbl(impresora->Lee(u"ScaleWidth"_s)));
        }
        QString estilo = strestilo;
        EstiloImpresion(estilo);
        // Whole inches: 8.27 becomes 8.
        if (ObtenPlataforma() >= kPlataformaConFormas)
            impresion_nt::AplicaFormaNT(ControlhWndImpresora(), CLng(Variant(FormaAlto())),
                                        CLng(Variant(FormaAncho())), strestilo);
    } catch (...) {
        FormaAlto(nH);
        FormaAncho(nW);
    }
}

void Impresora::RestauraPapel() {
    RegistraComando(*this, u"RestauraPapel"_s);
    if (PapelTipo == impresion_nt::kPapelDeUsuario) {
        Ignora([&] { ImpresoraActual()->Asigna(u"Width"_s, CLng(Variant(PapelAncho))); });
        Ignora([&] { ImpresoraActual()->Asigna(u"Height"_s, CLng(Variant(PapelLargo))); });
    } else {
        // Before any PaperSize this is code 0, which the printer refuses.
        Ignora([&] { ImpresoraActual()->Asigna(u"PaperSize"_s, PapelTipo); });
    }
    if (ObtenPlataforma() == kPlataformaConFormas) {
        Ignora([&] { impresion_nt::AplicaFormaALaHoja(ControlhWndImpresora(), QString()); });
    }
}

void Impresora::EstableceEstiloImpresoraNT() {
    impresion_nt::AplicaFormaALaHoja(ControlhWndImpresora(), EstiloImpresion());
}

std::shared_ptr<Objeto> Impresora::CreaForma() { return nullptr; }

void Impresora::EstableceImpresora(const Variant& strimpresora) {
    if (Paginas == 0) Paginas = 1;
    const QString nombre = strimpresora.esNulo() ? QString() : Recorta(CStr(strimpresora));
    RegistraComando(*this, u"EstableceImpresora \""_s + nombre + u'"');
    if (strimpresora.esNulo()) return;
    Ignora([&] { SeleccionaImpresora(nombre); });
    if (ObtenPlataforma() == kPlataformaConFormas) Ignora([&] { EstableceEstiloImpresoraNT(); });
}

}  // namespace kalo

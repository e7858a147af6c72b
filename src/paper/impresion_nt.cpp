#include "paper/impresion_nt.h"

#include <QPageSize>
#include <QPrinterInfo>
#include <algorithm>
#include <optional>

#include "kaloimpresora/impresora.h"
#include "kaloimpresora/impresoras.h"
#include "paper/plataforma.h"
#include "runtime/aplicacion.h"
#include "runtime/ignora.h"
#include "runtime/unidades.h"
#include "target/impresora_sistema.h"

namespace kalo::impresion_nt {

using namespace Qt::StringLiterals;

namespace {

constexpr int16_t kMilimetros = 6;

// A size in the printer's current unit, in thousandths of a millimetre. The
// printer converts in single precision, and so does the product.
int32_t AMilesimas(Objeto& impresora, const QString& conversion, int32_t valor) {
    const Variant desde = Variant(CSng(Variant(valor)));
    const Variant modo = impresora.Lee(u"ScaleMode"_s);
    const float milimetros = CSng(impresora.Llama(conversion, {desde, modo, kMilimetros}));
    const float milesimas = milimetros * 1000.0f;
    return CLng(Variant(milesimas));
}

constexpr qsizetype kLargoDeNombreDeForma = 32;
constexpr double kMilesimasPorPulgada = 25400;
// The largest page a PDF page can be: the limit for a device that states none.
constexpr int32_t kHojaMayorPredeterminada = 200 * 25400;

// Whether the device takes a sheet that size, by the largest sheet the print
// system describes for the queue (none: a PDF page's limit).
bool CabeEnElDispositivo(const QString& cola, QSize forma) {
    QSizeF mayor(kHojaMayorPredeterminada, kHojaMayorPredeterminada);
    AseguraAplicacion();
    const QPrinterInfo info = cola.isEmpty() ? QPrinterInfo() : QPrinterInfo::printerInfo(cola);
    if (!info.isNull() && !info.supportedPageSizes().isEmpty()) {
        mayor = {};
        QList<QPageSize> hojas = info.supportedPageSizes();
        if (info.supportsCustomPageSizes()) hojas << info.maximumPhysicalPageSize();
        for (const QPageSize& h : hojas) mayor = mayor.expandedTo(h.size(QPageSize::Millimeter) * 1000);
    }
    return forma.width() <= mayor.width() && forma.height() <= mayor.height();
}

// The component's PDF and image printers: no print server behind them.
bool EsPropia(Objeto& impresora) {
    if (const auto* sistema = dynamic_cast<ImpresoraDelSistema*>(&impresora)) return sistema->EsPdf();
    return dynamic_cast<ImpresoraComun*>(&impresora) != nullptr;
}

// The form is a portrait sheet; the printer's Width and Height follow its
// orientation.
void PonHoja(Objeto& impresora, QSize forma) {
    const auto twips = [](int32_t milesimas) {
        return Variant(static_cast<int32_t>(RedondeaPar(milesimas * kTwipsPorPulgada / kMilesimasPorPulgada)));
    };
    const bool apaisada = impresora.Lee(u"Orientation"_s) == Variant(int16_t{2});
    impresora.Asigna(u"Width"_s, twips(apaisada ? forma.height() : forma.width()));
    impresora.Asigna(u"Height"_s, twips(apaisada ? forma.width() : forma.height()));
}

}  // namespace

void AjustaPapel(int16_t codigo, int32_t propietario, double ancho, double alto, const QString& estilo) {
    [[maybe_unused]] Variant modoAnterior;  // read as it always was, never used again
    Ignora([&] { modoAnterior = ImpresoraActual()->Lee(u"ScaleMode"_s); });
    Ignora([&] { ImpresoraActual()->Asigna(u"ScaleMode"_s, escala::kPulgadas); });
    if (codigo == kPapelDeUsuario) {
        // Twips per inch of the sheet as it is, times the inches asked for.
        const auto escala = [](const QString& lado, const QString& escalaDelLado, double pulgadas) {
            const auto impresora = ImpresoraActual();
            const double twips = CDbl(impresora->Lee(lado));
            const double unidades = CDbl(impresora->Lee(escalaDelLado));
            impresora->Asigna(lado, CLng(Variant(twips) / Variant(unidades) * Variant(pulgadas)));
        };
        Ignora([&] { escala(u"Width"_s, u"ScaleWidth"_s, ancho); });
        Ignora([&] { escala(u"Height"_s, u"ScaleHeight"_s, alto); });
    } else {
        Ignora([&] { ImpresoraActual()->Asigna(u"PaperSize"_s, codigo); });
    }
    if (ObtenPlataforma() == kPlataformaConFormas) {
        Ignora([&] { AplicaFormaALaHoja(propietario, estilo); });
    }
}

void EstableceOrientacion(int16_t orientacion) {
    Ignora([&] { ImpresoraActual()->Asigna(u"Orientation"_s, orientacion); });
}

void AplicaFormaNT(int32_t propietario, int32_t alto, int32_t ancho, const QString& estilo) {
    SeleccionaForma(QString::fromUtf16(kEstiloPredeterminado) + u'_' + estilo, propietario, alto, ancho);
}

void AplicaFormaALaHoja(int32_t propietario, const QString& estilo) {
    const auto impresora = ImpresoraActual();
    const int32_t alto = CLng(impresora->Lee(u"Height"_s));
    const int32_t ancho = CLng(impresora->Lee(u"Width"_s));
    AplicaFormaNT(propietario, alto, ancho, estilo);
}

int16_t SeleccionaForma(const QString& nombre, int32_t /*propietario*/, int32_t alto, int32_t ancho) {
    const auto impresora = ImpresoraActual();
    const QString dispositivo = CStr(impresora->Lee(u"DeviceName"_s));
    if (dispositivo.isEmpty()) return 0;
    std::optional<formas::Destinos> destinos;
    if (!EsPropia(*impresora)) destinos.emplace();
    const QString cola = formas::ColaDe(dispositivo);

    const int32_t cx = AMilesimas(*impresora, u"ScaleX"_s, ancho);
    const int32_t cy = AMilesimas(*impresora, u"ScaleY"_s, alto);
    const QString elegida = nombre.left(kLargoDeNombreDeForma);
    std::optional<QSize> forma;
    const bool enServidor = destinos && destinos->HayCola(cola);
    if (enServidor) {
        AgregaForma(*destinos, cola, cx, cy, nombre);
        // Redefined every time, even right after being added: an existing
        // form keeps whatever size it had otherwise.
        if (!destinos->Redefine(cola, nombre, cx, cy)) return 0;
        forma = destinos->Tamano(cola, elegida);
    } else {
        // Not a print-server destination: the sheet is taken directly.
        if (!formas::NombreValido(nombre)) return 0;
        if (elegida == nombre) forma = QSize(cx, cy);
    }
    // As a driver does, a sheet larger than the device takes leaves the one it has.
    if (forma && CabeEnElDispositivo(enServidor ? cola : QString(), *forma)) PonHoja(*impresora, *forma);
    return 2;
}

QString AgregaForma(formas::Destinos& destinos, const QString& cola, int32_t cx, int32_t cy, const QString& nombre) {
    // Usually "already exists"; the redefinition that follows settles it.
    return destinos.Agrega(cola, nombre, cx, cy) ? nombre : QString();
}

}  // namespace kalo::impresion_nt

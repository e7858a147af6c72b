#include "paper/impresion_nt.h"

#include "kaloimpresora/impresora.h"
#include "runtime/unidades.h"
#include "runtime/ignora.h"

#include <QtEndian>

#include "kaloimpresora/impresoras.h"
#include "paper/plataforma.h"

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

cola::Forma FormaDeUsuario(const QString& nombre, int32_t cx, int32_t cy) {
    cola::Forma f;
    f.nombre = nombre;
    f.cx = cx;
    f.cy = cy;
    f.derecha = cx;
    f.abajo = cy;
    return f;
}

// dmFormName: the name, a NUL and spaces; a name that fills the field is cut
// and carries no NUL.
QByteArray CampoDeNombre(const QString& nombre) {
    QByteArray campo = nombre.left(cola::kLargoDeNombreDeForma).toLatin1();
    if (campo.size() < cola::kLargoDeNombreDeForma) campo += '\0';
    return campo + QByteArray(cola::kLargoDeNombreDeForma - campo.size(), ' ');
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

int16_t SeleccionaForma(const QString& nombre, int32_t propietario, int32_t alto, int32_t ancho) {
    const auto impresora = ImpresoraActual();
    const QString dispositivo = CStr(impresora->Lee(u"DeviceName"_s));
    const int32_t hdc = CLng(impresora->Lee(u"hDC"_s));
    const cola::Manejador manejador = cola::AbreImpresora(dispositivo);
    if (manejador == 0) return 0;

    const int32_t tamano =
        cola::PropiedadesDelDocumento(propietario, manejador, dispositivo, nullptr, nullptr, cola::kSoloTamano);
    if (tamano <= 0) Lanza(err::kSubindiceFueraDeIntervalo);
    QByteArray ajustes(tamano, '\0');
    cola::PropiedadesDelDocumento(propietario, manejador, dispositivo, &ajustes, nullptr, cola::kBufferDeSalida);
    // Only the public part is ours to change; the driver's tail goes back as it came.
    QByteArray publica = ajustes.left(cola::kTamanoPublico);
    publica.resize(cola::kTamanoPublico, '\0');

    const int32_t cx = AMilesimas(*impresora, u"ScaleX"_s, ancho);
    const int32_t cy = AMilesimas(*impresora, u"ScaleY"_s, alto);
    AgregaForma(manejador, cx, cy, nombre);
    // Redefined every time, even right after being added: an existing form
    // keeps whatever size it had otherwise.
    if (!cola::RedefineForma(manejador, nombre, FormaDeUsuario(nombre, cx, cy))) {
        cola::CierraImpresora(manejador);
        return 0;
    }

    publica.replace(cola::kPosicionDeNombreDeForma, cola::kLargoDeNombreDeForma, CampoDeNombre(nombre));
    qToLittleEndian(cola::kCampoNombreDeForma, publica.data() + cola::kPosicionDeCampos);
    ajustes.replace(0, cola::kTamanoPublico, publica);
    cola::PropiedadesDelDocumento(propietario, manejador, dispositivo, &ajustes, &ajustes,
                                  cola::kBufferDeEntrada | cola::kBufferDeSalida);
    cola::ReiniciaContexto(hdc, ajustes);
    cola::CierraImpresora(manejador);
    return 2;
}

QString AgregaForma(cola::Manejador impresora, int32_t cx, int32_t cy, const QString& nombre) {
    if (!cola::AgregaForma(impresora, FormaDeUsuario(nombre, cx, cy))) {
        // Usually "already exists"; the redefinition that follows settles it.
        (void)cola::UltimoError();
        return {};
    }
    return nombre;
}

}  // namespace kalo::impresion_nt

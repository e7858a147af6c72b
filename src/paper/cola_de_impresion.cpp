#include "paper/cola_de_impresion.h"
#include "runtime/unidades.h"

#include <QPageSize>
#include <QPrinterInfo>
#include <QtEndian>
#include <algorithm>
#include <map>
#include <mutex>
#include <optional>

#include "kaloimpresora/automatizacion.h"
#include "kaloimpresora/impresoras.h"
#include "runtime/aplicacion.h"

namespace kalo::cola {

using namespace Qt::StringLiterals;

namespace {

// Marks the driver's tail, which carries the whole device name: dmDeviceName
// only holds 31 characters.
constexpr char kFirma[] = "KALO";
constexpr qsizetype kLargoDeFirma = 4;
constexpr qsizetype kLargoDeNombreDeDispositivo = 32;  // dmDeviceName
constexpr qsizetype kPosicionDeTamano = 36;             // dmSize
constexpr qsizetype kPosicionDeExtra = 38;              // dmDriverExtra
constexpr uint16_t kVersionDeAjustes = 0x0320;
constexpr double kMilesimasPorPulgada = 25400;
// The largest page a PDF page can be: the limit for a device that states none.
constexpr int32_t kHojaMayorPredeterminada = 200 * 25400;

struct Dispositivo {
    std::vector<Forma> formas;
    QString formaDelControlador;  // the form its settings name
    Seleccion ultima;
};

struct Estado {
    std::mutex cerrojo;
    std::map<QString, Dispositivo> dispositivos;
    std::map<Manejador, QString> abiertas;
    Manejador serie = 0;
};

// Never destroyed: a printer may still be reset while the process ends.
Estado& Global() {
    static auto* estado = new Estado;
    return *estado;
}

thread_local int32_t ultimoError = 0;

template <class R>
R Falla(int32_t codigo, R resultado) {
    ultimoError = codigo;
    return resultado;
}

void Escribe16(QByteArray& b, qsizetype posicion, uint16_t valor) {
    qToLittleEndian(valor, b.data() + posicion);
}
void Escribe32(QByteArray& b, qsizetype posicion, uint32_t valor) {
    qToLittleEndian(valor, b.data() + posicion);
}
uint16_t Lee16(const QByteArray& b, qsizetype posicion) { return qFromLittleEndian<uint16_t>(b.constData() + posicion); }
uint32_t Lee32(const QByteArray& b, qsizetype posicion) { return qFromLittleEndian<uint32_t>(b.constData() + posicion); }

// A fixed-size text field of the settings: NUL-terminated, cut to fit.
void EscribeCampoDeTexto(QByteArray& b, qsizetype posicion, qsizetype largo, const QString& texto) {
    const QByteArray bytes = texto.toLatin1().left(largo - 1);
    b.replace(posicion, largo, bytes + QByteArray(largo - bytes.size(), '\0'));
}

QByteArray AjustesDelControlador(const QString& dispositivo, const QString& forma) {
    const QByteArray extra = QByteArray(kFirma, kLargoDeFirma) + dispositivo.toUtf8();
    QByteArray b(kTamanoPublico, '\0');
    EscribeCampoDeTexto(b, 0, kLargoDeNombreDeDispositivo, dispositivo);
    Escribe16(b, kLargoDeNombreDeDispositivo, kVersionDeAjustes);
    Escribe16(b, kPosicionDeTamano, static_cast<uint16_t>(kTamanoPublico));
    Escribe16(b, kPosicionDeExtra, static_cast<uint16_t>(extra.size()));
    Escribe32(b, kPosicionDeCampos, kCampoNombreDeForma);
    EscribeCampoDeTexto(b, kPosicionDeNombreDeForma, kLargoDeNombreDeForma, forma);
    return b + extra;
}

// The device whose driver produced the settings; none for a buffer that did
// not come from a driver of this print system.
std::optional<QString> DispositivoDeAjustes(const QByteArray& b) {
    if (b.size() < kTamanoPublico) return std::nullopt;
    const qsizetype publico = Lee16(b, kPosicionDeTamano);
    const qsizetype extra = Lee16(b, kPosicionDeExtra);
    if (publico < kTamanoPublico || extra < kLargoDeFirma || b.size() < publico + extra) return std::nullopt;
    const QByteArray cola = b.mid(publico, extra);
    if (!cola.startsWith(QByteArray(kFirma, kLargoDeFirma))) return std::nullopt;
    return QString::fromUtf8(cola.mid(kLargoDeFirma));
}

std::vector<Forma>::iterator Busca(std::vector<Forma>& formas, const QString& nombre) {
    return std::find_if(formas.begin(), formas.end(),
                        [&](const Forma& f) { return f.nombre.compare(nombre, Qt::CaseInsensitive) == 0; });
}

bool FormaValida(const Forma& f) { return !f.nombre.isEmpty() && f.cx > 0 && f.cy > 0; }

bool Conocida(const QString& dispositivo) {
    try {
        if (CStr(ImpresoraActual()->Lee(u"DeviceName"_s)) == dispositivo) return true;
    } catch (...) {
        // A printer object without a name names nothing.
    }
    try {
        const auto impresoras = ColeccionDeImpresoras();
        const int32_t n = CLng(impresoras->Lee(u"Count"_s));
        for (int32_t i = 0; i < n; ++i) {
            const auto impresora = impresoras->Llama(u"Item"_s, {i}).objeto();
            if (impresora && CStr(impresora->Lee(u"DeviceName"_s)) == dispositivo) return true;
        }
    } catch (...) {
    }
    return false;
}

// The largest sheet the device takes, as the print system describes it.
bool CabeEnElDispositivo(const QString& dispositivo, const Forma& forma) {
    double ancho = kHojaMayorPredeterminada, alto = kHojaMayorPredeterminada;
    AseguraAplicacion();
    const QPrinterInfo info = QPrinterInfo::printerInfo(dispositivo);
    if (!info.isNull()) {
        const QPageSize mayor = info.maximumPhysicalPageSize();
        if (mayor.isValid()) {
            const QSizeF mm = mayor.size(QPageSize::Millimeter);
            ancho = mm.width() * 1000;
            alto = mm.height() * 1000;
        }
    }
    return forma.cx <= ancho && forma.cy <= alto;
}

// The form is a portrait sheet; the printer's Width and Height follow its
// orientation.
void PonHoja(const Forma& forma) {
    const auto impresora = ImpresoraActual();
    const auto twips = [](int32_t milesimas) {
        return Variant(static_cast<int32_t>(RedondeaPar(milesimas * kTwipsPorPulgada / kMilesimasPorPulgada)));
    };
    const bool apaisada = impresora->Lee(u"Orientation"_s) == Variant(int16_t{2});
    impresora->Asigna(u"Width"_s, twips(apaisada ? forma.cy : forma.cx));
    impresora->Asigna(u"Height"_s, twips(apaisada ? forma.cx : forma.cy));
}

}  // namespace

Manejador AbreImpresora(const QString& dispositivo) {
    if (dispositivo.isEmpty() || !Conocida(dispositivo)) return Falla(error::kNombreDeImpresoraNoValido, Manejador{0});
    Estado& e = Global();
    std::lock_guard bloqueo(e.cerrojo);
    const Manejador h = ++e.serie;
    e.abiertas[h] = dispositivo;
    return h;
}

bool CierraImpresora(Manejador impresora) {
    Estado& e = Global();
    std::lock_guard bloqueo(e.cerrojo);
    if (e.abiertas.erase(impresora) == 0) return Falla(error::kManejadorNoValido, false);
    return true;
}

int32_t PropiedadesDelDocumento(int32_t /*propietario*/, Manejador impresora, const QString& /*dispositivo*/,
                                QByteArray* salida, const QByteArray* entrada, int32_t modo) {
    QByteArray ajustes;
    {
        Estado& e = Global();
        std::lock_guard bloqueo(e.cerrojo);
        const auto abierta = e.abiertas.find(impresora);
        if (abierta == e.abiertas.end()) return Falla(error::kManejadorNoValido, -1);
        ajustes = AjustesDelControlador(abierta->second, e.dispositivos[abierta->second].formaDelControlador);
    }
    if (modo == kSoloTamano) return static_cast<int32_t>(ajustes.size());
    if (!(modo & kBufferDeSalida) || !salida) return Falla(error::kParametroNoValido, -1);
    if (modo & kBufferDeEntrada) {
        if (!entrada || entrada->size() < kTamanoPublico) return Falla(error::kParametroNoValido, -1);
        // This driver knows one field; the rest stay its own.
        if (Lee32(*entrada, kPosicionDeCampos) & kCampoNombreDeForma)
            ajustes.replace(kPosicionDeNombreDeForma, kLargoDeNombreDeForma,
                            entrada->mid(kPosicionDeNombreDeForma, kLargoDeNombreDeForma));
    }
    *salida = ajustes;
    return 1;
}

namespace {

// The forms of the printer behind an open handle, for a valid form; on
// failure nullptr with the last error set. The caller holds the lock.
std::vector<Forma>* FormasParaDefinir(Estado& e, Manejador impresora, const Forma& forma) {
    const auto abierta = e.abiertas.find(impresora);
    if (abierta == e.abiertas.end()) return Falla(error::kManejadorNoValido, nullptr);
    if (!FormaValida(forma)) return Falla(error::kParametroNoValido, nullptr);
    return &e.dispositivos[abierta->second].formas;
}

}  // namespace

bool AgregaForma(Manejador impresora, const Forma& forma) {
    Estado& e = Global();
    std::lock_guard bloqueo(e.cerrojo);
    auto* formas = FormasParaDefinir(e, impresora, forma);
    if (!formas) return false;
    if (Busca(*formas, forma.nombre) != formas->end()) return Falla(error::kYaExiste, false);
    formas->push_back(forma);
    return true;
}

bool RedefineForma(Manejador impresora, const QString& nombre, const Forma& forma) {
    Estado& e = Global();
    std::lock_guard bloqueo(e.cerrojo);
    auto* formas = FormasParaDefinir(e, impresora, forma);
    if (!formas) return false;
    const auto it = Busca(*formas, nombre);
    if (it == formas->end()) return Falla(error::kNombreDeFormaNoValido, false);
    const QString conservado = it->nombre;
    *it = forma;
    it->nombre = conservado;
    return true;
}

bool ReiniciaContexto(int32_t hdc, const QByteArray& ajustes) {
    const auto dispositivo = DispositivoDeAjustes(ajustes);
    if (!dispositivo) return Falla(error::kParametroNoValido, false);
    if (!(Lee32(ajustes, kPosicionDeCampos) & kCampoNombreDeForma)) return true;

    // The field is read as a driver reads it: up to its NUL, or all of it.
    const QByteArray campo = ajustes.mid(kPosicionDeNombreDeForma, kLargoDeNombreDeForma);
    const qsizetype fin = campo.indexOf('\0');
    const QString nombre = QString::fromLatin1(fin < 0 ? campo : campo.left(fin));
    std::optional<Forma> forma;
    {
        Estado& e = Global();
        std::lock_guard bloqueo(e.cerrojo);
        Dispositivo& d = e.dispositivos[*dispositivo];
        d.ultima = Seleccion{campo, {}, hdc};
        if (const auto it = Busca(d.formas, nombre); it != d.formas.end()) forma = *it;
    }
    if (!forma) return Falla(error::kNombreDeFormaNoValido, false);
    if (!CabeEnElDispositivo(*dispositivo, *forma)) return Falla(error::kParametroNoValido, false);

    PonHoja(*forma);

    Estado& e = Global();
    std::lock_guard bloqueo(e.cerrojo);
    Dispositivo& d = e.dispositivos[*dispositivo];
    d.ultima.forma = forma->nombre;
    d.formaDelControlador = forma->nombre;
    return true;
}

int32_t UltimoError() { return ultimoError; }

std::vector<Forma> FormasDe(const QString& dispositivo) {
    Estado& e = Global();
    std::lock_guard bloqueo(e.cerrojo);
    const auto it = e.dispositivos.find(dispositivo);
    return it == e.dispositivos.end() ? std::vector<Forma>{} : it->second.formas;
}

Seleccion UltimaSeleccion(const QString& dispositivo) {
    Estado& e = Global();
    std::lock_guard bloqueo(e.cerrojo);
    const auto it = e.dispositivos.find(dispositivo);
    return it == e.dispositivos.end() ? Seleccion{} : it->second.ultima;
}

int32_t ImpresorasAbiertas() {
    Estado& e = Global();
    std::lock_guard bloqueo(e.cerrojo);
    return static_cast<int32_t>(e.abiertas.size());
}

}  // namespace kalo::cola

// Replay of spool files and command scripts.

#include "spool/reproduccion.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>
#include <climits>

#include "kaloimpresora/impresora.h"
#include "kaloimpresora/impresoras.h"
#include "kaloimpresora/mensajes.h"
#include "spool/conexion.h"
#include "spool/guion.h"
#include "target/modulo4.h"

namespace kalo {

using namespace Qt::StringLiterals;

namespace {

class FuenteDeReporte final : public FuenteDeGuion {
public:
    explicit FuenteDeReporte(const QString& archivo) : FuenteDeGuion(archivo), lector_(archivo) {}
    bool Siguiente(LineaDeGuion& linea) override {
        if (!lector_.Siguiente(renglon_)) return false;
        linea.renglon = renglon_.row;
        linea.texto = std::move(renglon_.source);
        linea.deReporte = true;
        linea.contenido = std::move(renglon_.contenido);
        linea.negrita = renglon_.bold;
        linea.cursiva = renglon_.italic;
        linea.rechazo = std::move(renglon_.rechazo);
        return true;
    }
    bool EsReporte() const override { return true; }
    int64_t Repetidos() const override { return lector_.Repetidos(); }
    int64_t FueraDeOrden() const override { return lector_.FueraDeOrden(); }

private:
    LectorDeReporte lector_;
    LectorDeReporte::Renglon renglon_;
};

// Line by line, so a long script is never held whole; nor is a long line:
// one above the command limit is skipped unread.
class FuenteDeTexto final : public FuenteDeGuion {
public:
    explicit FuenteDeTexto(const QString& archivo) : FuenteDeGuion(archivo), fichero_(archivo) {
        if (!fichero_.open(QIODevice::ReadOnly))
            throw ErrorDeAutomatizacion(err::kAccesoARutaOArchivo, u"No se puede leer el archivo "_s + archivo,
                                        u"Guion"_s);
    }
    bool Siguiente(LineaDeGuion& linea) override {
        for (;;) {
            if (fichero_.atEnd()) return false;
            // Into one buffer kept for the whole file: no line allocates its bytes.
            const qint64 leidos = fichero_.readLine(linea_.data(), linea_.size());
            QByteArrayView bytes(linea_.data(), std::max<qint64>(leidos, 0));
            ++numero_;
            const bool completa = bytes.endsWith('\n') || fichero_.atEnd();
            if (bytes.endsWith('\n')) bytes.chop(bytes.endsWith("\r\n") ? 2 : 1);
            if (!completa || bytes.size() > limite::kComando) {
                while (!completa && !fichero_.atEnd() && !fichero_.readLine(limite::kComando).endsWith('\n')) {
                }
                linea = {};
                linea.renglon = numero_;
                linea.rechazo = u"la línea tiene más de %1 KiB; se omite"_s.arg(limite::kComando / 1024);
                return true;
            }
            if (bytes.contains('\0')) NoEsGuion();
            QString texto = decodificador_(bytes);
            if (decodificador_.hasError()) NoEsGuion();
            if (numero_ == 1 && texto.startsWith(QChar(0xFEFF))) texto.remove(0, 1);
            if (QStringView(texto).trimmed().isEmpty()) continue;
            linea = {};
            linea.renglon = numero_;
            linea.texto = std::move(texto);
            return true;
        }
    }
    bool EsReporte() const override { return false; }

private:
    [[noreturn]] void NoEsGuion() const {
        throw ErrorDeAutomatizacion(err::kErrorDeBaseDeDatos,
                                    u"El archivo %1 no es un archivo de reporte ni un guion de texto (línea %2)"_s
                                        .arg(archivo_)
                                        .arg(numero_),
                                    u"Guion"_s);
    }

    QFile fichero_;
    // Up to kComando + 1 bytes of a line (readLine keeps one for its NUL):
    // the command, its CR LF, or one byte too many for an over-long line.
    QByteArray linea_{limite::kComando + 2, Qt::Uninitialized};
    QStringDecoder decodificador_{QStringDecoder::Utf8};
    int64_t numero_ = 0;
};

// A parsed command word is spelled as the allow-list spells it.
bool Es(const QString& palabra, QStringView otra) { return palabra == otra; }

// Documents and pages as the script opens them: a document per
// IniciaDocumento, a page per PaginaNueva inside it. Commands outside any
// document belong to none and draw nothing in the component either.
struct Paginacion {
    int documento = 0;
    int pagina = 0;
    bool dentro = false;

    // Before the command runs; true when it begins a page.
    bool Avanza(const QString& palabra) {
        if (Es(palabra, u"IniciaDocumento")) {
            documento += documento < INT_MAX;
            pagina = 1;
            dentro = true;
            return true;
        }
        if (dentro && Es(palabra, u"PaginaNueva")) {
            pagina += pagina < INT_MAX;
            return true;
        }
        return false;
    }
};

// Restores on leaving what a replay borrows from the thread.
struct Prestamo {
    modulo4::EstadoDelDocumento documento = modulo4::Estado();
    ~Prestamo() {
        EstableceImpresoraActual(nullptr);
        EstablecePresentadorDeMensajes({});
        modulo4::Estado() = documento;
    }
};

}  // namespace

std::unique_ptr<FuenteDeGuion> AbreGuion(const QString& archivo) {
    QFile f(archivo);
    if (!QFileInfo(archivo).isFile())
        throw ErrorDeAutomatizacion(err::kArchivoNoEncontrado, u"No se encuentra el archivo "_s + archivo,
                                    u"Guion"_s);
    if (!f.open(QIODevice::ReadOnly))
        throw ErrorDeAutomatizacion(err::kAccesoARutaOArchivo, u"No se puede leer el archivo "_s + archivo, u"Guion"_s);
    static const QByteArray kFirma("SQLite format 3\0", 16);
    const bool esBaseDeDatos = f.read(16) == kFirma;
    f.close();
    if (esBaseDeDatos) return std::make_unique<FuenteDeReporte>(archivo);
    return std::make_unique<FuenteDeTexto>(archivo);
}

bool SeleccionDePaginas::Incluye(int doc, int pagina) const {
    if (documento && doc != *documento) return false;
    if (rangos.empty()) return true;
    for (const auto& [desde, hasta] : rangos)
        if (pagina >= desde && pagina <= hasta) return true;
    return false;
}

bool SeleccionDePaginas::Rebasada(int doc, int pagina) const {
    if (!documento) return false;
    if (doc > *documento) return true;
    if (doc < *documento || rangos.empty()) return false;
    for (const auto& r : rangos)
        if (r.second >= pagina) return false;
    return true;
}

std::optional<std::vector<std::pair<int, int>>> LeeRangosDePaginas(const QString& texto) {
    std::vector<std::pair<int, int>> rangos;
    auto numero = [](QStringView t) -> std::optional<int> {
        bool ok = false;
        const int n = t.trimmed().toInt(&ok);
        return ok && n >= 1 ? std::optional<int>(n) : std::nullopt;
    };
    for (const QString& parte : texto.split(u',')) {
        const qsizetype guion = parte.indexOf(u'-');
        if (guion < 0) {
            const auto n = numero(parte);
            if (!n) return std::nullopt;
            rangos.emplace_back(*n, *n);
            continue;
        }
        const auto desde = numero(QStringView(parte).left(guion));
        const QStringView resto = QStringView(parte).mid(guion + 1);
        const auto hasta = resto.trimmed().isEmpty() ? std::optional<int>(INT_MAX) : numero(resto);
        if (!desde || !hasta || *hasta < *desde) return std::nullopt;
        rangos.emplace_back(*desde, *hasta);
    }
    return rangos;
}

ResultadoDeReproduccion Reproduce(FuenteDeGuion& fuente, const std::shared_ptr<Objeto>& impresora,
                                  const OpcionesDeReproduccion& opciones) {
    ResultadoDeReproduccion resultado;
    Paginacion pag;
    LineaDeGuion linea;
    auto incide = [&](Incidencia::Tipo tipo, const QString& mensaje) {
        if (opciones.alIncidir) opciones.alIncidir({tipo, pag.documento, pag.pagina, linea.renglon, mensaje});
    };

    const Prestamo prestamo;
    modulo4::Estado() = {};
    EstableceImpresoraActual(impresora);
    // A script must never stop on a message box: the message becomes a notice.
    EstablecePresentadorDeMensajes([&](const QString& texto, int32_t, const QString&) {
        incide(Incidencia::Tipo::Aviso, texto);
        return respuesta::kAceptar;
    });

    Impresora imp;  // Pantalla and Archivo off: to the printer, recording nothing
    Objeto& destino = *impresora;
    // Only the replay sets Suprime: it is told only when it changes.
    std::optional<bool> suprimido;
    auto suprime = [&](bool si) {
        if (suprimido == si) return;
        destino.Asigna(u"Suprime"_s, si);
        suprimido = si;
    };
    auto aborta = [&] {
        resultado.abortada = true;
        suprime(false);
        destino.Llama(u"KillDoc"_s);
        return resultado;
    };
    suprime(true);

    while (fuente.Siguiente(linea)) {
        QString error = linea.rechazo;
        std::optional<Comando> c = error.isEmpty() ? LeeComando(linea.texto, &error) : std::nullopt;
        if (!c) {
            ++resultado.malFormadas;
            incide(Incidencia::Tipo::MalFormada, error);
            if (opciones.estricto) return aborta();
            continue;
        }
        const bool empiezaPagina = pag.Avanza(c->palabra);
        if (opciones.seleccion.Rebasada(pag.documento, pag.pagina)) break;
        ++resultado.comandos;

        // What the spool file keeps beside the text is truer than the text.
        if (Es(c->palabra, u"EstableceImpresora")) continue;
        if (linea.deReporte) {
            if (Es(c->palabra, u"FuenteTransparente")) continue;
            if (Es(c->palabra, u"FontBold")) c->argumentos[0] = Variant(linea.negrita);
            if (Es(c->palabra, u"FontItalic")) c->argumentos[0] = Variant(linea.cursiva);
            if (Es(c->palabra, u"Say")) c->argumentos[2] = Variant(linea.contenido);
        }

        const bool seleccionada = pag.dentro && opciones.seleccion.Incluye(pag.documento, pag.pagina);
        try {
            if (empiezaPagina && seleccionada) {
                // The page boundary is the replay's, so that a page alone
                // neither drags the pages before it nor starts on a blank one.
                if (resultado.paginasEmitidas > 0) {
                    suprime(false);
                    destino.Llama(u"NewPage"_s);
                }
                suprime(true);
                EjecutaComando(imp, *c);
                suprime(false);
                if (resultado.paginasEmitidas == 0) destino.Llama(u"Print"_s, {u""_s, true});
                ++resultado.paginasEmitidas;
                if (opciones.alEmitirPagina) opciones.alEmitirPagina(pag.documento, pag.pagina);
            } else {
                suprime(!seleccionada || Es(c->palabra, u"FinDocumento"));
                EjecutaComando(imp, *c);
            }
        } catch (const ErrorDeAutomatizacion& e) {
            ++resultado.errores;
            incide(Incidencia::Tipo::Error, u"%1: error %2: %3"_s.arg(c->palabra).arg(e.numero()).arg(e.descripcion()));
            if (opciones.estricto) return aborta();
        }
        if (Es(c->palabra, u"FinDocumento")) pag.dentro = false;
    }

    suprime(false);
    if (resultado.paginasEmitidas > 0) destino.Llama(u"EndDoc"_s);
    return resultado;
}

ResumenDeGuion Resume(FuenteDeGuion& fuente) {
    ResumenDeGuion resumen;
    Paginacion pag;
    LineaDeGuion linea;
    while (fuente.Siguiente(linea)) {
        QString error = linea.rechazo;
        const std::optional<Comando> c = error.isEmpty() ? LeeComando(linea.texto, &error) : std::nullopt;
        if (!c) {
            if (++resumen.totalMalFormadas <= limite::kMensajes)
                resumen.malFormadas.push_back(
                    {Incidencia::Tipo::MalFormada, pag.documento, pag.pagina, linea.renglon, error});
            continue;
        }
        if (pag.Avanza(c->palabra)) {
            if (pag.pagina == 1)
                resumen.paginasPorDocumento.push_back(1);
            else
                resumen.paginasPorDocumento.back() = pag.pagina;
        }
        ++resumen.comandos;
        ++resumen.porComando[c->palabra];
        if (Es(c->palabra, u"EstableceFuente")) {
            std::pair<QString, double> nombreYTamano{c->argumentos[0].texto(), c->argumentos[1].doble()};
            if (resumen.fuentes.size() < limite::kMensajes)
                resumen.fuentes.insert(std::move(nombreYTamano));
            else
                resumen.masFuentes |= !resumen.fuentes.contains(nombreYTamano);
        }
        if (Es(c->palabra, u"FinDocumento")) pag.dentro = false;
    }
    resumen.repetidos = fuente.Repetidos();
    resumen.fueraDeOrden = fuente.FueraDeOrden();
    return resumen;
}

}  // namespace kalo

#pragma once

// Replay of a recorded document: the rows of a spool file (or the lines of a
// text file in the same command language) run again, in order, on a fresh
// Impresora whose printer is the one given. Pages left out of the selection
// are still run, with the printer's output suppressed, so a page printed
// alone keeps the font, colour and position that earlier pages left.

#include <QString>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "kaloimpresora/automatizacion.h"

namespace kalo {

namespace limite {
// Messages about bad rows kept or shown; past these they are only counted.
inline constexpr int kMensajes = 100;
}  // namespace limite

struct LineaDeGuion {
    int64_t renglon = 0;  // the spool file's row, or the text file's line number
    QString texto;
    // Only from a spool file: the columns recorded beside the command text.
    bool deReporte = false;
    QString contenido;
    bool negrita = false;
    bool cursiva = false;
    // Not empty for a row or line left unread (longer than a command): why.
    QString rechazo;
};

class FuenteDeGuion {
public:
    virtual ~FuenteDeGuion() = default;
    // False at the end. A file damaged mid-way raises ErrorDeAutomatizacion.
    virtual bool Siguiente(LineaDeGuion& linea) = 0;
    virtual bool EsReporte() const = 0;
    // A spool file's rows whose number repeats another's, or is lower than
    // that of a row recorded before it; they are read in number order.
    virtual int64_t Repetidos() const { return 0; }
    virtual int64_t FueraDeOrden() const { return 0; }
    const QString& Archivo() const { return archivo_; }

protected:
    explicit FuenteDeGuion(QString archivo) : archivo_(std::move(archivo)) {}
    QString archivo_;
};

// A spool file (told by its content, not its name) or a UTF-8 text file with
// one command per line. Raises 53 when missing, err::kErrorDeBaseDeDatos when it is
// neither (a database without the source table, a binary file) or when the
// spool file is damaged or holds anything but the recorder's tables.
std::unique_ptr<FuenteDeGuion> AbreGuion(const QString& archivo);

// Which pages come out: of every document, or of one (counted from 1), and
// page ranges within it ("2-5", "1,3,7-", empty for all).
struct SeleccionDePaginas {
    std::optional<int> documento;
    std::vector<std::pair<int, int>> rangos;  // inclusive; INT32_MAX for an open end

    bool Incluye(int documento, int pagina) const;
    // Nothing after this (document, page) can be selected.
    bool Rebasada(int documento, int pagina) const;
};
// Parses "2-5,7,9-"; nullopt for anything else.
std::optional<std::vector<std::pair<int, int>>> LeeRangosDePaginas(const QString& texto);

struct Incidencia {
    enum class Tipo { MalFormada, Error, Aviso };
    Tipo tipo = Tipo::Error;
    int documento = 0;  // 0: before the first document
    int pagina = 0;
    int64_t renglon = 0;
    QString mensaje;
};

struct OpcionesDeReproduccion {
    SeleccionDePaginas seleccion;
    // Stops at the first malformed line or failing command, the output discarded.
    bool estricto = false;
    std::function<void(const Incidencia&)> alIncidir;
    // A selected page begins in the output: its document and page in the file.
    std::function<void(int documento, int pagina)> alEmitirPagina;
};

struct ResultadoDeReproduccion {
    int paginasEmitidas = 0;
    int64_t comandos = 0;
    int64_t malFormadas = 0;
    int64_t errores = 0;
    bool abortada = false;  // strict mode stopped it; nothing was delivered
};

// Runs the script on a new Impresora printing to `impresora` (an object with
// the printer's members, Suprime among them), which is made the current
// printer meanwhile and left as the default afterwards. Every selected page
// goes into one job, ended at the end (several documents included). Only the
// recorder's own commands run; EstableceImpresora is read and ignored (the
// destination is the caller's), and from a spool file FuenteTransparente too,
// since the recorder writes it as False whatever the document did.
ResultadoDeReproduccion Reproduce(FuenteDeGuion& fuente, const std::shared_ptr<Objeto>& impresora,
                                  const OpcionesDeReproduccion& opciones);

struct ResumenDeGuion {
    std::vector<int> paginasPorDocumento;
    int64_t comandos = 0;
    std::map<QString, int64_t> porComando;
    std::set<std::pair<QString, double>> fuentes;  // name, size: the first limite::kMensajes
    bool masFuentes = false;                       // and there were others
    std::vector<Incidencia> malFormadas;           // the first limite::kMensajes
    int64_t totalMalFormadas = 0;
    int64_t repetidos = 0;  // as FuenteDeGuion counts them
    int64_t fueraDeOrden = 0;
};

// One pass over the script, nothing drawn; memory does not grow with it.
ResumenDeGuion Resume(FuenteDeGuion& fuente);

}  // namespace kalo

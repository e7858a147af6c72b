#pragma once

// Reading a spool file that may come from anywhere (by mail, from another
// machine, made by hand). The file is opened through a file layer that can
// neither write, create nor delete, its schema is checked before any query of
// ours runs, SQLite's defences are on, every step of a query has a bounded
// amount of work, and no value longer than a command is ever loaded.

#include <QString>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace kalo {

namespace limite {
// Bytes of UTF-8 in one command: a script's line, a row's `source` (CR LF
// aside) or its `contenido`. Anything longer is refused like a malformed row.
inline constexpr int64_t kComando = 64 * 1024;
// Rows a spool file may hold when they are not in row order, so that they
// have to be sorted (16 bytes each in memory while the file is read).
inline constexpr int64_t kRenglonesAOrdenar = int64_t{1} << 22;
// Virtual-machine instructions one step of a query may run.
inline constexpr int kPasosDeConsulta = 1'000'000;
}  // namespace limite

// A database file opened for reading only, with SQLite's defences on. Every
// failure raises ErrorDeAutomatizacion: 53 when the file is missing,
// err::kErrorDeBaseDeDatos otherwise, naming the file and saying why in
// Spanish ("está dañado", a query abandoned, a value too long...).
class BaseDeLectura {
public:
    explicit BaseDeLectura(const QString& archivo);
    ~BaseDeLectura();
    BaseDeLectura(const BaseDeLectura&) = delete;
    BaseDeLectura& operator=(const BaseDeLectura&) = delete;

    struct Finaliza {
        void operator()(sqlite3_stmt* s) const;
    };
    using Sentencia = std::unique_ptr<sqlite3_stmt, Finaliza>;

    Sentencia Prepara(const char* sql);
    // One step with a fresh work budget: SQLITE_ROW, SQLITE_DONE, or
    // SQLITE_TOOBIG (a value above the command limit; the statement must be
    // reset). Anything else raises.
    int Paso(sqlite3_stmt* sentencia);
    [[noreturn]] void Falla(const QString& que) const;
    [[noreturn]] void Falla(int codigo) const;
    const QString& Archivo() const { return archivo_; }

private:
    static int Avisa(void* yo);
    struct CierraBase {
        void operator()(sqlite3* bd) const;
    };

    QString archivo_;
    std::unique_ptr<sqlite3, CierraBase> bd_;
    int avisos_ = 0;
};

// Reads a spool file's rows one at a time in row order, so memory stays flat
// however long the report. Only plain tables `source` and `header` with the
// recorder's columns are accepted: views, triggers and virtual tables are
// refused before anything is read.
class LectorDeReporte {
public:
    struct Renglon {
        int64_t pagina = 0;
        int64_t row = 0;
        QString source;
        // Kept beside the command text, and truer than it: Say's text before
        // its double quotes were replaced, and the font flags as given.
        QString contenido;
        bool bold = false;
        bool italic = false;
        // Why the row was left unread (a value above the command limit);
        // empty for a row read.
        QString rechazo;
    };

    explicit LectorDeReporte(const QString& archivo);
    ~LectorDeReporte();
    LectorDeReporte(const LectorDeReporte&) = delete;
    LectorDeReporte& operator=(const LectorDeReporte&) = delete;

    // False at the end; a file damaged mid-way raises.
    bool Siguiente(Renglon& renglon);

    // Rows whose number another row already has, and rows numbered below one
    // recorded before them. Both are read in row order all the same.
    int64_t Repetidos() const { return repetidos_; }
    int64_t FueraDeOrden() const { return fueraDeOrden_; }

private:
    void CompruebaEsquema();
    void CompruebaColumnas(const char* tabla, std::vector<QString> esperadas);
    void Examina();
    void Llena(Renglon& renglon);
    bool Rechaza(Renglon& renglon, int64_t row);

    BaseDeLectura base_;
    BaseDeLectura::Sentencia consulta_;
    // Rows out of order: (row, rowid) sorted, and the next to read.
    std::vector<std::pair<int64_t, int64_t>> orden_;
    size_t siguiente_ = 0;
    // Rows in order: the first rowid not yet read.
    int64_t proximo_ = INT64_MIN;
    bool enOrden_ = true;
    bool terminado_ = false;
    int64_t repetidos_ = 0;
    int64_t fueraDeOrden_ = 0;
};

}  // namespace kalo

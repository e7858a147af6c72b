#pragma once

// Replay of recorded command texts: one line parsed back into the command
// word and its argument values, and run through the automation boundary.

#include <QString>
#include <QStringView>
#include <cstdint>
#include <optional>
#include <vector>

#include "kaloimpresora/automatizacion.h"

struct sqlite3;
struct sqlite3_stmt;

namespace kalo {

struct Comando {
    QString palabra;  // as the member is spelled in the recorder's allow-list
    std::vector<Variant> argumentos;
};

// Parses one command text as the recorder writes it (a trailing line break is
// ignored). Fn numbers come back as doubles, True/False as booleans, quoted
// texts as texts. Only commands the recorder writes are accepted: a script is
// untrusted input and must never reach members that touch files, ports or
// windows. On failure, nullopt and a Spanish message in *error.
std::optional<Comando> LeeComando(QStringView linea, QString* error = nullptr);

// Runs the command on the object by member name.
void EjecutaComando(Objeto& impresora, Comando& c);

// Reads a spool file's rows one at a time in recording order, so memory stays
// flat however long the report. Opening fails with ErrorDeAutomatizacion:
// 53 for a missing file, err::kErrorDeBaseDeDatos when it is not a spool file.
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
    };

    explicit LectorDeReporte(const QString& archivo);
    ~LectorDeReporte();
    LectorDeReporte(const LectorDeReporte&) = delete;
    LectorDeReporte& operator=(const LectorDeReporte&) = delete;

    // False at the end; a file damaged mid-way raises.
    bool Siguiente(Renglon& renglon);

private:
    [[noreturn]] void Falla(const QString& que) const;

    QString archivo_;
    sqlite3* bd_ = nullptr;
    sqlite3_stmt* consulta_ = nullptr;
    bool terminado_ = false;
};

}  // namespace kalo

#pragma once

// The connection to a report spool file, the object an Impresora keeps in
// `sq`. One statement per call: text that would run a second statement is
// refused, so nothing smuggled into a recorded value can execute.

#include <QString>

#include "kaloimpresora/automatizacion.h"

struct sqlite3;
struct sqlite3_stmt;

namespace kalo {

class ConexionDeReporte : public ConTabla<ConexionDeReporte> {
public:
    ConexionDeReporte() = default;
    ~ConexionDeReporte() override;
    ConexionDeReporte(const ConexionDeReporte&) = delete;
    ConexionDeReporte& operator=(const ConexionDeReporte&) = delete;

    // Opens (creating it if needed) the file; an open connection is closed first.
    void Abre(const QString& ruta);
    void Cierra();
    bool abierta() const { return bd_ != nullptr; }
    const QString& ruta() const { return ruta_; }

    void Ejecuta(const QString& sql);
    // Runs a query and tells whether it returned a row.
    bool HayRenglones(const QString& sql);
    // The statement of `sql`, prepared once while this file stays open; the
    // caller binds its values and runs it with Completa. `sql` must outlive
    // the connection (a literal): it is the key for the next call.
    sqlite3_stmt* Preparada(const char* sql);
    // Steps a statement from Preparada to its end and resets it; fails like Ejecuta.
    void Completa(sqlite3_stmt* sentencia);
    // Folds the write-ahead log into the file so the file alone is complete.
    void Consolida();

    static const TablaDeMiembros& Tabla();

private:
    [[noreturn]] void Falla(const QString& que) const;
    // Prepares exactly one statement; the caller finalizes it.
    sqlite3_stmt* Prepara(const QString& sql);

    sqlite3* bd_ = nullptr;
    QString ruta_;
    const char* sqlPreparado_ = nullptr;
    sqlite3_stmt* preparada_ = nullptr;
};

}  // namespace kalo

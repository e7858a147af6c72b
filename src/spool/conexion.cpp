#include "spool/conexion.h"

#include <sqlite3.h>

#include "automation/interfaz.h"

namespace kalo {

using namespace Qt::StringLiterals;

ConexionDeReporte::~ConexionDeReporte() { Cierra(); }

void ConexionDeReporte::Abre(const QString& ruta) {
    Cierra();
    sqlite3* bd = nullptr;
    const int rc = sqlite3_open_v2(ruta.toUtf8().constData(), &bd,
                                   SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    if (rc != SQLITE_OK) {
        const QString mensaje = bd ? QString::fromUtf8(sqlite3_errmsg(bd)) : QString();
        sqlite3_close(bd);
        throw ErrorDeAutomatizacion(err::kAccesoARutaOArchivo,
                                    DescripcionDeError(err::kAccesoARutaOArchivo) + u": "_s + ruta + u" ("_s +
                                        mensaje + u')',
                                    u"ConexionDeReporte.Abre"_s);
    }
    bd_ = bd;
    ruta_ = ruta;
    // A write-ahead log survives the host being killed with every committed
    // row, and costs no sync per row.
    sqlite3_exec(bd_, "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;", nullptr, nullptr, nullptr);
    sqlite3_busy_timeout(bd_, 2000);
}

void ConexionDeReporte::Cierra() {
    if (!bd_) return;
    sqlite3_finalize(preparada_);
    preparada_ = nullptr;
    sqlPreparado_ = nullptr;
    sqlite3_close_v2(bd_);
    bd_ = nullptr;
}

void ConexionDeReporte::Falla(const QString& que) const {
    const QString mensaje = bd_ ? QString::fromUtf8(sqlite3_errmsg(bd_)) : u"no hay conexión abierta"_s;
    throw ErrorDeAutomatizacion(err::kErrorDeBaseDeDatos, u"Error del archivo de reporte: "_s + mensaje,
                                u"ConexionDeReporte."_s + que);
}

sqlite3_stmt* ConexionDeReporte::Prepara(const QString& sql) {
    if (!bd_) Falla(u"Ejecuta"_s);
    const QByteArray texto = sql.toUtf8();
    sqlite3_stmt* sentencia = nullptr;
    const char* resto = nullptr;
    if (sqlite3_prepare_v2(bd_, texto.constData(), static_cast<int>(texto.size()), &sentencia, &resto) !=
        SQLITE_OK)
        Falla(u"Ejecuta"_s);
    // Anything after the first statement but blanks or a lone ";" is refused.
    for (; resto && *resto; ++resto) {
        if (*resto != ' ' && *resto != '\t' && *resto != '\r' && *resto != '\n' && *resto != ';') {
            sqlite3_finalize(sentencia);
            throw ErrorDeAutomatizacion(err::kErrorDeBaseDeDatos,
                                        u"Error del archivo de reporte: se admite una sola sentencia"_s,
                                        u"ConexionDeReporte.Ejecuta"_s);
        }
    }
    if (!sentencia) Falla(u"Ejecuta"_s);  // empty text
    return sentencia;
}

void ConexionDeReporte::Ejecuta(const QString& sql) {
    sqlite3_stmt* sentencia = Prepara(sql);
    int rc;
    while ((rc = sqlite3_step(sentencia)) == SQLITE_ROW) {
    }
    sqlite3_finalize(sentencia);
    if (rc != SQLITE_DONE) Falla(u"Ejecuta"_s);
}

sqlite3_stmt* ConexionDeReporte::Preparada(const char* sql) {
    if (preparada_ && sqlPreparado_ == sql) return preparada_;
    if (!bd_) Falla(u"Ejecuta"_s);
    sqlite3_stmt* sentencia = nullptr;
    if (sqlite3_prepare_v3(bd_, sql, -1, SQLITE_PREPARE_PERSISTENT, &sentencia, nullptr) != SQLITE_OK || !sentencia)
        Falla(u"Ejecuta"_s);
    sqlite3_finalize(preparada_);
    preparada_ = sentencia;
    sqlPreparado_ = sql;
    return sentencia;
}

void ConexionDeReporte::Completa(sqlite3_stmt* sentencia) {
    int rc;
    while ((rc = sqlite3_step(sentencia)) == SQLITE_ROW) {
    }
    if (rc != SQLITE_DONE) {
        const QString mensaje = QString::fromUtf8(sqlite3_errmsg(bd_));
        sqlite3_reset(sentencia);
        throw ErrorDeAutomatizacion(err::kErrorDeBaseDeDatos, u"Error del archivo de reporte: "_s + mensaje,
                                    u"ConexionDeReporte.Ejecuta"_s);
    }
    sqlite3_reset(sentencia);
}

bool ConexionDeReporte::HayRenglones(const QString& sql) {
    sqlite3_stmt* sentencia = Prepara(sql);
    const int rc = sqlite3_step(sentencia);
    sqlite3_finalize(sentencia);
    if (rc != SQLITE_ROW && rc != SQLITE_DONE) Falla(u"HayRenglones"_s);
    return rc == SQLITE_ROW;
}

void ConexionDeReporte::Consolida() {
    if (bd_) sqlite3_wal_checkpoint_v2(bd_, nullptr, SQLITE_CHECKPOINT_TRUNCATE, nullptr, nullptr);
}

namespace {

const Interfaz<ConexionDeReporte>& InterfazConexion() {
    using T = TipoDato;
    using C = ConexionDeReporte;
    using Ranuras = std::span<Variant>;
    static const Interfaz<C> interfaz(u"ConexionDeReporte"_s, [] {
        std::vector<Miembro<C>> m;
        Miembro<C> ruta;
        ruta.nombre = u"Ruta"_s;
        ruta.dispid = 1;
        ruta.clase = ClaseDeMiembro::Metodo;
        ruta.tipo = T::Texto;
        ruta.llama = [](C& c, Ranuras) { return Variant(c.ruta()); };
        m.push_back(std::move(ruta));
        m.push_back(Metodo<C>(u"Abre"_s, 2, T::Ninguno, {{u"ruta"_s, T::Texto, false, false, {}}}, [](C& c, Ranuras a) {
            c.Abre(a[0].texto());
            return Variant();
        }));
        m.push_back(Metodo<C>(u"Ejecuta"_s, 3, T::Ninguno, {{u"sql"_s, T::Texto, false, false, {}}}, [](C& c, Ranuras a) {
            c.Ejecuta(a[0].texto());
            return Variant();
        }));
        m.push_back(Metodo<C>(u"HayRenglones"_s, 4, T::Booleano, {{u"sql"_s, T::Texto, false, false, {}}},
                              [](C& c, Ranuras a) { return Variant(c.HayRenglones(a[0].texto())); }));
        m.push_back(Metodo<C>(u"Cierra"_s, 5, T::Ninguno, {}, [](C& c, Ranuras) {
            c.Cierra();
            return Variant();
        }));
        m.push_back(Metodo<C>(u"Abierta"_s, 6, T::Booleano, {}, [](C& c, Ranuras) { return Variant(c.abierta()); }));
        return m;
    }());
    return interfaz;
}

}  // namespace

const TablaDeMiembros& ConexionDeReporte::Tabla() { return InterfazConexion(); }

}  // namespace kalo

#include "data/enlace.h"

#include <dlfcn.h>
#include <sqlite3.h>

#include <QCoreApplication>
#include <QSqlDriver>
#include <QSqlError>
#include <QSqlField>
#include <QSqlRecord>
#include <QSqlResult>
#include <algorithm>
#include <atomic>

#include "kaloimpresora/errores.h"
#include "runtime/aplicacion.h"

namespace kalo {

namespace {

using namespace Qt::StringLiterals;

// The first batch is small so the first row comes at once; later ones grow
// to a size whose round trips cost next to nothing.
constexpr int kPrimerLote = 100;
constexpr int kLoteMaximo = 5000;

QString TextoDelControlador(const QSqlError& error) {
    QString texto = error.databaseText().trimmed();
    if (texto.isEmpty()) texto = error.driverText().trimmed();
    return texto;
}

// Queries, and nothing else, can be read through a server-side cursor.
bool EsConsulta(const QString& sql) {
    qsizetype i = 0;
    while (i < sql.size()) {
        if (sql[i].isSpace() || sql[i] == u'(') {
            ++i;
        } else if (QStringView(sql).mid(i).startsWith(u"--")) {
            i = sql.indexOf(u'\n', i);
            if (i < 0) return false;
        } else if (QStringView(sql).mid(i).startsWith(u"/*")) {
            i = sql.indexOf(u"*/", i + 2);
            if (i < 0) return false;
            i += 2;
        } else {
            break;
        }
    }
    qsizetype fin = i;
    while (fin < sql.size() && sql[fin].isLetter()) ++fin;
    const QStringView palabra = QStringView(sql).mid(i, fin - i);
    for (const char16_t* p : {u"select", u"with", u"values", u"table"})
        if (palabra.compare(QStringView(p), Qt::CaseInsensitive) == 0) return true;
    return false;
}

// libpq is loaded with the driver; asking it for the transaction state costs
// no round trip to the server.
using EstadoDeTransaccion = int (*)(const void*);
EstadoDeTransaccion FuncionDeEstado() {
    static const EstadoDeTransaccion funcion = []() -> EstadoDeTransaccion {
        void* biblioteca = dlopen("libpq.so.5", RTLD_NOW | RTLD_NOLOAD);
        if (!biblioteca) return nullptr;
        return reinterpret_cast<EstadoDeTransaccion>(dlsym(biblioteca, "PQtransactionStatus"));
    }();
    return funcion;
}

sqlite3_stmt* SentenciaSqlite(const QSqlQuery& consulta) {
    const QVariant h = consulta.result() ? consulta.result()->handle() : QVariant();
    if (!h.isValid() || qstrcmp(h.typeName(), "sqlite3_stmt*") != 0) return nullptr;
    return *static_cast<sqlite3_stmt* const*>(h.constData());
}

std::atomic<int> ultimaConexion{0};

}  // namespace

// ---- Enlace -----------------------------------------------------------------

std::shared_ptr<Enlace> Enlace::Abre(const ParametrosDeConexion& p) {
    // The drivers are plugins, which Qt loads only with an application object.
    if (!QCoreApplication::instance()) AseguraAplicacion();
    if (!QSqlDatabase::isDriverAvailable(p.driver)) {
        throw ErrorDeAutomatizacion(err::kProveedorNoEncontrado,
                                    DescripcionDeError(err::kProveedorNoEncontrado) + u": el controlador «"_s +
                                        p.driver + u"» no está instalado (hay: "_s +
                                        QSqlDatabase::drivers().join(u", "_s) + u')',
                                    u"Connection.Open"_s);
    }
    std::shared_ptr<Enlace> enlace(new Enlace);
    enlace->nombre_ = u"kaloimpresora-conexion-"_s + QString::number(++ultimaConexion);
    enlace->postgres_ = p.driver == u"QPSQL"_s;
    QSqlDatabase bd = QSqlDatabase::addDatabase(p.driver, enlace->nombre_);
    bd.setDatabaseName(p.baseDeDatos);
    bd.setHostName(p.servidor);
    bd.setPort(p.puerto);
    bd.setUserName(p.usuario);
    bd.setPassword(p.contrasena);
    // Exact decimals, so that money reaches Currency without rounding.
    bd.setNumericalPrecisionPolicy(QSql::HighPrecision);
    if (!bd.open()) {
        const QString texto = TextoDelControlador(bd.lastError());
        bd = QSqlDatabase();
        QSqlDatabase::removeDatabase(enlace->nombre_);
        enlace->nombre_.clear();
        throw ErrorDeAutomatizacion(err::kErrorNoEspecificado, u"No se pudo abrir la conexión: "_s + texto,
                                    u"Connection.Open"_s);
    }
    enlace->bd_ = bd;
    return enlace;
}

Enlace::~Enlace() { Cierra(); }

void Enlace::Cierra() {
    for (const std::weak_ptr<Cursor>& c : cursores_)
        if (auto cursor = c.lock()) cursor->Cierra();
    cursores_.clear();
    if (nombre_.isEmpty()) return;
    bd_.close();
    bd_ = QSqlDatabase();
    QSqlDatabase::removeDatabase(nombre_);
    nombre_.clear();
}

bool Enlace::Simple(const QString& sql) {
    QSqlQuery q(bd_);
    return q.exec(sql);
}

bool Enlace::EnTransaccion() const {
    if (!postgres_) return false;
    if (transaccionPropia_) return true;
    const EstadoDeTransaccion estado = FuncionDeEstado();
    const QVariant h = bd_.driver() ? bd_.driver()->handle() : QVariant();
    if (!estado || !h.isValid() || (qstrcmp(h.typeName(), "PGconn*") != 0 && qstrcmp(h.typeName(), "pg_conn*") != 0))
        return false;
    const int e = estado(*static_cast<void* const*>(h.constData()));
    return e == 2 || e == 3;  // in a transaction block, or in one that failed
}

bool Enlace::EjecutaProtegido(QSqlQuery& q, const QString& sql) {
    if (!EnTransaccion()) return q.exec(sql);
    if (transaccionPropia_) soloCursores_ = false;
    Simple(u"SAVEPOINT kaloimpresora"_s);
    if (q.exec(sql)) {
        Simple(u"RELEASE SAVEPOINT kaloimpresora"_s);
        return true;
    }
    Simple(u"ROLLBACK TO SAVEPOINT kaloimpresora"_s);
    Simple(u"RELEASE SAVEPOINT kaloimpresora"_s);
    return false;
}

QString Enlace::DeclaraCursor(const QString& sql) {
    if (!postgres_ || !EsConsulta(sql)) return {};
    const QString nombre = u"kaloimpresora_"_s + QString::number(++ultimoCursor_);
    const QString declara = u"DECLARE "_s + nombre + u" NO SCROLL CURSOR FOR "_s + sql;
    QSqlQuery q(bd_);
    if (EnTransaccion()) {
        const bool soloCursores = soloCursores_;
        const bool declarado = EjecutaProtegido(q, declara);
        soloCursores_ = soloCursores;  // declaring writes nothing
        if (!declarado) return {};
    } else {
        if (!Simple(u"BEGIN"_s)) return {};
        transaccionPropia_ = true;
        soloCursores_ = true;
        if (!q.exec(declara)) {
            Simple(u"ROLLBACK"_s);
            transaccionPropia_ = false;
            return {};
        }
    }
    ++cursoresDeServidor_;
    return nombre;
}

bool Enlace::Trae(QSqlQuery& lote, const QString& cursor, int filas) {
    const QString sql = u"FETCH FORWARD "_s + QString::number(filas) + u" FROM "_s + cursor;
    // Alone in a transaction of its own, a cursor that fails takes nothing
    // else with it, and the savepoint's round trips are saved.
    if (transaccionPropia_ && soloCursores_ && cursoresDeServidor_ == 1) return lote.exec(sql);
    return EjecutaProtegido(lote, sql);
}

void Enlace::CierraCursor(const QString& cursor) {
    if (!bd_.isOpen()) return;
    QSqlQuery q(bd_);
    if (transaccionPropia_ && soloCursores_ && cursoresDeServidor_ == 1)
        q.exec(u"CLOSE "_s + cursor);
    else
        EjecutaProtegido(q, u"CLOSE "_s + cursor);
    cursoresDeServidor_ = std::max(0, cursoresDeServidor_ - 1);
    if (cursoresDeServidor_ == 0 && transaccionPropia_) {
        if (!Simple(u"COMMIT"_s)) Simple(u"ROLLBACK"_s);
        transaccionPropia_ = false;
        soloCursores_ = true;
    }
}

// ---- Cursor -----------------------------------------------------------------

std::shared_ptr<Cursor> Cursor::Abre(const std::shared_ptr<Enlace>& enlace, const QString& sql) {
    std::shared_ptr<Cursor> cursor(new Cursor(enlace, sql));
    cursor->Ejecuta();
    auto& lista = enlace->cursores_;
    std::erase_if(lista, [](const std::weak_ptr<Cursor>& c) { return c.expired(); });
    if (cursor->abierto()) lista.push_back(cursor);
    return cursor;
}

Cursor::~Cursor() { Libera(); }

void Cursor::Falla(const QSqlError& error) {
    const QString texto = TextoDelControlador(error);
    Libera();
    abierto_ = false;
    eof_ = bof_ = true;
    throw ErrorDeAutomatizacion(err::kErrorEnLaInstruccion,
                                DescripcionDeError(err::kErrorEnLaInstruccion) + u": "_s + texto, u"Recordset"_s);
}

void Cursor::Ejecuta() {
    Enlace& e = *enlace_;
    if (!e.abierto()) Lanza(err::kObjetoCerrado, u"Connection.Execute"_s);
    filasAfectadas_ = -1;
    cuenta_ = -1;
    cursorDeServidor_ = e.DeclaraCursor(sql_);
    consulta_.emplace(e.bd_);
    if (!cursorDeServidor_.isEmpty()) {
        lote_ = kPrimerLote;
        if (!e.Trae(*consulta_, cursorDeServidor_, lote_)) Falla(consulta_->lastError());
        filasDelLote_ = 0;
    } else {
        // A PostgreSQL statement that is no query comes whole (it is small),
        // so nothing that runs after it can take its rows away.
        consulta_->setForwardOnly(!e.postgres_);
        if (!e.EjecutaProtegido(*consulta_, sql_)) Falla(consulta_->lastError());
        if (!consulta_->isSelect()) {
            filasAfectadas_ = std::max(0, consulta_->numRowsAffected());
            consulta_.reset();
            abierto_ = false;
            return;
        }
        cuenta_ = consulta_->size();
    }
    LeeColumnas();
    abierto_ = true;
    bof_ = false;
    eof_ = !Avanza();
    bof_ = eof_;
}

void Cursor::LeeColumnas() {
    const QSqlRecord registro = consulta_->record();
    sqlite3_stmt* sentencia = SentenciaSqlite(*consulta_);
    columnas_.clear();
    columnas_.reserve(static_cast<size_t>(registro.count()));
    for (int i = 0; i < registro.count(); ++i) {
        const QSqlField campo = registro.field(i);
        TipoDeColumna tipo = TipoDeCampo(campo);
        if (enlace_->postgres_) {
            tipo = TipoDeCampoPostgres(campo);
        } else if (sentencia) {
            const char* declarado = sqlite3_column_decltype(sentencia, i);
            if (declarado) TipoDeDeclaracionSqlite(QString::fromUtf8(declarado), tipo);
        }
        columnas_.push_back({registro.fieldName(i), tipo});
    }
}

bool Cursor::Avanza() {
    if (consulta_->next()) {
        ++filasDelLote_;
        return true;
    }
    // A forward-only query that fails on a row ends as if it had no more.
    if (consulta_->lastError().isValid()) Falla(consulta_->lastError());
    if (cursorDeServidor_.isEmpty() || filasDelLote_ < lote_) {
        Libera();
        return false;
    }
    lote_ = std::min(lote_ * 4, kLoteMaximo);
    filasDelLote_ = 0;
    if (!enlace_->Trae(*consulta_, cursorDeServidor_, lote_)) Falla(consulta_->lastError());
    if (consulta_->next()) {
        ++filasDelLote_;
        return true;
    }
    Libera();
    return false;
}

// The query goes as soon as it is read to the end: a finished statement
// holds no lock, and a server cursor no transaction.
void Cursor::Libera() {
    consulta_.reset();
    if (!cursorDeServidor_.isEmpty()) {
        const QString cursor = std::exchange(cursorDeServidor_, QString());
        enlace_->CierraCursor(cursor);
    }
}

const std::vector<Columna>& Cursor::columnas() const {
    if (!abierto_) Lanza(err::kObjetoCerrado, u"Recordset"_s);
    return columnas_;
}

const Columna& Cursor::columna(int i) const {
    const std::vector<Columna>& todas = columnas();
    if (i < 0 || static_cast<size_t>(i) >= todas.size()) Lanza(err::kElementoNoEncontrado, u"Fields.Item"_s);
    return todas[static_cast<size_t>(i)];
}

void Cursor::Siguiente() {
    if (!abierto_) Lanza(err::kObjetoCerrado, u"Recordset.MoveNext"_s);
    if (eof_) Lanza(err::kSinRegistroActual, u"Recordset.MoveNext"_s);
    eof_ = !Avanza();
}

void Cursor::Primero() {
    if (!abierto_) Lanza(err::kObjetoCerrado, u"Recordset.MoveFirst"_s);
    Libera();
    abierto_ = false;
    if (!enlace_->abierto()) Lanza(err::kObjetoCerrado, u"Recordset.MoveFirst"_s);
    Ejecuta();
}

void Cursor::Cierra() {
    Libera();
    abierto_ = false;
    eof_ = bof_ = true;
}

Variant Cursor::Valor(int i) const {
    if (!abierto_) Lanza(err::kObjetoCerrado, u"Field.Value"_s);
    if (i < 0 || static_cast<size_t>(i) >= columnas_.size()) Lanza(err::kElementoNoEncontrado, u"Fields.Item"_s);
    if (eof_ || bof_ || !consulta_) Lanza(err::kSinRegistroActual, u"Field.Value"_s);
    return ValorDeColumna(consulta_->value(i), columnas_[static_cast<size_t>(i)].tipo);
}

}  // namespace kalo

// A recordset read to the end over 1,000,000 rows, beside the least the same
// reading can cost: a bare forward-only QSqlQuery over the same rows, on the
// same database, measured in the same iteration. On SQLite and on the tests'
// private PostgreSQL server. Reported: time to the first row, time to the end
// and their ratio, and how far resident memory rose while reading.

#include <benchmark/benchmark.h>

#include <QElapsedTimer>
#include <QSqlDatabase>
#include <QSqlQuery>
#include <QTemporaryDir>

#include "data/cadena_de_conexion.h"
#include "data/conexion.h"
#include "data/servidor_postgres.h"
#include "memoria.h"
#include "runtime/aplicacion.h"

namespace {

using namespace Qt::StringLiterals;
using kalo::banco::CrecimientoMiB;
using kalo::banco::ReiniciaPico;

constexpr int kFilas = 1000000;
const QString kConsulta = u"SELECT id, nombre, importe FROM grande"_s;

struct Base {
    QString cadena;
    QString error;
};

const Base& Sqlite() {
    static QTemporaryDir dir;
    static const Base base = [] {
        const QString cadena = u"Data Source="_s + dir.filePath(u"grande.db"_s);
        kalo::Conexion c;
        c.Open(cadena);
        c.Execute(u"CREATE TABLE grande (id INTEGER, nombre VARCHAR(40), importe NUMERIC(12,2))"_s);
        c.Execute(u"INSERT INTO grande WITH RECURSIVE s(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM s WHERE i < %1) "
                  "SELECT i, 'artículo ' || i, i * 1.25 FROM s"_s.arg(kFilas));
        return Base{cadena, {}};
    }();
    return base;
}

const Base& Postgres() {
    static const Base base = []() -> Base {
        const kalo::prueba::ServidorPostgres& servidor = kalo::prueba::Postgres();
        if (servidor.carpeta.isEmpty()) return {{}, servidor.motivo};
        const QString cadena = kalo::prueba::CadenaPostgres(servidor.carpeta);
        kalo::Conexion c;
        c.Open(cadena);
        c.Execute(u"DROP TABLE IF EXISTS grande"_s);
        c.Execute(u"CREATE TABLE grande AS SELECT g AS id, 'artículo ' || g AS nombre, "
                  "(g * 1.25)::numeric(12,2) AS importe FROM generate_series(1, %1) AS g"_s.arg(kFilas));
        c.Execute(u"VACUUM ANALYZE grande"_s);
        return {cadena, {}};
    }();
    return base;
}

struct Lectura {
    double primeraMs = 0;
    double totalMs = 0;
    double creceMiB = 0;
    int64_t filas = 0;
};

// What a program that knows Qt would write: three values of every row.
Lectura LeeDesnudo(const QString& cadena) {
    const kalo::ParametrosDeConexion p = kalo::LeeCadenaDeConexion(cadena);
    Lectura l;
    {
        QSqlDatabase bd = QSqlDatabase::addDatabase(p.driver, u"banco-desnudo"_s);
        bd.setDatabaseName(p.baseDeDatos);
        bd.setHostName(p.servidor);
        bd.setPort(p.puerto);
        bd.setUserName(p.usuario);
        bd.open();
        const double antes = ReiniciaPico();
        QElapsedTimer reloj;
        reloj.start();
        QSqlQuery q(bd);
        q.setForwardOnly(true);
        q.exec(kConsulta);
        bool hay = q.next();
        l.primeraMs = reloj.nsecsElapsed() / 1e6;
        int64_t suma = 0;
        for (; hay; hay = q.next()) {
            suma += q.value(0).toLongLong();
            benchmark::DoNotOptimize(q.value(1).toString());
            benchmark::DoNotOptimize(q.value(2).toDouble());
            ++l.filas;
        }
        benchmark::DoNotOptimize(suma);
        l.totalMs = reloj.nsecsElapsed() / 1e6;
        l.creceMiB = CrecimientoMiB(antes);
    }
    QSqlDatabase::removeDatabase(u"banco-desnudo"_s);
    return l;
}

// The same through a recordset: each value an automation value, money as
// Currency.
Lectura LeeRecordset(const QString& cadena) {
    kalo::Conexion c;
    c.Open(cadena);
    Lectura l;
    const double antes = ReiniciaPico();
    QElapsedTimer reloj;
    reloj.start();
    auto rs = c.Execute(kConsulta);
    l.primeraMs = reloj.nsecsElapsed() / 1e6;
    int64_t suma = 0;
    while (!rs->Eof()) {
        suma += rs->Valor(0).largo();
        benchmark::DoNotOptimize(rs->Valor(1));
        benchmark::DoNotOptimize(rs->Valor(2));
        ++l.filas;
        rs->MoveNext();
    }
    benchmark::DoNotOptimize(suma);
    l.totalMs = reloj.nsecsElapsed() / 1e6;
    l.creceMiB = CrecimientoMiB(antes);
    return l;
}

void Recordset(benchmark::State& estado, const Base& (*base)()) {
    kalo::AseguraAplicacion();
    const Base& b = base();
    if (b.cadena.isEmpty()) return estado.SkipWithError(b.error.toStdString().c_str());
    Lectura desnudo, recordset;
    int vueltas = 0;
    for (auto _ : estado) {
        // Alternating, so neither always runs on a warmer cache.
        const bool desnudoPrimero = vueltas++ % 2 == 0;
        Lectura d, r;
        if (desnudoPrimero) d = LeeDesnudo(b.cadena);
        r = LeeRecordset(b.cadena);
        if (!desnudoPrimero) d = LeeDesnudo(b.cadena);
        if (r.filas != kFilas || d.filas != kFilas) return estado.SkipWithError("no se leyeron todas las filas");
        estado.SetIterationTime(r.totalMs / 1000);
        desnudo.totalMs += d.totalMs;
        recordset.totalMs += r.totalMs;
        desnudo.primeraMs = std::max(desnudo.primeraMs, d.primeraMs);
        recordset.primeraMs = std::max(recordset.primeraMs, r.primeraMs);
        desnudo.creceMiB = std::max(desnudo.creceMiB, d.creceMiB);
        recordset.creceMiB = std::max(recordset.creceMiB, r.creceMiB);
    }
    estado.counters["primera_fila_ms"] = recordset.primeraMs;
    estado.counters["primera_fila_desnuda_ms"] = desnudo.primeraMs;
    estado.counters["recordset_ms"] = recordset.totalMs / vueltas;
    estado.counters["desnudo_ms"] = desnudo.totalMs / vueltas;
    estado.counters["relacion"] = recordset.totalMs / desnudo.totalMs;
    estado.counters["crece_MiB"] = recordset.creceMiB;
    estado.counters["crece_desnudo_MiB"] = desnudo.creceMiB;
}
BENCHMARK_CAPTURE(Recordset, SQLite, Sqlite)->Unit(benchmark::kMillisecond)->Iterations(4)->UseManualTime();
BENCHMARK_CAPTURE(Recordset, PostgreSQL, Postgres)->Unit(benchmark::kMillisecond)->Iterations(4)->UseManualTime();

}  // namespace

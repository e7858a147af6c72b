// The recorder against the least a spool row can cost: a prepared INSERT with
// bound values into the same schema, same journal and sync settings.

#include <benchmark/benchmark.h>
#include <sqlite3.h>

#include <QDir>
#include <QFile>

#include "comun/acceso_interno.h"
#include "comun/objeto_grabador.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/impresoras.h"

namespace {

using namespace Qt::StringLiterals;

void Borra(const QString& archivo) {
    for (const char* s : {"", "-wal", "-shm"}) QFile::remove(archivo + QString::fromLatin1(s));
}

void RegistraComandos(benchmark::State& estado) {
    kalo::EstableceImpresoraActual(std::make_shared<kalo::prueba::ObjetoGrabador>());
    kalo::Impresora imp;
    imp.Pantalla = true;
    imp.Archivo = true;
    imp.Paginas = 1;
    imp.CreaBaseDeDatos();
    const QString fuente = u"Say Fn(\"1.5\"),Fn(\"2\"),\"Total a pagar\""_s;
    for (auto _ : estado)
        kalo::AccesoInterno::RegistraComando(imp, fuente, 9, 18, u"Total a pagar"_s);
    estado.SetItemsProcessed(estado.iterations());
    const QString archivo = imp.DB;
    imp.sq = nullptr;
    Borra(archivo);
    kalo::EstableceImpresoraActual(nullptr);
}
BENCHMARK(RegistraComandos);

void InsertPreparadoDesnudo(benchmark::State& estado) {
    const QString archivo = QDir::tempPath() + u"/banco-desnudo.rep"_s;
    Borra(archivo);
    sqlite3* bd = nullptr;
    sqlite3_open(archivo.toUtf8().constData(), &bd);
    sqlite3_exec(bd, "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL;", nullptr, nullptr, nullptr);
    sqlite3_exec(bd,
                 "CREATE TABLE source( pagina INTEGER, source TEXT, row INTEGER, contenido TEXT, fuente TEXT, "
                 "fsize REAL, nrow REAL, ncol REAL, bold INTEGER, italic INTEGER )",
                 nullptr, nullptr, nullptr);
    sqlite3_exec(bd, "CREATE INDEX paginarow ON source( pagina, row )", nullptr, nullptr, nullptr);
    sqlite3_stmt* s = nullptr;
    sqlite3_prepare_v2(bd,
                       "INSERT INTO source( pagina, row, source, nrow, ncol, contenido, fuente, fsize, bold, italic )"
                       " VALUES ( ?, ?, ?, ?, ?, ?, ?, ?, ?, ? )",
                       -1, &s, nullptr);
    const char* fuente = "Say Fn(\"1.5\"),Fn(\"2\"),\"Total a pagar\"\r\n";
    int fila = 0;
    for (auto _ : estado) {
        sqlite3_bind_int(s, 1, 1);
        sqlite3_bind_int(s, 2, ++fila);
        sqlite3_bind_text(s, 3, fuente, -1, SQLITE_STATIC);
        sqlite3_bind_double(s, 4, 9);
        sqlite3_bind_double(s, 5, 18);
        sqlite3_bind_text(s, 6, "Total a pagar", -1, SQLITE_STATIC);
        sqlite3_bind_text(s, 7, "", -1, SQLITE_STATIC);
        sqlite3_bind_double(s, 8, 0);
        sqlite3_bind_int(s, 9, 0);
        sqlite3_bind_int(s, 10, 0);
        sqlite3_step(s);
        sqlite3_reset(s);
    }
    estado.SetItemsProcessed(estado.iterations());
    sqlite3_finalize(s);
    sqlite3_close(bd);
    Borra(archivo);
}
BENCHMARK(InsertPreparadoDesnudo);

}  // namespace

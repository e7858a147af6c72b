// The recorder against the least a spool row can cost: a prepared INSERT with
// bound values into the same schema, same journal and sync settings.

#include <benchmark/benchmark.h>

#include <QDir>

#include "core/privado.h"
#include "insert_desnudo.h"
#include "comun/objeto_grabador.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/impresoras.h"

namespace {

using namespace Qt::StringLiterals;

void RegistraComandos(benchmark::State& estado) {
    kalo::EstableceImpresoraActual(std::make_shared<kalo::prueba::ObjetoGrabador>());
    kalo::Impresora imp;
    imp.Pantalla = true;
    imp.Archivo = true;
    imp.Paginas = 1;
    imp.CreaBaseDeDatos();
    const QString fuente = u"Say Fn(\"1.5\"),Fn(\"2\"),\"Total a pagar\""_s;
    for (auto _ : estado)
        kalo::RegistraComando(imp, fuente, 9, 18, u"Total a pagar"_s);
    estado.SetItemsProcessed(estado.iterations());
    const QString archivo = imp.DB;
    imp.sq = nullptr;
    kalo::banco::BorraReporte(archivo);
    kalo::EstableceImpresoraActual(nullptr);
}
BENCHMARK(RegistraComandos);

void InsertPreparadoDesnudo(benchmark::State& estado) {
    kalo::banco::InsertDesnudo desnudo(QDir::tempPath() + u"/banco-desnudo.rep"_s);
    int fila = 0;
    for (auto _ : estado)
        desnudo.Inserta(++fila, "Say Fn(\"1.5\"),Fn(\"2\"),\"Total a pagar\"\r\n", 9, 18, "Total a pagar");
    estado.SetItemsProcessed(estado.iterations());
}
BENCHMARK(InsertPreparadoDesnudo);

}  // namespace

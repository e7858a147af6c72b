// A late-bound Say through the C boundary beside the same call through the
// C++ Objeto interface, on the same preview: what the boundary adds (handle
// and thread check, variants in, texts from UTF-8, the member's description)
// must stay within 1.2 times the C++ call.

#include <benchmark/benchmark.h>

#include <QString>
#include <ctime>
#include <vector>

#include "automation/frontera_c.h"
#include "kaloimpresora/impresora.h"
#include "kaloimpresora/kaloimpresora.h"
#include "kaloimpresora/superficies.h"
#include "runtime/aplicacion.h"
#include "target/modulo4.h"

namespace {

using namespace Qt::StringLiterals;
using kalo::Variant;

constexpr int kRenglones = 60;
constexpr int32_t kSay = 0x60030005;

struct Escenario {
    std::shared_ptr<kalo::Impresora> imp = std::make_shared<kalo::Impresora>();
    KaloObjeto* manija = nullptr;

    Escenario() {
        kalo::AseguraAplicacion();
        kalo::modulo4::Estado() = {};
        imp->Pantalla = true;
        imp->Imagen2 = kalo::CreaSuperficieDeImagen(850, 1100, 100);
        imp->IniciaDocumento();
        imp->EstableceFuente(u"DejaVu Sans"_s, 10);
        manija = kalo::frontera::Envuelve(imp);
    }
    ~Escenario() {
        imp->FinDocumento();
        kalo_libera(manija);
    }

    // As a C++ host calls: its own variants, the text already a QString.
    void SayObjeto(int i) {
        Variant args[] = {Variant(1.0 + (i % kRenglones) / 6.0), Variant(1.0), Variant(u"Total a pagar"_s)};
        imp->Invoca(kSay, kalo::Llamada::Metodo, args);
    }

    // As a C host calls: its variants, the text in UTF-8.
    void SayC(int i, KaloVariant* args) {
        args[0].v.doble = 1.0 + (i % kRenglones) / 6.0;
        if (kalo_invoca(manija, kSay, KALO_LLAMA_METODO, args, 3, nullptr, nullptr) != KALO_S_OK) std::abort();
    }
};

struct ArgumentosC {
    KaloVariant v[3];
    ArgumentosC() {
        v[0].tipo = v[1].tipo = KALO_DOBLE;
        v[0].v.doble = v[1].v.doble = 1.0;
        kalo_variant_texto(&v[2], "Total a pagar");
    }
    ~ArgumentosC() { kalo_variant_limpia(&v[2]); }
};

void SayPorObjeto(benchmark::State& estado) {
    Escenario e;
    int i = 0;
    for (auto _ : estado) e.SayObjeto(i++);
    estado.SetItemsProcessed(estado.iterations());
}
BENCHMARK(SayPorObjeto);

void SayPorFronteraC(benchmark::State& estado) {
    Escenario e;
    ArgumentosC a;
    int i = 0;
    for (auto _ : estado) e.SayC(i++, a.v);
    estado.SetItemsProcessed(estado.iterations());
}
BENCHMARK(SayPorFronteraC);

// Both in one run, in alternating batches (each going first in turn) so that
// neither gets a quieter moment of the shared machine; timed by the thread's
// CPU clock. The ratio of the two per-call times.
double NsDeCpu() {
    timespec t{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &t);
    return double(t.tv_sec) * 1e9 + double(t.tv_nsec);
}

void SayFronteraCContraObjeto(benchmark::State& estado) {
    Escenario e;
    ArgumentosC a;
    constexpr int kTanda = 200;
    double nsC = 0, nsObjeto = 0;
    int64_t llamadas = 0;
    int i = 0;
    bool cPrimero = false;
    for (auto _ : estado) {
        for (int vez = 0; vez < 2; ++vez) {
            const bool turnoC = (vez == 0) == cPrimero;
            const double t0 = NsDeCpu();
            for (int k = 0; k < kTanda; ++k) turnoC ? e.SayC(i + k, a.v) : e.SayObjeto(i + k);
            (turnoC ? nsC : nsObjeto) += NsDeCpu() - t0;
        }
        cPrimero = !cPrimero;
        llamadas += kTanda;
        i += kTanda;
    }
    estado.counters["objeto_ns"] = nsObjeto / double(llamadas);
    estado.counters["frontera_c_ns"] = nsC / double(llamadas);
    estado.counters["relacion"] = nsC / nsObjeto;
    estado.counters["dentro_de_1_2"] = nsC <= 1.2 * nsObjeto ? 1 : 0;
}
BENCHMARK(SayFronteraCContraObjeto)->MinTime(2.0);

}  // namespace

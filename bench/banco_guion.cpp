// Parsing command lines up to the command limit, the hostile kind among them:
// a quoted text followed by thousands of would-be closing quotes. Time must
// grow linearly with the length (Google Benchmark fits the complexity).

#include <benchmark/benchmark.h>

#include <QString>

#include "spool/guion.h"

namespace {

using namespace Qt::StringLiterals;

void Analiza(benchmark::State& estado, const QString& linea) {
    QString error;
    for (auto _ : estado) benchmark::DoNotOptimize(kalo::LeeComando(linea, &error));
    estado.SetBytesProcessed(estado.iterations() * linea.size() * 2);
    estado.SetComplexityN(linea.size());
}

// Picture "",",",",... : every quote is a candidate end of the text.
void ComillasCandidatas(benchmark::State& estado) {
    Analiza(estado, u"Picture \""_s + u"\","_s.repeated(estado.range(0) / 2));
}
BENCHMARK(ComillasCandidatas)->Arg(1000)->Arg(4000)->Arg(16000)->Arg(64000)->Complexity();

// The same, each candidate followed by a number, so more of the rest parses.
void CandidatasConNumero(benchmark::State& estado) {
    Analiza(estado, u"Bar128 Fn(\"40\"),\""_s + u"\",Fn(\"1\"),"_s.repeated(estado.range(0) / 10));
}
BENCHMARK(CandidatasConNumero)->Arg(1000)->Arg(4000)->Arg(16000)->Arg(64000)->Complexity();

// A recorded Say as long as a command may be.
void SayLargo(benchmark::State& estado) {
    Analiza(estado, u"Say Fn(\"1\"),Fn(\"2\"),\""_s + QString(estado.range(0), u'x') + u'"');
}
BENCHMARK(SayLargo)->Arg(1000)->Arg(4000)->Arg(16000)->Arg(64000)->Complexity();

}  // namespace

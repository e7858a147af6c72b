#pragma once

#include "core/privado.h"

namespace kalo {

// Reaches Impresora's private recorder from tests and benchmarks.
struct AccesoInterno {
    static void RegistraComando(Impresora& imp, const QString& source, double nrow = 0, double ncol = 0,
                                const QString& contenido = {}, const QString& fuente = {}, double fsize = 0,
                                bool bold = false, bool italic = false) {
        kalo::RegistraComando(imp, source, nrow, ncol, contenido, fuente, fsize, bold, italic);
    }
    static QString TextoFn(Impresora&, const Variant& v) { return kalo::TextoFn(v); }
};

}  // namespace kalo

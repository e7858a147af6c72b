#pragma once

// The process's resident memory and its high-water mark, for benchmarks that
// must show their memory staying flat.

#include <malloc.h>

#include <fstream>
#include <string>

namespace kalo::banco {

inline double CampoDeEstadoMiB(const std::string& campo) {
    std::ifstream estado("/proc/self/status");
    for (std::string linea; std::getline(estado, linea);)
        if (linea.rfind(campo + ':', 0) == 0) return std::stod(linea.substr(campo.size() + 1)) / 1024.0;
    return -1;
}

// The high-water mark starts again from what is resident now; freed heap is
// handed back first, so that the starting point is what is really in use.
inline double ReiniciaPico() {
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";
    return CampoDeEstadoMiB("VmRSS");
}

// How far the resident memory rose above `antes` since ReiniciaPico.
inline double CrecimientoMiB(double antes) { return CampoDeEstadoMiB("VmHWM") - antes; }

}  // namespace kalo::banco

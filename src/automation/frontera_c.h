#pragma once

// What the C boundary (kaloimpresora/kaloimpresora.h) shares with the
// server's entry points above it: handles, the count that decides whether the
// library may be unloaded, and the translation of failures into status codes.

#include <memory>
#include <new>

#include "kaloimpresora/automatizacion.h"
#include "kaloimpresora/kaloimpresora.h"

namespace kalo::frontera {

// A new handle with one reference, used on the calling thread.
KaloObjeto* Envuelve(std::shared_ptr<Objeto> objeto);

// Handles alive plus server locks; the library may go when it is zero.
int Pendientes();
void Bloquea(bool bloquea);

// Fills error (when not null) with the failure's number, description and origin.
void LlenaError(KaloError* error, const ErrorDeAutomatizacion& e);

// Whether the bytes are well-formed UTF-8 (no overlong forms, no surrogates).
bool EsUtf8(const char* texto, size_t longitud);

// "{XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}", upper case.
QString TextoDeGuid(const KaloGuid& guid);

// Runs f, turning what it throws into a status code: a raised error gives
// siFalla and fills error; running out of memory gives E_OUTOFMEMORY.
template <class F>
KaloResultado Protege(KaloError* error, KaloResultado siFalla, F&& f) noexcept {
    try {
        return f();
    } catch (const ErrorDeAutomatizacion& e) {
        LlenaError(error, e);
        return siFalla;
    } catch (const std::bad_alloc&) {
        return KALO_E_OUTOFMEMORY;
    } catch (...) {
        return KALO_E_UNEXPECTED;
    }
}

}  // namespace kalo::frontera

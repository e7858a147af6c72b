#pragma once

// Helpers shared by the tests.

#include <QLocale>
#include <gtest/gtest.h>

#include "kaloimpresora/automatizacion.h"
#include "kaloimpresora/utilerias.h"

namespace kalo::prueba {

// Runs the body and reports the automation error number it raised, or 0.
template <class F>
int32_t NumeroDeError(F&& cuerpo) {
    try {
        cuerpo();
    } catch (const ErrorDeAutomatizacion& e) {
        return e.numero();
    }
    return 0;
}

// An object whose default member reads as a fixed value.
class ObjetoConValor : public Objeto {
public:
    explicit ObjetoConValor(Variant valor) : valor_(std::move(valor)) {}
    Variant Invoca(int32_t dispid, Llamada tipo, std::span<Variant> argumentos) override {
        if (dispid == kDispidValor && tipo == Llamada::LeePropiedad) return valor_;
        return Objeto::Invoca(dispid, tipo, argumentos);
    }

private:
    Variant valor_;
};

// Switches the user's locale for the life of the object.
class ConLocal {
public:
    explicit ConLocal(const char* nombre) { EstableceLocalDelUsuario(QLocale(QString::fromLatin1(nombre))); }
    ~ConLocal() { EstableceLocalDelUsuario(std::nullopt); }
};

// Puts a utility object in place for the life of the object.
class ConUtilerias {
public:
    explicit ConUtilerias(std::shared_ptr<Utilerias> u) { SustituyeUtilerias(std::move(u)); }
    ~ConUtilerias() { SustituyeUtilerias(nullptr); }
};

}  // namespace kalo::prueba

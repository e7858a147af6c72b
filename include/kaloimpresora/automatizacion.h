#pragma once

#include <QString>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>

#include "kaloimpresora/conversiones.h"
#include "kaloimpresora/errores.h"
#include "kaloimpresora/exporta.h"
#include "kaloimpresora/variant.h"

namespace kalo {

inline constexpr int32_t kDispidDesconocido = -1;
// The default member, used when an object is converted to a value.
inline constexpr int32_t kDispidValor = 0;

enum class Llamada { Metodo, LeePropiedad, AsignaValor, AsignaReferencia };

// Any automation object, reached late-bound by member name or dispatch id.
// Subclasses override the two virtual members; the rest are conveniences.
class KALO_EXPORT Objeto {
public:
    virtual ~Objeto() = default;

    // Dispatch id of a member, the name compared case-insensitively;
    // kDispidDesconocido when there is no such member.
    virtual int32_t IdDeNombre(const QString& nombre) const;

    // Carries out a call. Arguments come in declaration order; a by-reference
    // argument that the member changes is written back into the span; omitted
    // trailing optionals take their defaults. An unknown id raises 438, and
    // every failure leaves as ErrorDeAutomatizacion.
    virtual Variant Invoca(int32_t dispid, Llamada tipo, std::span<Variant> argumentos);

    // By name; an unknown name raises 438.
    Variant InvocaPorNombre(const QString& nombre, Llamada tipo, std::span<Variant> argumentos);
    Variant Lee(const QString& propiedad);
    void Asigna(const QString& propiedad, Variant valor);
    void AsignaObjeto(const QString& propiedad, std::shared_ptr<Objeto> objeto);
    // Arguments by value: write-backs are not seen by the caller.
    Variant Llama(const QString& metodo, std::initializer_list<Variant> argumentos = {});
};

// The member table of a class: names, dispatch ids, argument rules.
class TablaDeMiembros;
KALO_EXPORT int32_t IdEnTabla(const TablaDeMiembros& tabla, const QString& nombre);
KALO_EXPORT Variant InvocaEnTabla(const TablaDeMiembros& tabla, Objeto& objeto, int32_t dispid, Llamada tipo,
                                  std::span<Variant> argumentos);

// Base of the component's objects: Clase gives its table as Clase::Tabla(),
// and binding by name and by id goes through it. Base is Objeto or a class
// derived from it.
template <class Clase, class Base = Objeto>
class ConTabla : public Base {
public:
    using Base::Base;
    int32_t IdDeNombre(const QString& nombre) const override { return IdEnTabla(Clase::Tabla(), nombre); }
    Variant Invoca(int32_t dispid, Llamada tipo, std::span<Variant> argumentos) override {
        return InvocaEnTabla(Clase::Tabla(), *this, dispid, tipo, argumentos);
    }
};

// Creates "KaloImpresora.Impresora" or "KaloImpresora.ParamData" (by program
// identifier or by class identifier); anything else raises 429.
KALO_EXPORT std::shared_ptr<Objeto> CreaObjeto(const QString& idDePrograma);

}  // namespace kalo

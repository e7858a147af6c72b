#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "kaloimpresora/conversiones.h"
#include "kaloimpresora/errores.h"
#include "kaloimpresora/exporta.h"
#include "kaloimpresora/variant.h"

namespace kalo {

inline constexpr int32_t kDispidDesconocido = -1;
// The default member, used when an object is converted to a value.
inline constexpr int32_t kDispidValor = 0;

enum class Llamada { Metodo, LeePropiedad, AsignaValor, AsignaReferencia };

// ---- Type information --------------------------------------------------------
// What an object tells of its members, for code that works over any object
// (copying every setting of one object into another, a C boundary, a
// language binding) without knowing its class.

// The declared type of a property, a parameter or a method's result.
enum class TipoDato {
    Variante,   // any value
    Booleano,
    Entero,     // 16-bit
    Largo,      // 32-bit
    Doble,
    Fecha,
    Texto,
    Objeto,     // any object, or Nothing
    ParamData,  // a kalo::ParamData, or Nothing
    Ninguno,    // no result
};

enum class ClaseDeMiembro {
    PropiedadValor,      // get and let
    PropiedadObjeto,     // get and set (by reference)
    PropiedadDeLectura,  // get only, possibly with parameters
    Metodo,
};

struct Parametro {
    QString nombre;
    TipoDato tipo = TipoDato::Variante;
    bool porReferencia = false;
    bool opcional = false;
    // Default of an optional; without one an omitted optional arrives as
    // Variant::Falta() (a typed one as its type's zero value).
    std::optional<Variant> omision;
};

struct DescripcionDeMiembro {
    QString nombre;
    int32_t dispid = 0;
    ClaseDeMiembro clase = ClaseDeMiembro::Metodo;
    TipoDato tipo = TipoDato::Ninguno;  // of the property, or the method's result
    std::vector<Parametro> parametros;  // methods and read-only properties

    // A property that takes a value (let) or a reference (set).
    bool asignable() const {
        return clase == ClaseDeMiembro::PropiedadValor || clase == ClaseDeMiembro::PropiedadObjeto;
    }
};

// A class's members in declaration order.
struct InformacionDeTipo {
    QString nombreDeClase;
    std::vector<DescripcionDeMiembro> miembros;

    // By name, compared case-insensitively; nullptr when there is none.
    KALO_EXPORT const DescripcionDeMiembro* Busca(const QString& nombre) const;
};

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

    // The object's members, or nullptr when it cannot describe itself (the
    // default). Objects built on ConTabla describe themselves from their table.
    virtual const InformacionDeTipo* Describe() const;
};

// The member table of a class: names, dispatch ids, argument rules.
class TablaDeMiembros;
KALO_EXPORT int32_t IdEnTabla(const TablaDeMiembros& tabla, const QString& nombre);
KALO_EXPORT Variant InvocaEnTabla(const TablaDeMiembros& tabla, Objeto& objeto, int32_t dispid, Llamada tipo,
                                  std::span<Variant> argumentos);
KALO_EXPORT const InformacionDeTipo& InformacionDeTabla(const TablaDeMiembros& tabla);

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
    const InformacionDeTipo* Describe() const override { return &InformacionDeTabla(Clase::Tabla()); }
};

// Creates an object of a class by its program identifier (or, for the
// component's own classes, its class identifier), compared case-insensitively:
// a class the host registered under that identifier, else one of the
// component's: "KaloImpresora.Impresora", "KaloImpresora.ParamData",
// "KaloImpresora.Conexion" (also "ADODB.Connection") and the default
// environment object "KaloEnviroment.Ambiente". Anything else raises 429.
KALO_EXPORT std::shared_ptr<Objeto> CreaObjeto(const QString& idDePrograma);

// Registers the host's own class under a program identifier, for the whole
// process: CreaObjeto creates it from then on, in place of any class of the
// component with that identifier (so a host gives the component its own
// environment object as "KaloEnviroment.Ambiente"). An empty fabrica removes
// the registration.
using FabricaDeObjetos = std::function<std::shared_ptr<Objeto>()>;
KALO_EXPORT void RegistraClase(const QString& idDePrograma, FabricaDeObjetos fabrica);

}  // namespace kalo

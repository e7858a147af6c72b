#pragma once

// Describes a dual interface member by member (name, dispatch id, kind,
// parameters) and carries out calls against it, so binding by name and by id
// always reach the same member with the same argument rules.

#include <QHash>
#include <QVarLengthArray>
#include <QString>
#include <algorithm>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include "kaloimpresora/automatizacion.h"

namespace kalo {

// TipoDato, ClaseDeMiembro and Parametro are public (kaloimpresora/automatizacion.h):
// tables are also their classes' type information.

// How member tables describe parameters: by reference (the interfaces' usual
// way) or by value, and optional with or without a default.
inline Parametro PorRef(QString nombre, TipoDato tipo = TipoDato::Variante) {
    return {std::move(nombre), tipo, true, false, {}};
}
inline Parametro PorValor(QString nombre, TipoDato tipo = TipoDato::Variante) {
    return {std::move(nombre), tipo, false, false, {}};
}
inline Parametro Opcional(Parametro p, std::optional<Variant> omision = {}) {
    p.opcional = true;
    p.omision = std::move(omision);
    return p;
}

// The value a typed slot takes: the runtime's conversion for the type. Object
// slots demand an object (Nothing included), raising 13 otherwise.
Variant Coacciona(const Variant& valor, TipoDato tipo);

// The zero value of a type: false, 0, "" or Nothing; Falta for a variant.
Variant ValorInicial(TipoDato tipo);

// Typed fields to and from variants already converted by Coacciona.
Variant AVariant(bool b, TipoDato);
Variant AVariant(int16_t i, TipoDato);
Variant AVariant(int32_t i, TipoDato);
Variant AVariant(double d, TipoDato tipo);  // Doble or Fecha
Variant AVariant(const QString& s, TipoDato);
Variant AVariant(const Variant& v, TipoDato);
Variant AVariant(const std::shared_ptr<Objeto>& o, TipoDato);
template <class T>
    requires std::is_convertible_v<std::shared_ptr<T>, std::shared_ptr<Objeto>>
Variant AVariant(const std::shared_ptr<T>& o, TipoDato) {
    return Variant(std::shared_ptr<Objeto>(o));
}

void DeVariant(const Variant& v, bool& campo);
void DeVariant(const Variant& v, int16_t& campo);
void DeVariant(const Variant& v, int32_t& campo);
void DeVariant(const Variant& v, double& campo);
void DeVariant(const Variant& v, QString& campo);
void DeVariant(const Variant& v, Variant& campo);
void DeVariant(const Variant& v, std::shared_ptr<Objeto>& campo);
template <class T>
    requires(!std::is_same_v<T, Objeto>)
void DeVariant(const Variant& v, std::shared_ptr<T>& campo) {
    campo = std::dynamic_pointer_cast<T>(v.objeto());
}

template <class Clase>
struct Miembro {
    QString nombre;
    int32_t dispid = 0;
    ClaseDeMiembro clase = ClaseDeMiembro::Metodo;
    TipoDato tipo = TipoDato::Ninguno;  // value of a property, result of a method
    std::vector<Parametro> parametros;  // methods and read-only properties
    // Properties with let or set.
    std::function<Variant(Clase&)> lee;
    std::function<void(Clase&, const Variant&)> asigna;
    // Methods and read-only properties. Receives exactly one slot per
    // parameter, already converted; may change the slots of by-reference
    // parameters. Empty while the member is not available yet.
    std::function<Variant(Clase&, std::span<Variant>)> llama;
    // Set by the table: every parameter is a by-reference variant.
    bool soloVariantesPorReferencia = false;
};

// Fills the slots for a method call: converts supplied arguments, applies
// defaults for omitted optionals, raises 449 for a missing required argument
// and 450 for too many.
// Inline room for any member's parameters: no call allocates for its slots.
using RanurasEnLinea = QVarLengthArray<Variant, 10>;
RanurasEnLinea PreparaArgumentos(const std::vector<Parametro>& parametros, std::span<const Variant> argumentos);

// The part of a member table that does not depend on the class: names and
// ids. Objects reach it through ConTabla (kaloimpresora/automatizacion.h).
class TablaDeMiembros {
public:
    virtual ~TablaDeMiembros() = default;

    int32_t IdDeNombre(const QString& nombre) const;
    virtual Variant Invoca(Objeto& objeto, int32_t dispid, Llamada tipo, std::span<Variant> argumentos) const = 0;
    const QString& nombreDeClase() const { return informacion_.nombreDeClase; }
    const InformacionDeTipo& informacion() const { return informacion_; }

protected:
    explicit TablaDeMiembros(QString nombreDeClase) { informacion_.nombreDeClase = std::move(nombreDeClase); }
    void Declara(DescripcionDeMiembro miembro);

private:
    // Names are found through our own hash, never qHash: Qt's hash of a short
    // string leaves the upper vector registers in use, and every SSE
    // instruction after it (deflate, while the PDF is written) runs up to a
    // third slower until something clears them.
    struct Nombre {
        QString nombre;
        QString plegado;
        int32_t id;
    };
    void Indexa(uint32_t entrada);

    InformacionDeTipo informacion_;
    std::vector<Nombre> nombres_;
    std::vector<uint32_t> indice_;  // open addressing; 0 empty, else entry + 1
};

template <class Clase>
class Interfaz final : public TablaDeMiembros {
public:
    explicit Interfaz(QString nombreDeClase, std::vector<Miembro<Clase>> miembros)
        : TablaDeMiembros(std::move(nombreDeClase)), miembros_(std::move(miembros)) {
        for (size_t i = 0; i < miembros_.size(); ++i) {
            Miembro<Clase>& m = miembros_[i];
            m.soloVariantesPorReferencia =
                std::all_of(m.parametros.begin(), m.parametros.end(),
                            [](const Parametro& p) { return p.porReferencia && p.tipo == TipoDato::Variante; });
            Declara({m.nombre, m.dispid, m.clase, m.tipo, m.parametros});
            porId_.insert(m.dispid, i);
        }
    }

    const std::vector<Miembro<Clase>>& miembros() const { return miembros_; }

    const Miembro<Clase>* PorId(int32_t dispid) const {
        auto it = porId_.constFind(dispid);
        return it == porId_.cend() ? nullptr : &miembros_[*it];
    }

    Variant Invoca(Objeto& objeto, int32_t dispid, Llamada tipo, std::span<Variant> argumentos) const override {
        return Invoca(static_cast<Clase&>(objeto), dispid, tipo, argumentos);
    }

    Variant Invoca(Clase& objeto, int32_t dispid, Llamada tipo, std::span<Variant> argumentos) const {
        const Miembro<Clase>* m = PorId(dispid);
        if (!m) Lanza(err::kNoAdmitePropiedadOMetodo, nombreDeClase());
        // Built only when something fails: this is every call's path.
        const auto origen = [&] { return nombreDeClase() + u'.' + m->nombre; };
        const bool lectura = tipo == Llamada::LeePropiedad || tipo == Llamada::Metodo;
        switch (m->clase) {
        case ClaseDeMiembro::PropiedadValor:
        case ClaseDeMiembro::PropiedadObjeto: {
            if (lectura) {
                if (!argumentos.empty()) Lanza(err::kNumeroDeArgumentosErroneo, origen());
                return m->lee(objeto);
            }
            const bool esperaObjeto = m->clase == ClaseDeMiembro::PropiedadObjeto;
            if (esperaObjeto != (tipo == Llamada::AsignaReferencia))
                Lanza(err::kNoAdmitePropiedadOMetodo, origen());
            if (argumentos.size() != 1) Lanza(err::kNumeroDeArgumentosErroneo, origen());
            if (esperaObjeto && !argumentos[0].esObjeto()) Lanza(err::kSeRequiereObjeto, origen());
            m->asigna(objeto, ConOrigen(origen, [&] { return Coacciona(argumentos[0], m->tipo); }));
            return Variant();
        }
        case ClaseDeMiembro::PropiedadDeLectura:
        case ClaseDeMiembro::Metodo: {
            if (!lectura) Lanza(err::kNoAdmitePropiedadOMetodo, origen());
            // Nothing to convert: the caller's arguments are the slots, as by
            // reference means (what the member wrote before an error stays).
            if (m->soloVariantesPorReferencia && m->llama && argumentos.size() == m->parametros.size() &&
                std::none_of(argumentos.begin(), argumentos.end(), [](const Variant& v) { return v.esFalta(); }))
                return m->llama(objeto, argumentos);
            RanurasEnLinea ranuras = ConOrigen(origen, [&] { return PreparaArgumentos(m->parametros, argumentos); });
            if (!m->llama) {
                LanzaNoDisponible(m->nombre, origen());
            }
            const std::span<Variant> vista(ranuras.data(), ranuras.size());
            if (argumentos.empty()) return m->llama(objeto, vista);
            const RanurasEnLinea antes = ranuras;
            Variant resultado = m->llama(objeto, vista);
            DevuelvePorReferencia(m->parametros, antes, ranuras, argumentos);
            return resultado;
        }
        }
        Lanza(err::kNoAdmitePropiedadOMetodo, origen());
    }

private:
    template <class O, class F>
    static auto ConOrigen(const O& origen, F&& f) -> decltype(f()) {
        try {
            return f();
        } catch (const ErrorDeAutomatizacion& e) {
            if (!e.origen().isEmpty()) throw;
            throw ErrorDeAutomatizacion(e.numero(), e.descripcion(), origen());
        }
    }

    static void DevuelvePorReferencia(const std::vector<Parametro>& parametros, const RanurasEnLinea& antes,
                                      const RanurasEnLinea& despues, std::span<Variant> argumentos) {
        for (size_t i = 0; i < argumentos.size() && i < parametros.size(); ++i) {
            if (parametros[i].porReferencia && !despues[i].identico(antes[i]))
                argumentos[i] = despues[i];
        }
    }

    std::vector<Miembro<Clase>> miembros_;
    QHash<int32_t, size_t> porId_;
};

// The typed table of a class that derives from ConTabla<Clase>.
template <class Clase>
const Interfaz<Clase>& InterfazDe() {
    return static_cast<const Interfaz<Clase>&>(Clase::Tabla());
}

// Builders for table entries.
// A property that can only be read (assigning it raises 438); without
// parameters it reads through lee.
template <class Clase>
Miembro<Clase> PropiedadDeLectura(QString nombre, int32_t dispid, TipoDato tipo, std::function<Variant(Clase&)> lee) {
    Miembro<Clase> m{std::move(nombre), dispid, ClaseDeMiembro::PropiedadDeLectura, tipo, {}, {}, {}, {}};
    m.llama = [lee = std::move(lee)](Clase& o, std::span<Variant>) { return lee(o); };
    return m;
}
template <class Clase>
Miembro<Clase> PropiedadDeLectura(QString nombre, int32_t dispid, TipoDato tipo, std::vector<Parametro> parametros,
                                  std::function<Variant(Clase&, std::span<Variant>)> llama) {
    return {std::move(nombre), dispid, ClaseDeMiembro::PropiedadDeLectura, tipo, std::move(parametros), {}, {},
            std::move(llama)};
}

// A property whose get and let go through the class's own procedures; without
// asigna it is read-only.
template <class Clase>
Miembro<Clase> PropiedadConProcedimientos(QString nombre, int32_t dispid, TipoDato tipo,
                                          std::function<Variant(Clase&)> lee,
                                          std::function<void(Clase&, const Variant&)> asigna) {
    if (!asigna) return PropiedadDeLectura<Clase>(std::move(nombre), dispid, tipo, std::move(lee));
    Miembro<Clase> m{std::move(nombre), dispid, ClaseDeMiembro::PropiedadValor, tipo, {}, std::move(lee),
                     std::move(asigna), {}};
    return m;
}

// A property backed by a data member; an object-typed one is assigned with Set.
template <class Clase, class Campo>
Miembro<Clase> Propiedad(QString nombre, int32_t dispid, TipoDato tipo, Campo Clase::*campo) {
    Miembro<Clase> m = PropiedadConProcedimientos<Clase>(
        std::move(nombre), dispid, tipo, [campo, tipo](Clase& o) { return AVariant(o.*campo, tipo); },
        [campo](Clase& o, const Variant& v) { DeVariant(v, o.*campo); });
    if (tipo == TipoDato::Objeto || tipo == TipoDato::ParamData) m.clase = ClaseDeMiembro::PropiedadObjeto;
    return m;
}

template <class Clase>
Miembro<Clase> Metodo(QString nombre, int32_t dispid, TipoDato resultado, std::vector<Parametro> parametros,
                      std::function<Variant(Clase&, std::span<Variant>)> llama = {}) {
    return {std::move(nombre), dispid, ClaseDeMiembro::Metodo, resultado, std::move(parametros), {}, {},
            std::move(llama)};
}

}  // namespace kalo

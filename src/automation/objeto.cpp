#include <QVarLengthArray>
#include <algorithm>
#include <array>

#include "automation/interfaz.h"
#include "kaloimpresora/automatizacion.h"

namespace kalo {

void LanzaNoDisponible(const QString& miembro, const QString& origen) {
    throw ErrorDeAutomatizacion(err::kNoAdmiteAccion,
                                DescripcionDeError(err::kNoAdmiteAccion) + QStringLiteral(": «") + miembro +
                                    QStringLiteral("» aún no está disponible"),
                                origen);
}

int32_t TablaDeMiembros::BuscaNombre(const QString& nombre) const {
    // Names usually come spelled as declared: no case folding, no allocation.
    if (auto exacto = porNombreExacto_.constFind(nombre); exacto != porNombreExacto_.cend()) return *exacto;
    auto it = porNombre_.constFind(nombre.toCaseFolded());
    return it == porNombre_.cend() ? kDispidDesconocido : *it;
}

int32_t TablaDeMiembros::IdDeNombre(const QString& nombre) const {
    // Callers ask for the same few names over and over, mostly from the same
    // literals: a small per-thread cache placed by where the text lives skips
    // hashing. A hit is checked on the text itself, never on its address alone;
    // tables are static, so a table's address names it for the whole run.
    struct Entrada {
        const TablaDeMiembros* tabla = nullptr;
        const QChar* donde = nullptr;
        qsizetype largo = 0;
        std::array<QChar, 24> texto;
        int32_t id = kDispidDesconocido;
    };
    thread_local std::array<Entrada, 64> cache;
    const qsizetype largo = nombre.size();
    if (largo > qsizetype(Entrada{}.texto.size())) return BuscaNombre(nombre);
    const auto donde = reinterpret_cast<uintptr_t>(nombre.constData());
    Entrada& e = cache[((donde >> 3) ^ (reinterpret_cast<uintptr_t>(this) >> 4)) % cache.size()];
    if (e.tabla == this && e.donde == nombre.constData() && e.largo == largo &&
        std::equal(nombre.cbegin(), nombre.cend(), e.texto.cbegin()))
        return e.id;
    const int32_t id = BuscaNombre(nombre);
    e.tabla = this;
    e.donde = nombre.constData();
    e.largo = largo;
    std::copy(nombre.cbegin(), nombre.cend(), e.texto.begin());
    e.id = id;
    return id;
}

int32_t IdEnTabla(const TablaDeMiembros& tabla, const QString& nombre) { return tabla.IdDeNombre(nombre); }

Variant InvocaEnTabla(const TablaDeMiembros& tabla, Objeto& objeto, int32_t dispid, Llamada tipo,
                      std::span<Variant> argumentos) {
    return tabla.Invoca(objeto, dispid, tipo, argumentos);
}

const InformacionDeTipo& InformacionDeTabla(const TablaDeMiembros& tabla) { return tabla.informacion(); }

const DescripcionDeMiembro* InformacionDeTipo::Busca(const QString& nombre) const {
    for (const DescripcionDeMiembro& m : miembros)
        if (m.nombre.compare(nombre, Qt::CaseInsensitive) == 0) return &m;
    return nullptr;
}

const InformacionDeTipo* Objeto::Describe() const { return nullptr; }

int32_t Objeto::IdDeNombre(const QString&) const { return kDispidDesconocido; }

Variant Objeto::Invoca(int32_t, Llamada, std::span<Variant>) {
    Lanza(err::kNoAdmitePropiedadOMetodo);
}

Variant Objeto::InvocaPorNombre(const QString& nombre, Llamada tipo, std::span<Variant> argumentos) {
    const int32_t id = IdDeNombre(nombre);
    if (id == kDispidDesconocido) Lanza(err::kNoAdmitePropiedadOMetodo, nombre);
    return Invoca(id, tipo, argumentos);
}

Variant Objeto::Lee(const QString& propiedad) {
    return InvocaPorNombre(propiedad, Llamada::LeePropiedad, {});
}

void Objeto::Asigna(const QString& propiedad, Variant valor) {
    InvocaPorNombre(propiedad, Llamada::AsignaValor, std::span<Variant>(&valor, 1));
}

void Objeto::AsignaObjeto(const QString& propiedad, std::shared_ptr<Objeto> objeto) {
    Variant valor(std::move(objeto));
    InvocaPorNombre(propiedad, Llamada::AsignaReferencia, std::span<Variant>(&valor, 1));
}

Variant Objeto::Llama(const QString& metodo, std::initializer_list<Variant> argumentos) {
    QVarLengthArray<Variant, 8> copia(argumentos.begin(), argumentos.end());
    return InvocaPorNombre(metodo, Llamada::Metodo, std::span<Variant>(copia.data(), copia.size()));
}

}  // namespace kalo

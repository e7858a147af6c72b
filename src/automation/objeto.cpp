#include <QVarLengthArray>
#include <algorithm>
#include <bit>

#include "automation/interfaz.h"
#include "kaloimpresora/automatizacion.h"

namespace kalo {

void LanzaNoDisponible(const QString& miembro, const QString& origen) {
    throw ErrorDeAutomatizacion(err::kNoAdmiteAccion,
                                DescripcionDeError(err::kNoAdmiteAccion) + QStringLiteral(": «") + miembro +
                                    QStringLiteral("» aún no está disponible"),
                                origen);
}

namespace {

// Case folding one UTF-16 unit at a time, as the names are stored.
char16_t Pliega(QChar c) {
    const char16_t u = c.unicode();
    if (u < 0x80) return (u >= u'A' && u <= u'Z') ? char16_t(u | 0x20) : u;
    return QChar::toCaseFolded(u);
}

// Length and three letters tell the names of a table apart well enough; the
// rare collision costs one more comparison.
uint32_t HashPlegado(QStringView texto) {
    const auto n = uint32_t(texto.size());
    if (n == 0) return 0;
    const uint32_t h = n ^ (uint32_t(Pliega(texto[0])) << 8) ^ (uint32_t(Pliega(texto[n / 2])) << 16) ^
                       (uint32_t(Pliega(texto[n - 1])) << 24);
    const uint32_t m = h * 2654435761u;
    return m ^ (m >> 15);
}

}  // namespace

// No table has two names that differ only in case.
void TablaDeMiembros::Declara(DescripcionDeMiembro miembro) {
    QString plegado(miembro.nombre.size(), Qt::Uninitialized);
    std::transform(miembro.nombre.cbegin(), miembro.nombre.cend(), plegado.begin(),
                   [](QChar c) { return QChar(Pliega(c)); });
    nombres_.push_back({miembro.nombre, std::move(plegado), miembro.dispid});
    informacion_.miembros.push_back(std::move(miembro));
    if (2 * nombres_.size() > indice_.size()) {
        indice_.assign(std::bit_ceil(4 * nombres_.size()), 0);
        for (uint32_t i = 0; i < nombres_.size(); ++i) Indexa(i);
    } else {
        Indexa(uint32_t(nombres_.size() - 1));
    }
}

void TablaDeMiembros::Indexa(uint32_t entrada) {
    const size_t mascara = indice_.size() - 1;
    size_t i = HashPlegado(nombres_[entrada].plegado) & mascara;
    while (indice_[i] != 0) i = (i + 1) & mascara;
    indice_[i] = entrada + 1;
}

int32_t TablaDeMiembros::IdDeNombre(const QString& nombre) const {
    if (indice_.empty()) return kDispidDesconocido;
    const size_t mascara = indice_.size() - 1;
    for (size_t i = HashPlegado(nombre) & mascara; indice_[i] != 0; i = (i + 1) & mascara) {
        const Nombre& n = nombres_[indice_[i] - 1];
        // Usually spelled as declared: compared whole before letter by letter.
        if (n.plegado.size() == nombre.size() &&
            (nombre == n.nombre || std::equal(nombre.cbegin(), nombre.cend(), n.plegado.cbegin(), [](QChar c, QChar p) {
                 return Pliega(c) == p.unicode();
             })))
            return n.id;
    }
    return kDispidDesconocido;
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

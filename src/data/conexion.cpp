#include "data/conexion.h"

#include "automation/interfaz.h"
#include "data/cadena_de_conexion.h"
#include "data/enlace.h"

namespace kalo {

namespace {

using namespace Qt::StringLiterals;
using T = TipoDato;
using Ranuras = std::span<Variant>;

constexpr int32_t kCerrado = 0;
constexpr int32_t kAbierto = 1;

}  // namespace

// ---- Conexion ---------------------------------------------------------------

void Conexion::ConnectionString(const QString& cadena) {
    if (enlace_) Lanza(err::kObjetoAbierto, u"Connection.ConnectionString"_s);
    cadena_ = cadena;
}

void Conexion::Open(const QString& cadena, const QString& usuario, const QString& contrasena) {
    if (enlace_) Lanza(err::kObjetoAbierto, u"Connection.Open"_s);
    if (!cadena.isEmpty()) cadena_ = cadena;
    ParametrosDeConexion p = LeeCadenaDeConexion(cadena_);
    if (!usuario.isEmpty()) p.usuario = usuario;
    if (!contrasena.isEmpty()) p.contrasena = contrasena;
    enlace_ = Enlace::Abre(p);
}

void Conexion::Close() {
    if (!enlace_) Lanza(err::kObjetoCerrado, u"Connection.Close"_s);
    enlace_->Cierra();
    enlace_.reset();
}

int32_t Conexion::State() const { return enlace_ ? kAbierto : kCerrado; }

std::shared_ptr<Recordset> Conexion::Execute(const QString& sql, int32_t* filasAfectadas) {
    if (!enlace_) Lanza(err::kObjetoCerrado, u"Connection.Execute"_s);
    std::shared_ptr<Cursor> cursor = Cursor::Abre(enlace_, sql);
    if (filasAfectadas) *filasAfectadas = cursor->filasAfectadas();
    return std::make_shared<Recordset>(std::move(cursor));
}

const TablaDeMiembros& Conexion::Tabla() {
    using C = Conexion;
    static const Interfaz<C> interfaz(
        u"Connection"_s,
        {
            PropiedadConProcedimientos<C>(
                u"ConnectionString"_s, kDispidValor, T::Texto, [](C& c) { return Variant(c.ConnectionString()); },
                [](C& c, const Variant& v) { c.ConnectionString(v.texto()); }),
            Metodo<C>(u"Open"_s, 1, T::Ninguno,
                      {Opcional(PorValor(u"ConnectionString"_s, T::Texto)), Opcional(PorValor(u"UserID"_s, T::Texto)),
                       Opcional(PorValor(u"Password"_s, T::Texto)),
                       Opcional(PorValor(u"Options"_s, T::Largo), Variant(int32_t{-1}))},
                      [](C& c, Ranuras a) {
                          c.Open(a[0].texto(), a[1].texto(), a[2].texto());
                          return Variant();
                      }),
            Metodo<C>(u"Close"_s, 2, T::Ninguno, {},
                      [](C& c, Ranuras) {
                          c.Close();
                          return Variant();
                      }),
            Metodo<C>(u"Execute"_s, 3, T::Objeto,
                      {PorValor(u"CommandText"_s, T::Texto), Opcional(PorRef(u"RecordsAffected"_s)),
                       Opcional(PorValor(u"Options"_s, T::Largo), Variant(int32_t{-1}))},
                      [](C& c, Ranuras a) {
                          int32_t filas = 0;
                          auto recordset = c.Execute(a[0].texto(), &filas);
                          a[1] = Variant(filas);
                          return Variant(recordset);
                      }),
            PropiedadDeLectura<C>(u"State"_s, 4, T::Largo, [](C& c) { return Variant(c.State()); }),
        });
    return interfaz;
}

// ---- Recordset --------------------------------------------------------------

Recordset::Recordset(std::shared_ptr<Cursor> cursor)
    : cursor_(std::move(cursor)), campos_(std::make_shared<Campos>(cursor_)) {}

bool Recordset::Eof() const {
    if (!cursor_->abierto()) Lanza(err::kObjetoCerrado, u"Recordset.EOF"_s);
    return cursor_->eof();
}

bool Recordset::Bof() const {
    if (!cursor_->abierto()) Lanza(err::kObjetoCerrado, u"Recordset.BOF"_s);
    return cursor_->bof();
}

void Recordset::MoveNext() { cursor_->Siguiente(); }
void Recordset::MoveFirst() { cursor_->Primero(); }

void Recordset::Close() {
    if (!cursor_->abierto()) Lanza(err::kObjetoCerrado, u"Recordset.Close"_s);
    cursor_->Cierra();
}

int32_t Recordset::State() const { return cursor_->abierto() ? kAbierto : kCerrado; }

int32_t Recordset::RecordCount() const {
    if (!cursor_->abierto()) Lanza(err::kObjetoCerrado, u"Recordset.RecordCount"_s);
    return cursor_->cuenta();
}

const QString& Recordset::Source() const { return cursor_->sql(); }

std::shared_ptr<Campos> Recordset::Fields() const {
    if (!cursor_->abierto()) Lanza(err::kObjetoCerrado, u"Recordset.Fields"_s);
    return campos_;
}

std::shared_ptr<Campo> Recordset::Field(const Variant& indice) const { return Fields()->Item(indice); }

Variant Recordset::Valor(int columna) const { return cursor_->Valor(columna); }

const TablaDeMiembros& Recordset::Tabla() {
    using R = Recordset;
    static const Interfaz<R> interfaz(
        u"Recordset"_s,
        {
            // Fields(i), and so rs(i), is Fields.Item(i).
            PropiedadDeLectura<R>(u"Fields"_s, kDispidValor, T::Objeto, {Opcional(PorValor(u"Index"_s))},
                                  [](R& r, Ranuras a) {
                                      if (a[0].esFalta()) return Variant(r.Fields());
                                      return Variant(r.Field(a[0]));
                                  }),
            PropiedadDeLectura<R>(u"BOF"_s, 1, T::Booleano, [](R& r) { return Variant(r.Bof()); }),
            PropiedadDeLectura<R>(u"EOF"_s, 2, T::Booleano, [](R& r) { return Variant(r.Eof()); }),
            PropiedadDeLectura<R>(u"RecordCount"_s, 3, T::Largo, [](R& r) { return Variant(r.RecordCount()); }),
            PropiedadDeLectura<R>(u"State"_s, 4, T::Largo, [](R& r) { return Variant(r.State()); }),
            PropiedadDeLectura<R>(u"Source"_s, 5, T::Texto, [](R& r) { return Variant(r.Source()); }),
            Metodo<R>(u"MoveNext"_s, 6, T::Ninguno, {},
                      [](R& r, Ranuras) {
                          r.MoveNext();
                          return Variant();
                      }),
            Metodo<R>(u"MoveFirst"_s, 7, T::Ninguno, {},
                      [](R& r, Ranuras) {
                          r.MoveFirst();
                          return Variant();
                      }),
            Metodo<R>(u"Close"_s, 8, T::Ninguno, {},
                      [](R& r, Ranuras) {
                          r.Close();
                          return Variant();
                      }),
        });
    return interfaz;
}

// ---- Campos -----------------------------------------------------------------

Campos::Campos(std::shared_ptr<Cursor> cursor) : cursor_(std::move(cursor)) {
    if (!cursor_->abierto()) return;
    const int n = static_cast<int>(cursor_->columnas().size());
    campos_.reserve(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i) campos_.push_back(std::make_shared<Campo>(cursor_, i));
}

int32_t Campos::Count() const {
    if (!cursor_->abierto()) Lanza(err::kObjetoCerrado, u"Fields.Count"_s);
    return static_cast<int32_t>(campos_.size());
}

std::shared_ptr<Campo> Campos::Item(const Variant& indice) const {
    if (!cursor_->abierto()) Lanza(err::kObjetoCerrado, u"Fields.Item"_s);
    if (indice.esTexto()) {
        const std::vector<Columna>& columnas = cursor_->columnas();
        for (size_t i = 0; i < columnas.size(); ++i)
            if (columnas[i].nombre.compare(indice.texto(), Qt::CaseInsensitive) == 0) return campos_[i];
    } else {
        const int32_t i = CLng(indice);
        if (i >= 0 && static_cast<size_t>(i) < campos_.size()) return campos_[static_cast<size_t>(i)];
    }
    throw ErrorDeAutomatizacion(err::kElementoNoEncontrado,
                                DescripcionDeError(err::kElementoNoEncontrado) + u": «"_s + CStr(indice) + u"»"_s,
                                u"Fields.Item"_s);
}

const TablaDeMiembros& Campos::Tabla() {
    using C = Campos;
    static const Interfaz<C> interfaz(
        u"Fields"_s, {
                         PropiedadDeLectura<C>(u"Item"_s, kDispidValor, T::Objeto, {PorValor(u"Index"_s)},
                                               [](C& c, Ranuras a) { return Variant(c.Item(a[0])); }),
                         PropiedadDeLectura<C>(u"Count"_s, 1, T::Largo, [](C& c) { return Variant(c.Count()); }),
                     });
    return interfaz;
}

// ---- Campo ------------------------------------------------------------------

Variant Campo::Value() const { return cursor_->Valor(columna_); }

QString Campo::Name() const { return cursor_->columna(columna_).nombre; }

int32_t Campo::Type() const { return NumeroDeTipo(cursor_->columna(columna_).tipo); }

const TablaDeMiembros& Campo::Tabla() {
    using C = Campo;
    static const Interfaz<C> interfaz(
        u"Field"_s, {
                        PropiedadDeLectura<C>(u"Value"_s, kDispidValor, T::Variante, [](C& c) { return c.Value(); }),
                        PropiedadDeLectura<C>(u"Name"_s, 1, T::Texto, [](C& c) { return Variant(c.Name()); }),
                        PropiedadDeLectura<C>(u"Type"_s, 2, T::Largo, [](C& c) { return Variant(c.Type()); }),
                    });
    return interfaz;
}

}  // namespace kalo

// The component's own environment object and the copy of an environment for
// a branch.

#include "data/ambiente.h"

#include "automation/interfaz.h"
#include "automation/registro_de_clases.h"
#include "data/cadena_de_conexion.h"
#include "kaloimpresora/ambiente.h"

namespace kalo {

namespace {

using namespace Qt::StringLiterals;
using T = TipoDato;

constexpr char16_t kIdDePrograma[] = u"KaloEnviroment.Ambiente";

ParametrosDeConexion ParametrosDe(const std::shared_ptr<Objeto>& conexion) {
    if (!conexion) return {};
    try {
        return LeeCadenaDeConexion(CStr(conexion->Lee(u"ConnectionString"_s)));
    } catch (const ErrorDeAutomatizacion&) {
        return {};  // a connection of another kind, or a string that does not read
    }
}

std::vector<Miembro<Ambiente>> Miembros() {
    std::vector<Miembro<Ambiente>> m;
    int32_t id = 0;
    auto prop = [&](const char16_t* nombre, TipoDato tipo, auto campo) {
        m.push_back(Propiedad<Ambiente>(QString::fromUtf16(nombre), ++id, tipo, campo));
    };
    auto lectura = [&](const char16_t* nombre, QString (Ambiente::*lee)() const) {
        m.push_back(PropiedadDeLectura<Ambiente>(QString::fromUtf16(nombre), ++id, T::Texto,
                                                 [lee](Ambiente& a) { return Variant((a.*lee)()); }));
    };
    prop(u"Conexion", T::Objeto, &Ambiente::Conexion);
    lectura(u"BaseDeDatos", &Ambiente::BaseDeDatos);
    lectura(u"Servidor", &Ambiente::Servidor);
    prop(u"Empresa", T::Texto, &Ambiente::Empresa);
    prop(u"RazonSocial", T::Texto, &Ambiente::RazonSocial);
    prop(u"IdentificacionFiscal", T::Texto, &Ambiente::IdentificacionFiscal);
    prop(u"DomicilioFiscal", T::Texto, &Ambiente::DomicilioFiscal);
    prop(u"Telefono", T::Texto, &Ambiente::Telefono);
    prop(u"CorreoElectronico", T::Texto, &Ambiente::CorreoElectronico);
    prop(u"ClaveEmpresa", T::Texto, &Ambiente::ClaveEmpresa);
    prop(u"ClaveSucursal", T::Texto, &Ambiente::ClaveSucursal);
    prop(u"NombreSucursal", T::Texto, &Ambiente::NombreSucursal);
    prop(u"ClaveAlmacen", T::Texto, &Ambiente::ClaveAlmacen);
    prop(u"NombreAlmacen", T::Texto, &Ambiente::NombreAlmacen);
    prop(u"Usuario", T::Texto, &Ambiente::Usuario);
    prop(u"NombreUsuario", T::Texto, &Ambiente::NombreUsuario);
    prop(u"Terminal", T::Texto, &Ambiente::Terminal);
    prop(u"ClaveMoneda", T::Texto, &Ambiente::ClaveMoneda);
    prop(u"SimboloMoneda", T::Texto, &Ambiente::SimboloMoneda);
    prop(u"CarpetaDeDatos", T::Texto, &Ambiente::CarpetaDeDatos);
    prop(u"CarpetaDeReportes", T::Texto, &Ambiente::CarpetaDeReportes);
    prop(u"CarpetaDeImagenes", T::Texto, &Ambiente::CarpetaDeImagenes);
    prop(u"CarpetaTemporal", T::Texto, &Ambiente::CarpetaTemporal);
    prop(u"Logotipo", T::Texto, &Ambiente::Logotipo);
    prop(u"Ejercicio", T::Entero, &Ambiente::Ejercicio);
    prop(u"DecimalesImporte", T::Entero, &Ambiente::DecimalesImporte);
    prop(u"DecimalesCantidad", T::Entero, &Ambiente::DecimalesCantidad);
    prop(u"DecimalesPrecio", T::Entero, &Ambiente::DecimalesPrecio);
    prop(u"NivelDeUsuario", T::Entero, &Ambiente::NivelDeUsuario);
    prop(u"PreciosConImpuesto", T::Entero, &Ambiente::PreciosConImpuesto);
    prop(u"Periodo1", T::Largo, &Ambiente::Periodo1);
    prop(u"Periodo2", T::Largo, &Ambiente::Periodo2);
    prop(u"IdUsuario", T::Largo, &Ambiente::IdUsuario);
    prop(u"IdSucursal", T::Largo, &Ambiente::IdSucursal);
    prop(u"TipoDeCambio", T::Variante, &Ambiente::TipoDeCambio);
    prop(u"TasaDeImpuesto", T::Variante, &Ambiente::TasaDeImpuesto);
    prop(u"Sucursales", T::Objeto, &Ambiente::Sucursales);
    prop(u"Parametros", T::Objeto, &Ambiente::Parametros);
    prop(u"Impuestos", T::Objeto, &Ambiente::Impuestos);
    prop(u"Avance", T::Objeto, &Ambiente::Avance);
    return m;
}

bool Es(const QString& nombre, const char16_t* otro) {
    return nombre.compare(QStringView(otro), Qt::CaseInsensitive) == 0;
}

}  // namespace

QString Ambiente::BaseDeDatos() const { return ParametrosDe(Conexion).baseDeDatos; }
QString Ambiente::Servidor() const { return ParametrosDe(Conexion).servidor; }

const TablaDeMiembros& Ambiente::Tabla() {
    static const Interfaz<Ambiente> interfaz(u"Ambiente"_s, Miembros());
    return interfaz;
}

std::shared_ptr<Objeto> CreaAmbiente() {
    if (auto propio = CreaObjetoRegistrado(QString::fromUtf16(kIdDePrograma))) return propio;
    return std::make_shared<Ambiente>();
}

std::shared_ptr<Objeto> CopiaAmbiente(Objeto& principal, const std::shared_ptr<Objeto>& conexion,
                                      const QString& nombreSucursal, bool ignoraFallas) {
    std::shared_ptr<Objeto> nuevo = CreaAmbiente();
    const InformacionDeTipo* tipo = nuevo->Describe();
    if (!tipo) {
        throw ErrorDeAutomatizacion(err::kNoAdmiteAccion,
                                    DescripcionDeError(err::kNoAdmiteAccion) +
                                        u": el objeto de ambiente no describe sus miembros"_s,
                                    u"CopiaAmbiente"_s);
    }
    const auto paso = [ignoraFallas](auto&& accion) {
        if (!ignoraFallas) return accion();
        try {
            accion();
        } catch (const ErrorDeAutomatizacion&) {
            // The property keeps its initial value.
        }
    };
    paso([&] { nuevo->AsignaObjeto(u"Conexion"_s, conexion); });
    for (const DescripcionDeMiembro& m : tipo->miembros) {
        if (!m.asignable() || Es(m.nombre, u"Conexion")) continue;
        paso([&] {
            Variant valor = Es(m.nombre, u"NombreSucursal") ? Variant(nombreSucursal) : principal.Lee(m.nombre);
            const Llamada llamada =
                m.clase == ClaseDeMiembro::PropiedadObjeto ? Llamada::AsignaReferencia : Llamada::AsignaValor;
            nuevo->Invoca(m.dispid, llamada, std::span<Variant>(&valor, 1));
        });
    }
    return nuevo;
}

}  // namespace kalo

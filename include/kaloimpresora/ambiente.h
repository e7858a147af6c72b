#pragma once

#include "kaloimpresora/exporta.h"

#include <QString>
#include <cstdint>
#include <memory>

#include "kaloimpresora/automatizacion.h"
#include "kaloimpresora/variant.h"

namespace kalo {

// The environment object: what the host knows about where it is working,
// handed to the report dialogs as their Ambiente. This is the component's
// own, created as "KaloEnviroment.Ambiente" unless the host registers its
// own class under that identifier (RegistraClase). Every setting is a plain
// property: the component never interprets one except the five the
// dialogs read (Conexion, Sucursales, Periodo1, Periodo2, NombreSucursal).
//
// When the dialogs switch to a branch they copy the environment through its
// member table: every property that can be set, in this order; Conexion is
// the branch's own and NombreSucursal the branch's name, never copied. Texts
// and numbers are copied by value, objects (and objects inside variants) by
// reference, so a branch environment shares the main one's recordsets and
// collections.
class KALO_EXPORT Ambiente : public ConTabla<Ambiente> {
public:
    static const TablaDeMiembros& Tabla();

    std::shared_ptr<Objeto> Conexion;  // the database connection
    // Read from Conexion's ConnectionString; so not copied.
    QString BaseDeDatos() const;
    QString Servidor() const;

    // Company.
    QString Empresa;
    QString RazonSocial;
    QString IdentificacionFiscal;  // the tax id
    QString DomicilioFiscal;
    QString Telefono;
    QString CorreoElectronico;
    // Branch and warehouse.
    QString ClaveEmpresa;
    QString ClaveSucursal;
    QString NombreSucursal;  // also the name of a branch environment
    QString ClaveAlmacen;
    QString NombreAlmacen;
    // User and workstation.
    QString Usuario;
    QString NombreUsuario;
    QString Terminal;
    // Currency.
    QString ClaveMoneda;
    QString SimboloMoneda;
    // Folders and files.
    QString CarpetaDeDatos;
    QString CarpetaDeReportes;
    QString CarpetaDeImagenes;
    QString CarpetaTemporal;
    QString Logotipo;
    // Small numbers and flags (true is -1).
    int16_t Ejercicio = 0;  // the fiscal year
    int16_t DecimalesImporte = 2;
    int16_t DecimalesCantidad = 2;
    int16_t DecimalesPrecio = 2;
    int16_t NivelDeUsuario = 0;
    int16_t PreciosConImpuesto = 0;
    // The working period, as the host numbers it, and ids.
    int32_t Periodo1 = 0;
    int32_t Periodo2 = 0;
    int32_t IdUsuario = 0;
    int32_t IdSucursal = 0;
    // Any value.
    Variant TipoDeCambio;
    Variant TasaDeImpuesto;
    // Objects the host shares with its reports.
    std::shared_ptr<Objeto> Sucursales;  // 1-based, Count; items with Name and Connection
    std::shared_ptr<Objeto> Parametros;
    std::shared_ptr<Objeto> Impuestos;
    std::shared_ptr<Objeto> Avance;
};

}  // namespace kalo

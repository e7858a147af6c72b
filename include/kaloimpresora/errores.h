#pragma once

#include "kaloimpresora/exporta.h"

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <exception>

namespace kalo {

// Error numbers of the automation runtime that this component raises.
namespace err {
inline constexpr int32_t kLlamadaNoValida = 5;
inline constexpr int32_t kDesbordamiento = 6;
inline constexpr int32_t kMemoriaInsuficiente = 7;
inline constexpr int32_t kSubindiceFueraDeIntervalo = 9;
inline constexpr int32_t kDivisionPorCero = 11;
inline constexpr int32_t kTiposNoCoinciden = 13;
inline constexpr int32_t kArchivoNoEncontrado = 53;
inline constexpr int32_t kAccesoARutaOArchivo = 75;
inline constexpr int32_t kEspacioDeCadenaInsuficiente = 14;
inline constexpr int32_t kObjetoNoEstablecido = 91;
inline constexpr int32_t kUsoNoValidoDeNull = 94;
inline constexpr int32_t kValorDePropiedadNoValido = 380;
inline constexpr int32_t kSeRequiereObjeto = 424;
inline constexpr int32_t kNoPuedeCrearObjeto = 429;
inline constexpr int32_t kNoAdmitePropiedadOMetodo = 438;
inline constexpr int32_t kNoAdmiteAccion = 445;
inline constexpr int32_t kArgumentoConNombreNoEncontrado = 448;
inline constexpr int32_t kArgumentoNoOpcional = 449;
inline constexpr int32_t kNumeroDeArgumentosErroneo = 450;
inline constexpr int32_t kImagenNoValida = 481;
inline constexpr int32_t kErrorDeImpresora = 482;
// A failed spool-file operation (the runtime's range for errors of objects).
inline constexpr int32_t kErrorDeBaseDeDatos = -2147221504 + 1001;
// Database access, numbered as the data-access objects number them; a
// failure the database reports carries its own text after the description.
inline constexpr int32_t kErrorNoEspecificado = -2147467259;  // a connection the server refused
inline constexpr int32_t kErrorEnLaInstruccion = -2147217900;  // SQL the database rejected
inline constexpr int32_t kArgumentosNoValidos = 3001;
inline constexpr int32_t kSinRegistroActual = 3021;
inline constexpr int32_t kElementoNoEncontrado = 3265;
inline constexpr int32_t kObjetoCerrado = 3704;
inline constexpr int32_t kObjetoAbierto = 3705;
inline constexpr int32_t kProveedorNoEncontrado = 3706;
}  // namespace err

// The runtime's Spanish description for an error number; a generic text for
// numbers it does not know.
KALO_EXPORT QString DescripcionDeError(int32_t numero);

// Every failure leaves the component as one of these, carrying the runtime's
// error number and description, like an automation error would.
class KALO_EXPORT ErrorDeAutomatizacion : public std::exception {
public:
    explicit ErrorDeAutomatizacion(int32_t numero, QString origen = {});
    ErrorDeAutomatizacion(int32_t numero, QString descripcion, QString origen);

    int32_t numero() const noexcept { return numero_; }
    const QString& descripcion() const noexcept { return descripcion_; }
    const QString& origen() const noexcept { return origen_; }
    const char* what() const noexcept override { return what_.constData(); }

private:
    int32_t numero_;
    QString descripcion_;
    QString origen_;
    QByteArray what_;
};

[[noreturn]] KALO_EXPORT void Lanza(int32_t numero, const QString& origen = {});

// Error 445 for a member whose feature this build does not offer yet.
[[noreturn]] KALO_EXPORT void LanzaNoDisponible(const QString& miembro, const QString& origen);

}  // namespace kalo

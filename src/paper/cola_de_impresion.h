#pragma once

// The print system's side of paper forms, with the calls the form routines
// make of a spooler: printers opened by device name, user forms defined per
// printer, the driver settings of a printer and the reset of its device
// context. The forms live for the process, per device name, and are never
// deleted.
//
// Driver settings travel as a byte buffer: a public part of 124 bytes laid out
// as the platform's DEVMODEA up to dmDisplayFrequency, then the driver's own
// tail, which callers hand back untouched. Resetting the device context with
// a form name in them puts the current printer object on that form's sheet
// through its Width and Height members (twips, as the sheet lies); a form
// larger than the device takes leaves the sheet as it was, as a driver does.

#include <QByteArray>
#include <QString>
#include <cstdint>
#include <vector>

namespace kalo::cola {

using Manejador = intptr_t;  // 0: none

// The public part of the driver settings.
inline constexpr qsizetype kTamanoPublico = 124;
inline constexpr qsizetype kPosicionDeCampos = 40;        // dmFields, 32 bits
inline constexpr qsizetype kPosicionDeNombreDeForma = 70;  // dmFormName
inline constexpr qsizetype kLargoDeNombreDeForma = 32;
inline constexpr uint32_t kCampoNombreDeForma = 0x00010000;  // DM_FORMNAME

// Modes of PropiedadesDelDocumento.
inline constexpr int32_t kSoloTamano = 0;
inline constexpr int32_t kBufferDeSalida = 2;   // DM_OUT_BUFFER
inline constexpr int32_t kBufferDeEntrada = 8;  // DM_IN_BUFFER

// The platform's last-error codes that these calls leave.
namespace error {
inline constexpr int32_t kManejadorNoValido = 6;
inline constexpr int32_t kYaExiste = 80;
inline constexpr int32_t kParametroNoValido = 87;
inline constexpr int32_t kNombreDeImpresoraNoValido = 1801;
inline constexpr int32_t kNombreDeFormaNoValido = 1902;
}  // namespace error

// A user form: sizes and printable area in thousandths of a millimetre.
struct Forma {
    uint32_t banderas = 0;  // 0: defined by a user
    QString nombre;
    int32_t cx = 0;
    int32_t cy = 0;
    int32_t izquierda = 0, arriba = 0, derecha = 0, abajo = 0;
};

// 0 when the name is neither the current printer's DeviceName nor one of the
// print system's printers.
Manejador AbreImpresora(const QString& dispositivo);
bool CierraImpresora(Manejador impresora);

// Mode kSoloTamano: the size of the settings buffer, or -1. Mode
// kBufferDeSalida: the driver's settings into *salida. With kBufferDeEntrada
// too, the fields of *entrada named in its dmFields are merged in first;
// entrada and salida may be the same buffer. 1 on success, -1 on failure.
int32_t PropiedadesDelDocumento(int32_t propietario, Manejador impresora, const QString& dispositivo,
                                QByteArray* salida, const QByteArray* entrada, int32_t modo);

// Defines a form; fails when the name exists or a size is not positive.
bool AgregaForma(Manejador impresora, const Forma& forma);
// Redefines the named form; fails when there is none.
bool RedefineForma(Manejador impresora, const QString& nombre, const Forma& forma);

// Applies the settings to the current printer's device context. False, with
// nothing changed, when they name no form of the device or one the device
// cannot take. A failing printer member raises.
bool ReiniciaContexto(int32_t hdc, const QByteArray& ajustes);

// The code the last failing call of this thread left.
int32_t UltimoError();

// What the print system holds, for whoever needs to look.
std::vector<Forma> FormasDe(const QString& dispositivo);
struct Seleccion {
    QByteArray nombreDeForma;  // the 32 bytes of dmFormName the last reset carried
    QString forma;             // the form the sheet was set to; empty when none
    int32_t hdc = 0;
};
// The last reset of the device's context; empty before any.
Seleccion UltimaSeleccion(const QString& dispositivo);
int32_t ImpresorasAbiertas();

}  // namespace kalo::cola

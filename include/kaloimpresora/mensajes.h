#pragma once

#include "kaloimpresora/exporta.h"

// The runtime's message box. Styles and answers are numbered as the runtime
// numbers them, so hosts and the component speak the same values.

#include <QString>
#include <cstdint>
#include <functional>

namespace kalo {

namespace estilo {
// Buttons (the low bits, one of these).
inline constexpr int32_t kAceptar = 0;
inline constexpr int32_t kAceptarCancelar = 1;
inline constexpr int32_t kAnularReintentarOmitir = 2;
inline constexpr int32_t kSiNoCancelar = 3;
inline constexpr int32_t kSiNo = 4;
inline constexpr int32_t kReintentarCancelar = 5;
// Icon.
inline constexpr int32_t kCritico = 16;
inline constexpr int32_t kPregunta = 32;
inline constexpr int32_t kExclamacion = 48;
inline constexpr int32_t kInformacion = 64;
// Which button is the default one (the first unless one of these).
inline constexpr int32_t kSegundoBotonPredeterminado = 256;
inline constexpr int32_t kTercerBotonPredeterminado = 512;
}  // namespace estilo

// The button the user pressed.
namespace respuesta {
inline constexpr int32_t kAceptar = 1;
inline constexpr int32_t kCancelar = 2;
inline constexpr int32_t kAnular = 3;
inline constexpr int32_t kReintentar = 4;
inline constexpr int32_t kOmitir = 5;
inline constexpr int32_t kSi = 6;
inline constexpr int32_t kNo = 7;
}  // namespace respuesta

// Shows texto modally and returns the button pressed. An empty title shows
// the application's name. Unless replaced, a real message box of the user's
// interface thread: it blocks until answered.
KALO_EXPORT int32_t MsgBox(const QString& texto, int32_t estilo, const QString& titulo);

// Who shows the message boxes: hosts with their own dialogs, and tests and
// headless processes that must never block. An empty function brings back
// the real message box. Set it from the user-interface thread.
using PresentadorDeMensajes = std::function<int32_t(const QString& texto, int32_t estilo, const QString& titulo)>;
KALO_EXPORT void EstablecePresentadorDeMensajes(PresentadorDeMensajes presentador);

}  // namespace kalo

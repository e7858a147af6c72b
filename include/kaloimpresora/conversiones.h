#pragma once

#include "kaloimpresora/exporta.h"

#include <QLocale>
#include <QString>
#include <cstdint>
#include <optional>

#include "kaloimpresora/variant.h"

namespace kalo {

// The runtime's conversions. Numeric text is read in the user's locale;
// Empty gives 0 or ""; non-numeric text raises 13; Null raises 94; a value out
// of range raises 6; whole-number results round halves to even. An object is
// converted through its default member (dispatch id 0); Nothing raises 91.
KALO_EXPORT QString CStr(const Variant& v);
KALO_EXPORT double CDbl(const Variant& v);
KALO_EXPORT float CSng(const Variant& v);
KALO_EXPORT bool CBool(const Variant& v);
KALO_EXPORT int16_t CInt(const Variant& v);
KALO_EXPORT int32_t CLng(const Variant& v);
KALO_EXPORT Moneda CCur(const Variant& v);
// Days since 30 December 1899.
KALO_EXPORT double CDate(const Variant& v);

// Nearest whole number, halves to even (8.5 -> 8, 9.5 -> 10).
KALO_EXPORT double RedondeaPar(double x) noexcept;

// The runtime's text form of a double: up to 15 significant digits (7 for a
// single), exponent form when needed, the user's decimal separator.
KALO_EXPORT QString TextoDeDoble(double d);
KALO_EXPORT QString TextoDeSencillo(float f);

// Reads numeric text as the runtime does in the user's locale (surrounding
// spaces, sign, group separators, decimals, exponent, &H and &O prefixes,
// parentheses, currency sign); nullopt when the text is not a number.
KALO_EXPORT std::optional<double> LeeNumero(const QString& texto);

// The user's locale: the process locale as Qt reads it, unless replaced.
KALO_EXPORT QLocale LocalDelUsuario();
// Replaces the user's locale for this process (hosts and tests); a
// default-constructed optional goes back to the process locale.
KALO_EXPORT void EstableceLocalDelUsuario(std::optional<QLocale> local);

}  // namespace kalo

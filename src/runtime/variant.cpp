#include "kaloimpresora/variant.h"

#include <bit>
#include <cfloat>
#include <cmath>
#include <string_view>

#include "kaloimpresora/conversiones.h"
#include "kaloimpresora/errores.h"
#include "runtime/valor_interno.h"

namespace kalo {

bool Variant::esNumerico() const noexcept {
    switch (tipo_) {
    case TipoVariant::Entero:
    case TipoVariant::Largo:
    case TipoVariant::Sencillo:
    case TipoVariant::Doble:
    case TipoVariant::Moneda:
    case TipoVariant::Fecha:
    case TipoVariant::Booleano:
        return true;
    default:
        return false;
    }
}

bool Variant::identico(const Variant& otro) const noexcept {
    if (tipo_ != otro.tipo_)
        return false;
    switch (tipo_) {
    case TipoVariant::Vacio:
    case TipoVariant::Nulo:
        return true;
    case TipoVariant::Booleano:
        return escalar_.booleano == otro.escalar_.booleano;
    case TipoVariant::Entero:
        return escalar_.entero == otro.escalar_.entero;
    case TipoVariant::Largo:
    case TipoVariant::Error:
        return escalar_.largo == otro.escalar_.largo;
    // Bit patterns, so that -0 is not 0 and a NaN is identical to itself.
    case TipoVariant::Sencillo:
        return std::bit_cast<uint32_t>(escalar_.sencillo) == std::bit_cast<uint32_t>(otro.escalar_.sencillo);
    case TipoVariant::Doble:
    case TipoVariant::Fecha:
        return std::bit_cast<uint64_t>(escalar_.doble) == std::bit_cast<uint64_t>(otro.escalar_.doble);
    case TipoVariant::Moneda:
        return escalar_.moneda == otro.escalar_.moneda;
    case TipoVariant::Texto:
        return texto_ == otro.texto_;
    case TipoVariant::Objeto:
        return objeto_ == otro.objeto_;
    }
    return false;
}

namespace {

enum class Operacion { Suma, Resta, Producto, Cociente };

using interno::kFechaLimite;
using interno::kFechaMinima;

// Empty and Boolean take part as Integers, text as Double. Only a converted
// operand is copied (into *convertido): plain numbers are read in place.
const Variant& ComoNumero(const Variant& v, Variant& convertido) {
    switch (v.tipo()) {
    case TipoVariant::Vacio:
        return convertido = Variant(int16_t{0});
    case TipoVariant::Booleano:
        return convertido = Variant(static_cast<int16_t>(v.booleano() ? -1 : 0));
    case TipoVariant::Texto:
        return convertido = Variant(CDbl(v));
    default:
        return v;
    }
}

// An object by its default value; anything else in place.
const Variant& SinObjeto(const Variant& v, Variant& convertido) {
    return v.esObjeto() ? (convertido = interno::ValorPorDefecto(v)) : v;
}

bool EsEnteroCorto(TipoVariant t) { return t == TipoVariant::Entero || t == TipoVariant::Largo; }

int64_t ValorEntero(const Variant& v) { return v.tipo() == TipoVariant::Entero ? v.entero() : v.largo(); }

template <class T>
T Aplica(Operacion op, T a, T b) {
    switch (op) {
    case Operacion::Suma:
        return a + b;
    case Operacion::Resta:
        return a - b;
    default:
        return a * b;
    }
}

Variant DeDoble(double r) {
    if (!std::isfinite(r))
        Lanza(err::kDesbordamiento);
    return Variant(r);
}

Variant DeFecha(double r) {
    if (!(r >= kFechaMinima && r < kFechaLimite))
        Lanza(err::kDesbordamiento);
    return Variant::Fecha(r);
}

// Integer results widen instead of overflowing: Integer, then Long, then Double.
Variant DeEntero(int64_t r, bool admiteEntero) {
    if (admiteEntero && r >= INT16_MIN && r <= INT16_MAX)
        return Variant(static_cast<int16_t>(r));
    if (r >= INT32_MIN && r <= INT32_MAX)
        return Variant(static_cast<int32_t>(r));
    return Variant(static_cast<double>(r));
}

Moneda MonedaEnIntervalo(__int128 escalado) {
    if (escalado < INT64_MIN || escalado > INT64_MAX)
        Lanza(err::kDesbordamiento);
    return Moneda{static_cast<int64_t>(escalado)};
}

// Halves to even, as every currency rounding does.
__int128 DivideRedondeando(__int128 n, int64_t d) {
    __int128 q = n / d;
    const __int128 resto = n % d;
    const __int128 mitad = d / 2;
    if (resto > mitad || (resto == mitad && q % 2 != 0))
        ++q;
    else if (resto < -mitad || (resto == -mitad && q % 2 != 0))
        --q;
    return q;
}

Moneda ProductoDeMoneda(Moneda m, const Variant& otro) {
    switch (otro.tipo()) {
    case TipoVariant::Moneda:
        return MonedaEnIntervalo(DivideRedondeando(__int128{m.escalado} * otro.moneda().escalado, 10000));
    case TipoVariant::Entero:
    case TipoVariant::Largo:
        return MonedaEnIntervalo(__int128{m.escalado} * ValorEntero(otro));
    default: {
        // Extended precision keeps all 64 bits of the scaled value.
        const long double p = static_cast<long double>(m.escalado) * static_cast<long double>(CDbl(otro));
        long double r = std::round(p);
        if (std::fabs(p - std::trunc(p)) == 0.5L)
            r = 2.0L * std::round(p / 2.0L);
        if (!(r >= -9223372036854775808.0L && r < 9223372036854775808.0L))
            Lanza(err::kDesbordamiento);
        return Moneda{static_cast<int64_t>(r)};
    }
    }
}

Variant OperaConMoneda(Operacion op, const Variant& a, const Variant& b) {
    if (op == Operacion::Producto)
        return a.tipo() == TipoVariant::Moneda ? ProductoDeMoneda(a.moneda(), b) : ProductoDeMoneda(b.moneda(), a);
    const int64_t x = CCur(a).escalado;
    const int64_t y = CCur(b).escalado;
    int64_t r = 0;
    const bool desborda = op == Operacion::Suma ? __builtin_add_overflow(x, y, &r) : __builtin_sub_overflow(x, y, &r);
    if (desborda)
        Lanza(err::kDesbordamiento);
    return Moneda{r};
}

Variant Opera(Operacion op, const Variant& izquierda, const Variant& derecha) {
    // The usual case, positions and scales: two Doubles, what the rest works out for them.
    if (izquierda.tipo() == TipoVariant::Doble && derecha.tipo() == TipoVariant::Doble && op != Operacion::Cociente)
        return DeDoble(Aplica(op, izquierda.doble(), derecha.doble()));
    Variant valorA, valorB;
    const Variant& a = SinObjeto(izquierda, valorA);
    const Variant& b = SinObjeto(derecha, valorB);
    if (a.tipo() == TipoVariant::Error || b.tipo() == TipoVariant::Error)
        Lanza(err::kTiposNoCoinciden);
    if (a.esNulo() || b.esNulo())
        return Variant::Nulo();
    if (op == Operacion::Suma) {
        if (a.esTexto() && (b.esTexto() || b.esVacio()))
            return Variant(a.texto() + b.texto());
        if (a.esVacio() && b.esTexto())
            return b;
    }

    Variant numeroX, numeroY;
    const Variant& x = ComoNumero(a, numeroX);
    const Variant& y = ComoNumero(b, numeroY);
    const TipoVariant tx = x.tipo();
    const TipoVariant ty = y.tipo();

    if (op == Operacion::Cociente)
        return Variant(interno::Cociente(CDbl(x), CDbl(y)));
    if (tx == TipoVariant::Fecha || ty == TipoVariant::Fecha) {
        const double r = Aplica(op, CDbl(x), CDbl(y));
        const bool dosFechas = tx == TipoVariant::Fecha && ty == TipoVariant::Fecha;
        if (op == Operacion::Producto || (op == Operacion::Resta && dosFechas))
            return DeDoble(r);
        return DeFecha(r);
    }
    if (tx == TipoVariant::Moneda || ty == TipoVariant::Moneda)
        return OperaConMoneda(op, x, y);
    if (tx == TipoVariant::Doble || ty == TipoVariant::Doble)
        return DeDoble(Aplica(op, CDbl(x), CDbl(y)));
    if (tx == TipoVariant::Sencillo || ty == TipoVariant::Sencillo) {
        const double r = Aplica(op, CDbl(x), CDbl(y));
        if (!std::isfinite(r))
            Lanza(err::kDesbordamiento);
        // A Long does not fit a single's mantissa, so Single with Long is Double.
        if (tx == TipoVariant::Largo || ty == TipoVariant::Largo || std::fabs(r) > FLT_MAX)
            return Variant(r);
        return Variant(static_cast<float>(r));
    }
    if (EsEnteroCorto(tx) && EsEnteroCorto(ty)) {
        const bool dosEnteros = tx == TipoVariant::Entero && ty == TipoVariant::Entero;
        return DeEntero(Aplica(op, ValorEntero(x), ValorEntero(y)), dosEnteros);
    }
    Lanza(err::kTiposNoCoinciden);
}

int ComparaNumeros(const Variant& a, const Variant& b) {
    Variant numeroX, numeroY;
    const Variant& x = ComoNumero(a, numeroX);
    const Variant& y = ComoNumero(b, numeroY);
    const bool monedaX = x.tipo() == TipoVariant::Moneda;
    const bool monedaY = y.tipo() == TipoVariant::Moneda;
    // Exactly, in scaled units, when no side is floating point.
    if ((monedaX || EsEnteroCorto(x.tipo())) && (monedaY || EsEnteroCorto(y.tipo())) && (monedaX || monedaY)) {
        const __int128 ex = monedaX ? __int128{x.moneda().escalado} : __int128{ValorEntero(x)} * 10000;
        const __int128 ey = monedaY ? __int128{y.moneda().escalado} : __int128{ValorEntero(y)} * 10000;
        return ex < ey ? -1 : ex > ey ? 1 : 0;
    }
    auto valor = [](const Variant& v) -> long double {
        if (v.tipo() == TipoVariant::Moneda)
            return static_cast<long double>(v.moneda().escalado) / 10000.0L;
        return CDbl(v);
    };
    const long double vx = valor(x);
    const long double vy = valor(y);
    // NaN cannot come from the runtime's own arithmetic; order it first, consistently.
    if (std::isnan(vx) || std::isnan(vy))
        return std::isnan(vx) == std::isnan(vy) ? 0 : std::isnan(vx) ? -1 : 1;
    return vx < vy ? -1 : vx > vy ? 1 : 0;
}

int ComparaTextos(const QString& a, const QString& b) {
    // Binary comparison by UTF-16 code unit, whatever the locale's collation.
    const std::u16string_view x(reinterpret_cast<const char16_t*>(a.utf16()), static_cast<size_t>(a.size()));
    const std::u16string_view y(reinterpret_cast<const char16_t*>(b.utf16()), static_cast<size_t>(b.size()));
    const int c = x.compare(y);
    return c < 0 ? -1 : c > 0 ? 1 : 0;
}

}  // namespace

double interno::Cociente(double dividendo, double divisor) {
    if (divisor == 0)
        Lanza(dividendo == 0 ? err::kDesbordamiento : err::kDivisionPorCero);
    const double r = dividendo / divisor;
    if (!std::isfinite(r))
        Lanza(err::kDesbordamiento);
    return r;
}

Variant operator+(const Variant& a, const Variant& b) { return Opera(Operacion::Suma, a, b); }
Variant operator-(const Variant& a, const Variant& b) { return Opera(Operacion::Resta, a, b); }
Variant operator*(const Variant& a, const Variant& b) { return Opera(Operacion::Producto, a, b); }
Variant operator/(const Variant& a, const Variant& b) { return Opera(Operacion::Cociente, a, b); }

std::optional<int> Compara(const Variant& izquierda, const Variant& derecha) {
    Variant valorA, valorB;
    const Variant& a = SinObjeto(izquierda, valorA);
    const Variant& b = SinObjeto(derecha, valorB);
    if (a.esNulo() || b.esNulo())
        return std::nullopt;
    const bool errorA = a.tipo() == TipoVariant::Error;
    const bool errorB = b.tipo() == TipoVariant::Error;
    if (errorA && errorB)
        return a.codigoDeError() < b.codigoDeError() ? -1 : a.codigoDeError() > b.codigoDeError() ? 1 : 0;
    if (errorA || errorB)
        Lanza(err::kTiposNoCoinciden);

    if (a.esTexto() || b.esTexto()) {
        if (a.esTexto() && b.esTexto())
            return ComparaTextos(a.texto(), b.texto());
        if (a.esVacio() || b.esVacio())
            return ComparaTextos(a.texto(), b.texto());  // Empty holds an empty text
        // Text that is not a number sorts after every number.
        const bool textoALaIzquierda = a.esTexto();
        const std::optional<double> n = LeeNumero(textoALaIzquierda ? a.texto() : b.texto());
        if (!n)
            return textoALaIzquierda ? 1 : -1;
        return textoALaIzquierda ? ComparaNumeros(Variant(*n), b) : ComparaNumeros(a, Variant(*n));
    }
    return ComparaNumeros(a, b);
}

bool operator==(const Variant& a, const Variant& b) {
    const std::optional<int> c = Compara(a, b);
    return c && *c == 0;
}

}  // namespace kalo

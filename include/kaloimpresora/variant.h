#pragma once

#include "kaloimpresora/exporta.h"

#include <QString>
#include <cstdint>
#include <memory>
#include <optional>
#include <type_traits>

namespace kalo {

class Objeto;

// The automation types, numbered as the runtime numbers them.
enum class TipoVariant : uint16_t {
    Vacio = 0,
    Nulo = 1,
    Entero = 2,    // 16-bit
    Largo = 3,     // 32-bit
    Sencillo = 4,  // single
    Doble = 5,
    Moneda = 6,    // 64-bit scaled by 10,000
    Fecha = 7,     // days since 30 Dec 1899
    Texto = 8,
    Objeto = 9,
    Error = 10,
    Booleano = 11,
};

// Fixed-point currency: the value times 10,000.
struct Moneda {
    int64_t escalado = 0;
    friend KALO_EXPORT bool operator==(Moneda, Moneda) = default;
};

// The runtime's error code for an omitted optional argument.
inline constexpr int32_t kCodigoArgumentoOmitido = 448;

class KALO_EXPORT Variant {
public:
    Variant() noexcept : tipo_(TipoVariant::Vacio) { escalar_.moneda = 0; }
    Variant(bool b) noexcept : tipo_(TipoVariant::Booleano) { escalar_.booleano = b; }
    Variant(int16_t i) noexcept : tipo_(TipoVariant::Entero) { escalar_.entero = i; }
    Variant(int32_t i) noexcept : tipo_(TipoVariant::Largo) { escalar_.largo = i; }
    Variant(float f) noexcept : tipo_(TipoVariant::Sencillo) { escalar_.sencillo = f; }
    Variant(double d) noexcept : tipo_(TipoVariant::Doble) { escalar_.doble = d; }
    Variant(Moneda m) noexcept : tipo_(TipoVariant::Moneda) { escalar_.moneda = m.escalado; }
    Variant(QString s) noexcept : tipo_(TipoVariant::Texto), texto_(std::move(s)) { escalar_.moneda = 0; }
    Variant(const char* utf8) : Variant(QString::fromUtf8(utf8)) {}
    Variant(const char16_t* s) : Variant(QString::fromUtf16(s)) {}
    // A null pointer is the runtime's Nothing: an object reference to no object.
    Variant(std::shared_ptr<Objeto> o) noexcept : tipo_(TipoVariant::Objeto), objeto_(std::move(o)) {
        escalar_.moneda = 0;
    }
    template <class T>
        requires std::is_convertible_v<std::shared_ptr<T>, std::shared_ptr<Objeto>>
    Variant(std::shared_ptr<T> o) noexcept : Variant(std::shared_ptr<Objeto>(std::move(o))) {}

    static Variant Nulo() noexcept { return Variant(TipoVariant::Nulo); }
    static Variant Nada() noexcept { return Variant(std::shared_ptr<Objeto>()); }
    static Variant Falta() noexcept { return Error(kCodigoArgumentoOmitido); }
    static Variant Error(int32_t codigo) noexcept {
        Variant v(TipoVariant::Error);
        v.escalar_.largo = codigo;
        return v;
    }
    static Variant Fecha(double dias) noexcept {
        Variant v(TipoVariant::Fecha);
        v.escalar_.doble = dias;
        return v;
    }

    TipoVariant tipo() const noexcept { return tipo_; }
    bool esVacio() const noexcept { return tipo_ == TipoVariant::Vacio; }
    bool esNulo() const noexcept { return tipo_ == TipoVariant::Nulo; }
    bool esFalta() const noexcept {
        return tipo_ == TipoVariant::Error && escalar_.largo == kCodigoArgumentoOmitido;
    }
    bool esTexto() const noexcept { return tipo_ == TipoVariant::Texto; }
    bool esObjeto() const noexcept { return tipo_ == TipoVariant::Objeto; }
    // Integer, long, single, double, currency, date or boolean.
    bool esNumerico() const noexcept;

    // Raw contents, without conversion; valid only for the matching type.
    bool booleano() const noexcept { return escalar_.booleano; }
    int16_t entero() const noexcept { return escalar_.entero; }
    int32_t largo() const noexcept { return escalar_.largo; }
    float sencillo() const noexcept { return escalar_.sencillo; }
    double doble() const noexcept { return escalar_.doble; }
    Moneda moneda() const noexcept { return Moneda{escalar_.moneda}; }
    double fecha() const noexcept { return escalar_.doble; }
    int32_t codigoDeError() const noexcept { return escalar_.largo; }
    const QString& texto() const noexcept { return texto_; }
    const std::shared_ptr<Objeto>& objeto() const noexcept { return objeto_; }

    // Same type and same contents (objects by identity); no conversion.
    bool identico(const Variant& otro) const noexcept;

    // Arithmetic and comparison as the runtime does it: Null propagates, Empty
    // counts as 0 (or "" beside text), text + text joins, text beside a number
    // is read as a number. Failures raise 13, 6, 11 or 94. Hidden friends, so
    // that texts and numbers never reach them by implicit conversion.
    friend KALO_EXPORT Variant operator+(const Variant& a, const Variant& b);
    friend KALO_EXPORT Variant operator-(const Variant& a, const Variant& b);
    friend KALO_EXPORT Variant operator*(const Variant& a, const Variant& b);
    friend KALO_EXPORT Variant operator/(const Variant& a, const Variant& b);
    // Runtime equality; Null never equals anything.
    friend KALO_EXPORT bool operator==(const Variant& a, const Variant& b);

private:
    explicit Variant(TipoVariant t) noexcept : tipo_(t) { escalar_.moneda = 0; }

    TipoVariant tipo_;
    union {
        bool booleano;
        int16_t entero;
        int32_t largo;
        float sencillo;
        double doble;
        int64_t moneda;
    } escalar_;
    QString texto_;
    std::shared_ptr<Objeto> objeto_;
};

// -1, 0 or 1; a Null on either side gives Null, returned as std::nullopt.
KALO_EXPORT std::optional<int> Compara(const Variant& a, const Variant& b);

}  // namespace kalo

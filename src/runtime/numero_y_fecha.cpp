#include "runtime/numero_y_fecha.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "kaloimpresora/errores.h"

namespace kalo::interno {

namespace {

constexpr int64_t kSegundosPorDia = 86400;

const QDate& FechaBase() {
    static const QDate base(1899, 12, 30);
    return base;
}

template <class T>
Decimal DeBinario(T x, int significativas) {
    if (!std::isfinite(x))
        Lanza(err::kDesbordamiento);
    char buffer[64];
    const char* fin = significativas > 0 ? std::to_chars(buffer, buffer + sizeof buffer, x,
                                                         std::chars_format::scientific, significativas - 1).ptr
                                         : std::to_chars(buffer, buffer + sizeof buffer, x,
                                                         std::chars_format::scientific).ptr;
    // d.ddde±xx
    Decimal d;
    const char* c = buffer;
    d.negativo = *c == '-';
    if (d.negativo)
        ++c;
    for (; *c != 'e'; ++c) {
        if (*c != '.')
            d.cifras += *c;
    }
    d.exponente = std::stoll(std::string(c + 1, fin)) - static_cast<int64_t>(d.cifras.size()) + 1;
    Compacta(d);
    d.negativo = d.negativo && !d.esCero();
    return d;
}

}  // namespace

char Decimal::cifra(int64_t potencia) const {
    const int64_t i = exponente + static_cast<int64_t>(cifras.size()) - 1 - potencia;
    return i >= 0 && i < static_cast<int64_t>(cifras.size()) ? cifras[static_cast<size_t>(i)] : '0';
}

void Compacta(Decimal& d) {
    const size_t inicio = d.cifras.find_first_not_of('0');
    if (inicio == std::string::npos) {
        d.cifras.clear();
        d.exponente = 0;
        return;
    }
    const size_t fin = d.cifras.find_last_not_of('0');
    d.exponente += static_cast<int64_t>(d.cifras.size() - fin - 1);
    d.cifras = d.cifras.substr(inicio, fin - inicio + 1);
}

Decimal DecimalDeEntero(int64_t v, int64_t exponente) {
    Decimal d;
    d.negativo = v < 0;
    d.cifras = std::to_string(d.negativo ? 0 - static_cast<uint64_t>(v) : static_cast<uint64_t>(v));
    d.exponente = exponente;
    Compacta(d);
    return d;
}

Decimal DecimalDeBinario(double x, int significativas) { return DeBinario(x, significativas); }
Decimal DecimalDeBinario(float x, int significativas) { return DeBinario(x, significativas); }

double DobleDe(const Decimal& d) {
    if (d.esCero())
        return d.negativo ? -0.0 : 0.0;
    const std::string texto = d.cifras + 'e' + std::to_string(d.exponente);
    double valor = 0;
    if (std::from_chars(texto.data(), texto.data() + texto.size(), valor).ec == std::errc::result_out_of_range)
        valor = d.enteras() > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    return d.negativo ? -valor : valor;
}

void Redondea(Decimal& d, int64_t decimales, Mitades mitades) {
    const int64_t largo = static_cast<int64_t>(d.cifras.size());
    const int64_t conservar = d.enteras() + decimales;
    if (d.esCero() || conservar >= largo)
        return;
    if (conservar < 0) {
        d.cifras.clear();
        d.exponente = 0;
        return;
    }
    const auto corte = static_cast<size_t>(conservar);
    // Trailing zeros are stripped, so a 5 with more digits after it is past the half.
    const char siguiente = d.cifras[corte];
    const bool impar = corte > 0 && (d.cifras[corte - 1] - '0') % 2 == 1;
    const bool sube = siguiente > '5' ||
                      (siguiente == '5' && (mitades == Mitades::LejosDelCero || conservar + 1 < largo || impar));
    d.exponente += largo - conservar;
    d.cifras.resize(corte);
    if (sube) {
        size_t i = corte;
        while (i > 0 && d.cifras[i - 1] == '9')
            d.cifras[--i] = '0';
        if (i == 0)
            d.cifras.insert(d.cifras.begin(), '1');
        else
            ++d.cifras[i - 1];
    }
    Compacta(d);
}

Momento Desglosa(double serial) {
    const double entera = std::trunc(serial);
    Momento m;
    m.dias = static_cast<int64_t>(entera);
    int64_t segundos = std::llround(std::fabs(serial - entera) * kSegundosPorDia);
    if (segundos >= kSegundosPorDia) {
        // The next calendar day, which before the base date is toward zero.
        segundos -= kSegundosPorDia;
        ++m.dias;
    }
    m.segundos = static_cast<int>(segundos);
    m.fecha = FechaBase().addDays(m.dias);
    return m;
}

double SerialDeFecha(QDate fecha, int64_t segundos) {
    const auto dias = static_cast<double>(FechaBase().daysTo(fecha));
    const double fraccion = static_cast<double>(segundos) / kSegundosPorDia;
    return dias < 0 ? dias - fraccion : dias + fraccion;
}

}  // namespace kalo::interno

#pragma once

// Numbers in decimal and serial dates split into calendar and clock, shared
// by the conversions and Format so that both show the same digits and the
// same day for one value.

#include <QDate>

#include <cstdint>
#include <string>

namespace kalo::interno {

// cifras * 10^exponente, so that rounding sees the digits the user sees and
// currency never goes through binary floating point.
struct Decimal {
    bool negativo = false;
    std::string cifras;  // no leading or trailing zeros; empty for zero
    int64_t exponente = 0;

    bool esCero() const { return cifras.empty(); }
    // Digits before the point; zero or less below 1.
    int64_t enteras() const { return cifras.empty() ? 0 : static_cast<int64_t>(cifras.size()) + exponente; }
    // The digit worth 10^potencia.
    char cifra(int64_t potencia) const;
};

// Strips zeros at both ends of the digits into the exponent.
void Compacta(Decimal& d);
// v * 10^exponente.
Decimal DecimalDeEntero(int64_t v, int64_t exponente = 0);
// A binary value through its first `significativas` digits, or with 0
// through the shortest digits that read back as the same value. -0 is 0;
// infinity and NaN raise 6.
Decimal DecimalDeBinario(double x, int significativas = 0);
Decimal DecimalDeBinario(float x, int significativas = 0);
// The nearest double; beyond its range infinity or zero.
double DobleDe(const Decimal& d);

enum class Mitades { LejosDelCero, AlPar };
// To `decimales` places after the point; a value rounded away keeps its sign.
void Redondea(Decimal& d, int64_t decimales, Mitades mitades);

// Serial dates count days from 30 December 1899. Before it the fraction is
// still the time forward from the midnight of the day trunc(serial) names,
// so -1.25 is 29 December 1899 at 06:00.
struct Momento {
    int64_t dias = 0;  // whole days from the base date, after rounding
    QDate fecha;
    int segundos = 0;  // into the day

    int hora() const { return segundos / 3600; }
    int minuto() const { return segundos / 60 % 60; }
    int segundo() const { return segundos % 60; }
    int diaDeSemana() const { return fecha.dayOfWeek() % 7 + 1; }  // Sunday is 1
};

// To the nearest second; a time that rounds to 24:00 is the next calendar
// day at 00:00, for serials on either side of the base date.
Momento Desglosa(double serial);
double SerialDeFecha(QDate fecha, int64_t segundos = 0);

}  // namespace kalo::interno

// Spanish amount in words for cheques, invoices and receipts.

#include "text/importe_en_letra.h"

#include <QStringList>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>

#include "kaloimpresora/errores.h"

using namespace Qt::StringLiterals;

namespace kalo {

namespace {

constexpr uint64_t kMillon = 1'000'000;
constexpr uint64_t kBillon = kMillon * kMillon;
constexpr double kLimite = 1e15;

// The words always name an amount of some noun, so 1 takes its apocopated
// form wherever it ends a number: UN, VEINTIÚN, TREINTA Y UN.
constexpr std::array<const char16_t*, 30> kHastaVeintinueve = {
    u"", u"UN", u"DOS", u"TRES", u"CUATRO", u"CINCO", u"SEIS", u"SIETE", u"OCHO", u"NUEVE",
    u"DIEZ", u"ONCE", u"DOCE", u"TRECE", u"CATORCE", u"QUINCE", u"DIECISÉIS", u"DIECISIETE", u"DIECIOCHO",
    u"DIECINUEVE", u"VEINTE", u"VEINTIÚN", u"VEINTIDÓS", u"VEINTITRÉS", u"VEINTICUATRO", u"VEINTICINCO",
    u"VEINTISÉIS", u"VEINTISIETE", u"VEINTIOCHO", u"VEINTINUEVE",
};

constexpr std::array<const char16_t*, 10> kDecenas = {
    u"", u"", u"", u"TREINTA", u"CUARENTA", u"CINCUENTA", u"SESENTA", u"SETENTA", u"OCHENTA", u"NOVENTA",
};

constexpr std::array<const char16_t*, 10> kCentenas = {
    u"", u"CIENTO", u"DOSCIENTOS", u"TRESCIENTOS", u"CUATROCIENTOS",
    u"QUINIENTOS", u"SEISCIENTOS", u"SETECIENTOS", u"OCHOCIENTOS", u"NOVECIENTOS",
};

QString Palabra(const char16_t* p) { return QString::fromUtf16(p); }

// 1 to 999.
QString HastaNovecientos(uint64_t n) {
    if (n == 100) return QStringLiteral("CIEN");
    QStringList partes;
    if (n >= 100) partes << Palabra(kCentenas[n / 100]);
    const uint64_t resto = n % 100;
    if (resto >= 30) {
        QString decena = Palabra(kDecenas[resto / 10]);
        if (resto % 10 != 0) decena += u" Y "_s + Palabra(kHastaVeintinueve[resto % 10]);
        partes << decena;
    } else if (resto > 0) {
        partes << Palabra(kHastaVeintinueve[resto]);
    }
    return partes.join(u' ');
}

// 1 to 999 999; a single thousand is just MIL.
QString HastaMiles(uint64_t n) {
    QStringList partes;
    const uint64_t miles = n / 1000;
    if (miles == 1) partes << QStringLiteral("MIL");
    else if (miles > 1) partes << HastaNovecientos(miles) + u" MIL"_s;
    if (n % 1000 != 0) partes << HastaNovecientos(n % 1000);
    return partes.join(u' ');
}

// Long scale: a billion is a million millions, so thousands of millions stay
// "MIL MILLONES".
QString EnLetras(uint64_t n) {
    if (n == 0) return QStringLiteral("CERO");
    QStringList partes;
    const uint64_t billones = n / kBillon;
    const uint64_t millones = n / kMillon % kMillon;
    if (billones != 0) partes << HastaMiles(billones) + (billones == 1 ? u" BILLÓN"_s : u" BILLONES"_s);
    if (millones != 0) partes << HastaMiles(millones) + (millones == 1 ? u" MILLÓN"_s : u" MILLONES"_s);
    if (n % kMillon != 0) partes << HastaMiles(n % kMillon);
    return partes.join(u' ');
}

struct Importe {
    uint64_t entero = 0;
    int centavos = 0;
};

// Rounds on the shortest decimal text of the double, so 2.675 (stored a hair
// below) still becomes 2.68, as the amount the user typed would.
Importe RedondeaACentavos(double magnitud) {
    // Wide enough for the fixed form of the smallest subnormal.
    char texto[400];
    const auto [fin, ec] = std::to_chars(texto, texto + sizeof texto, magnitud, std::chars_format::fixed);
    if (ec != std::errc()) Lanza(err::kDesbordamiento);
    Importe importe;
    const char* c = texto;
    for (; c != fin && *c != '.'; ++c) importe.entero = importe.entero * 10 + static_cast<uint64_t>(*c - '0');
    int cifras[3] = {0, 0, 0};
    if (c != fin) ++c;
    for (int& cifra : cifras) {
        if (c == fin) break;
        cifra = *c++ - '0';
    }
    importe.centavos = cifras[0] * 10 + cifras[1] + (cifras[2] >= 5 ? 1 : 0);
    if (importe.centavos == 100) {
        importe.centavos = 0;
        ++importe.entero;
    }
    return importe;
}

}  // namespace

QString ImporteEnLetra(double numero, const QString& leyenda, bool decimales, const QString& leyenda2) {
    // Checked before formatting too, so the fixed text keeps at most 15 integer digits.
    if (!std::isfinite(numero) || std::fabs(numero) >= kLimite) Lanza(err::kDesbordamiento);
    const Importe importe = RedondeaACentavos(std::fabs(numero));
    if (importe.entero >= static_cast<uint64_t>(kLimite)) Lanza(err::kDesbordamiento);

    QString palabras = EnLetras(importe.entero);
    // An amount that rounds to nothing has no sign to speak of.
    if (numero < 0 && (importe.entero != 0 || importe.centavos != 0)) palabras = u"MENOS "_s + palabras;

    QStringList partes{palabras};
    if (!leyenda.isEmpty()) partes << leyenda;
    if (decimales) partes << QStringLiteral("%1/100").arg(importe.centavos, 2, 10, QChar(u'0'));
    if (!leyenda2.isEmpty()) partes << leyenda2;
    return partes.join(u' ');
}

}  // namespace kalo

#include "data/tipos_de_columna.h"

#include <QDateTime>
#include <QRegularExpression>
#include <QSqlField>
#include <cmath>
#include <limits>

#include "kaloimpresora/conversiones.h"
#include "kaloimpresora/errores.h"
#include "runtime/numero_y_fecha.h"

namespace kalo {

namespace {

using namespace Qt::StringLiterals;

// PostgreSQL's numbers for its built-in types.
namespace oid {
constexpr int kBool = 16, kBytea = 17, kInt8 = 20, kInt2 = 21, kInt4 = 23, kOid = 26, kFloat4 = 700,
              kFloat8 = 701, kMoney = 790, kDate = 1082, kTime = 1083, kTimestamp = 1114, kTimestampTz = 1184,
              kTimeTz = 1266, kNumeric = 1700;
}

// Currency holds 15 digits before the point and 4 after.
constexpr int kDecimalesDeMoneda = 4;
constexpr int kEnterasDeMoneda = 15;

bool CabeEnMoneda(int precision, int escala) {
    return escala >= 0 && escala <= kDecimalesDeMoneda && precision > 0 && precision - escala <= kEnterasDeMoneda;
}

Variant Entero(qint64 n, bool admite16) {
    if (admite16 && n >= std::numeric_limits<int16_t>::min() && n <= std::numeric_limits<int16_t>::max())
        return Variant(static_cast<int16_t>(n));
    if (n >= std::numeric_limits<int32_t>::min() && n <= std::numeric_limits<int32_t>::max())
        return Variant(static_cast<int32_t>(n));
    return Variant(static_cast<double>(n));
}

double Serial(QDate fecha, QTime hora) {
    const int64_t segundos = hora.isValid() ? (hora.msecsSinceStartOfDay() + 500) / 1000 : 0;
    return interno::SerialDeFecha(fecha, segundos);
}

std::optional<double> SerialDeValor(const QVariant& v) {
    switch (v.metaType().id()) {
    case QMetaType::QDate: return Serial(v.toDate(), QTime());
    case QMetaType::QTime: return Serial(QDate(1899, 12, 30), v.toTime());
    case QMetaType::QDateTime: {
        const QDateTime dt = v.toDateTime();
        return Serial(dt.date(), dt.time());
    }
    case QMetaType::QString: {
        QString texto = v.toString().trimmed();
        if (texto.size() > 10 && texto[10] == u' ') texto[10] = u'T';
        if (const QDateTime dt = QDateTime::fromString(texto, Qt::ISODateWithMs); dt.isValid())
            return Serial(dt.date(), dt.time());
        if (const QDate d = QDate::fromString(texto, Qt::ISODate); d.isValid()) return Serial(d, QTime());
        if (const QTime t = QTime::fromString(texto, Qt::ISODateWithMs); t.isValid())
            return Serial(QDate(1899, 12, 30), t);
        return std::nullopt;
    }
    default: return std::nullopt;
    }
}

// Currency from text, exactly: a numeric's digits ("1234.5600") or money as
// the server formats it ("$1,234.56", "-1.234,56 €"), where the last "." or
// "," is the decimal point.
std::optional<Moneda> MonedaDeTexto(const QString& texto) {
    const bool negativo = texto.contains(u'-') || texto.contains(u'(');
    const qsizetype punto = std::max(texto.lastIndexOf(u'.'), texto.lastIndexOf(u','));
    int64_t escalado = 0;
    int enteras = 0;
    int decimales = 0;
    int redondeo = 0;    // the first digit dropped
    bool resto = false;  // and whether anything but zeros follows it
    bool hayCifras = false;
    for (qsizetype i = 0; i < texto.size(); ++i) {
        const QChar c = texto[i];
        if (!c.isDigit()) continue;
        hayCifras = true;
        const int cifra = c.digitValue();
        if (punto < 0 || i < punto) {
            if (enteras > 0 || cifra != 0) ++enteras;
            if (enteras > kEnterasDeMoneda) return std::nullopt;
            escalado = escalado * 10 + cifra;
        } else if (decimales < kDecimalesDeMoneda) {
            escalado = escalado * 10 + cifra;
            ++decimales;
        } else if (decimales == kDecimalesDeMoneda) {
            redondeo = cifra;
            ++decimales;
        } else if (cifra != 0) {
            resto = true;
        }
    }
    if (!hayCifras) return std::nullopt;
    for (int d = std::min(decimales, kDecimalesDeMoneda); d < kDecimalesDeMoneda; ++d) escalado *= 10;
    // Halves to even, as the runtime rounds currency.
    if (redondeo > 5 || (redondeo == 5 && (resto || escalado % 2 != 0))) ++escalado;
    return Moneda{negativo ? -escalado : escalado};
}

// Currency from a binary value: the runtime's conversion rounds its decimal
// digits; a value with at most four decimals (what a money column holds) is
// already a whole number of ten-thousandths, within a few units of the last
// place, and needs no rounding at all.
Variant MonedaDeDoble(double d) {
    const double escalado = d * 10000;
    const double entero = std::nearbyint(escalado);
    if (std::fabs(escalado) < 9e15 && std::fabs(escalado - entero) <= 1e-9 + std::fabs(escalado) * 1e-12)
        return Variant(Moneda{static_cast<int64_t>(entero)});
    try {
        return Variant(CCur(Variant(d)));
    } catch (const ErrorDeAutomatizacion&) {
        return Variant(d);  // beyond Currency's range
    }
}

Variant ValorNatural(const QVariant& v) {
    switch (v.metaType().id()) {
    case QMetaType::Bool: return Variant(v.toBool());
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong: return Entero(v.toLongLong(), false);
    case QMetaType::Float: return Variant(v.toFloat());
    case QMetaType::Double: return Variant(v.toDouble());
    case QMetaType::QDate:
    case QMetaType::QTime:
    case QMetaType::QDateTime: return Variant::Fecha(*SerialDeValor(v));
    case QMetaType::QByteArray: return Variant(QString::fromLatin1(v.toByteArray()));
    default: return Variant(v.toString());
    }
}

bool Contiene(QStringView texto, QStringView parte) { return texto.contains(parte, Qt::CaseInsensitive); }

}  // namespace

TipoDeColumna TipoDeCampo(const QSqlField& campo) {
    switch (campo.metaType().id()) {
    case QMetaType::Bool: return TipoDeColumna::Booleano;
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::SChar:
    case QMetaType::UChar: return TipoDeColumna::Entero16;
    case QMetaType::Int:
    case QMetaType::UInt: return TipoDeColumna::Entero32;
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong: return TipoDeColumna::Entero64;
    case QMetaType::Float: return TipoDeColumna::Sencillo;
    case QMetaType::Double: return TipoDeColumna::Doble;
    case QMetaType::QDate: return TipoDeColumna::Fecha;
    case QMetaType::QTime: return TipoDeColumna::Hora;
    case QMetaType::QDateTime: return TipoDeColumna::FechaHora;
    case QMetaType::QByteArray: return TipoDeColumna::Binario;
    default: return TipoDeColumna::Texto;
    }
}

TipoDeColumna TipoDeCampoPostgres(const QSqlField& campo) {
    switch (campo.typeID()) {
    case oid::kBool: return TipoDeColumna::Booleano;
    case oid::kInt2: return TipoDeColumna::Entero16;
    case oid::kInt4:
    case oid::kOid: return TipoDeColumna::Entero32;
    case oid::kInt8: return TipoDeColumna::Entero64;
    case oid::kFloat4: return TipoDeColumna::Sencillo;
    case oid::kFloat8: return TipoDeColumna::Doble;
    case oid::kMoney: return TipoDeColumna::Moneda;
    // The driver gives a numeric's precision as the field's length and its
    // scale as the field's precision.
    case oid::kNumeric:
        return CabeEnMoneda(campo.length(), campo.precision()) ? TipoDeColumna::Moneda : TipoDeColumna::Decimal;
    case oid::kDate: return TipoDeColumna::Fecha;
    case oid::kTime:
    case oid::kTimeTz: return TipoDeColumna::Hora;
    case oid::kTimestamp:
    case oid::kTimestampTz: return TipoDeColumna::FechaHora;
    case oid::kBytea: return TipoDeColumna::Binario;
    default: return TipoDeCampo(campo);
    }
}

bool TipoDeDeclaracionSqlite(QStringView declarado, TipoDeColumna& tipo) {
    if (declarado.trimmed().isEmpty()) return false;
    static const QRegularExpression kPrecisionYEscala(u"^\\s*(DECIMAL|NUMERIC)\\s*\\(\\s*(\\d+)\\s*(?:,\\s*(\\d+)\\s*)?\\)"_s,
                                                      QRegularExpression::CaseInsensitiveOption);
    if (Contiene(declarado, u"BOOL")) tipo = TipoDeColumna::Booleano;
    else if (Contiene(declarado, u"SMALLINT") || Contiene(declarado, u"TINYINT") || Contiene(declarado, u"INT2"))
        tipo = TipoDeColumna::Entero16;
    else if (Contiene(declarado, u"BIGINT") || Contiene(declarado, u"INT8")) tipo = TipoDeColumna::Entero64;
    else if (Contiene(declarado, u"INT")) tipo = TipoDeColumna::Entero32;
    else if (Contiene(declarado, u"MONEY") || Contiene(declarado, u"CURRENCY")) tipo = TipoDeColumna::Moneda;
    else if (const auto m = kPrecisionYEscala.match(declarado.toString()); m.hasMatch())
        tipo = CabeEnMoneda(m.captured(2).toInt(), m.captured(3).toInt()) ? TipoDeColumna::Moneda
                                                                           : TipoDeColumna::Decimal;
    else if (Contiene(declarado, u"DECIMAL") || Contiene(declarado, u"NUMERIC")) tipo = TipoDeColumna::Decimal;
    else if (Contiene(declarado, u"TIMESTAMP") || Contiene(declarado, u"DATETIME")) tipo = TipoDeColumna::FechaHora;
    else if (Contiene(declarado, u"DATE")) tipo = TipoDeColumna::Fecha;
    else if (Contiene(declarado, u"TIME")) tipo = TipoDeColumna::Hora;
    else if (Contiene(declarado, u"REAL") || Contiene(declarado, u"FLOA") || Contiene(declarado, u"DOUB"))
        tipo = TipoDeColumna::Doble;
    else if (Contiene(declarado, u"BLOB")) tipo = TipoDeColumna::Binario;
    else tipo = TipoDeColumna::Texto;
    return true;
}

Variant ValorDeColumna(const QVariant& v, TipoDeColumna tipo) {
    if (v.isNull()) return Variant::Nulo();
    // What the drivers give most, read without Qt's conversions: every value
    // of every row comes through here.
    const int deQt = v.metaType().id();
    if (deQt == QMetaType::LongLong && tipo >= TipoDeColumna::Entero16 && tipo <= TipoDeColumna::Entero64)
        return Entero(*static_cast<const qlonglong*>(v.constData()), tipo == TipoDeColumna::Entero16);
    if (deQt == QMetaType::Double && tipo == TipoDeColumna::Doble)
        return Variant(*static_cast<const double*>(v.constData()));
    if (deQt == QMetaType::QString && tipo == TipoDeColumna::Texto)
        return Variant(*static_cast<const QString*>(v.constData()));
    bool ok = false;
    switch (tipo) {
    case TipoDeColumna::Booleano:
        if (v.metaType().id() == QMetaType::QString) {
            const QString t = v.toString().trimmed();
            if (t.compare(u"true"_s, Qt::CaseInsensitive) == 0 || t == u"t"_s) return Variant(true);
            if (t.compare(u"false"_s, Qt::CaseInsensitive) == 0 || t == u"f"_s) return Variant(false);
        }
        if (const qint64 n = v.toLongLong(&ok); ok) return Variant(n != 0);
        if (v.metaType().id() == QMetaType::Bool) return Variant(v.toBool());
        break;
    case TipoDeColumna::Entero16:
    case TipoDeColumna::Entero32:
    case TipoDeColumna::Entero64:
        if (v.metaType().id() == QMetaType::Double) break;  // SQLite keeps whatever it is given
        if (const qint64 n = v.toLongLong(&ok); ok) return Entero(n, tipo == TipoDeColumna::Entero16);
        break;
    case TipoDeColumna::Sencillo:
        if (const float f = v.toFloat(&ok); ok) return Variant(f);
        break;
    case TipoDeColumna::Doble:
    case TipoDeColumna::Decimal:
        if (const double d = v.toDouble(&ok); ok) return Variant(d);
        break;
    case TipoDeColumna::Moneda:
        if (v.metaType().id() == QMetaType::QString) {
            if (const auto m = MonedaDeTexto(v.toString())) return Variant(*m);
        } else if (const double d = v.toDouble(&ok); ok && std::isfinite(d)) {
            return MonedaDeDoble(d);
        }
        break;
    case TipoDeColumna::Fecha:
    case TipoDeColumna::Hora:
    case TipoDeColumna::FechaHora:
        if (const auto serial = SerialDeValor(v)) return Variant::Fecha(*serial);
        break;
    case TipoDeColumna::Texto: return Variant(v.toString());
    case TipoDeColumna::Binario:
        if (v.metaType().id() == QMetaType::QByteArray) return Variant(QString::fromLatin1(v.toByteArray()));
        break;
    }
    return ValorNatural(v);
}

int32_t NumeroDeTipo(TipoDeColumna tipo) {
    switch (tipo) {
    case TipoDeColumna::Booleano: return 11;
    case TipoDeColumna::Entero16: return 2;
    case TipoDeColumna::Entero32: return 3;
    case TipoDeColumna::Entero64: return 20;
    case TipoDeColumna::Sencillo: return 4;
    case TipoDeColumna::Doble: return 5;
    case TipoDeColumna::Moneda: return 6;
    case TipoDeColumna::Decimal: return 131;
    case TipoDeColumna::Fecha: return 133;
    case TipoDeColumna::Hora: return 134;
    case TipoDeColumna::FechaHora: return 135;
    case TipoDeColumna::Texto: return 202;
    case TipoDeColumna::Binario: return 205;
    }
    return 12;
}

}  // namespace kalo

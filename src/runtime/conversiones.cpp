#include "kaloimpresora/conversiones.h"

#include <QDate>
#include <QTime>

#include <algorithm>
#include <atomic>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <memory>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

#include "kaloimpresora/automatizacion.h"
#include "kaloimpresora/errores.h"
#include "runtime/numero_y_fecha.h"
#include "runtime/valor_interno.h"

namespace kalo {

namespace {

using interno::Decimal;
using interno::kFechaLimite;
using interno::kFechaMinima;
constexpr int kProfundidadMaxima = 16;

bool EsDigito(QChar c) { return c >= u'0' && c <= u'9'; }
bool EsBlanco(QChar c) { return c == u' ' || c == u'\t'; }

// Locale texts use no-break spaces where users type plain ones.
QString Normaliza(QString s) {
    for (QChar& c : s) {
        if (c == QChar(0x00A0) || c == QChar(0x202F) || c == QChar(0x2009) || c == u'\t')
            c = u' ';
    }
    return s.toLower();
}

enum class OrdenFecha { DiaMesAno, MesDiaAno, AnoMesDia };

// Everything the conversions read from a locale, worked out once per locale
// because the conversions run on every property access.
struct DatosDeLocal {
    explicit DatosDeLocal(const QLocale& l);

    QLocale local;
    QString decimal;
    QString grupo;
    bool grupoEsEspacio = false;
    QString moneda;
    QString negativo;
    QString positivo;
    QString formatoFecha;
    QString formatoHora;
    OrdenFecha orden = OrdenFecha::MesDiaAno;
    QChar separadorFecha;
    QString am;
    QString pm;
    std::vector<std::pair<QString, int>> meses;
    std::vector<QString> ignorables;
};

// Short formats with two-digit years lose the century; always show four.
QString AmpliaAno(const QString& formato) {
    QString r;
    bool citado = false;
    for (qsizetype i = 0; i < formato.size();) {
        QChar c = formato[i];
        if (c == u'\'') {
            citado = !citado;
            r += c;
            ++i;
            continue;
        }
        if (!citado && c == u'y') {
            qsizetype j = i;
            while (j < formato.size() && formato[j] == u'y')
                ++j;
            r += (j - i == 2) ? QStringLiteral("yyyy") : formato.mid(i, j - i);
            i = j;
            continue;
        }
        r += c;
        ++i;
    }
    return r;
}

// Displayed times carry no time zone.
QString SinZonaHoraria(const QString& formato) {
    QString r;
    bool citado = false;
    for (QChar c : formato) {
        if (c == u'\'')
            citado = !citado;
        if (!citado && c == u't')
            continue;
        r += c;
    }
    r.remove(QStringLiteral("()"));
    r.remove(QStringLiteral("[]"));
    for (QChar& c : r) {
        if (c == QChar(0x00A0) || c == QChar(0x202F))
            c = u' ';
    }
    r = r.simplified();
    // Times are read back only in the h:mm:ss shape; keep to it.
    if (!r.contains(u':'))
        r = QStringLiteral("H:mm:ss");
    return r;
}

DatosDeLocal::DatosDeLocal(const QLocale& l)
    : local(l),
      decimal(l.decimalPoint()),
      grupo(l.groupSeparator()),
      moneda(l.currencySymbol(QLocale::CurrencySymbol)),
      negativo(l.negativeSign()),
      positivo(l.positiveSign()),
      formatoFecha(AmpliaAno(l.dateFormat(QLocale::ShortFormat))),
      formatoHora(SinZonaHoraria(l.timeFormat(QLocale::LongFormat))),
      am(Normaliza(l.amText())),
      pm(Normaliza(l.pmText())) {
    grupoEsEspacio = grupo.size() == 1 && (grupo[0].isSpace() || grupo[0] == QChar(0x202F));

    const QString corto = l.dateFormat(QLocale::ShortFormat);
    QString campos;
    bool citado = false;
    for (QChar c : corto) {
        if (c == u'\'') {
            citado = !citado;
            continue;
        }
        if (citado)
            continue;
        if ((c == u'd' || c == u'M' || c == u'y') && !campos.contains(c))
            campos += c;
        else if (separadorFecha.isNull() && !campos.isEmpty() && !c.isLetter() && !c.isSpace())
            separadorFecha = c;
    }
    if (campos.startsWith(u'd'))
        orden = OrdenFecha::DiaMesAno;
    else if (campos.startsWith(u'y'))
        orden = OrdenFecha::AnoMesDia;

    auto anadeNombre = [](std::vector<QString>& lista, QString nombre) {
        nombre = Normaliza(nombre);
        while (nombre.endsWith(u'.'))
            nombre.chop(1);
        if (!nombre.isEmpty())
            lista.push_back(nombre);
    };
    const QLocale c = QLocale::c();
    for (const QLocale* fuente : {&l, &c}) {
        for (int m = 1; m <= 12; ++m) {
            std::vector<QString> nombres;
            for (auto formato : {QLocale::LongFormat, QLocale::ShortFormat}) {
                anadeNombre(nombres, fuente->monthName(m, formato));
                anadeNombre(nombres, fuente->standaloneMonthName(m, formato));
            }
            for (auto& n : nombres)
                meses.emplace_back(std::move(n), m);
        }
        for (int d = 1; d <= 7; ++d) {
            for (auto formato : {QLocale::LongFormat, QLocale::ShortFormat}) {
                anadeNombre(ignorables, fuente->dayName(d, formato));
                anadeNombre(ignorables, fuente->standaloneDayName(d, formato));
            }
        }
    }
    // Words quoted in the long date format ("de" in Spanish) are filler.
    const QString largo = l.dateFormat(QLocale::LongFormat);
    QString literal;
    citado = false;
    for (QChar ch : largo) {
        if (ch == u'\'') {
            if (citado) {
                for (const QString& palabra : Normaliza(literal).split(u' ', Qt::SkipEmptyParts))
                    ignorables.push_back(palabra);
                literal.clear();
            }
            citado = !citado;
        } else if (citado) {
            literal += ch;
        }
    }
}

struct EstadoDelLocal {
    std::mutex mutex;
    std::optional<QLocale> reemplazo;
    std::shared_ptr<const DatosDeLocal> datos;
    std::atomic<uint64_t> generacion{1};
};

// Never destroyed: conversions may still run while statics are torn down.
EstadoDelLocal& Estado() {
    static EstadoDelLocal* estado = new EstadoDelLocal;
    return *estado;
}

// Each thread keeps its own reference and only takes the lock after the
// locale has been replaced. The result stays valid until the same thread
// calls this again, so callers must not hold it across a nested conversion.
const DatosDeLocal& Datos() {
    thread_local uint64_t generacionVista = 0;
    thread_local std::shared_ptr<const DatosDeLocal> vista;
    EstadoDelLocal& estado = Estado();
    if (generacionVista != estado.generacion.load(std::memory_order_acquire) || !vista) {
        std::lock_guard bloqueo(estado.mutex);
        if (!estado.datos)
            estado.datos = std::make_shared<const DatosDeLocal>(estado.reemplazo.value_or(QLocale::system()));
        vista = estado.datos;
        generacionVista = estado.generacion.load(std::memory_order_relaxed);
    }
    return *vista;
}

// ---------------------------------------------------------------------------
// Numeric text

// &H and &O literals: up to 16 bits wraps as a 16-bit value, up to 32 bits as
// a 32-bit one, so "&HFFFF" is -1 and "&HFFFFF" is 1048575.
std::optional<Decimal> LeeConBase(QStringView s) {
    if (s.size() < 3)
        return std::nullopt;
    const QChar prefijo = s[1].toLower();
    const int base = prefijo == u'h' ? 16 : prefijo == u'o' ? 8 : 0;
    if (base == 0)
        return std::nullopt;
    uint64_t valor = 0;
    int significativos = 0;
    for (qsizetype i = 2; i < s.size(); ++i) {
        const char16_t c = s[i].unicode();
        int digito = base;
        if (c >= u'0' && c <= u'9')
            digito = c - u'0';
        else if (c >= u'a' && c <= u'f')
            digito = c - u'a' + 10;
        else if (c >= u'A' && c <= u'F')
            digito = c - u'A' + 10;
        if (digito >= base)
            return std::nullopt;
        if (valor == 0 && digito == 0)
            continue;
        if (++significativos > 11)
            return std::nullopt;
        valor = valor * base + digito;
    }
    if (valor <= 0xFFFF)
        return interno::DecimalDeEntero(static_cast<int16_t>(static_cast<uint16_t>(valor)));
    if (valor <= 0xFFFFFFFFu)
        return interno::DecimalDeEntero(static_cast<int32_t>(static_cast<uint32_t>(valor)));
    return std::nullopt;
}

std::optional<Decimal> Lee(QStringView s, const DatosDeLocal& datos) {
    qsizetype i = 0;
    qsizetype n = s.size();
    while (i < n && EsBlanco(s[i]))
        ++i;
    while (n > i && EsBlanco(s[n - 1]))
        --n;
    if (i == n)
        return std::nullopt;
    if (s[i] == u'&')
        return LeeConBase(s.sliced(i, n - i));

    auto empiezaCon = [&](const QString& p) { return !p.isEmpty() && s.sliced(i, n - i).startsWith(p); };

    bool conSigno = false;
    bool negativo = false;
    bool parentesis = false;
    bool cerrado = false;
    bool conMoneda = false;

    auto consumeSigno = [&] {
        if (conSigno || parentesis)
            return false;
        if (s[i] == u'-') {
            ++i;
            negativo = true;
        } else if (s[i] == u'+') {
            ++i;
        } else if (datos.negativo != u"-" && empiezaCon(datos.negativo)) {
            i += datos.negativo.size();
            negativo = true;
        } else if (datos.positivo != u"+" && empiezaCon(datos.positivo)) {
            i += datos.positivo.size();
        } else {
            return false;
        }
        conSigno = true;
        return true;
    };
    auto consumeMoneda = [&] {
        if (conMoneda || !empiezaCon(datos.moneda))
            return false;
        i += datos.moneda.size();
        conMoneda = true;
        return true;
    };
    auto consumeGrupo = [&] {
        if (empiezaCon(datos.grupo)) {
            i += datos.grupo.size();
            return true;
        }
        if (datos.grupoEsEspacio && (s[i] == u' ' || s[i] == QChar(0x00A0) || s[i] == QChar(0x202F))) {
            ++i;
            return true;
        }
        return false;
    };

    for (;;) {
        if (i == n)
            return std::nullopt;
        if (EsBlanco(s[i])) {
            ++i;
            continue;
        }
        if (EsDigito(s[i]) || empiezaCon(datos.decimal))
            break;
        if (consumeSigno() || consumeMoneda())
            continue;
        if (s[i] == u'(' && !parentesis && !conSigno) {
            parentesis = true;
            ++i;
            continue;
        }
        return std::nullopt;
    }

    Decimal l;
    int64_t decimales = 0;
    while (i < n) {
        if (EsDigito(s[i])) {
            l.cifras += static_cast<char>(s[i].unicode());
            ++i;
        } else if (l.cifras.empty() || !consumeGrupo()) {
            break;
        }
    }
    if (i < n && empiezaCon(datos.decimal)) {
        i += datos.decimal.size();
        while (i < n && EsDigito(s[i])) {
            l.cifras += static_cast<char>(s[i].unicode());
            ++decimales;
            ++i;
        }
    }
    if (l.cifras.empty())
        return std::nullopt;

    int64_t exponente = 0;
    if (i < n && QStringView(u"EeDd").contains(s[i])) {
        ++i;
        bool expNegativo = false;
        if (i < n && (s[i] == u'+' || s[i] == u'-')) {
            expNegativo = s[i] == u'-';
            ++i;
        }
        if (i == n || !EsDigito(s[i]))
            return std::nullopt;
        while (i < n && EsDigito(s[i])) {
            // Saturates: anything this large over- or underflows anyway.
            if (exponente < 1'000'000'000)
                exponente = exponente * 10 + (s[i].unicode() - u'0');
            ++i;
        }
        if (expNegativo)
            exponente = -exponente;
    }

    while (i < n) {
        if (EsBlanco(s[i])) {
            ++i;
            continue;
        }
        if (consumeSigno() || consumeMoneda())
            continue;
        if (s[i] == u')' && parentesis && !cerrado) {
            cerrado = true;
            ++i;
            continue;
        }
        return std::nullopt;
    }
    if (parentesis && !cerrado)
        return std::nullopt;

    l.negativo = negativo || parentesis;
    l.exponente = exponente - decimales;
    interno::Compacta(l);
    return l;
}

// The exact decimal value rounded to 4 places, halves to even. Of a binary
// value, the shortest digits that read back as it: the number the user wrote.
Moneda MonedaDe(Decimal d) {
    interno::Redondea(d, 4, interno::Mitades::AlPar);
    if (d.enteras() > 15)
        Lanza(err::kDesbordamiento);
    uint64_t magnitud = 0;
    for (int64_t p = d.enteras() - 1; p >= -4; --p)
        magnitud = magnitud * 10 + static_cast<uint64_t>(d.cifra(p) - '0');
    const uint64_t limite = d.negativo ? uint64_t{1} << 63 : (uint64_t{1} << 63) - 1;
    if (magnitud > limite)
        Lanza(err::kDesbordamiento);
    return Moneda{d.negativo ? static_cast<int64_t>(0 - magnitud) : static_cast<int64_t>(magnitud)};
}

template <class T>
QString TextoDeBinario(T x, int precision) {
    if (x == 0)
        return QStringLiteral("0");  // also for -0
    char buffer[64];
    auto [fin, ec] = std::to_chars(buffer, buffer + sizeof buffer, x, std::chars_format::general, precision);
    QString texto = QString::fromLatin1(buffer, fin - buffer);
    if (!std::isfinite(x))
        return texto;
    texto.replace(u'e', u'E');
    const QString& decimal = Datos().decimal;
    if (decimal != u".")
        texto.replace(u'.', decimal);
    return texto;
}

QString TextoDeMoneda(Moneda m) {
    const bool negativo = m.escalado < 0;
    const uint64_t magnitud = negativo ? 0 - static_cast<uint64_t>(m.escalado) : static_cast<uint64_t>(m.escalado);
    QString texto = negativo ? QStringLiteral("-") : QString();
    texto += QString::number(magnitud / 10000);
    uint64_t fraccion = magnitud % 10000;
    if (fraccion != 0) {
        QString cifras = QStringLiteral("%1").arg(fraccion, 4, 10, QChar(u'0'));
        while (cifras.endsWith(u'0'))
            cifras.chop(1);
        texto += Datos().decimal + cifras;
    }
    return texto;
}

// ---------------------------------------------------------------------------
// Dates

QString TextoDeFecha(double serial) {
    if (!(serial >= kFechaMinima && serial < kFechaLimite))
        Lanza(err::kDesbordamiento);
    const interno::Momento m = interno::Desglosa(serial);
    const DatosDeLocal& datos = Datos();
    const QString hora = datos.local.toString(QTime(m.hora(), m.minuto(), m.segundo()), datos.formatoHora);
    if (m.dias == 0)
        return hora;
    const QString fecha = datos.local.toString(m.fecha, datos.formatoFecha);
    return m.segundos == 0 ? fecha : fecha + u' ' + hora;
}

struct Pieza {
    enum Clase { Numero, Palabra, Separador } clase;
    QString texto;
    int valor = 0;
    int cifras = 0;
    QChar separador;
};

std::optional<std::vector<Pieza>> Trocea(const QString& texto) {
    std::vector<Pieza> piezas;
    for (qsizetype i = 0; i < texto.size();) {
        const QChar c = texto[i];
        if (c == u' ') {
            while (i < texto.size() && texto[i] == u' ')
                ++i;
            piezas.push_back({Pieza::Separador, {}, 0, 0, u' '});
        } else if (EsDigito(c)) {
            Pieza p{Pieza::Numero, {}, 0, 0, {}};
            while (i < texto.size() && EsDigito(texto[i])) {
                if (++p.cifras > 5)
                    return std::nullopt;
                p.valor = p.valor * 10 + (texto[i].unicode() - u'0');
                ++i;
            }
            piezas.push_back(p);
        } else if (c.isLetter()) {
            qsizetype j = i;
            while (j < texto.size() && texto[j].isLetter())
                ++j;
            piezas.push_back({Pieza::Palabra, texto.mid(i, j - i), 0, 0, {}});
            i = j;
        } else {
            piezas.push_back({Pieza::Separador, {}, 0, 0, c});
            ++i;
        }
    }
    while (!piezas.empty() && piezas.front().separador == u' ')
        piezas.erase(piezas.begin());
    while (!piezas.empty() && piezas.back().separador == u' ')
        piezas.pop_back();
    return piezas;
}

bool EsEspacio(const Pieza& p) { return p.clase == Pieza::Separador && p.separador == u' '; }
bool EsSeparador(const Pieza& p, QChar c) { return p.clase == Pieza::Separador && p.separador == c; }

// 0 when the word is not a day-half marker, 1 for morning, 2 for afternoon.
int Meridiano(const Pieza& p) {
    if (p.clase != Pieza::Palabra)
        return 0;
    if (p.texto == u"am" || p.texto == u"a")
        return 1;
    if (p.texto == u"pm" || p.texto == u"p")
        return 2;
    return 0;
}

// Finds "h:mm[:ss] [am|pm]" or "h am|pm" standing on its own and takes it out
// of the pieces; nullopt when there is no time, -1 when it is malformed.
std::optional<int64_t> ExtraeHora(std::vector<Pieza>& piezas) {
    const size_t n = piezas.size();
    for (size_t k = 0; k < n; ++k) {
        if (piezas[k].clase != Pieza::Numero || (k > 0 && !EsEspacio(piezas[k - 1])))
            continue;
        int campos[3] = {piezas[k].valor, 0, 0};
        size_t fin = k + 1;
        int leidos = 1;
        while (leidos < 3 && fin + 1 < n && EsSeparador(piezas[fin], u':') && piezas[fin + 1].clase == Pieza::Numero) {
            campos[leidos++] = piezas[fin + 1].valor;
            fin += 2;
        }
        int meridiano = 0;
        if (fin < n && Meridiano(piezas[fin])) {
            meridiano = Meridiano(piezas[fin++]);
        } else if (fin + 1 < n && EsEspacio(piezas[fin]) && Meridiano(piezas[fin + 1])) {
            meridiano = Meridiano(piezas[fin + 1]);
            fin += 2;
        }
        if (leidos == 1 && meridiano == 0)
            continue;
        if (fin < n && !EsEspacio(piezas[fin]))
            continue;
        int horas = campos[0];
        if (campos[1] > 59 || campos[2] > 59 || horas > 23 || (meridiano && horas > 12))
            return -1;
        if (meridiano == 1 && horas == 12)
            horas = 0;
        else if (meridiano == 2 && horas < 12)
            horas += 12;
        piezas.erase(piezas.begin() + static_cast<std::ptrdiff_t>(k), piezas.begin() + static_cast<std::ptrdiff_t>(fin));
        return horas * int64_t{3600} + campos[1] * 60 + campos[2];
    }
    return std::nullopt;
}

int AnoCompleto(const Pieza& p) {
    if (p.cifras <= 2)
        return p.valor < 30 ? 2000 + p.valor : 1900 + p.valor;
    return p.valor;
}

bool PareceAno(const Pieza& p) { return p.cifras >= 3 || p.valor > 31; }

std::optional<QDate> FechaValida(int ano, int mes, int dia) {
    if (ano < 100 || ano > 9999 || !QDate::isValid(ano, mes, dia))
        return std::nullopt;
    return QDate(ano, mes, dia);
}

// Day and month as the locale orders them, swapped when only that makes a date.
std::optional<QDate> FechaConOrden(int ano, int primero, int segundo, bool diaPrimero) {
    int dia = diaPrimero ? primero : segundo;
    int mes = diaPrimero ? segundo : primero;
    if (auto f = FechaValida(ano, mes, dia))
        return f;
    return FechaValida(ano, dia, mes);
}

std::optional<QDate> LeeParteDeFecha(const std::vector<Pieza>& piezas, const DatosDeLocal& datos) {
    std::vector<Pieza> numeros;
    int mes = 0;
    bool soloNumeros = true;
    for (const Pieza& p : piezas) {
        switch (p.clase) {
        case Pieza::Numero:
            numeros.push_back(p);
            if (numeros.size() > 3)
                return std::nullopt;
            break;
        case Pieza::Palabra: {
            soloNumeros = false;
            auto it = std::find_if(datos.meses.begin(), datos.meses.end(), [&](const auto& m) { return m.first == p.texto; });
            if (it != datos.meses.end()) {
                if (mes != 0)
                    return std::nullopt;
                mes = it->second;
            } else if (std::find(datos.ignorables.begin(), datos.ignorables.end(), p.texto) == datos.ignorables.end()) {
                return std::nullopt;
            }
            break;
        }
        case Pieza::Separador:
            if (!QStringView(u" /-.,").contains(p.separador))
                return std::nullopt;
            break;
        }
    }
    const int anoActual = QDate::currentDate().year();

    if (mes != 0) {
        if (numeros.size() == 1) {
            if (PareceAno(numeros[0]))
                return FechaValida(AnoCompleto(numeros[0]), mes, 1);
            return FechaValida(anoActual, mes, numeros[0].valor);
        }
        if (numeros.size() != 2)
            return std::nullopt;
        const bool anoPrimero = PareceAno(numeros[0]) || (!PareceAno(numeros[1]) && datos.orden == OrdenFecha::AnoMesDia);
        const Pieza& ano = anoPrimero ? numeros[0] : numeros[1];
        const Pieza& dia = anoPrimero ? numeros[1] : numeros[0];
        return FechaValida(AnoCompleto(ano), mes, dia.valor);
    }

    // Numbers only: strictly number, separator, number, so that numeric text
    // such as "1.5" or "1,5" is not taken for a date.
    if (!soloNumeros || piezas.size() != numeros.size() * 2 - 1 || numeros.size() < 2)
        return std::nullopt;
    for (size_t k = 1; k < piezas.size(); k += 2) {
        const QChar s = piezas[k].separador;
        const bool admitido = s == u'/' || s == u'-' || (numeros.size() == 3 && s == u'.') ||
                              (s == datos.separadorFecha && s != u',');
        if (!admitido)
            return std::nullopt;
    }
    const bool diaPrimero = datos.orden == OrdenFecha::DiaMesAno;
    if (numeros.size() == 3) {
        if (numeros[0].cifras >= 3 || datos.orden == OrdenFecha::AnoMesDia)
            return FechaValida(AnoCompleto(numeros[0]), numeros[1].valor, numeros[2].valor);
        return FechaConOrden(AnoCompleto(numeros[2]), numeros[0].valor, numeros[1].valor, diaPrimero);
    }
    if (PareceAno(numeros[0]))
        return FechaValida(AnoCompleto(numeros[0]), numeros[1].valor, 1);
    if (PareceAno(numeros[1]))
        return FechaValida(AnoCompleto(numeros[1]), numeros[0].valor, 1);
    return FechaConOrden(anoActual, numeros[0].valor, numeros[1].valor, diaPrimero);
}

std::optional<double> LeeFecha(const QString& texto, const DatosDeLocal& datos) {
    QString normal = Normaliza(texto).simplified();
    // Markers such as "a. m." would otherwise split into several words.
    auto sustituye = [&normal](const QString& marca, const QString& sustituto) {
        if (marca.isEmpty() || marca == u"am" || marca == u"pm")
            return;
        normal.replace(marca, sustituto);
        QString junto = marca;
        junto.remove(u' ');
        if (junto != marca)
            normal.replace(junto, sustituto);
    };
    sustituye(datos.am, QStringLiteral(" am "));
    sustituye(datos.pm, QStringLiteral(" pm "));
    auto piezas = Trocea(normal.simplified());
    if (!piezas || piezas->empty())
        return std::nullopt;
    const std::optional<int64_t> segundos = ExtraeHora(*piezas);
    if (segundos && *segundos < 0)
        return std::nullopt;
    while (!piezas->empty() && EsEspacio(piezas->front()))
        piezas->erase(piezas->begin());
    while (!piezas->empty() && EsEspacio(piezas->back()))
        piezas->pop_back();
    if (piezas->empty() && !segundos)
        return std::nullopt;
    // A time alone is a time of day zero.
    const std::optional<QDate> fecha = piezas->empty() ? QDate(1899, 12, 30) : LeeParteDeFecha(*piezas, datos);
    if (!fecha)
        return std::nullopt;
    return interno::SerialDeFecha(*fecha, segundos.value_or(0));
}

double FechaEnIntervalo(double serial) {
    if (!(serial >= kFechaMinima && serial < kFechaLimite))
        Lanza(err::kDesbordamiento);
    return serial;
}

// Integer conversions: currency is rounded exactly, the rest through double.
int64_t EnteroRedondeado(const Variant& v, int64_t minimo, int64_t maximo) {
    int64_t r = 0;
    switch (v.tipo()) {
    case TipoVariant::Vacio:
        return 0;
    case TipoVariant::Booleano:
        return v.booleano() ? -1 : 0;
    case TipoVariant::Entero:
        r = v.entero();
        break;
    case TipoVariant::Largo:
        r = v.largo();
        break;
    case TipoVariant::Moneda: {
        const int64_t e = v.moneda().escalado;
        r = e / 10000;
        const int64_t resto = e % 10000;
        if (resto > 5000 || (resto == 5000 && r % 2 != 0))
            ++r;
        else if (resto < -5000 || (resto == -5000 && r % 2 != 0))
            --r;
        break;
    }
    case TipoVariant::Objeto:
        return EnteroRedondeado(interno::ValorPorDefecto(v), minimo, maximo);
    default: {
        const double d = RedondeaPar(CDbl(v));
        if (!(d >= static_cast<double>(minimo) && d <= static_cast<double>(maximo)))
            Lanza(err::kDesbordamiento);
        return static_cast<int64_t>(d);
    }
    }
    if (r < minimo || r > maximo)
        Lanza(err::kDesbordamiento);
    return r;
}

bool TextoIgual(const QString& a, QStringView b) { return a.compare(b, Qt::CaseInsensitive) == 0; }

}  // namespace

namespace interno {

Variant ValorPorDefecto(const Variant& v) {
    Variant actual = v;
    // A default member may hand back another object; a cycle must not recurse forever.
    for (int nivel = 0; nivel < kProfundidadMaxima && actual.esObjeto(); ++nivel) {
        std::shared_ptr<Objeto> objeto = actual.objeto();
        if (!objeto)
            Lanza(err::kObjetoNoEstablecido);
        try {
            actual = objeto->Invoca(kDispidValor, Llamada::LeePropiedad, {});
        } catch (const ErrorDeAutomatizacion&) {
            throw;
        } catch (const std::bad_alloc&) {
            Lanza(err::kMemoriaInsuficiente);
        } catch (const std::exception&) {
            Lanza(err::kLlamadaNoValida);
        }
    }
    if (actual.esObjeto())
        Lanza(err::kTiposNoCoinciden);
    return actual;
}

}  // namespace interno

QLocale LocalDelUsuario() { return Datos().local; }

void EstableceLocalDelUsuario(std::optional<QLocale> local) {
    auto datos = std::make_shared<const DatosDeLocal>(local.value_or(QLocale::system()));
    EstadoDelLocal& estado = Estado();
    std::lock_guard bloqueo(estado.mutex);
    estado.reemplazo = std::move(local);
    estado.datos = std::move(datos);
    estado.generacion.fetch_add(1, std::memory_order_release);
}

double RedondeaPar(double x) noexcept {
    // Independent of the floating-point rounding mode, which a host may change.
    const double r = std::round(x);
    if (std::fabs(x - std::trunc(x)) == 0.5)
        return 2.0 * std::round(x / 2.0);
    return r;
}

QString TextoDeDoble(double d) { return TextoDeBinario(d, 15); }
QString TextoDeSencillo(float f) { return TextoDeBinario(f, 7); }

std::optional<double> LeeNumero(const QString& texto) {
    auto l = Lee(texto, Datos());
    if (!l)
        return std::nullopt;
    return interno::DobleDe(*l);
}

QString CStr(const Variant& v) {
    switch (v.tipo()) {
    case TipoVariant::Vacio:
        return {};
    case TipoVariant::Nulo:
        Lanza(err::kUsoNoValidoDeNull);
    case TipoVariant::Booleano:
        return v.booleano() ? QStringLiteral("True") : QStringLiteral("False");
    case TipoVariant::Entero:
        return QString::number(v.entero());
    case TipoVariant::Largo:
        return QString::number(v.largo());
    case TipoVariant::Sencillo:
        return TextoDeSencillo(v.sencillo());
    case TipoVariant::Doble:
        return TextoDeDoble(v.doble());
    case TipoVariant::Moneda:
        return TextoDeMoneda(v.moneda());
    case TipoVariant::Fecha:
        return TextoDeFecha(v.fecha());
    case TipoVariant::Texto:
        return v.texto();
    case TipoVariant::Error:
        return QStringLiteral("Error ") + QString::number(v.codigoDeError());
    case TipoVariant::Objeto:
        return CStr(interno::ValorPorDefecto(v));
    }
    Lanza(err::kTiposNoCoinciden);
}

double CDbl(const Variant& v) {
    switch (v.tipo()) {
    case TipoVariant::Vacio:
        return 0.0;
    case TipoVariant::Nulo:
        Lanza(err::kUsoNoValidoDeNull);
    case TipoVariant::Booleano:
        return v.booleano() ? -1.0 : 0.0;
    case TipoVariant::Entero:
        return v.entero();
    case TipoVariant::Largo:
        return v.largo();
    case TipoVariant::Sencillo:
        return v.sencillo();
    case TipoVariant::Doble:
        return v.doble();
    case TipoVariant::Moneda:
        return static_cast<double>(static_cast<long double>(v.moneda().escalado) / 10000.0L);
    case TipoVariant::Fecha:
        return v.fecha();
    case TipoVariant::Texto: {
        auto l = Lee(v.texto(), Datos());
        if (!l)
            Lanza(err::kTiposNoCoinciden);
        const double d = interno::DobleDe(*l);
        if (!std::isfinite(d))
            Lanza(err::kDesbordamiento);
        return d;
    }
    case TipoVariant::Error:
        Lanza(err::kTiposNoCoinciden);
    case TipoVariant::Objeto:
        return CDbl(interno::ValorPorDefecto(v));
    }
    Lanza(err::kTiposNoCoinciden);
}

float CSng(const Variant& v) {
    if (v.tipo() == TipoVariant::Sencillo)
        return v.sencillo();
    const double d = CDbl(v);
    if (std::fabs(d) > static_cast<double>(FLT_MAX))
        Lanza(err::kDesbordamiento);
    return static_cast<float>(d);
}

bool CBool(const Variant& v) {
    switch (v.tipo()) {
    case TipoVariant::Vacio:
        return false;
    case TipoVariant::Booleano:
        return v.booleano();
    case TipoVariant::Moneda:
        return v.moneda().escalado != 0;
    case TipoVariant::Texto: {
        const QString t = v.texto().trimmed();
        if (TextoIgual(t, u"True") || TextoIgual(t, u"Verdadero"))
            return true;
        if (TextoIgual(t, u"False") || TextoIgual(t, u"Falso"))
            return false;
        auto l = Lee(t, Datos());
        if (!l)
            Lanza(err::kTiposNoCoinciden);
        return !l->esCero();
    }
    case TipoVariant::Objeto:
        return CBool(interno::ValorPorDefecto(v));
    default:
        return CDbl(v) != 0.0;
    }
}

int16_t CInt(const Variant& v) { return static_cast<int16_t>(EnteroRedondeado(v, INT16_MIN, INT16_MAX)); }

int32_t CLng(const Variant& v) { return static_cast<int32_t>(EnteroRedondeado(v, INT32_MIN, INT32_MAX)); }

Moneda CCur(const Variant& v) {
    switch (v.tipo()) {
    case TipoVariant::Vacio:
        return Moneda{0};
    case TipoVariant::Nulo:
        Lanza(err::kUsoNoValidoDeNull);
    case TipoVariant::Booleano:
        return Moneda{v.booleano() ? -10000 : 0};
    case TipoVariant::Entero:
        return Moneda{int64_t{v.entero()} * 10000};
    case TipoVariant::Largo:
        return Moneda{int64_t{v.largo()} * 10000};
    case TipoVariant::Sencillo:
        return MonedaDe(interno::DecimalDeBinario(v.sencillo()));
    case TipoVariant::Doble:
        return MonedaDe(interno::DecimalDeBinario(v.doble()));
    case TipoVariant::Fecha:
        return MonedaDe(interno::DecimalDeBinario(v.fecha()));
    case TipoVariant::Moneda:
        return v.moneda();
    case TipoVariant::Texto: {
        auto l = Lee(v.texto(), Datos());
        if (!l)
            Lanza(err::kTiposNoCoinciden);
        return MonedaDe(*l);
    }
    case TipoVariant::Error:
        Lanza(err::kTiposNoCoinciden);
    case TipoVariant::Objeto:
        return CCur(interno::ValorPorDefecto(v));
    }
    Lanza(err::kTiposNoCoinciden);
}

double CDate(const Variant& v) {
    switch (v.tipo()) {
    case TipoVariant::Vacio:
        return 0.0;
    case TipoVariant::Nulo:
        Lanza(err::kUsoNoValidoDeNull);
    case TipoVariant::Texto: {
        // Numeric text is not a date, unlike a number.
        auto serial = LeeFecha(v.texto(), Datos());
        if (!serial)
            Lanza(err::kTiposNoCoinciden);
        return FechaEnIntervalo(*serial);
    }
    case TipoVariant::Objeto:
        return CDate(interno::ValorPorDefecto(v));
    default:
        return FechaEnIntervalo(CDbl(v));
    }
}

}  // namespace kalo

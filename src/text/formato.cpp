// The runtime's Format. A format text is cut into sections and characters
// (quotes and backslashes make literals), the sections are classed as
// numeric, date or text by the placeholders they hold, and one of three
// formatters renders the value. Named formats are user formats underneath,
// except Currency, General Number and the yes/no families.

#include "text/formato.h"

#include <QDate>
#include <QLocale>

#include <algorithm>
#include <cmath>
#include <optional>
#include <string>
#include <vector>

#include "kaloimpresora/conversiones.h"
#include "kaloimpresora/errores.h"
#include "runtime/numero_y_fecha.h"
#include "runtime/valor_interno.h"

namespace kalo {

namespace {

using interno::Decimal;
using interno::DecimalDeBinario;
using interno::DecimalDeEntero;

// Locale texts carry no-break spaces that printer fonts may lack.
QString Llano(QString s) {
    for (QChar& c : s) {
        if (c == QChar(0x00A0) || c == QChar(0x202F))
            c = u' ';
    }
    return s;
}

// What the formatters take from the user's locale.
struct Local {
    QLocale local;
    QString decimal;
    QString grupo;
    QString separadorFecha = QStringLiteral("/");
    QString separadorHora = QStringLiteral(":");
};

// The first punctuation after a field of the locale's own format.
QString SeparadorDe(const QString& formato, QStringView campos, const QString& porDefecto) {
    bool citado = false;
    bool trasCampo = false;
    for (QChar c : formato) {
        if (c == u'\'') {
            citado = !citado;
        } else if (!citado && campos.contains(c)) {
            trasCampo = true;
        } else if (!citado && trasCampo && !c.isLetter() && !c.isSpace()) {
            return QString(c);
        }
    }
    return porDefecto;
}

Local LeeLocal() {
    Local l{LocalDelUsuario(), {}, {}};
    l.decimal = Llano(l.local.decimalPoint());
    l.grupo = Llano(l.local.groupSeparator());
    l.separadorFecha = SeparadorDe(l.local.dateFormat(QLocale::ShortFormat), u"dMy", l.separadorFecha);
    l.separadorHora = SeparadorDe(l.local.timeFormat(QLocale::ShortFormat), u"hH", l.separadorHora);
    return l;
}

// ---------------------------------------------------------------------------
// Format text

// One character of a section; quoted and escaped ones are always literal.
struct Caracter {
    QChar c;
    bool literal = false;
};
using Seccion = std::vector<Caracter>;

std::vector<Seccion> Secciones(const QString& formato) {
    std::vector<Seccion> secciones(1);
    for (qsizetype i = 0; i < formato.size(); ++i) {
        const QChar c = formato[i];
        if (c == u'\\') {
            if (++i < formato.size())
                secciones.back().push_back({formato[i], true});
        } else if (c == u'"') {
            while (++i < formato.size() && formato[i] != u'"')
                secciones.back().push_back({formato[i], true});
        } else if (c == u';') {
            secciones.emplace_back();
        } else {
            secciones.back().push_back({c, false});
        }
    }
    return secciones;
}

QString TextoLiteral(const Seccion& s) {
    QString r;
    for (const Caracter& k : s)
        r += k.c;
    return r;
}

// ---------------------------------------------------------------------------
// Numbers, kept in decimal so that rounding sees the digits the user sees.

// Halves away from zero, unlike the whole-number conversions.
void Redondea(Decimal& d, int64_t decimales) { interno::Redondea(d, decimales, interno::Mitades::LejosDelCero); }

std::string ParteEntera(const Decimal& d) {
    std::string r;
    for (int64_t p = d.enteras() - 1; p >= 0; --p)
        r += d.cifra(p);
    return r;
}

// The number in a value, or nullopt for text that is not one (returned
// unchanged by the caller). Empty counts as 0 and True as -1. A binary value
// is seen through as many digits as the runtime shows of it (15 for a double,
// 7 for a single), so 1.005 is 1.005.
std::optional<Decimal> DecimalDe(const Variant& v) {
    switch (v.tipo()) {
    case TipoVariant::Vacio:
        return Decimal{};
    case TipoVariant::Booleano:
        return DecimalDeEntero(v.booleano() ? -1 : 0);
    case TipoVariant::Entero:
        return DecimalDeEntero(v.entero());
    case TipoVariant::Largo:
        return DecimalDeEntero(v.largo());
    case TipoVariant::Moneda:
        return DecimalDeEntero(v.moneda().escalado, -4);
    case TipoVariant::Sencillo:
        return DecimalDeBinario(v.sencillo(), 7);
    case TipoVariant::Doble:
    case TipoVariant::Fecha:
        return DecimalDeBinario(v.doble(), 15);
    case TipoVariant::Texto: {
        const std::optional<double> d = LeeNumero(v.texto());
        if (!d || !std::isfinite(*d))
            return std::nullopt;
        return DecimalDeBinario(*d, 15);
    }
    default:
        return DecimalDeBinario(CDbl(v), 15);
    }
}

struct ElementoNumerico {
    enum Clase { Literal, Coma, Cifra, Punto, MarcaExponente } clase;
    enum Zona { Entera, Fraccion, Exponente } zona = Entera;
    QString texto;      // a literal, or the E as written
    QChar cifra;        // '0' or '#'
    bool conMas = false;  // E+ shows the sign of positive exponents too
};

struct PatronNumerico {
    std::vector<ElementoNumerico> elementos;
    int enteras = 0;
    int fraccion = 0;
    int primerCeroEntero = -1;    // among the integer placeholders
    int ultimoCeroFraccion = -1;  // among the fraction placeholders
    int cerosExponente = 0;
    bool cientifico = false;
    bool agrupa = false;
    int escala = 0;  // powers of ten: +2 for %, -3 for each scaling comma
};

PatronNumerico PatronDe(const Seccion& s) {
    PatronNumerico p;
    auto& el = p.elementos;
    auto literal = [&el](QChar c, ElementoNumerico::Zona zona) {
        if (!el.empty() && el.back().clase == ElementoNumerico::Literal)
            el.back().texto += c;
        else
            el.push_back({ElementoNumerico::Literal, zona, QString(c), {}});
    };
    ElementoNumerico::Zona zona = ElementoNumerico::Entera;
    std::vector<size_t> comas;  // integer-part commas, decided once the digits are known
    for (size_t i = 0; i < s.size(); ++i) {
        const QChar c = s[i].c;
        const bool cifra = c == u'0' || c == u'#';
        // Past the exponent's sign only digit placeholders mean anything.
        if (s[i].literal || (zona == ElementoNumerico::Exponente && !cifra)) {
            literal(c, zona);
        } else if (cifra) {
            el.push_back({ElementoNumerico::Cifra, zona, {}, c});
        } else if (c == u'.' && zona == ElementoNumerico::Entera) {
            el.push_back({ElementoNumerico::Punto, zona, {}, {}});
            zona = ElementoNumerico::Fraccion;
        } else if (c == u',' && zona == ElementoNumerico::Entera) {
            comas.push_back(el.size());
            el.push_back({ElementoNumerico::Coma, zona, QString(c), {}});
        } else if ((c == u'E' || c == u'e') && i + 1 < s.size() && !s[i + 1].literal &&
                   (s[i + 1].c == u'+' || s[i + 1].c == u'-')) {
            el.push_back({ElementoNumerico::MarcaExponente, zona, QString(c), {}, s[i + 1].c == u'+'});
            zona = ElementoNumerico::Exponente;
            p.cientifico = true;
            ++i;
        } else {
            if (c == u'%')
                p.escala += 2;
            literal(c, zona);
        }
    }

    // A comma between integer digits groups thousands; one after the last of
    // them scales by a thousand; one before them all is just a comma.
    auto hayCifraEntera = [&el](size_t desde, size_t hasta) {
        for (size_t k = desde; k < hasta; ++k) {
            if (el[k].clase == ElementoNumerico::Cifra && el[k].zona == ElementoNumerico::Entera)
                return true;
        }
        return false;
    };
    std::vector<bool> quita(el.size(), false);
    for (size_t k : comas) {
        if (!hayCifraEntera(0, k)) {
            el[k].clase = ElementoNumerico::Literal;
            continue;
        }
        if (hayCifraEntera(k + 1, el.size()))
            p.agrupa = true;
        else
            p.escala -= 3;
        quita[k] = true;
    }
    std::vector<ElementoNumerico> limpios;
    for (size_t k = 0; k < el.size(); ++k) {
        if (!quita[k])
            limpios.push_back(std::move(el[k]));
    }
    el = std::move(limpios);

    for (const ElementoNumerico& e : el) {
        if (e.clase != ElementoNumerico::Cifra)
            continue;
        const bool cero = e.cifra == u'0';
        switch (e.zona) {
        case ElementoNumerico::Entera:
            if (cero && p.primerCeroEntero < 0)
                p.primerCeroEntero = p.enteras;
            ++p.enteras;
            break;
        case ElementoNumerico::Fraccion:
            if (cero)
                p.ultimoCeroFraccion = p.fraccion;
            ++p.fraccion;
            break;
        case ElementoNumerico::Exponente:
            p.cerosExponente += cero ? 1 : 0;
            break;
        }
    }
    return p;
}

// The magnitude of the value in the pattern; the caller adds any sign.
QString FormateaNumero(const PatronNumerico& p, Decimal v, const Local& local) {
    v.negativo = false;
    if (!v.esCero())
        v.exponente += p.escala;
    int64_t exponente = 0;
    if (p.cientifico && !v.esCero()) {
        exponente = v.enteras() - p.enteras;
        v.exponente -= exponente;
        Redondea(v, p.fraccion);
        if (v.enteras() > p.enteras) {  // 9.996 became 10.00
            --v.exponente;
            ++exponente;
        }
    } else {
        Redondea(v, p.fraccion);
    }

    std::string enteras = ParteEntera(v);
    if (p.primerCeroEntero >= 0) {
        const size_t minimo = static_cast<size_t>(p.enteras - p.primerCeroEntero);
        if (enteras.size() < minimo)
            enteras.insert(0, minimo - enteras.size(), '0');
    }
    // Digit i counted from the right, with the group mark that follows it.
    const QString grupo = p.agrupa ? local.grupo : QString();
    auto cifraEntera = [&enteras, &grupo](size_t i) {
        QString r = QChar(enteras[enteras.size() - 1 - i]);
        if (i > 0 && i % 3 == 0)
            r += grupo;
        return r;
    };
    std::vector<QString> porLugar(static_cast<size_t>(p.enteras));
    size_t usadas = 0;
    for (int j = p.enteras - 1; j >= 0; --j) {
        // The leftmost placeholder takes every digit left over.
        const size_t hasta = j == 0 ? enteras.size() : std::min(enteras.size(), usadas + 1);
        for (; usadas < hasta; ++usadas)
            porLugar[j].prepend(cifraEntera(usadas));
    }
    QString sobrantes;  // integer digits of a pattern with no place for them
    if (p.enteras == 0) {
        for (size_t i = 0; i < enteras.size(); ++i)
            sobrantes.prepend(cifraEntera(i));
    }

    int fraccionVisible = p.ultimoCeroFraccion + 1;
    for (int j = p.fraccion; j > fraccionVisible; --j) {
        if (v.cifra(-j) != '0') {
            fraccionVisible = j;
            break;
        }
    }

    QString cifrasExponente = QString::number(std::abs(exponente));
    if (cifrasExponente.size() < p.cerosExponente)
        cifrasExponente.prepend(QString(p.cerosExponente - cifrasExponente.size(), u'0'));

    QString r;
    int entera = 0;
    int fraccion = 0;
    for (const ElementoNumerico& e : p.elementos) {
        switch (e.clase) {
        case ElementoNumerico::Literal:
        case ElementoNumerico::Coma:
            r += e.texto;
            break;
        case ElementoNumerico::Punto:
            r += sobrantes + local.decimal;
            break;
        case ElementoNumerico::MarcaExponente:
            // All of its digits at once; the literals among its placeholders follow them.
            r += e.texto;
            if (exponente < 0)
                r += u'-';
            else if (e.conMas)
                r += u'+';
            r += cifrasExponente;
            break;
        case ElementoNumerico::Cifra:
            if (e.zona == ElementoNumerico::Entera) {
                r += porLugar[entera++];
            } else if (e.zona == ElementoNumerico::Fraccion) {
                ++fraccion;
                if (fraccion <= fraccionVisible)
                    r += QChar(v.cifra(-fraccion));
            }
            break;
        }
    }
    return r;
}

// Positive, negative, zero and Null sections. The section is chosen by the
// value before rounding, as the runtime does: -0.001 in "0.00" is "-0.00".
QString NumeroConSecciones(const std::vector<Seccion>& secciones, const Decimal& v, const Local& local) {
    const Seccion* seccion = &secciones[0];
    bool conSigno = v.negativo;
    if (v.esCero() && secciones.size() >= 3 && !secciones[2].empty()) {
        seccion = &secciones[2];
    } else if (v.negativo && secciones.size() >= 2 && !secciones[1].empty()) {
        seccion = &secciones[1];
        conSigno = false;
    }
    const QString cuerpo = FormateaNumero(PatronDe(*seccion), v, local);
    return conSigno ? u'-' + cuerpo : cuerpo;
}

QString FormateaMoneda(const Decimal& v, const Local& l) {
    // The locale's own currency text of one unit gives the decimals, the
    // symbol's place and the negative form; only the digits are ours, so
    // that grouping matches the other numbers.
    const QString simbolo = l.local.currencySymbol();
    const QString unidad = l.local.toCurrencyString(1.0, simbolo);
    qsizetype i = 0;
    while (i < unidad.size() && !unidad[i].isDigit())
        ++i;
    while (i < unidad.size() && unidad[i].isDigit())
        ++i;
    int decimales = 0;
    if (QStringView(unidad).sliced(i).startsWith(l.local.decimalPoint())) {
        for (i += l.local.decimalPoint().size(); i < unidad.size() && unidad[i].isDigit(); ++i)
            ++decimales;
    }
    QString formato = QStringLiteral("#,##0");
    if (decimales > 0)
        formato += u'.' + QString(decimales, u'0');
    const QString cifras = FormateaNumero(PatronDe(Secciones(formato)[0]), v, l);
    QString plantilla = Llano(l.local.toCurrencyString(v.negativo ? -1.0 : 1.0, simbolo, 0));
    for (qsizetype k = 0; k < plantilla.size(); ++k) {
        if (plantilla[k].isDigit())
            return plantilla.replace(k, 1, cifras);
    }
    return cifras;
}

// ---------------------------------------------------------------------------
// Dates

struct PiezaDeFecha {
    enum Clase {
        Literal, General, Dia, Dia2, DiaCorto, DiaLargo, FechaCorta, FechaLarga, DiaDeSemana, Semana,
        Mes, Mes2, MesCorto, MesLargo, Trimestre, DiaDelAno, Ano2, Ano4,
        Hora, Hora2, Minuto, Minuto2, Segundo, Segundo2, HoraLarga, Meridiano, SeparadorFecha, SeparadorHora,
    } clase;
    QString texto;  // literal, or the morning mark
    QString tarde;  // the afternoon mark
};
using PatronDeFecha = std::vector<PiezaDeFecha>;

PatronDeFecha PatronDeFechaDe(const Seccion& s) {
    using P = PiezaDeFecha;
    PatronDeFecha r;
    auto literal = [&r](QChar c) {
        if (!r.empty() && r.back().clase == P::Literal)
            r.back().texto += c;
        else
            r.push_back({P::Literal, QString(c), {}});
    };
    // Plain characters from i that spell the text, letter case aside.
    auto dice = [&s](size_t i, QStringView texto) {
        if (i + texto.size() > s.size())
            return false;
        for (qsizetype k = 0; k < texto.size(); ++k) {
            if (s[i + k].literal || s[i + k].c.toLower() != texto[k])
                return false;
        }
        return true;
    };
    auto texto = [&s](size_t i, size_t n) {
        QString t;
        for (size_t k = i; k < i + n; ++k)
            t += s[k].c;
        return t;
    };
    for (size_t i = 0; i < s.size();) {
        const QChar c = s[i].c.toLower();
        if (s[i].literal) {
            literal(s[i++].c);
            continue;
        }
        size_t n = 1;
        while (i + n < s.size() && !s[i + n].literal && s[i + n].c.toLower() == c)
            ++n;
        auto toma = [&](size_t usadas, P::Clase clase) {
            r.push_back({clase, {}, {}});
            i += usadas;
        };
        switch (c.unicode()) {
        case u'd': {
            static constexpr P::Clase dias[] = {P::Dia,      P::Dia2,       P::DiaCorto,
                                                P::DiaLargo, P::FechaCorta, P::FechaLarga};
            n = std::min<size_t>(n, 6);
            toma(n, dias[n - 1]);
            break;
        }
        case u'm': {
            static constexpr P::Clase meses[] = {P::Mes, P::Mes2, P::MesCorto, P::MesLargo};
            n = std::min<size_t>(n, 4);
            toma(n, meses[n - 1]);
            break;
        }
        case u'y':
            if (n >= 4)
                toma(4, P::Ano4);
            else if (n >= 2)
                toma(2, P::Ano2);
            else
                toma(1, P::DiaDelAno);
            break;
        case u'w':
            n >= 2 ? toma(2, P::Semana) : toma(1, P::DiaDeSemana);
            break;
        case u'h':
            n >= 2 ? toma(2, P::Hora2) : toma(1, P::Hora);
            break;
        case u'n':
            n >= 2 ? toma(2, P::Minuto2) : toma(1, P::Minuto);
            break;
        case u's':
            n >= 2 ? toma(2, P::Segundo2) : toma(1, P::Segundo);
            break;
        case u'q':
            toma(1, P::Trimestre);
            break;
        case u'c':
            toma(1, P::General);
            break;
        case u't':
            if (n >= 5)
                toma(5, P::HoraLarga);
            else
                literal(s[i++].c);
            break;
        case u'/':
            toma(1, P::SeparadorFecha);
            break;
        case u':':
            toma(1, P::SeparadorHora);
            break;
        case u'a':
            // The marks come out in the letter case they are written in.
            if (dice(i, u"am/pm")) {
                r.push_back({P::Meridiano, texto(i, 2), texto(i + 3, 2)});
                i += 5;
            } else if (dice(i, u"ampm")) {
                const QLocale local = LocalDelUsuario();
                r.push_back({P::Meridiano, Llano(local.amText()), Llano(local.pmText())});
                i += 4;
            } else if (dice(i, u"a/p")) {
                r.push_back({P::Meridiano, texto(i, 1), texto(i + 2, 1)});
                i += 3;
            } else {
                literal(s[i++].c);
            }
            break;
        default:
            literal(s[i++].c);
            break;
        }
    }
    // m right after an hour is minutes.
    P::Clase anterior = P::Literal;
    for (P& pieza : r) {
        if ((anterior == P::Hora || anterior == P::Hora2) && (pieza.clase == P::Mes || pieza.clase == P::Mes2))
            pieza.clase = pieza.clase == P::Mes ? P::Minuto : P::Minuto2;
        if (pieza.clase != P::Literal && pieza.clase != P::SeparadorFecha && pieza.clase != P::SeparadorHora)
            anterior = pieza.clase;
    }
    return r;
}

// The locale's own date format (Qt notation) in our pieces; two-digit years
// widened to four, as dates are shown elsewhere.
PatronDeFecha PatronDeFormatoDelLocal(const QString& formato) {
    using P = PiezaDeFecha;
    PatronDeFecha r;
    auto literal = [&r](const QString& t) {
        if (!r.empty() && r.back().clase == P::Literal)
            r.back().texto += t;
        else
            r.push_back({P::Literal, t, {}});
    };
    for (qsizetype i = 0; i < formato.size();) {
        const QChar c = formato[i];
        if (c == u'\'') {
            const qsizetype fin = formato.indexOf(u'\'', i + 1);
            const qsizetype hasta = fin < 0 ? formato.size() : fin;
            literal(hasta == i + 1 ? QStringLiteral("'") : formato.mid(i + 1, hasta - i - 1));
            i = hasta + 1;
            continue;
        }
        qsizetype n = 1;
        while (i + n < formato.size() && formato[i + n] == c)
            ++n;
        i += n;
        if (c == u'd') {
            static constexpr P::Clase dias[] = {P::Dia, P::Dia2, P::DiaCorto, P::DiaLargo};
            r.push_back({dias[std::min<qsizetype>(n, 4) - 1], {}, {}});
        } else if (c == u'M') {
            static constexpr P::Clase meses[] = {P::Mes, P::Mes2, P::MesCorto, P::MesLargo};
            r.push_back({meses[std::min<qsizetype>(n, 4) - 1], {}, {}});
        } else if (c == u'y') {
            r.push_back({P::Ano4, {}, {}});
        } else {
            literal(QString(n, c));
        }
    }
    return r;
}

QString DosCifras(int n) { return QStringLiteral("%1").arg(n, 2, 10, QChar(u'0')); }

QString FormateaFecha(const PatronDeFecha& patron, double serial, const Local& l) {
    using P = PiezaDeFecha;
    const interno::Momento m = interno::Desglosa(serial);
    const QDate& d = m.fecha;
    const int hora = m.hora();
    bool doceHoras = false;
    for (const P& p : patron)
        doceHoras = doceHoras || p.clase == P::Meridiano;
    const int horaVisible = doceHoras ? (hora % 12 == 0 ? 12 : hora % 12) : hora;
    const int primeroDeEnero = QDate(d.year(), 1, 1).dayOfWeek() % 7;  // days of its week before it
    const auto soloDia = static_cast<double>(m.dias);

    QString r;
    for (const P& p : patron) {
        switch (p.clase) {
        case P::Literal: r += p.texto; break;
        case P::General: r += CStr(Variant::Fecha(serial)); break;
        case P::Dia: r += QString::number(d.day()); break;
        case P::Dia2: r += DosCifras(d.day()); break;
        case P::DiaCorto: r += Llano(l.local.dayName(d.dayOfWeek(), QLocale::ShortFormat)); break;
        case P::DiaLargo: r += Llano(l.local.dayName(d.dayOfWeek(), QLocale::LongFormat)); break;
        case P::FechaCorta:
            r += FormateaFecha(PatronDeFormatoDelLocal(l.local.dateFormat(QLocale::ShortFormat)), soloDia, l);
            break;
        case P::FechaLarga:
            r += FormateaFecha(PatronDeFormatoDelLocal(l.local.dateFormat(QLocale::LongFormat)), soloDia, l);
            break;
        case P::DiaDeSemana: r += QString::number(m.diaDeSemana()); break;
        case P::Semana: r += QString::number((d.dayOfYear() - 1 + primeroDeEnero) / 7 + 1); break;
        case P::Mes: r += QString::number(d.month()); break;
        case P::Mes2: r += DosCifras(d.month()); break;
        case P::MesCorto: r += Llano(l.local.monthName(d.month(), QLocale::ShortFormat)); break;
        case P::MesLargo: r += Llano(l.local.monthName(d.month(), QLocale::LongFormat)); break;
        case P::Trimestre: r += QString::number((d.month() - 1) / 3 + 1); break;
        case P::DiaDelAno: r += QString::number(d.dayOfYear()); break;
        case P::Ano2: r += DosCifras(d.year() % 100); break;
        case P::Ano4: r += QString::number(d.year()); break;
        case P::Hora: r += QString::number(horaVisible); break;
        case P::Hora2: r += DosCifras(horaVisible); break;
        case P::Minuto: r += QString::number(m.minuto()); break;
        case P::Minuto2: r += DosCifras(m.minuto()); break;
        case P::Segundo: r += QString::number(m.segundo()); break;
        case P::Segundo2: r += DosCifras(m.segundo()); break;
        // The time alone, as the runtime shows a date of day zero.
        case P::HoraLarga: r += CStr(Variant::Fecha(m.segundos / 86400.0)); break;
        case P::Meridiano: r += hora < 12 ? p.texto : p.tarde; break;
        case P::SeparadorFecha: r += l.separadorFecha; break;
        case P::SeparadorHora: r += l.separadorHora; break;
        }
    }
    return r;
}

// The serial date in a value; nullopt for text that is neither a date nor a
// number (returned unchanged by the caller).
std::optional<double> SerialDe(const Variant& v) {
    if (!v.esTexto())
        return CDate(v);
    try {
        return CDate(v);
    } catch (const ErrorDeAutomatizacion& e) {
        if (e.numero() != err::kTiposNoCoinciden)
            throw;
    }
    if (const std::optional<double> numero = LeeNumero(v.texto()))
        return CDate(Variant(*numero));
    return std::nullopt;
}

// ---------------------------------------------------------------------------
// Text

QString FormateaTexto(const Seccion& s, const QString& valor) {
    struct Lugar {
        bool marcador;  // a placeholder, or else literal text
        QString texto;  // the literal, or what an unused placeholder shows
    };
    std::vector<Lugar> lugares;
    bool izquierdaADerecha = false;
    int caso = 0;  // -1 lower, 1 upper
    for (const Caracter& k : s) {
        if (!k.literal && (k.c == u'@' || k.c == u'&'))
            lugares.push_back({true, k.c == u'@' ? QStringLiteral(" ") : QString()});
        else if (!k.literal && (k.c == u'<' || k.c == u'>'))
            caso = caso != 0 ? caso : k.c == u'<' ? -1 : 1;  // the first one holds
        else if (!k.literal && k.c == u'!')
            izquierdaADerecha = true;
        else if (!lugares.empty() && !lugares.back().marcador)
            lugares.back().texto += k.c;
        else
            lugares.push_back({false, QString(k.c)});
    }
    const QString datos = caso < 0 ? valor.toLower() : caso > 0 ? valor.toUpper() : valor;

    std::vector<size_t> marcadores;
    for (size_t k = 0; k < lugares.size(); ++k) {
        if (lugares[k].marcador)
            marcadores.push_back(k);
    }
    const qsizetype n = static_cast<qsizetype>(marcadores.size());
    const qsizetype largo = datos.size();
    // Text that fits fills from the right unless ! says otherwise; longer text
    // fills from the left and what is left over ends the result, after any
    // literals.
    for (qsizetype j = 0; j < n; ++j) {
        const qsizetype i = izquierdaADerecha || largo > n ? j : largo - n + j;
        if (i >= 0 && i < largo)
            lugares[marcadores[j]].texto = datos[i];
    }
    QString r;
    for (const Lugar& l : lugares)
        r += l.texto;
    return r + datos.mid(n);
}

// Any section placeholder decides for the whole format: the text ones first,
// then digits, then date parts; none at all leaves only literals.
enum class Clase { Numerica, Fecha, Texto, Literal };

Clase ClaseDe(const std::vector<Seccion>& secciones) {
    bool numerica = false;
    bool fecha = false;
    for (const Seccion& s : secciones) {
        for (const Caracter& k : s) {
            if (k.literal)
                continue;
            if (QStringView(u"@&<>!").contains(k.c))
                return Clase::Texto;
            numerica = numerica || k.c == u'0' || k.c == u'#';
        }
        for (const PiezaDeFecha& p : PatronDeFechaDe(s)) {
            fecha = fecha || (p.clase != PiezaDeFecha::Literal && p.clase != PiezaDeFecha::SeparadorFecha &&
                              p.clase != PiezaDeFecha::SeparadorHora);
        }
    }
    if (numerica)
        return Clase::Numerica;
    return fecha ? Clase::Fecha : Clase::Literal;
}

// ---------------------------------------------------------------------------
// Named formats

bool Nombre(const QString& formato, QStringView nombre) { return formato.compare(nombre, Qt::CaseInsensitive) == 0; }

struct FormatoConNombre {
    const char16_t* nombre;
    const char16_t* patron;
};

constexpr FormatoConNombre kNumericos[] = {
    {u"Fixed", u"0.00"},
    {u"Standard", u"#,##0.00"},
    {u"Percent", u"0.00%"},
    {u"Scientific", u"0.00E+00"},
};

constexpr FormatoConNombre kDeFecha[] = {
    {u"General Date", u"c"},       {u"Long Date", u"dddddd"}, {u"Medium Date", u"dd-mmm-yy"},
    {u"Short Date", u"ddddd"},     {u"Long Time", u"ttttt"},  {u"Medium Time", u"hh:nn AMPM"},
    {u"Short Time", u"hh:nn"},
};

// Zero gives the second word, anything else the first; in the language of
// the user's locale when it is Spanish, in the runtime's own otherwise.
struct Logico {
    const char16_t* nombre;
    const char16_t* si[2];  // English, Spanish
    const char16_t* no[2];
};

constexpr Logico kLogicos[] = {
    {u"Yes/No", {u"Yes", u"Sí"}, {u"No", u"No"}},
    {u"True/False", {u"True", u"Verdadero"}, {u"False", u"Falso"}},
    {u"On/Off", {u"On", u"Activado"}, {u"Off", u"Desactivado"}},
};

bool EsFormatoConNombre(const QString& formato) {
    for (QStringView n : {u"General Number", u"Currency"}) {
        if (Nombre(formato, n))
            return true;
    }
    for (const auto& n : kNumericos)
        if (Nombre(formato, n.nombre))
            return true;
    for (const auto& n : kDeFecha)
        if (Nombre(formato, n.nombre))
            return true;
    for (const auto& n : kLogicos)
        if (Nombre(formato, n.nombre))
            return true;
    return false;
}

// A value that is not Null in a named format; text that is no number (or no
// date, for the date formats) comes back unchanged.
Variant ConNombre(const Variant& valor, const QString& formato, const Local& l) {
    auto comoDecimal = [&valor](auto&& aTexto) -> Variant {
        const std::optional<Decimal> d = DecimalDe(valor);
        return d ? Variant(aTexto(*d)) : valor;
    };
    if (Nombre(formato, u"General Number")) {
        switch (valor.tipo()) {
        case TipoVariant::Entero:
        case TipoVariant::Largo:
        case TipoVariant::Sencillo:
        case TipoVariant::Doble:
        case TipoVariant::Moneda:
            return Variant(CStr(valor));
        default:
            return comoDecimal([&valor](const Decimal&) { return TextoDeDoble(CDbl(valor)); });
        }
    }
    if (Nombre(formato, u"Currency"))
        return comoDecimal([&l](const Decimal& d) { return FormateaMoneda(d, l); });
    for (const auto& n : kNumericos) {
        if (Nombre(formato, n.nombre)) {
            const std::vector<Seccion> secciones = Secciones(QString::fromUtf16(n.patron));
            return comoDecimal([&](const Decimal& d) { return NumeroConSecciones(secciones, d, l); });
        }
    }
    for (const auto& n : kDeFecha) {
        if (Nombre(formato, n.nombre)) {
            const std::optional<double> serial = SerialDe(valor);
            if (!serial)
                return valor;
            return Variant(FormateaFecha(PatronDeFechaDe(Secciones(QString::fromUtf16(n.patron))[0]), *serial, l));
        }
    }
    const int espanol = l.local.language() == QLocale::Spanish ? 1 : 0;
    for (const auto& n : kLogicos) {
        if (Nombre(formato, n.nombre))
            return comoDecimal(
                [&](const Decimal& d) { return QString::fromUtf16(d.esCero() ? n.no[espanol] : n.si[espanol]); });
    }
    return valor;
}

// Only a section of its own shows Null: the fourth of a number's format,
// the second of a text's.
Variant Nulo(const std::vector<Seccion>& secciones, Clase clase) {
    if ((clase == Clase::Numerica || clase == Clase::Literal) && secciones.size() >= 4 && !secciones[3].empty())
        return Variant(TextoLiteral(secciones[3]));
    if (clase == Clase::Texto && secciones.size() >= 2)
        return Variant(FormateaTexto(secciones[1], {}));
    return Variant::Nulo();
}

}  // namespace

Variant Formato(const Variant& valorDado, const Variant& formatoDado) {
    const Variant valor = interno::ValorPorDefecto(valorDado);
    const Variant formatoComoValor = interno::ValorPorDefecto(formatoDado);
    if (formatoComoValor.esNulo())
        Lanza(err::kUsoNoValidoDeNull);
    const QString formato = formatoComoValor.esFalta() ? QString() : CStr(formatoComoValor);

    if (formato.isEmpty())
        return valor.esNulo() ? Variant::Nulo() : Variant(CStr(valor));

    const Local local = LeeLocal();
    if (EsFormatoConNombre(formato))
        return valor.esNulo() ? Variant::Nulo() : ConNombre(valor, formato, local);

    const std::vector<Seccion> secciones = Secciones(formato);
    const Clase clase = ClaseDe(secciones);
    if (valor.esNulo())
        return Nulo(secciones, clase);
    if (clase == Clase::Texto) {
        const QString texto = CStr(valor);
        if (texto.isEmpty() && secciones.size() >= 2)
            return Variant(FormateaTexto(secciones[1], texto));
        return Variant(FormateaTexto(secciones[0], texto));
    }
    if (clase == Clase::Fecha) {
        const std::optional<double> serial = SerialDe(valor);
        if (!serial)
            return valor;
        return Variant(FormateaFecha(PatronDeFechaDe(secciones[0]), *serial, local));
    }
    const std::optional<Decimal> numero = DecimalDe(valor);
    if (!numero) {
        // Text that is no number: a numeric format leaves it as it is, one of
        // literals alone is applied as a text format.
        if (clase == Clase::Literal)
            return Variant(FormateaTexto(secciones[0], valor.texto()));
        return valor;
    }
    return Variant(NumeroConSecciones(secciones, *numero, local));
}

}  // namespace kalo

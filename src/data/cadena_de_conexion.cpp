#include "data/cadena_de_conexion.h"

#include "kaloimpresora/errores.h"

namespace kalo {

namespace {

using namespace Qt::StringLiterals;

[[noreturn]] void CadenaNoValida(const QString& motivo) {
    throw ErrorDeAutomatizacion(err::kArgumentosNoValidos,
                                DescripcionDeError(err::kArgumentosNoValidos) + u": "_s + motivo,
                                u"Connection"_s);
}

// The value that starts at i (after "="), up to the ";" that ends it.
QString LeeValor(const QString& cadena, qsizetype& i) {
    while (i < cadena.size() && cadena[i].isSpace()) ++i;
    if (i < cadena.size() && (cadena[i] == u'\'' || cadena[i] == u'"')) {
        const QChar comilla = cadena[i++];
        QString valor;
        for (;;) {
            if (i >= cadena.size()) CadenaNoValida(u"falta cerrar las comillas de un valor"_s);
            if (cadena[i] == comilla) {
                if (i + 1 < cadena.size() && cadena[i + 1] == comilla) {
                    valor += comilla;
                    i += 2;
                    continue;
                }
                ++i;
                break;
            }
            valor += cadena[i++];
        }
        while (i < cadena.size() && cadena[i] != u';') ++i;
        return valor;
    }
    if (i < cadena.size() && cadena[i] == u'{') {
        const qsizetype fin = cadena.indexOf(u'}', i + 1);
        if (fin < 0) CadenaNoValida(u"falta cerrar la llave de un valor"_s);
        const QString valor = cadena.mid(i + 1, fin - i - 1);
        i = fin + 1;
        while (i < cadena.size() && cadena[i] != u';') ++i;
        return valor;
    }
    const qsizetype inicio = i;
    while (i < cadena.size() && cadena[i] != u';') ++i;
    return cadena.mid(inicio, i - inicio).trimmed();
}

bool Es(const QString& clave, std::initializer_list<const char16_t*> nombres) {
    for (const char16_t* n : nombres)
        if (clave.compare(QStringView(n), Qt::CaseInsensitive) == 0) return true;
    return false;
}

}  // namespace

ParametrosDeConexion LeeCadenaDeConexion(const QString& cadena) {
    ParametrosDeConexion p;
    qsizetype i = 0;
    while (i < cadena.size()) {
        const qsizetype igual = cadena.indexOf(u'=', i);
        const qsizetype puntoYComa = cadena.indexOf(u';', i);
        if (igual < 0 || (puntoYComa >= 0 && puntoYComa < igual)) {
            // A piece without "=": nothing to read in it.
            if (puntoYComa < 0) break;
            i = puntoYComa + 1;
            continue;
        }
        // Keys keep their inner spaces ("User ID") but not the outer ones.
        const QString clave = cadena.mid(i, igual - i).simplified();
        i = igual + 1;
        const QString valor = LeeValor(cadena, i);
        ++i;  // the ";"
        if (Es(clave, {u"Driver"})) {
            p.driver = valor.trimmed().toUpper();
            if (p.driver.isEmpty()) p.driver = u"QSQLITE"_s;
        } else if (Es(clave, {u"Database", u"Data Source", u"Initial Catalog"})) {
            p.baseDeDatos = valor;
        } else if (Es(clave, {u"Server", u"Host"})) {
            p.servidor = valor;
        } else if (Es(clave, {u"Port"})) {
            bool ok = false;
            p.puerto = valor.trimmed().toInt(&ok);
            if (!ok || p.puerto < 0) CadenaNoValida(u"el puerto «"_s + valor + u"» no es un número"_s);
        } else if (Es(clave, {u"User ID", u"UID"})) {
            p.usuario = valor;
        } else if (Es(clave, {u"Password", u"PWD"})) {
            p.contrasena = valor;
        }
    }
    return p;
}

}  // namespace kalo

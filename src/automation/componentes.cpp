#include "automation/componentes.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace kalo::componentes {

namespace {

constexpr char16_t kSubcarpeta[] = u"/kaloimpresora/componentes";

QString NombreDeArchivo(QString idDeClase) {
    idDeClase = idDeClase.trimmed().toUpper();
    if (idDeClase.startsWith(u'{') && idDeClase.endsWith(u'}')) idDeClase = idDeClase.mid(1, idDeClase.size() - 2);
    return idDeClase + u".clase"_s;
}

std::optional<Registro> Lee(const QString& ruta) {
    QFile f(ruta);
    if (!f.open(QIODevice::ReadOnly)) return std::nullopt;
    Registro r;
    const QList<QByteArray> lineas = f.readAll().split('\n');
    for (const QByteArray& linea : lineas) {
        if (linea.startsWith('#')) continue;
        const qsizetype igual = linea.indexOf('=');
        if (igual <= 0) continue;
        const QString clave = QString::fromUtf8(linea.left(igual)).trimmed();
        const QString valor = QString::fromUtf8(linea.mid(igual + 1)).trimmed();
        if (clave == u"IdDePrograma") r.idDePrograma = valor;
        else if (clave == u"IdDeClase") r.idDeClase = valor;
        else if (clave == u"ModeloDeHilos") r.modeloDeHilos = valor;
        else if (clave == u"Interfaz") r.interfaz = valor;
        else if (clave == u"IdDeInterfaz") r.idDeInterfaz = valor;
        else if (clave == u"BibliotecaDeTipos") r.bibliotecaDeTipos = valor;
        else if (clave == u"Version") r.version = valor;
        else if (clave == u"Locale") r.locale = valor;
        else if (clave == u"Biblioteca") r.biblioteca = valor;
    }
    if (r.idDeClase.isEmpty() || r.biblioteca.isEmpty()) return std::nullopt;
    return r;
}

}  // namespace

QString CarpetaParaEscribir(const QString& biblioteca) {
    const QString dir = QFileInfo(biblioteca).absolutePath();
    const QString libdir = u"/" KALO_DIR_BIBLIOTECAS ""_s;
    if (geteuid() == 0 && dir.endsWith(libdir))
        return dir.chopped(libdir.size()) + u"/" KALO_DIR_DATOS ""_s + QString::fromUtf16(kSubcarpeta);
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QString::fromUtf16(kSubcarpeta);
}

QStringList CarpetasDeBusqueda() {
    QStringList carpetas;
    for (const QString& datos : QStandardPaths::standardLocations(QStandardPaths::GenericDataLocation))
        carpetas << datos + QString::fromUtf16(kSubcarpeta);
    const QString propia = u"" KALO_DATOS_DEL_SISTEMA ""_s + QString::fromUtf16(kSubcarpeta);
    if (!carpetas.contains(propia)) carpetas << propia;
    return carpetas;
}

bool Escribe(const QString& carpeta, const Registro& r) {
    if (!QDir().mkpath(carpeta)) return false;
    QSaveFile f(carpeta + u'/' + NombreDeArchivo(r.idDeClase));
    if (!f.open(QIODevice::WriteOnly)) return false;
    const QString texto = u"# Escrito por DllRegisterServer; DllUnregisterServer lo borra.\n"_s +
                          u"IdDePrograma="_s + r.idDePrograma + u"\nIdDeClase="_s + r.idDeClase +
                          u"\nModeloDeHilos="_s + r.modeloDeHilos + u"\nInterfaz="_s + r.interfaz +
                          u"\nIdDeInterfaz="_s + r.idDeInterfaz + u"\nBibliotecaDeTipos="_s + r.bibliotecaDeTipos +
                          u"\nVersion="_s + r.version + u"\nLocale="_s + r.locale + u"\nBiblioteca="_s +
                          r.biblioteca + u'\n';
    f.write(texto.toUtf8());
    return f.commit();
}

bool Borra(const QString& carpeta, const QString& idDeClase) {
    QFile f(carpeta + u'/' + NombreDeArchivo(idDeClase));
    return !f.exists() || f.remove();
}

std::optional<Registro> Busca(const QString& identificador) {
    const QString id = identificador.trimmed();
    if (id.isEmpty()) return std::nullopt;
    const bool esClase = id.startsWith(u'{') || (id.size() == 36 && id.count(u'-') == 4);
    for (const QString& carpeta : CarpetasDeBusqueda()) {
        if (esClase) {
            if (auto r = Lee(carpeta + u'/' + NombreDeArchivo(id))) return r;
            continue;
        }
        const QStringList archivos = QDir(carpeta).entryList({u"*.clase"_s}, QDir::Files, QDir::Name);
        for (const QString& archivo : archivos) {
            auto r = Lee(carpeta + u'/' + archivo);
            if (r && r->idDePrograma.compare(id, Qt::CaseInsensitive) == 0) return r;
        }
    }
    return std::nullopt;
}

}  // namespace kalo::componentes

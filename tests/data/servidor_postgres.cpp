#include "data/servidor_postgres.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <cstdlib>

namespace kalo::prueba {

namespace {

using namespace Qt::StringLiterals;

QString Lee(const QString& ruta) {
    QFile f(ruta);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()).trimmed() : QString();
}

QTemporaryDir* propia = nullptr;

void DetienePropio() { ScriptPostgres({u"detiene"_s, propia->path()}); }

ServidorPostgres Busca() {
    QString base = qEnvironmentVariable("KALO_POSTGRES");
    if (base.isEmpty()) {
        propia = new QTemporaryDir;  // kept for the process's life
        base = propia->path();
        QString salida;
        if (!ScriptPostgres({u"inicia"_s, base, QString::number(QCoreApplication::applicationPid())}, &salida))
            return {{}, u"no arrancó el servidor PostgreSQL privado: "_s + salida};
        std::atexit(DetienePropio);
    }
    if (const QString motivo = Lee(base + u"/motivo"_s); !motivo.isEmpty()) return {{}, motivo};
    const QString carpeta = Lee(base + u"/servidor"_s);
    if (carpeta.isEmpty()) return {{}, u"no hay servidor PostgreSQL en "_s + base};
    return {carpeta, {}};
}

}  // namespace

const ServidorPostgres& Postgres() {
    static const ServidorPostgres servidor = Busca();
    return servidor;
}

bool ScriptPostgres(const QStringList& argumentos, QString* salida) {
    QProcess script;
    script.setProcessChannelMode(QProcess::MergedChannels);
    script.start(u"bash"_s, QStringList{QStringLiteral(KALO_SCRIPT_POSTGRES)} + argumentos);
    const bool bien = script.waitForFinished(120000) && script.exitStatus() == QProcess::NormalExit &&
                      script.exitCode() == 0;
    if (salida) *salida = QString::fromUtf8(script.readAll()).trimmed();
    return bien;
}

QString CadenaPostgres(const QString& carpeta) {
    return u"Driver=QPSQL;Server="_s + carpeta + u";Port=5432;Database=kalo;User ID=kalo"_s;
}

}  // namespace kalo::prueba

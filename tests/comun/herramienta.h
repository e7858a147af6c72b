#pragma once

// The kaloimpresora command run as a user runs it, off screen. Given no
// environment it sees no print server, so never the machine's printers.

#include <gtest/gtest.h>

#include <QProcess>

namespace kalo::prueba {

struct Salida {
    int codigo = -1;
    QString out, err;
};

inline Salida CorreHerramienta(const QStringList& args, QProcessEnvironment entorno = {}) {
    if (entorno.isEmpty()) {
        entorno = QProcessEnvironment::systemEnvironment();
        entorno.insert(QStringLiteral("CUPS_SERVER"), QStringLiteral("127.0.0.1:1"));
    }
    entorno.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    QProcess p;
    p.setProcessEnvironment(entorno);
    p.start(QString::fromUtf8(KALO_HERRAMIENTA), args);
    EXPECT_TRUE(p.waitForFinished(60000)) << args.join(u' ').toStdString();
    return {p.exitCode(), QString::fromUtf8(p.readAllStandardOutput()), QString::fromUtf8(p.readAllStandardError())};
}

}  // namespace kalo::prueba

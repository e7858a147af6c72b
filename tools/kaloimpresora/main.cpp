#include <QCoreApplication>
#include <QStringList>
#include <clocale>
#include <cstdio>

#include "ordenes.h"

namespace {

// Qt's notes about the session (no runtime folder, a headless platform)
// mean nothing to someone reprinting a file; real warnings still show.
QtMessageHandler anterior = nullptr;

void FiltraMensajes(QtMsgType tipo, const QMessageLogContext& contexto, const QString& mensaje) {
    if (tipo != QtCriticalMsg && tipo != QtFatalMsg &&
        (mensaje.startsWith(QStringLiteral("QStandardPaths:")) || mensaje.contains(QStringLiteral("propagateSizeHints"))))
        return;
    if (anterior)
        anterior(tipo, contexto, mensaje);
    else
        std::fprintf(stderr, "%s\n", qPrintable(mensaje));
}

}  // namespace

int main(int argc, char** argv) {
    std::setlocale(LC_ALL, "");
    anterior = qInstallMessageHandler(FiltraMensajes);
    QStringList argumentos;
    for (int i = 1; i < argc; ++i) argumentos << QString::fromLocal8Bit(argv[i]);
    return kalo::herramienta::Ejecuta(argumentos);
}

#pragma once

// The private print server the programs of this folder share (see
// servidor_cups.sh): queues "Kalo" (the default) and "PDF", which keep the
// PDF they get, and "Otra", raw. libcups reads its settings once per
// process, so the server, the client's configuration folder and the home
// where the user's destinations are saved are set before anything prints.

#include <cups/cups.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QThread>
#include <gtest/gtest.h>

#include "comun/herramientas_pdf.h"
#include "kaloimpresora/impresoras.h"

namespace kalo::prueba {

using namespace Qt::StringLiterals;

inline bool sinServidor = false;

class ServidorPrivado : public ::testing::Environment {
public:
    static inline QString carpeta;

    // Where libcups saves this user's destinations and options.
    static QString Lpoptions() { return QDir(carpeta).filePath(u"casa/.cups/lpoptions"_s); }

    void SetUp() override {
        qunsetenv("PRINTER");
        qunsetenv("LPDEST");
        ASSERT_TRUE(dir_.isValid());
        carpeta = dir_.path();
        QDir(carpeta).mkpath(u"cliente"_s);
        QDir(carpeta).mkpath(u"casa"_s);
        qputenv("CUPS_SERVERROOT", QFile::encodeName(dir_.filePath(u"cliente"_s)));
        qputenv("HOME", QFile::encodeName(dir_.filePath(u"casa"_s)));
        if (sinServidor) {
            qputenv("CUPS_SERVER", "127.0.0.1:1");  // nothing listens there
            qputenv("KALO_CARPETA_DE_IMPRESOS", QFile::encodeName(dir_.filePath(u"impresos"_s)));
            return;
        }
        bool ok = false;
        const QString servidor =
            Script({u"inicia"_s, carpeta, QString::number(QCoreApplication::applicationPid())}, &ok).trimmed();
        ASSERT_TRUE(ok && !servidor.isEmpty()) << "no arrancó el servidor de impresión privado";
        iniciado_ = true;
        Script({u"cola"_s, carpeta, u"Kalo"_s, u"predeterminada"_s, QStringLiteral(KALO_PPD_DE_PRUEBA)}, &ok);
        ASSERT_TRUE(ok);
        Script({u"cola"_s, carpeta, u"PDF"_s, {}, QStringLiteral(KALO_PPD_DE_PRUEBA)}, &ok);
        ASSERT_TRUE(ok);
        Script({u"cola"_s, carpeta, u"Otra"_s}, &ok);
        ASSERT_TRUE(ok);
        qputenv("CUPS_SERVER", servidor.toLocal8Bit());
    }

    void TearDown() override {
        EstableceImpresoraActual(nullptr);
        if (iniciado_) Script({u"detiene"_s, carpeta});
    }

private:
    static QString Script(QStringList argumentos, bool* ok = nullptr) {
        argumentos.prepend(QStringLiteral(KALO_SCRIPT_CUPS));
        return Ejecuta(u"bash"_s, argumentos, ok);
    }

    QTemporaryDir dir_;
    bool iniciado_ = false;
};

// The file the queue's backend wrote for a job, once it is whole.
inline QString EsperaTrabajo(int32_t trabajo, const QString& extension = u"pdf"_s) {
    const QString ruta =
        QDir(ServidorPrivado::carpeta).filePath(u"trabajos/trabajo-%1.%2"_s.arg(trabajo).arg(extension));
    for (int i = 0; i < 1500 && !QFile::exists(ruta); ++i) QThread::msleep(20);
    return QFile::exists(ruta) ? ruta : QString();
}

// The number of the last job the queue received; 0 before any.
inline int32_t UltimoTrabajoDe(const char* cola) {
    cups_job_t* trabajos = nullptr;
    const int n = cupsGetJobs2(CUPS_HTTP_DEFAULT, &trabajos, cola, 0, CUPS_WHICHJOBS_ALL);
    int32_t ultimo = 0;
    for (int i = 0; i < n; ++i) ultimo = std::max(ultimo, trabajos[i].id);
    cupsFreeJobs(n, trabajos);
    return ultimo;
}

}  // namespace kalo::prueba
